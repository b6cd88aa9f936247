#!/usr/bin/env python3
"""Tests the converter as its caller sees it: both streams, byte by byte, and the exit status.

usage: converter_program_test.py EXECUTABLE [--sanitized] [unittest options]

Each folder under cases/ is a document: input.xml and what is expected, output.xml (none: nothing on
standard output), stderr and status. A status "aborted" is the end that the runtime gives to an
uncaught exception; what it says on standard error is its own.
"""

import os
import pathlib
import pty
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

CASES = pathlib.Path(__file__).parent / "cases"
EXECUTABLE = ""
SANITIZED = False

TIMEOUT_SECONDS = 120
PROGRESS = b"\nPROGRESS"
FAILURE = b"\nFAILURE"
NOBODY = 65534
LOADER_FAILED = 127  # the libraries themselves found no room

ID = "11111111-1111-4111-8111-111111111111"
GOOD = b"<coordinated_data_root><t>x</t></coordinated_data_root>"
GOOD_OUTPUT = b"""<coordinated_data_root version="0.3">
    <t>x</t>
    <compatibility_profile_settings count="0" version="1.0"/>
</coordinated_data_root>
"""
REFUSED = b"<show/>"
BROKEN = b"<coordinated_data_root>"


def clean_environment():
    """This process's environment without what Qt reads, and without what a test is to set."""
    return {name: value for name, value in os.environ.items() if not name.startswith("QT_")}


def no_core_file():
    """Aborting is tested; nobody wants the remains."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(*arguments, stdin=b"", environment=None, prepare=None, executable=None, **options):
    """Runs the program to its end. Streams are captured unless the options say otherwise."""

    def before_start():
        # The interpreter gives the child the usual handling of signals that it ignores itself.
        no_core_file()
        if prepare:
            prepare()

    if isinstance(stdin, bytes):
        options["input"] = stdin
    else:
        options["stdin"] = stdin
    options.setdefault("stdout", subprocess.PIPE)
    options.setdefault("stderr", subprocess.PIPE)
    return subprocess.run(
        [executable or EXECUTABLE, *arguments],
        env=clean_environment() if environment is None else environment,
        preexec_fn=before_start,
        timeout=TIMEOUT_SECONDS,
        check=False,
        **options)


def with_sorted_attributes(document: bytes) -> bytes:
    """The document with each tag's attributes ordered by their names; all else byte by byte."""

    def sort(match):
        attributes = re.findall(rb'\s+([^\s=]+="[^"]*")', match[2])
        return b"<" + match[1] + b"".join(b" " + a for a in sorted(attributes)) + match[3] + b">"

    return re.sub(rb'<([^\s<>/!?]+)((?:\s+[^\s=<>]+="[^"]*")+)(\s*/?)>', sort, document)


