#!/usr/bin/env python3
"""Tests the scripts in a made-up clone, in which commands of the system are stand-ins that keep a
record: nothing is installed, and no build folder in use is touched.

usage: scripts_test.py CONVERTER PROJECT_FOLDER
"""

import json
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import unittest

CONVERTER = sys.argv[1]
PROJECT = pathlib.Path(sys.argv[2])
NAME = "CoordWorkSpaceSectionConverter0_3"

GOOD = b'<coordinated_data_root version="0.2"/>'
REFUSED = b"<workspace/>"
NO_UUID = b'<coordinated_data_root><compat_profile id="7"/></coordinated_data_root>'

# Reads its standard input to the end, as a build step may; two at once would overwrite each other.
CMAKE = r"""#!/bin/bash
echo "cmake $*" >> "$RECORD"
cat >> "$RECORD.stdin"
echo "talk of the build"
[[ $1 == --build ]] || { sleep "${CONFIGURING_TAKES:-0}"; exit "${CONFIGURING_ENDS:-0}"; }
mkdir "$RECORD.building" || exit 9
[[ -z ${CHANGES-} ]] || touch "$CHANGES"
[[ ${BUILD_ENDS:-0} != 0 ]] || { mkdir -p "$CLONE/build/bin"; cp "$CONVERTER" "$CLONE/build/bin/"; }
rmdir "$RECORD.building"
exit "${BUILD_ENDS:-0}"
"""
DPKG_QUERY = r"""#!/bin/bash
package=${!#}
echo "dpkg-query $package" >> "$RECORD.asked"
[[ " ${MISSING-} " != *" $package "* ]] || exit 1
printf installed
"""
APT_GET = r"""#!/bin/bash
echo "apt-get $* $DEBIAN_FRONTEND" >> "$RECORD"
cat >> "$RECORD.stdin"
echo "talk of the installation"
exit "${APT_ENDS:-0}"
"""
SUDO = r"""#!/bin/bash
echo "sudo" >> "$RECORD"
shift
exec "$@"
"""
CTEST = r"""#!/bin/bash
echo "ctest $*" >> "$RECORD"
[[ $2 != "${FAILING-}" ]]
"""


class Clone(unittest.TestCase):
    """A clone with blanks in its path, not built yet, with a folder of documents beside it."""

    def setUp(self):
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        folder = tempfile.TemporaryDirectory(prefix="scripts test ")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.clone = self.folder / "a fresh clone"
        shutil.copytree(PROJECT / "scripts", self.clone / "scripts",
                        ignore=shutil.ignore_patterns("proof.d"))
        for source in ("CMakeLists.txt", "cmake/Build.cmake", "FileConverters/main.cpp",
                       "ZelMain/Frequency.cpp", "ZelMain/deep/down/Key.h"):
            (self.clone / source).parent.mkdir(parents=True, exist_ok=True)
            (self.clone / source).touch()
        self.record = self.folder / "record"
        commands = self.folder / "commands"
        commands.mkdir()
        for name, text in (("cmake", CMAKE), ("dpkg-query", DPKG_QUERY), ("apt-get", APT_GET),
                           ("sudo", SUDO), ("ctest", CTEST)):
            (commands / name).write_text(text)
            (commands / name).chmod(0o755)
        self.environment = dict(
            os.environ, PATH=f"{commands}:{os.environ['PATH']}", RECORD=str(self.record),
            CLONE=str(self.clone), CONVERTER=CONVERTER)
        self.documents = self.folder / "my documents"
        self.documents.mkdir()
        for name, text in (("good show.xml", GOOD), ("refused.xml", REFUSED),
                           ("no uuid.xml", NO_UUID), ("text.xml", b"no XML")):
            (self.documents / name).write_bytes(text)

    def run_script(self, script, *arguments, settings=(), **options):
        options.setdefault("cwd", self.documents)
        if "input" not in options:
            options.setdefault("stdin", subprocess.DEVNULL)
        environment = dict(self.environment, **dict(settings))
        return subprocess.run([self.clone / "scripts" / script, *arguments], env=environment,
                              capture_output=True, timeout=120, **options)

    def convert(self, *arguments, **options):
        return self.run_script("convert", *arguments, **options)

    def recorded(self):
        return self.record.read_text().splitlines() if self.record.exists() else []

    def forget(self):
        self.record.unlink(missing_ok=True)

    def assert_converted(self, run):
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertIn(b"compatibility_profile_settings", run.stdout)
        self.assertNotIn(b"talk", run.stdout)
        self.assertTrue(run.stderr.endswith(b"\nPROGRESS"), run.stderr)


