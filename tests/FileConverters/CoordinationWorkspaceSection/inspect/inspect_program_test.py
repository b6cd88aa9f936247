#!/usr/bin/env python3
"""Runs coordworkspace-inspect as its users do: statuses, streams, forms, colours, the home folder.

usage: inspect_program_test.py INSPECT CONVERTER PROJECT_FOLDER VERSION

Every JSON line is validated against the schema that the program prints, and against a strict form
of it that allows no key which the schema does not name.
"""

import copy
import json
import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import unittest

import jsonschema

INSPECT, CONVERTER, PROJECT, VERSION = sys.argv[1:5]
PROJECT = pathlib.Path(PROJECT)
SAMPLES = sorted((PROJECT / "samples").glob("*.xml"))
GOLDEN = pathlib.Path(__file__).parent / "golden"

SOUND = """<coordinated_data_root version="0.2">
<mic_channels><c><compat_key><zone>{zone}</zone></compat_key>
<compat_prof_id>00000000-0000-4000-8000-00000000000a</compat_prof_id></c></mic_channels>
<compat_configs><compat_config><profile><zone>{zone}</zone></profile></compat_config></compat_configs>
<compat_profiles><compat_profile id="00000000-0000-4000-8000-00000000000a" name="{name}"/></compat_profiles>
</coordinated_data_root>
"""


def sound(zone="Z", name="median"):
    return SOUND.format(zone=zone, name=name)


def strict(schema):
    """The schema with every object closed."""
    schema = copy.deepcopy(schema)
    waiting = [schema]
    while waiting:
        part = waiting.pop()
        if isinstance(part, list):
            waiting += part
        elif isinstance(part, dict):
            if "properties" in part:
                part["additionalProperties"] = False
            waiting += part.values()
    return schema