class ProgramTest(unittest.TestCase):
    """A folder of its own, and checks of a run as a whole."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, content: bytes, name="document.xml") -> str:
        path = os.path.join(os.fsencode(self.folder), os.fsencode(name))
        with open(path, "wb") as stream:
            stream.write(content)
        return os.fsdecode(path)

    def assert_run(self, process, status, stdout, stderr):
        self.assertEqual(with_sorted_attributes(process.stdout), with_sorted_attributes(stdout))
        self.assertEqual(process.stderr, stderr)
        self.assertEqual(process.returncode, status)

    def assert_converted(self, process, document):
        self.assert_run(process, 0, document, PROGRESS)

    def assert_refused(self, process):
        self.assert_run(process, 1, b"", FAILURE)

    def assert_silent(self, process):
        self.assert_run(process, 1, b"", b"")

    def assert_aborted(self, process):
        self.assertEqual(process.stdout, b"")
        self.assertNotIn(b"PROGRESS", process.stderr)
        self.assertNotIn(b"FAILURE", process.stderr)
        self.assertEqual(process.returncode, -signal.SIGABRT)


class CasesTest(ProgramTest):
    """Whole documents."""

    def test_cases(self):
        folders = sorted(folder for folder in CASES.iterdir() if folder.is_dir())
        self.assertTrue(folders)
        for folder in folders:
            document = (folder / "input.xml").read_bytes()
            status = (folder / "status").read_text().strip()
            for form in ("file", "standard input"):
                with self.subTest(case=folder.name, form=form):
                    process = (run(str(folder / "input.xml")) if form == "file"
                               else run(stdin=document))
                    if status == "aborted":
                        self.assert_aborted(process)
                        continue
                    output = folder / "output.xml"
                    self.assert_run(process, int(status),
                                    output.read_bytes() if output.exists() else b"",
                                    (folder / "stderr").read_bytes())

    def test_same_input_gives_the_same_bytes(self):
        for folder in sorted(CASES.glob("*/output.xml")):
            path = str(folder.parent / "input.xml")
            outputs = {run(path).stdout for _ in range(5)}
            outputs |= {run(path, environment={**clean_environment(), "QT_HASH_SEED": seed}).stdout
                        for seed in ("0", "1", "2", "12345")}
            self.assertEqual(len(outputs), 1, folder)


class ArgumentsTest(ProgramTest):
    """None or one; everything else ends the run before it reads or writes."""

    def test_no_argument_reads_standard_input(self):
        self.assert_converted(run(stdin=GOOD), GOOD_OUTPUT)

    def test_one_argument_is_a_path_and_standard_input_is_left_alone(self):
        path = self.file(GOOD)
        with open(self.file(REFUSED, "other.xml"), "rb") as other:
            self.assert_converted(run(path, stdin=other), GOOD_OUTPUT)
            self.assertEqual(os.lseek(other.fileno(), 0, os.SEEK_CUR), 0)

    def test_more_arguments_are_refused_unread(self):
        good = self.file(GOOD)
        for arguments in ((good, good), (good, "missing"), (good, ""), ("", ""),
                          (good, good, good), ("--help", good), (good,) * 20):
            with self.subTest(arguments=arguments), open(good, "rb") as stdin:
                self.assert_silent(run(*arguments, stdin=stdin))
                self.assertEqual(os.lseek(stdin.fileno(), 0, os.SEEK_CUR), 0)

    def test_there_are_no_options(self):
        for argument in ("--help", "-h", "--version", "-", "--"):
            with self.subTest(argument=argument):
                self.assert_silent(run(argument, stdin=GOOD))


class StandardInputTest(ProgramTest):
    """Lines are joined with nothing between them and decoded one by one."""

    def assert_text(self, document: bytes, text: bytes):
        self.assert_converted(run(stdin=document),
                              GOOD_OUTPUT.replace(b"<t>x<", b"<t>" + text + b"<"))

    def test_no_document(self):
        for text in (b"", b"\n", b"\n\n\n", b" \n ", b"\xef\xbb\xbf", b"\0"):
            with self.subTest(text=text):
                self.assert_silent(run(stdin=text))

    def test_line_feed_at_the_end_is_optional(self):
        for end in (b"", b"\n", b"\n\n"):
            with self.subTest(end=end):
                self.assert_converted(run(stdin=GOOD + end), GOOD_OUTPUT)

    def test_many_lines_are_as_one(self):
        self.assert_converted(
            run(stdin=b"\n<coordinated_data_root>\n\n<t>\nx\n</t>\n</coordinated_\ndata_root>\n"),
            GOOD_OUTPUT)

    def test_carriage_returns_between_elements_do_no_harm(self):
        self.assert_converted(run(stdin=GOOD.replace(b"><", b">\r\n<") + b"\r\n"), GOOD_OUTPUT)

    def test_first_line_of_one_character_is_just_a_line(self):
        self.assert_converted(run(stdin=GOOD.replace(b"<c", b"<\nc", 1)), GOOD_OUTPUT)

    def test_words_are_joined_over_the_border_of_lines(self):
        self.assert_text(GOOD.replace(b"x", b"one\ntwo\n\nthree"), b"onetwothree")

    def test_attribute_values_are_joined_over_the_border_of_lines(self):
        process = run(stdin=GOOD.replace(b"<t>", b"<t a='one\ntwo'>"))
        self.assertIn(b'<t a="onetwo">', process.stdout)
        self.assertEqual(process.returncode, 0)

    def test_name_and_attribute_need_a_blank_beside_the_border_of_lines(self):
        self.assert_silent(run(stdin=b"<coordinated_data_root\nversion='0.2'/>"))
        self.assertEqual(run(stdin=b"<coordinated_data_root\n version='0.2'/>").stderr, PROGRESS)

    def test_byte_order_mark_of_a_line_goes(self):
        mark = b"\xef\xbb\xbf"
        self.assert_converted(run(stdin=mark + GOOD), GOOD_OUTPUT)
        self.assert_converted(run(stdin=mark + GOOD.replace(b"<t>", b"\n" + mark + b"<t>")),
                              GOOD_OUTPUT)
        self.assert_text(GOOD.replace(b"x", b"one\n" + mark + b"two"), b"onetwo")

    def test_text_is_utf8(self):
        self.assert_text(GOOD.replace(b"x", "äЖ€𝄞".encode()), "äЖ€𝄞".encode())

    def test_what_is_no_utf8_is_replaced(self):
        self.assert_text(GOOD.replace(b"x", b"a\xffb"), b"a\xef\xbf\xbdb")

    def test_a_character_cut_by_a_line_feed_is_two_bad_ones(self):
        self.assert_text(GOOD.replace(b"x", b"\xc3\n\xa4"), b"\xef\xbf\xbd" * 2)

    def test_utf16_is_read_from_files_only(self):
        document = GOOD.decode()
        for encoding in ("utf-16", "utf-16-le", "utf-16-be"):
            with self.subTest(encoding=encoding):
                self.assert_silent(run(stdin=document.encode(encoding)))

    def test_long_line(self):
        self.assert_text(GOOD.replace(b"x", b"x" * 3000000), b"x" * 3000000)

    def test_many_lines(self):
        self.assert_text(GOOD.replace(b"x", b"xy\n" * 200000), b"xy" * 200000)

    def test_folder_as_standard_input(self):
        descriptor = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, descriptor)
        self.assert_silent(run(stdin=descriptor))

    def test_closed_standard_input(self):
        self.assert_silent(run(stdin=None, prepare=lambda: os.close(0)))

    def test_input_that_fails_is_not_converted_as_far_as_it_was_read(self):
        # The near end of a terminal gives what was written at the far end, then an error.
        near, far = pty.openpty()
        self.addCleanup(os.close, near)
        os.write(far, GOOD + b"\n")
        os.close(far)
        self.assert_silent(run(stdin=near))


class FileTest(ProgramTest):
    """What is particular to a document in a file."""

    def assert_file(self, content: bytes, text="x"):
        self.assert_converted(run(self.file(content)),
                              GOOD_OUTPUT.replace(b"<t>x<", b"<t>" + text.encode() + b"<"))

    def test_lines_stay_lines(self):
        self.assert_file(GOOD.replace(b"x", b"one\ntwo"), "one\ntwo")

    def test_encodings(self):
        document = GOOD.decode().replace("x", "äЖ€𝄞")
        for name, content in (
                ("UTF-8", document.encode()),
                ("UTF-8 with byte-order mark", b"\xef\xbb\xbf" + document.encode()),
                ("UTF-16 LE with byte-order mark", b"\xff\xfe" + document.encode("utf-16-le")),
                ("UTF-16 BE with byte-order mark", b"\xfe\xff" + document.encode("utf-16-be")),
                ("UTF-16 LE without byte-order mark", document.encode("utf-16-le")),
                ("UTF-8, empty first line", b"\n" + document.encode())):
            with self.subTest(name):
                self.assert_file(content, "äЖ€𝄞")

    def test_what_the_guess_at_utf16_takes_for_something_else(self):
        self.assert_silent(run(self.file(GOOD.decode().encode("utf-16-be"))))
        self.assert_silent(run(self.file(GOOD.replace(b"<c", b"<\nc", 1))))

    def test_paths(self):
        for name in ("with blanks.xml", "süd.xml", "司会.xml", "🎤.xml", "a%20b.xml", "'\"$.xml",
                     "-document.xml", ":document.xml"):
            with self.subTest(name=name):
                self.assert_converted(run(self.file(GOOD, name)), GOOD_OUTPUT)
                self.assert_converted(run("./" + name, cwd=self.folder), GOOD_OUTPUT)
        self.assert_converted(run("with blanks.xml", cwd=self.folder), GOOD_OUTPUT)

    def test_pipe_as_a_file(self):
        document = GOOD.replace(b"><", b">\n<", 1)
        self.assert_converted(run("/dev/stdin", stdin=document), GOOD_OUTPUT)
        self.assert_converted(run("/dev/stdin", stdin=document.decode().encode("utf-16-le")),
                              GOOD_OUTPUT)

    # An empty one means that the environment names none.
    LOCALES = ("C", "POSIX", "C.UTF-8", "xx_XX", "de_DE.ISO-8859-1", "ru_RU.KOI8-R", "")

    def test_paths_in_other_locales(self):
        for locale in self.LOCALES:
            environment = {**clean_environment(), "LC_ALL": locale, "LANG": locale}
            for name in ("süd.xml", "司会.xml"):
                with self.subTest(locale=locale, name=name):
                    self.assert_converted(run(self.file(GOOD, name), environment=environment),
                                          GOOD_OUTPUT)

    def test_text_in_other_locales(self):
        path = self.file(GOOD.replace(b"x", "äЖ€𝄞".encode()))
        expected = GOOD_OUTPUT.replace(b"<t>x", "<t>äЖ€𝄞".encode())
        for locale in self.LOCALES:
            environment = {**clean_environment(), "LC_ALL": locale, "LANG": locale}
            with self.subTest(locale=locale):
                self.assert_converted(run(path, environment=environment), expected)

    def test_files_that_cannot_be_opened(self):
        for path in ("", "missing.xml", "missing/document.xml", str(self.folder),
                     self.file(GOOD) + "/", b"\xff.xml", "x" * 5000):
            with self.subTest(path=path):
                self.assert_silent(run(path))

    def test_unreadable_file(self):
        # Root may read every file, so the program runs as another user then.
        options = {}
        executable = EXECUTABLE
        if os.geteuid() == 0:
            # A build that counts what is executed writes the counts, and says so when it may not.
            counts = self.folder / "counts"
            counts.mkdir()
            os.chown(counts, NOBODY, NOBODY)
            environment = {
                **clean_environment(), "LLVM_PROFILE_FILE": "/dev/null", "GCOV_PREFIX": str(counts)
            }
            options = {
                "user": NOBODY, "group": NOBODY, "extra_groups": [], "environment": environment
            }
            executable = str(self.folder / "converter")
            shutil.copy(EXECUTABLE, executable)
            os.chmod(executable, 0o755)
            os.chmod(self.folder, 0o755)
        path = self.file(GOOD)
        os.chmod(path, 0o644)
        self.assert_converted(run(path, executable=executable, **options), GOOD_OUTPUT)
        os.chmod(path, 0o000)
        self.assert_silent(run(path, executable=executable, **options))

    def test_input_file_is_left_alone(self):
        path = self.file(GOOD)
        os.chmod(path, 0o444)
        before = os.stat(path)
        run(path)
        after = os.stat(path)
        self.assertEqual(pathlib.Path(path).read_bytes(), GOOD)
        self.assertEqual((before.st_mtime_ns, before.st_mode), (after.st_mtime_ns, after.st_mode))


class DocumentTest(ProgramTest):
    """What parsing and printing promise for both ways in."""

    def assert_both(self, check, document: bytes):
        with self.subTest(document=document):
            check(run(stdin=document))
            check(run(self.file(document)))

    def test_not_well_formed(self):
        for document in (b"text", b"<", b"<a>", b"</a>", b"<a></b>", GOOD[:-1], GOOD + GOOD,
                         GOOD + b"text", b"<a b=1/>", b"<a b='1'c/>", b"<a>&undeclared</a>",
                         b"<?xml version='1.0'?>", b"<!-- only a comment -->",
                         b" <?xml version='1.0'?>" + GOOD):
            self.assert_both(self.assert_silent, document)

    def test_refused(self):
        for document in (REFUSED, b"<show>" + GOOD + GOOD + b"</show>",
                         GOOD.replace(b"<t>x</t>", GOOD), b"<x:coordinated_data_root/>"):
            self.assert_both(self.assert_refused, document)

    def test_prefixes_need_no_declaration(self):
        output = GOOD_OUTPUT.replace(b"t>x</t", b"p:t>x</p:t")
        self.assert_both(lambda process: self.assert_converted(process, output),
                         GOOD.replace(b"t>x</t", b"p:t>x</p:t"))

    def test_id_that_is_no_uuid_ends_the_run_as_an_uncaught_exception(self):
        for attributes in (b"", b"id=''", b"id='7'", b"ID='" + ID.encode() + b"'"):
            self.assert_both(self.assert_aborted,
                             GOOD.replace(b"<t>", b"<compat_profile " + attributes + b"/><t>"))

    def test_declaration_is_written_back(self):
        # What the declared encoding does not have may come out as character references.
        text = "äЖ€"
        for declared in ("version='1.0'", "version='1.0' encoding='UTF-8'",
                         "version='1.0' encoding='ISO-8859-1'", "version='1.0' encoding='UTF-16'",
                         "version='1.0' encoding='US-ASCII'", "version='1.0' encoding='x-unknown'",
                         "version='1.0' encoding='UTF-8' standalone='yes'"):
            document = f"<?xml {declared}?>\n".encode() + GOOD.replace(b"x", text.encode())

            def check(process, declared=declared):
                self.assertEqual(process.stderr, PROGRESS)
                self.assertEqual(process.returncode, 0)
                first, rest = process.stdout.decode("utf-8").split("\n", 1)
                self.assertEqual(first.replace('"', "'"), f"<?xml {declared}?>")
                self.assertEqual(ElementTree.fromstring(rest).findtext("t"), text)

            self.assert_both(check, document)

    def test_declared_encoding_does_not_decide_the_bytes(self):
        document = b"<?xml version='1.0' encoding='ISO-8859-1'?>" + GOOD.replace(b"x", "ä".encode())
        self.assert_both(lambda process: self.assertIn("<t>ä</t>".encode(), process.stdout),
                         document)

    def test_half_a_character_is_written_as_a_question_mark(self):
        # The parser takes the reference to a lone surrogate, which UTF-8 cannot hold.
        self.assert_both(lambda process: self.assertIn(b"<t>?</t>", process.stdout),
                         GOOD.replace(b"x", b"&#xD83C;"))

    def test_no_declaration_is_added(self):
        self.assert_both(lambda process: self.assertTrue(
            process.stdout.startswith(b"<coordinated_data_root ")), GOOD)

    def test_deep_document_needs_no_deep_stack(self):
        depth = 1500
        hard = resource.getrlimit(resource.RLIMIT_STACK)[1]
        if hard != resource.RLIM_INFINITY:
            self.skipTest("The system does not let the stack grow.")
        document = GOOD.replace(b"x", b"<a>" * depth + b"y" + b"</a>" * depth)
        process = run(stdin=document, prepare=lambda: resource.setrlimit(
            resource.RLIMIT_STACK, (256 * 1024, hard)))
        self.assertEqual(process.returncode, 0)
        self.assertEqual(process.stderr, PROGRESS)
        self.assertEqual(process.stdout.count(b"<a>"), depth)
        self.assertIn(b"    " * (depth + 1) + b"<a>y</a>\n", process.stdout)


class SilenceTest(ProgramTest):
    """The outcome is the same, to the byte, whatever the environment says to Qt."""

    ENVIRONMENTS = (
        {"QT_FATAL_WARNINGS": "1"},
        {"QT_FATAL_CRITICALS": "1"},
        {"QT_HASH_SEED": "0"},
        {"QT_HASH_SEED": "5"},
        {"QT_HASH_SEED": "nonsense"},
        {"QT_LOGGING_RULES": "*=true"},
        {"QT_LOGGING_DEBUG": "1"},
        {"QT_LOGGING_CONF": "/dev/null"},
        {"QT_LOGGING_TO_CONSOLE": "1"},
        {"QT_FORCE_STDERR_LOGGING": "1"},
        {"QT_DEBUG_PLUGINS": "1"},
        {"QT_MESSAGE_PATTERN": "%{if-debug}D%{endif} %{message} %{backtrace}"},
        {"QT_MESSAGE_PATTERN": "%{nonsense}"},
        {"LC_ALL": "C"},
        {"LC_ALL": "POSIX"},
        {"LC_ALL": "xx_XX.nonsense"},
        {"LANG": "de_DE.ISO-8859-1"},
        {"TZ": "nonsense"},
        {"HOME": "/nonexistent", "XDG_CONFIG_HOME": "/nonexistent"},
    )

    def outcomes(self, environment):
        good = self.file(GOOD)
        yield "file", run(good, environment=environment), 0, GOOD_OUTPUT, PROGRESS
        yield "standard input", run(stdin=GOOD, environment=environment), 0, GOOD_OUTPUT, PROGRESS
        yield "refused", run(stdin=REFUSED, environment=environment), 1, b"", FAILURE
        yield "broken", run(stdin=BROKEN, environment=environment), 1, b"", b""
        yield "empty", run(environment=environment), 1, b"", b""
        yield "empty path", run("", environment=environment), 1, b"", b""
        yield "missing file", run("missing", environment=environment), 1, b"", b""
        yield "folder", run(str(self.folder), environment=environment), 1, b"", b""
        yield "two arguments", run(good, good, environment=environment), 1, b"", b""

    def check(self, environment):
        for situation, process, status, stdout, stderr in self.outcomes(environment):
            with self.subTest(situation=situation):
                self.assert_run(process, status, stdout, stderr)

    def test_variables(self):
        for variables in self.ENVIRONMENTS:
            with self.subTest(variables=variables):
                self.check({**clean_environment(), **variables})

    def test_all_variables_at_once(self):
        everything = clean_environment()
        for variables in self.ENVIRONMENTS:
            everything.update(variables)
        self.check(everything)

    def test_empty_environment(self):
        self.check({})

    def test_logging_rules_in_the_users_settings(self):
        settings = self.folder / "QtProject"
        settings.mkdir()
        (settings / "qtlogging.ini").write_text("[Rules]\n*=true\n")
        self.check({**clean_environment(), "XDG_CONFIG_HOME": str(self.folder)})

    def test_nothing_is_left_behind(self):
        home = self.folder / "home"
        home.mkdir()
        environment = {**clean_environment(), "HOME": str(home), "XDG_CONFIG_HOME": str(home),
                       "TMPDIR": str(home)}
        for document in (GOOD, REFUSED, BROKEN, b""):
            run(stdin=document, environment=environment, cwd=home)
            run(self.file(document), environment=environment, cwd=home)
        self.assertEqual(list(home.iterdir()), [])


class OutputTest(ProgramTest):
    """A document that could not be written is not a success."""

    # More than any pipe or stream holds.
    LARGE = GOOD.replace(b"x", b"x" * 1000000)
    LARGE_OUTPUT = GOOD_OUTPUT.replace(b"<t>x", b"<t>" + b"x" * 1000000)

    def test_document_comes_before_the_word(self):
        for document, output in ((GOOD, GOOD_OUTPUT), (self.LARGE, self.LARGE_OUTPUT)):
            process = run(stdin=document, stderr=subprocess.STDOUT)
            self.assertEqual(with_sorted_attributes(process.stdout),
                             with_sorted_attributes(output) + PROGRESS)

    def test_full_device(self):
        for document in (GOOD, self.LARGE):
            with open("/dev/full", "wb") as full:
                process = run(stdin=document, stdout=full)
            self.assertEqual((process.returncode, process.stderr), (1, b""))

    def test_closed_standard_output(self):
        for document in (GOOD, self.LARGE):
            process = run(self.file(document), stdout=None, prepare=lambda: os.close(1))
            self.assertEqual((process.returncode, process.stderr), (1, b""))

    def test_reader_that_went_away(self):
        for document in (GOOD, self.LARGE):
            reader, writer = os.pipe()
            os.close(reader)
            process = run(stdin=document, stdout=writer)
            os.close(writer)
            self.assertEqual((process.returncode, process.stderr), (1, b""))

    def test_file_size_limit(self):
        with open(self.folder / "output.xml", "wb") as output:
            process = run(stdin=self.LARGE, stdout=output, prepare=lambda: resource.setrlimit(
                resource.RLIMIT_FSIZE, (100000, 100000)))
        self.assertEqual((process.returncode, process.stderr), (1, b""))

    def test_only_the_word_cannot_be_written(self):
        with open("/dev/full", "wb") as full:
            self.assert_whole(run(stdin=GOOD, stderr=full))
            process = run(stdin=REFUSED, stderr=full)
            self.assertEqual((process.returncode, process.stdout), (1, b""))
        self.assert_whole(run(stdin=GOOD, stderr=None, prepare=lambda: os.close(2)))

    def assert_whole(self, process):
        self.assertEqual(process.returncode, 0)
        self.assertEqual(with_sorted_attributes(process.stdout),
                         with_sorted_attributes(GOOD_OUTPUT))

    def test_out_of_memory_nothing_is_written(self):
        if SANITIZED:
            self.skipTest("The address sanitizer needs more address space than a limit leaves.")
        path = self.file(GOOD.replace(b"x", b"x" * 4000000))
        whole = run(path).stdout
        for stdin in (False, True):
            self.sweep_memory(path, stdin, whole)

    def sweep_memory(self, path, from_stdin, whole):
        ends = set()
        for mebibytes in range(40, 160, 8):
            with open(path, "rb") as document:
                process = run(
                    *([] if from_stdin else [path]), stdin=document,
                    prepare=lambda: resource.setrlimit(
                        resource.RLIMIT_AS, (mebibytes << 20, mebibytes << 20)))
            ends.add(process.returncode)
            with self.subTest(mebibytes=mebibytes, stdin=from_stdin):
                if process.returncode == 0:
                    self.assertEqual(process.stdout, whole)
                    self.assertEqual(process.stderr, PROGRESS)
                elif process.returncode != LOADER_FAILED:
                    self.assert_aborted(process)
        self.assertIn(0, ends)
        self.assertIn(-signal.SIGABRT, ends)


if __name__ == "__main__":
    EXECUTABLE = os.path.abspath(sys.argv.pop(1))
    SANITIZED = "--sanitized" in sys.argv
    sys.argv = [argument for argument in sys.argv if argument != "--sanitized"]
    unittest.main()