class ConvertOnceBuilt(Clone):
    def setUp(self):
        super().setUp()
        self.assert_converted(self.convert(input=GOOD))
        self.forget()

    def assert_same_as_converter(self, *arguments, **options):
        own = subprocess.run([CONVERTER, *arguments], capture_output=True, timeout=120,
                             cwd=self.documents, **options)
        run = self.convert(*arguments, **options)
        self.assertEqual((run.stdout, run.stderr, run.returncode),
                         (own.stdout, own.stderr, own.returncode))
        self.assertEqual(self.recorded(), [])
        return run

    def test_converted_document(self):
        run = self.assert_same_as_converter("good show.xml")
        self.assertEqual((run.stderr, run.returncode), (b"\nPROGRESS", 0))
        self.assertTrue(run.stdout.startswith(b"<coordinated_data_root"))

    def test_standard_input(self):
        run = self.assert_same_as_converter(input=GOOD)
        self.assertEqual((run.stderr, run.returncode), (b"\nPROGRESS", 0))

    def test_refused_document(self):
        run = self.assert_same_as_converter("refused.xml")
        self.assertEqual((run.stdout, run.stderr, run.returncode), (b"", b"\nFAILURE", 1))

    def test_silent_refusals(self):
        for arguments in (["text.xml"], ["absent.xml"], [""], ["good show.xml", "good show.xml"],
                          ["--help", "-v", "good show.xml"]):
            with self.subTest(arguments=arguments):
                run = self.assert_same_as_converter(*arguments)
                self.assertEqual((run.stdout, run.stderr, run.returncode), (b"", b"", 1))

    def test_the_end_by_a_signal_is_handed_on(self):
        run = self.assert_same_as_converter("no uuid.xml")
        self.assertLess(run.returncode, 0)
        self.assertEqual(run.stdout, b"")

    def test_paths_start_in_the_folder_of_the_caller(self):
        self.assert_converted(self.convert("../my documents/good show.xml"))
        self.assert_converted(self.convert(str(self.documents / "good show.xml"), cwd="/"))
        self.assert_converted(self.convert("good show.xml", settings={"CDPATH": "/:/tmp"}))

    def test_a_link_to_the_script_finds_its_clone(self):
        link = self.folder / "convert a workspace"
        link.symlink_to(self.clone / "scripts" / "convert")
        run = subprocess.run([link, "good show.xml"], cwd=self.documents, env=self.environment,
                             capture_output=True, timeout=120)
        self.assertEqual((run.returncode, run.stderr), (0, b"\nPROGRESS"))

    def test_nothing_that_set_up_needs_is_needed_again(self):
        shutil.rmtree(self.folder / "commands")
        self.assert_same_as_converter("good show.xml")

    def test_changed_added_and_removed_sources_are_built(self):
        def changed():
            os.utime(self.clone / "ZelMain/deep/down/Key.h")

        def added():
            (self.clone / "FileConverters/new.cpp").touch()

        def removed():
            (self.clone / "ZelMain/deep/down/Key.h").unlink()

        for change in (changed, added, removed):
            with self.subTest(change=change.__name__):
                change()
                self.assert_converted(self.convert("good show.xml"))
                self.assertIn("cmake --build", "\n".join(self.recorded()))
                self.forget()
                self.assert_same_as_converter("good show.xml")

    def test_a_removed_converter_is_built(self):
        (self.clone / "build/bin" / NAME).unlink()
        self.assert_converted(self.convert("good show.xml"))

    def test_other_files_of_the_project_do_not_matter(self):
        (self.clone / "README.md").touch()
        (self.clone / "tests").mkdir()
        self.assert_same_as_converter("good show.xml")