class Inspect(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        printed = subprocess.run([INSPECT, "--json-schema"], capture_output=True, check=True)
        cls.schema = json.loads(printed.stdout)
        jsonschema.Draft202012Validator.check_schema(cls.schema)
        cls.strict_schema = strict(cls.schema)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.home.mkdir()

    def environment(self, **settings):
        return {"HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home / ".config"),
                "PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", **settings}

    def inspect(self, *arguments, input="", settings=None):
        if isinstance(input, str):
            input = input.encode()
        run = subprocess.run([INSPECT, *map(str, arguments)], input=input, capture_output=True,
                             timeout=120, env=self.environment(**(settings or {})),
                             cwd=self.folder)
        self.assertEqual(list(self.home.iterdir()), [], "the home folder stays empty")
        return run

    def json_lines(self, run):
        self.assertEqual(run.stderr, b"")
        lines = run.stdout.decode().splitlines()
        for line in lines:
            for schema in (self.schema, self.strict_schema):
                jsonschema.validate(json.loads(line), schema)
        return [json.loads(line) for line in lines]

    def json_line(self, run):
        reports = self.json_lines(run)
        self.assertEqual(len(reports), 1)
        self.assertEqual(reports[0]["status"], run.returncode)
        return reports[0]

    def write(self, name, text):
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def convert(self, *arguments, input=b""):
        run = subprocess.run([CONVERTER, *map(str, arguments)], input=input, capture_output=True,
                             timeout=120)
        self.assertEqual(run.returncode, 0)
        return run.stdout


class Reports(Inspect):
    def each_sample(self):
        self.assertGreaterEqual(len(SAMPLES), 3)
        for sample in SAMPLES:
            with self.subTest(sample=sample.name):
                yield sample, self.write(sample.name, sample.read_bytes())

    def test_every_sample_has_its_golden_files(self):
        for sample, path in self.each_sample():
            self.assertEqual(self.inspect(path.name).stdout.decode(),
                             (GOLDEN / f"{sample.stem}.txt").read_text(encoding="utf-8"))
            self.assertEqual(self.json_line(self.inspect("--json", path.name)),
                             json.loads((GOLDEN / f"{sample.stem}.json").read_bytes()))

    def test_every_converted_sample_is_told_to_be_left_alone(self):
        for sample, path in self.each_sample():
            converted = self.write("converted.xml", self.convert(path))
            run = self.inspect("--json", converted)
            report = self.json_line(run)
            self.assertEqual((run.returncode, report["advice"]), (2, "current"))
            self.assertEqual(report["losses"][0]["kind"], "already-current")
            self.assertIn(b"Do not convert it", self.inspect(converted).stdout)

    def test_the_section_is_told_with_its_version(self):
        for section, told in {
            '<coordinated_data_root version="0.3"/>': "version 0.3: current already",
            '<coordinated_data_root version="0.2"/>': "version 0.2: can be converted",
            '<coordinated_data_root version="0.4"/>': "version 0.4: newer than this software knows",
            '<coordinated_data_root version="0.0"/>': "version 0.0: not known to convert",
            "<coordinated_data_root/>": "without a version: not known to convert",
        }.items():
            with self.subTest(section=section):
                run = self.inspect(self.write("section.xml", section))
                line = next(line for line in run.stdout.decode().splitlines() if "Section" in line)
                self.assertTrue(line.endswith(f" coordinated_data_root, {told}"), line)
        run = self.inspect(self.write("section.xml", "<a/>"))
        self.assertIn("Section  not exactly one\n", run.stdout.decode())

    def test_standard_input_has_the_places_of_the_file(self):
        for _, path in self.each_sample():
            from_file = self.json_line(self.inspect("--json", path))
            for arguments, document in (((), "-"), (("-",), "-"), (("--stdin", path), str(path))):
                report = self.json_line(self.inspect("--json", *arguments,
                                                     input=path.read_bytes()))
                self.assertEqual(report, {**from_file, "document": document})

    def test_documents_stay_as_they_are(self):
        for sample, path in self.each_sample():
            path.chmod(0o444)
            self.inspect(path)
            self.assertEqual(path.read_bytes(), sample.read_bytes())

    def test_utf16_reads_as_the_converter_reads_it(self):
        path = self.write("wide.xml", sound("Große Bühne").encode("utf-16-le"))
        report = self.json_line(self.inspect("--json", path))
        self.assertEqual(report["systems"][0]["zone"], "Große Bühne")

    def test_paths_lead_to_what_they_name(self):
        text = sound(name="unknown").replace("<compat_profile ", "<x/><compat_profile a='1'\nb='2' ")
        report = self.json_line(self.inspect("--json", self.write("places.xml", text)))
        self.assertEqual({loss["line"] for loss in report["losses"]}, {5})
        for loss in report["losses"]:
            found = subprocess.run(["xmllint", "--xpath", f"count({loss['path']})", "-"],
                                   input=text.encode(), capture_output=True, check=True)
            self.assertEqual(found.stdout.strip(), b"1", loss["path"])

    def test_the_path_of_what_stands_deep_is_cut_in_its_middle(self):
        deep = "<d>" * 40 + "<compat_profiles/>" + "</d>" * 40
        text = sound().replace("</coordinated_data_root>", deep + "</coordinated_data_root>")
        report = self.json_line(self.inspect("--json", self.write("deep.xml", text)))
        self.assertEqual([loss["path"] for loss in report["losses"]],
                         ["/coordinated_data_root" + "/d" * 7 + "/..." + "/d" * 7 +
                          "/compat_profiles"])


class Statuses(Inspect):
    def test_one_document(self):
        for status, text in (
            (0, sound()),
            (2, sound(name="unknown")),
            (2, sound().replace('"0.2"', '"0.3"')),
            (2, sound().replace('"0.2"', '"0.0"')),
            (1, sound().replace('"0.2"', '"0.4"')),
            (1, sound().replace("-00000000000a\"", "-\"")),
            (1, sound().replace("coordinated_data_root", "data")),
            (1, "<a>"),
            (1, ""),
        ):
            with self.subTest(status=status, text=text):
                path = self.write("document.xml", text)
                self.assertEqual(self.inspect(path).returncode, status)
                self.assertEqual(self.inspect("--quiet", path).returncode, status)
                self.json_line(self.inspect("--json", path))

    def test_the_worst_of_several_counts(self):
        good = self.write("good.xml", sound())
        lossy = self.write("lossy.xml", sound(name="unknown"))
        broken = self.write("broken.xml", "<a>")
        for status, documents in (
            (0, [good, good]), (2, [good, lossy]), (2, [lossy, good]), (1, [lossy, broken]),
            (1, [broken, lossy, good]), (1, [good, broken]),
        ):
            run = self.inspect("--json", *documents)
            self.assertEqual(run.returncode, status)
            reports = self.json_lines(run)
            self.assertEqual([report["document"] for report in reports],
                             [str(document) for document in documents])

    def test_reports_of_several_stand_apart(self):
        good = self.write("good.xml", sound())
        alone = self.inspect(good).stdout
        self.assertEqual(self.inspect(good, good).stdout, alone + b"\n" + alone)

    def test_a_section_without_a_version_or_systems_is_told(self):
        empty = self.write("empty.xml", "<coordinated_data_root><mic_channels/></coordinated_data_root>")
        self.assertIn(b"without a version", self.inspect(empty).stdout)
        self.assertNotIn(b"Zone", self.inspect(empty).stdout)

    def test_what_cannot_be_read_has_an_error(self):
        folder = self.folder / "folder"
        folder.mkdir()
        for document, words in (("none.xml", "no such file"), (folder, "a folder")):
            error = self.json_line(self.inspect("--json", document))["error"]
            self.assertEqual(error["kind"], "not-readable")
            self.assertIn(words, error["text"])
            self.assertIn(words.encode(), self.inspect(document).stdout)
        error = self.json_line(self.inspect("--json", input="<a>\n<b>\n</a>"))["error"]
        self.assertEqual((error["kind"], error["line"]), ("not-well-formed", 3))
        self.assertEqual(self.json_line(self.inspect("--json", input="<a></b>"))["error"]["line"], 1)
        self.assertIn(b" (line 1).", self.inspect(input="<a></b>").stdout)

    def test_a_file_taken_for_utf16_is_told(self):
        path = self.write("narrow.xml", "<\n" + sound()[1:])
        error = self.json_line(self.inspect("--json", path))["error"]
        self.assertEqual(error["kind"], "not-well-formed")
        self.assertIn("UTF-16", error["text"])

    def test_a_folder_as_standard_input_has_an_error(self):
        for arguments in ((), ("--verify", "-", "x.xml"), ("--verify", self.write("s", sound()), "-")):
            folder = os.open(self.folder, os.O_RDONLY)
            run = subprocess.run([INSPECT, "--json", *map(str, arguments)], stdin=folder,
                                 capture_output=True, timeout=60, env=self.environment())
            os.close(folder)
            self.assertEqual(run.returncode, 1)
            self.assertEqual(self.json_line(run)["error"]["kind"], "not-readable")

    def test_wrong_usage(self):
        path = self.write("good.xml", sound())
        for arguments in (("--verify",), ("--verify", path), ("--verify", path, path, path),
                          ("--colour",), ("--color=maybe", path), ("-", "-"), ("--color",),
                          ("--verify", "-", "-"), ("--quiet=yes",), ("-x",)):
            with self.subTest(arguments=arguments):
                run = self.inspect(*arguments)
                self.assertEqual((run.returncode, run.stdout), (64, b""))
                self.assertIn(b"--help", run.stderr)
                error = self.json_line(self.inspect("--json", *arguments))["error"]
                self.assertEqual(error["kind"], "usage")

    def test_quiet_says_nothing(self):
        lossy = self.write("lossy.xml", sound(name="unknown"))
        for arguments in ((lossy,), ("none.xml",), ("--json", lossy),
                          ("--verify", lossy, lossy), ("--verify", lossy, "none.xml")):
            run = self.inspect("--quiet", *arguments)
            self.assertEqual((run.stdout, run.stderr), (b"", b""))
            self.assertIn(run.returncode, (1, 2))

    def test_a_report_that_cannot_be_written_is_no_answer(self):
        with open("/dev/full", "wb") as full:
            # One that is shorter than what a stream keeps back has to be noticed as well.
            for arguments in ((SAMPLES[0],), ("--json", SAMPLES[0]), ("--version",)):
                run = subprocess.run([INSPECT, *arguments], stdout=full,
                                     stderr=subprocess.PIPE, timeout=60, env=self.environment())
                self.assertEqual(run.returncode, 1)


class Verification(Inspect):
    def test_every_samples_conversion_is_right(self):
        for sample in SAMPLES:
            with self.subTest(sample=sample.name):
                after = self.write("after.xml", self.convert(sample))
                joined = self.write("joined.xml", self.convert(input=sample.read_bytes()))
                for arguments in ((sample, after), ("--stdin", sample, joined)):
                    run = self.inspect("--json", "--verify", *arguments)
                    self.assertEqual(self.json_line(run)["differences"], [])
                    self.assertIn(b"is right", self.inspect("--verify", *arguments).stdout)
                run = self.inspect("--json", "--verify", sample, "-", input=after.read_bytes())
                self.assertEqual(self.json_line(run)["differences"], [])
                run = self.inspect("--json", "--verify", "-", joined, input=sample.read_bytes())
                self.assertEqual(self.json_line(run)["differences"], [])

    def test_lines_are_joined_only_when_standard_input_did(self):
        before = self.write("before.xml", sound("one\ntwo"))
        after = self.write("after.xml", self.convert(before))
        joined = self.write("joined.xml", self.convert(input=before.read_bytes()))
        for status, arguments in ((0, (before, after)), (2, (before, joined)),
                                  (0, ("--stdin", before, joined)),
                                  (2, ("--stdin", before, after))):
            self.assertEqual(self.inspect("--verify", *arguments).returncode, status)

    def test_each_difference_has_its_kind_and_place(self):
        before = self.write("before.xml", sound())
        after = self.convert(before).decode()
        section = "/coordinated_data_root"
        settings = f"{section}/compatibility_profile_settings"
        for kind, path, marker, old, new in (
            ("version", f"{section}/@version", "<coordinated", '"0.3"', '"0.2"'),
            ("settings", f"{settings}/profile/zone", "<zone>Y", "<zone>Z</zone>\n            <incl",
             "<zone>Y</zone>\n            <incl"),
            ("settings", f"{settings}/profile/compat_profile/spacing/imd_2t3o", "<imd_2t3o>5<",
             "<imd_2t3o>0<", "<imd_2t3o>5<"),
            ("settings", f"{settings}/profile/compat_profile/@name", "median", "Standard", "median"),
            ("settings", f"{settings}/profile/compat_profile/filter", "<filter ",
             "<filter_end>0</filter_end>", ""),
            ("container", f"{section}/compat_configs", "<compat_configs/>",
             "</compatibility_profile_settings>",
             "</compatibility_profile_settings><compat_configs/>"),
            ("content", f"{section}/mic_channels/c/compat_prof_id", "00000b<", "00000a<", "00000b<"),
            ("content", section, "<coordinated", "</mic_channels>", "</mic_channels>text"),
        ):
            with self.subTest(kind=kind, path=path):
                self.assertIn(old, after)
                text = after.replace(old, new, 1)
                line = text[:text.index(marker)].count("\n") + 1
                wrong = self.write("wrong.xml", text)
                run = self.inspect("--json", "--verify", before, wrong)
                differences = self.json_line(run)["differences"]
                self.assertEqual(run.returncode, 2)
                self.assertEqual([(d["kind"], d["path"], d["line"]) for d in differences],
                                 [(kind, path, line)])
                self.assertIn(f"line {line}  {kind}  {path}\n".encode(),
                              self.inspect("--verify", before, wrong).stdout)

    def test_differences_come_by_line(self):
        before = self.write("before.xml", sound())
        wrong = self.convert(before).decode()
        for old, new in (('"0.3"', '"0.2"'), ("00000a<", "00000b<"), ("<imd_2t3o>0<", "<imd_2t3o>5<"),
                         ("<zone>Z", "<zone>Y"), ("</coord", "<more/></coord")):
            self.assertIn(old, wrong)
            wrong = wrong.replace(old, new)
        run = self.inspect("--json", "--verify", before, self.write("wrong.xml", wrong))
        lines = [difference["line"] for difference in self.json_line(run)["differences"]]
        self.assertGreaterEqual(len(set(lines)), 4)
        self.assertEqual(lines, sorted(lines))

    def test_an_unconverted_document_is_no_conversion(self):
        run = self.inspect("--json", "--verify", SAMPLES[0], SAMPLES[0])
        kinds = {difference["kind"] for difference in self.json_line(run)["differences"]}
        self.assertEqual((run.returncode, kinds), (2, {"version", "settings", "container"}))

    def test_a_zero_character_ends_no_document(self):
        before = self.write("before.xml", sound().replace("<c>", "<c><freq>470\0000</freq>"))
        after = self.folder / "after.xml"
        with open(after, "wb") as stream:
            subprocess.run([CONVERTER, before], stdout=stream, stderr=subprocess.DEVNULL, check=True)
        self.assertIn(b"\0", after.read_bytes())
        run = self.inspect("--json", "--verify", before, after)
        self.assertEqual((run.returncode, self.json_line(run).get("error")), (0, None))

    def test_what_has_no_right_conversion_has_an_error(self):
        good = self.write("good.xml", sound())
        for kind, before, after in (
            ("not-convertible", sound().replace("coordinated_data_root", "data"), good),
            ("not-convertible", sound().replace("-00000000000a\"", "-\""), good),
            # Qt prints it between apostrophes.
            ("not-convertible", "<?xml version=\"1'0\"?>" + sound(), good),
            ("not-well-formed", "<a>", good),
            ("not-well-formed", sound(), self.write("broken.xml", "<a>")),
            ("not-readable", sound(), self.write("latin.xml", b"<a>\xe9</a>")),
            ("not-readable", sound(), self.folder / "none.xml"),
        ):
            run = self.inspect("--json", "--verify", self.write("before.xml", before), after)
            error = self.json_line(run)["error"]
            self.assertEqual((run.returncode, error["kind"]), (1, kind))
            told = self.inspect("--verify", self.folder / "before.xml", after).stdout.decode()
            self.assertIn(error["text"], told)

    def test_the_one_of_two_that_cannot_be_read_is_named(self):
        good, gone = self.write("good.xml", sound()), self.folder / "gone.xml"
        for documents, words in (((gone, good), "the document before: "),
                                 ((good, gone), "the document after: ")):
            error = self.json_line(self.inspect("--json", "--verify", *documents))["error"]
            self.assertEqual(error["kind"], "not-readable")
            self.assertTrue(error["text"].startswith(words), error["text"])

    def test_declarations_and_instructions_are_content(self):
        def document(prolog, inside):
            return sound().replace("<coordinated", prolog + "<coordinated").replace(
                "</mic_channels>", "</mic_channels>" + inside)

        for before, after, path in (
            (("<!DOCTYPE r SYSTEM 'x'>", ""), ("<!DOCTYPE r SYSTEM 'y'>", ""), "/"),
            (("<!DOCTYPE r>", ""), ("", ""), "/"),
            (("", "<?show a?>"), ("", "<?show b?>"), "/coordinated_data_root"),
            (("", "<show/>"), ("", "<?show?>"), "/coordinated_data_root"),
        ):
            with self.subTest(before=before, after=after):
                original = self.write("before.xml", document(*before))
                wrong = self.convert(self.write("wrong.xml", document(*after)))
                run = self.inspect("--json", "--verify", original, self.write("wrong.xml", wrong))
                differences = self.json_line(run)["differences"]
                self.assertEqual(run.returncode, 2)
                self.assertEqual({d["kind"] for d in differences}, {"content"})
                self.assertEqual({d["path"] for d in differences}, {path})


class Forms(Inspect):
    COLOUR = b"\x1b["

    def on_terminal(self, *arguments, **settings):
        """What the program writes when standard output is a terminal."""
        leader, follower = pty.openpty()
        run = subprocess.Popen([INSPECT, *map(str, arguments)], stdin=subprocess.DEVNULL,
                               stdout=follower, env=self.environment(**settings))
        os.close(follower)
        written = b""
        while True:
            try:
                part = os.read(leader, 65536)
            except OSError:
                break
            if not part:
                break
            written += part
        os.close(leader)
        run.wait(timeout=60)
        return written

    def test_colour_goes_to_terminals_and_to_who_wants_it(self):
        path = self.write("good.xml", sound())
        self.assertNotIn(self.COLOUR, self.inspect(path).stdout)
        self.assertIn(self.COLOUR, self.inspect("--color=always", path).stdout)
        self.assertIn(self.COLOUR,
                      self.inspect("--color=always", path, settings={"NO_COLOR": "1"}).stdout)
        self.assertIn(self.COLOUR, self.on_terminal(path, TERM="xterm"))
        self.assertIn(self.COLOUR, self.on_terminal(path, TERM="xterm", NO_COLOR=""))
        self.assertNotIn(self.COLOUR, self.on_terminal(path, TERM="xterm", NO_COLOR="1"))
        self.assertNotIn(self.COLOUR, self.on_terminal(path, TERM="dumb"))
        self.assertNotIn(self.COLOUR, self.on_terminal("--color=never", path, TERM="xterm"))
        self.assertNotIn(self.COLOUR, self.on_terminal("--json", "--color=always", path))

    def test_the_worse_the_redder(self):
        bold, red, green, yellow = (b"\x1b[%dm" % code for code in (1, 31, 32, 33))  # ECMA-48
        good = self.write("good.xml", sound())
        told = self.inspect("--color=always", good).stdout
        self.assertTrue(told.startswith(bold + os.fsencode(good) + b"\x1b[0m\n"), told)
        self.assertIn(b"\n  " + bold + b"Zone  ", told)
        self.assertEqual(told.count(bold), 2)
        self.assertTrue(told.splitlines()[-1].startswith(green), told)
        self.assertNotIn(red, told)
        told = self.inspect("--color=always", self.write("lossy.xml", sound(name="unknown"))).stdout
        self.assertIn(red + b"profile-name-emptied", told)
        self.assertTrue(told.splitlines()[-1].startswith(yellow), told)

    def test_colour_is_all_that_colour_adds(self):
        path = self.write("lossy.xml", sound(name="unknown"))
        coloured = self.inspect("--color=always", path).stdout
        self.assertEqual(re.sub(rb"\x1b\[\d*m", b"", coloured), self.inspect(path).stdout)

    def test_json_does_not_follow_the_locale(self):
        path = self.write("sample.xml", SAMPLES[2].read_bytes())
        outputs = {self.inspect("--json", path, settings={"LC_ALL": locale, "LANG": locale}).stdout
                   for locale in ("C", "C.UTF-8", "de_DE.UTF-8", "tr_TR.UTF-8")}
        self.assertEqual(len(outputs), 1)

    def test_documents_cannot_steer_the_terminal(self):
        text = sound("&#27;[31m&#x202e;", name="&#27;]0;x&#7;")
        run = self.inspect(self.write("sly.xml", text))
        self.assertNotIn(b"\x1b", run.stdout)
        self.assertNotIn("\u202e", run.stdout.decode())
        report = self.json_line(self.inspect("--json", self.folder / "sly.xml"))
        self.assertEqual(report["systems"][0]["zone"], "\x1b[31m\u202e")

    def test_help_and_version(self):
        for option, words in (("--help", b"usage: coordworkspace-inspect"),
                              ("--version", f"coordworkspace-inspect {VERSION}\n".encode())):
            run = self.inspect(option)
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            self.assertTrue(run.stdout.startswith(words))
        self.assertLessEqual(max(map(len, self.inspect("--help").stdout.decode().splitlines())), 100)

    def test_the_schema_is_the_file(self):
        self.assertEqual(self.inspect("--json-schema").stdout,
                         (PROJECT / "docs/schemas/inspect.schema.json").read_bytes())

    def test_the_man_page_names_every_option(self):
        options = set(re.findall(r"--[a-z-]+", self.inspect("--help").stdout.decode()))
        page = subprocess.run(["groff", "-man", "-ww", "-Tascii", "-P-cbou",
                               PROJECT / "docs/man/coordworkspace-inspect.1"],
                              capture_output=True, text=True, check=True)
        self.assertEqual(page.stderr, "")
        self.assertEqual(options - set(re.findall(r"--[a-z-]+", page.stdout)), set())


class Documentation(Inspect):
    PAGE = PROJECT / "docs/inspect.md"

    def test_the_page_shows_the_festival_as_it_is_told_today(self):
        run = subprocess.run([INSPECT, "samples/festival.xml"], capture_output=True, cwd=PROJECT,
                             env=self.environment())
        page = self.PAGE.read_text(encoding="utf-8")
        self.assertIn(f"```\n{run.stdout.decode()}```\n", page)

    def test_the_page_has_a_row_for_every_kind_and_no_other(self):
        definitions = self.schema["$defs"]
        kinds = {kind for name in ("loss", "note", "difference")
                 for kind in definitions[name]["properties"]["kind"]["enum"]}
        rows = re.findall(r"^\| `([a-z-]+)` \|", self.PAGE.read_text(encoding="utf-8"), re.M)
        self.assertEqual(sorted(rows), sorted(kinds))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