class ConvertWithSetUp(Clone):
    def test_set_up_talks_on_standard_error_only(self):
        run = self.convert("good show.xml")
        self.assert_converted(run)
        self.assertIn(b"talk of the build", run.stderr)

    def test_only_the_converter_is_built_as_a_user_would(self):
        self.convert("good show.xml")
        configuring, building = self.recorded()
        build = self.clone / "build"
        self.assertEqual(configuring, f"cmake --fresh -S {self.clone} -B {build}")
        self.assertTrue(building.startswith(f"cmake --build {build} --target {NAME} "), building)

    def test_standard_input_is_kept_for_the_document(self):
        missing = {"MISSING": "cmake"}
        self.assert_converted(self.convert(input=GOOD, settings=missing))
        self.assertEqual(pathlib.Path(f"{self.record}.stdin").read_bytes(), b"")

    def test_a_configured_folder_keeps_its_settings(self):
        self.write_cache(self.clone)
        self.convert("good show.xml")
        self.assertEqual(self.recorded()[0],
                         f"cmake -S {self.clone} -B {self.clone / 'build'}")

    def test_a_build_folder_of_another_place_is_configured_afresh(self):
        self.write_cache(self.folder / "the old place")
        self.convert("good show.xml")
        self.assertIn("--fresh", self.recorded()[0])

    def write_cache(self, home):
        (self.clone / "build").mkdir()
        (self.clone / "build/CMakeCache.txt").write_text(
            f"CMAKE_HOME_DIRECTORY:INTERNAL={home}\n")

    def test_a_failed_build_converts_nothing_and_is_tried_again(self):
        for failing in ("BUILD_ENDS", "CONFIGURING_ENDS", "APT_ENDS"):
            with self.subTest(failing=failing):
                run = self.convert("good show.xml", settings={failing: "1", "MISSING": "cmake"})
                self.assertEqual((run.stdout, run.returncode), (b"", 2))
                self.assertIn(b"could not be built", run.stderr)
        self.assert_converted(self.convert("good show.xml"))

    def test_a_failed_build_does_not_fall_back_to_the_old_converter(self):
        self.convert("good show.xml")
        os.utime(self.clone / "CMakeLists.txt")
        for _ in range(2):
            run = self.convert("good show.xml", settings={"BUILD_ENDS": "1"})
            self.assertEqual((run.stdout, run.returncode), (b"", 2))

    def test_what_changes_during_the_build_is_built_next_time(self):
        self.convert("good show.xml",
                     settings={"CHANGES": str(self.clone / "ZelMain/Frequency.cpp")})
        self.forget()
        self.convert("good show.xml")
        self.assertEqual(len(self.recorded()), 2)
        self.forget()
        self.convert("good show.xml")
        self.assertEqual(self.recorded(), [])

    def test_two_at_once_build_one_after_the_other(self):
        command = [self.clone / "scripts/convert", "good show.xml"]
        environment = dict(self.environment, CONFIGURING_TAKES="0.2")
        runs = [subprocess.Popen(command, cwd=self.documents, env=environment,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE) for _ in range(2)]
        for run in runs:
            out, errors = run.communicate(timeout=120)
            self.assertEqual(run.returncode, 0, errors)
            self.assertIn(b"compatibility_profile_settings", out)
        steps = [line.split()[1] == "--build" for line in self.recorded()]
        self.assertEqual(steps, [False, True, False, True])


class InstallPackages(Clone):
    def test_nothing_missing_is_silent(self):
        run = self.run_script("install-packages", "build", "test", "proof")
        self.assertEqual((run.stdout, run.stderr, run.returncode), (b"", b"", 0))
        self.assertEqual(self.recorded(), [])

    def test_only_what_is_missing_is_installed(self):
        run = self.run_script("install-packages", "build", "test",
                              settings={"MISSING": "make libxml2-utils shellcheck"}, input=b"y\n")
        self.assertEqual((run.stdout, run.returncode), (b"", 0))
        update, install = [line for line in self.recorded() if line != "sudo"]
        self.assertRegex(update, r"^apt-get .*\bupdate noninteractive$")
        self.assertRegex(install, r"\binstall --no-install-recommends "
                                  r"make libxml2-utils noninteractive$")
        self.assertIn("--yes", install)
        self.assertEqual(pathlib.Path(f"{self.record}.stdin").read_bytes(), b"")

    def test_who_is_not_root_goes_through_sudo(self):
        other = {"user": 65534, "group": 65534, "extra_groups": []} if os.geteuid() == 0 else {}
        for path in (self.folder, self.clone):
            path.chmod(0o777)
        run = self.run_script("install-packages", "build", settings={"MISSING": "make"}, **other)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.recorded()[0::2], ["sudo", "sudo"])

    def test_a_failed_installation_is_told(self):
        run = self.run_script("install-packages", "build",
                              settings={"MISSING": "make", "APT_ENDS": "100"})
        self.assertNotEqual(run.returncode, 0)

    def test_unknown_and_missing_groups_are_refused(self):
        for groups in ((), ("built",), ("build", "tset")):
            with self.subTest(groups=groups):
                run = self.run_script("install-packages", *groups)
                self.assertEqual((run.stdout, run.returncode), (b"", 2))
                self.assertNotEqual(run.stderr, b"")

    def test_every_line_of_the_list_names_a_group_and_a_package(self):
        for line in (PROJECT / "scripts/packages.txt").read_text().splitlines():
            words = line.split("#")[0].split()
            if words:
                self.assertEqual(len(words), 2, line)
                self.assertIn(words[0], ("build", "test", "package", "proof"), line)


class Test(Clone):
    def test_both_ways_of_building_are_tested(self):
        run = self.run_script("test")
        self.assertEqual(run.returncode, 0, run.stderr)
        tested = [line.split()[2] for line in self.recorded() if line.startswith("ctest")]
        self.assertEqual(tested, ["release", "asan"])
        self.assertLess(self.recorded().index("cmake --preset release"),
                        self.recorded().index("cmake --preset asan"))

    def test_any_failure_fails_and_the_rest_is_tested_all_the_same(self):
        for failing in ("release", "asan"):
            with self.subTest(failing=failing):
                self.forget()
                run = self.run_script("test", settings={"FAILING": failing})
                self.assertEqual(run.returncode, 1)
                self.assertTrue(run.stderr.endswith(f"failed: {failing}\n".encode()), run.stderr)
                self.assertEqual(len([line for line in self.recorded()
                                      if line.startswith("ctest")]), 2)

    def test_a_failed_build_fails(self):
        for failing in ("BUILD_ENDS", "CONFIGURING_ENDS"):
            with self.subTest(failing=failing):
                self.assertNotEqual(self.run_script("test", settings={failing: "1"}).returncode, 0)

    def test_nothing_is_left_for_convert_to_set_up(self):
        self.run_script("test")
        self.forget()
        run = self.convert("good show.xml")
        self.assertEqual((run.returncode, run.stderr), (0, b"\nPROGRESS"))


class Proof(Clone):
    def setUp(self):
        super().setUp()
        (self.clone / "scripts/proof.d").mkdir()
        self.add_check("first", 'echo "first ${1-whole}" >> "$RECORD"')
        self.add_check("second", 'echo "second ${1-whole}" >> "$RECORD"; exit ${SECOND:-0}')
        self.add_check("third", 'echo "third ${1-whole}" >> "$RECORD"')
        (self.clone / "scripts/proof.d/notes.txt").write_text("not a check\n")

    def add_check(self, name, command):
        check = self.clone / "scripts/proof.d" / name
        check.write_text(f"#!/bin/bash\n{command}\n")
        check.chmod(0o755)

    def test_every_check_runs_in_order(self):
        run = self.run_script("proof")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(self.recorded(), ["first whole", "second whole", "third whole"])

    def test_the_short_form_is_handed_on(self):
        self.assertEqual(self.run_script("proof", "--sample").returncode, 0)
        self.assertEqual(self.recorded(), ["first --sample", "second --sample", "third --sample"])

    def test_a_failure_fails_after_all_have_run(self):
        run = self.run_script("proof", settings={"SECOND": "7"})
        self.assertEqual(run.returncode, 1)
        self.assertEqual(len(self.recorded()), 3)
        summary = run.stdout.decode().splitlines()[-3:]
        self.assertRegex(summary[0], "first: passed")
        self.assertRegex(summary[1], "second: failed with status 7")
        self.assertRegex(summary[2], "third: passed")

    def test_named_checks_run_alone(self):
        self.assertEqual(self.run_script("proof", "--sample", "third").returncode, 0)
        self.assertEqual(self.recorded(), ["third --sample"])

    def test_unknown_checks_are_refused(self):
        for name in ("fourth", "notes.txt", "", ".."):
            with self.subTest(name=name):
                self.assertEqual(self.run_script("proof", name).returncode, 2)
                self.assertEqual(self.recorded(), [])


SOURCE = """bool isThere(int number)
{
    if (number < 0) {
        return false;
    }

    if (number > 9) {
        return false;
    }
    return number < 5 || number > 6;
}

bool isThereAndEven(int number)
{
    if (number < 0) {
        return false;
    }
    return number % 2 == 0;
}
"""


class Uncovered(unittest.TestCase):
    """Lines that no test executes, held against the list of those that have a reason."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.project = pathlib.Path(folder.name)
        (self.project / "tests/coverage").mkdir(parents=True)
        for name in ("tests/places.py", "tests/reasons.py", "tests/coverage/uncovered.py"):
            shutil.copy(PROJECT / name, self.project / name)

    def check(self, never, listed, source=SOURCE):
        """What is said of lines by number, where the list has these places."""
        (self.project / "source.cpp").write_text(source)
        (self.project / "tests/coverage/uncovered.txt").write_text(
            "# told\n" + "".join(f"source.cpp | {place} | a reason\n" for place in listed))
        lines = [{"line_number": number, "count": number not in never}
                 for number in range(1, source.count("\n") + 1)]
        coverage = self.project / "coverage.json"
        coverage.write_text(json.dumps({"files": [{"file": "source.cpp", "lines": lines}]}))
        script = self.project / "tests/coverage/uncovered.py"
        run = subprocess.run([sys.executable, script, coverage], capture_output=True, text=True,
                             timeout=60)
        summary, *wrong = run.stdout.splitlines()
        self.assertEqual((run.returncode, run.stderr), (1 if wrong else 0, ""))
        self.assertTrue(summary.startswith(f"coverage: {len(never)} lines never executed,"),
                        summary)
        return wrong

    def test_a_line_without_a_reason(self):
        self.assertEqual(self.check([], []), [])
        self.assertEqual(self.check([10], []),
                         ["source.cpp:10: never executed: return number < 5 || number > 6;"])
        self.assertEqual(self.check([10], ["return number < 5 || number > 6;"]), [])

    def test_a_line_that_some_runs_execute(self):
        self.assertEqual(self.check([], ["return number < 5 || number > 6;"]), [])

    def test_a_short_line_is_told_after_the_one_above_it(self):
        place = "if (number > 9) { return false;"
        self.assertEqual(self.check([8], []), [f"source.cpp:8: never executed: {place}"])
        self.assertEqual(self.check([8], [place]), [])
        # Wherever it stands by now.
        self.assertEqual(self.check([10], [place], f"\n\n{SOURCE}"), [])

    def test_a_reason_is_that_of_one_line(self):
        first = "bool isThere(int number) { if (number < 0) { return false;"
        second = "bool isThereAndEven(int number) { if (number < 0) { return false;"
        self.assertEqual(self.check([4, 16], [first]), [f"source.cpp:16: never executed: {second}"])
        self.assertEqual(self.check([4, 16], [second]), [f"source.cpp:4: never executed: {first}"])
        self.assertEqual(self.check([4, 16], [first, second]), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
