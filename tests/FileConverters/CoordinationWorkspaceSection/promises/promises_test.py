#!/usr/bin/env python3
"""What the converter promises its caller, tried on the executable itself.

    promises_test.py CONVERTER [--short] [unittest options]

--short leaves out the deepest document.
"""

import os
import pathlib
import pty
import re
import resource
import signal
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
import workspaces  # noqa: E402

CONVERTER = ""
SECONDS_A_RUN = 300
SMALL = workspaces.workspace(1).encode()
LARGE = workspaces.workspace(2000).encode()  # some forty times what a pipe holds
SUCCESS = (0, b"\nPROGRESS")
SILENCE = (1, b"")


def convert(data=None, path=None, arguments=None, **options):
    """Runs the converter on standard input or a file; options are those of subprocess.run."""
    arguments = arguments or [CONVERTER] + ([str(path)] if path else [])
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options}
    if data is not None:
        options["input"] = data
    elif "stdin" not in options:
        options["stdin"] = subprocess.DEVNULL
    return subprocess.run(arguments, timeout=SECONDS_A_RUN, **options)


def told(run):
    return run.returncode, run.stderr


class ConverterTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, data, name="document.xml"):
        path = self.folder / name
        path.write_bytes(data)
        return path

    def both_ways(self, data):
        """The arguments of convert() for a document from a file and from standard input."""
        return {"file": {"path": self.file(data)}, "standard input": {"data": data}}

    def for_sizes_and_ways(self, check):
        """Calls check(data, source) for a small and a large document, from both kinds of input."""
        for size, data in {"small": SMALL, "large": LARGE}.items():
            for way, source in self.both_ways(data).items():
                with self.subTest(size=size, source=way):
                    check(data, source)


class SameInputSameBytes(ConverterTest):
    """Output can be compared, cached and checksummed."""

    ATTRIBUTES = " ".join(f"a{number}='{number}'" for number in range(50))
    DOCUMENT = LARGE.replace(b"<mic_channels>", f"<mic_channels {ATTRIBUTES} é='ü'>".encode(), 1)

    def test_again_and_again(self):
        for way, source in self.both_ways(self.DOCUMENT).items():
            with self.subTest(source=way):
                outputs = {convert(**source).stdout for _ in range(10)}
                self.assertEqual(len(outputs), 1)

    def test_whatever_the_environment_says(self):
        environments = [
            {},
            {"QT_HASH_SEED": "0"},
            {"QT_HASH_SEED": "1"},
            {"QT_HASH_SEED": "4711"},
            {"QT_HASH_SEED": "no number"},
            {"QT_FATAL_WARNINGS": "1"},
            {"QT_FATAL_WARNINGS": "1", "QT_HASH_SEED": "1"},
            {"QT_FATAL_CRITICALS": "1"},
            {"QT_LOGGING_RULES": "*=true"},
            {"QT_LOGGING_DEBUG": "1"},
            {"QT_MESSAGE_PATTERN": "%{message} seen"},
            {"QT_LOGGING_TO_CONSOLE": "1"},
            {"LC_ALL": "C"},
            {"LC_ALL": "C.UTF-8"},
            {"LC_ALL": "POSIX"},
            {"LC_ALL": "de_DE.UTF-8"},
            {"LC_ALL": "tr_TR.UTF-8"},
            {"LC_ALL": "none_SUCH.UTF-8"},
            {"LANG": "C", "LC_CTYPE": "C.UTF-8"},
            {"TZ": "Asia/Kolkata", "HOME": "/nowhere", "TMPDIR": "/nowhere"},
        ]
        ascii_only = self.DOCUMENT.decode().encode("ascii", "xmlcharrefreplace")
        ascii_only = ascii_only.replace(b"&#233;=", b"e=")
        for document in (self.DOCUMENT, ascii_only):
            path = self.file(document)
            expected = convert(path=path, env={"LC_ALL": "C.UTF-8"}).stdout
            for environment in environments:
                with self.subTest(environment=environment, ascii=document is ascii_only):
                    run = convert(path=path, env=environment)
                    self.assertEqual(told(run), SUCCESS)
                    self.assertTrue(run.stdout == expected)

    def test_from_standard_input_under_any_locale(self):
        expected = convert(self.DOCUMENT).stdout
        for locale in ("C", "C.UTF-8", "POSIX", "none_SUCH"):
            with self.subTest(locale=locale):
                run = convert(self.DOCUMENT, env={"LC_ALL": locale})
                self.assertEqual(told(run), SUCCESS)
                self.assertTrue(run.stdout == expected)


class ADocumentThatCannotBeWritten(ConverterTest):
    """It is no success: status 1 and no word, whatever the reason and the size."""

    def test_no_room(self):
        def check(_, source):
            with open("/dev/full", "wb") as full:
                self.assertEqual(told(convert(stdout=full, **source)), SILENCE)

        self.for_sizes_and_ways(check)

    def test_standard_output_is_closed(self):
        def check(data, source):
            run = convert(stdout=None, preexec_fn=lambda: os.close(1), **source)
            self.assertEqual(told(run), SILENCE)
            if "path" in source:
                # The document itself may have been opened as descriptor 1.
                self.assertEqual(source["path"].read_bytes(), data)

        self.for_sizes_and_ways(check)

    def test_the_reader_has_gone(self):
        def check(_, source):
            reading, writing = os.pipe()
            os.close(reading)
            with open(writing, "wb") as gone:
                self.assertEqual(told(convert(stdout=gone, **source)), SILENCE)

        self.for_sizes_and_ways(check)

    def test_the_reader_goes_away(self):
        path = self.file(LARGE)
        for arguments in ([CONVERTER, str(path)], [CONVERTER]):
            with self.subTest(arguments=len(arguments)), open(path, "rb") as document:
                process = subprocess.Popen(
                    arguments, stdin=document, stdout=subprocess.PIPE, stderr=subprocess.PIPE
                )
                process.stdout.read(10)
                process.stdout.close()
                word = process.stderr.read()
                process.stderr.close()
                self.assertEqual((process.wait(SECONDS_A_RUN), word), SILENCE)

    def test_a_limit_on_file_sizes(self):
        def check_limit(limit):
            def limited():
                resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))

            def check(_, source):
                with open(self.folder / "output", "wb") as output:
                    run = convert(stdout=output, preexec_fn=limited, **source)
                    self.assertEqual(told(run), SILENCE)

            return check

        for limit in (0, 1, 1000):
            self.for_sizes_and_ways(check_limit(limit))
        for limit in (4096, 65536, 200_000):
            check_limit(limit)(LARGE, {"data": LARGE})

    def test_a_descriptor_for_reading_only(self):
        def check(_, source):
            with open(os.devnull, "rb") as readable:
                self.assertEqual(told(convert(stdout=readable, **source)), SILENCE)

        self.for_sizes_and_ways(check)

    def test_a_refusal_is_told_all_the_same(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(told(convert(b"<workspace/>", stdout=full)), (1, b"\nFAILURE"))


class AWordThatCannotBeWritten(ConverterTest):
    """The document is whole, and the status says so."""

    def expect_whole(self, data, source, **options):
        expected = convert(data).stdout
        run = convert(**source, **options)
        self.assertEqual(run.returncode, 0)
        self.assertTrue(run.stdout == expected)

    def test_no_room(self):
        def check(data, source):
            with open("/dev/full", "wb") as full:
                self.expect_whole(data, source, stderr=full)

        self.for_sizes_and_ways(check)

    def test_standard_error_is_closed(self):
        def check(data, source):
            self.expect_whole(data, source, stderr=None, preexec_fn=lambda: os.close(2))

        self.for_sizes_and_ways(check)

    def test_nobody_reads_it(self):
        def check(data, source):
            reading, writing = os.pipe()
            os.close(reading)
            with open(writing, "wb") as gone:
                self.expect_whole(data, source, stderr=gone)

        self.for_sizes_and_ways(check)

    def test_a_refusal_keeps_its_status(self):
        with open("/dev/full", "wb") as full:
            run = convert(b"<workspace/>", stderr=full)
        self.assertEqual((run.returncode, run.stdout), (1, b""))


class StandardInputThatFails(ConverterTest):
    """The run ends, in silence; what was read before is not converted."""

    def expect_silence(self, **options):
        run = convert(**options)
        self.assertEqual((told(run), run.stdout), (SILENCE, b""))

    def test_a_folder(self):
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        self.expect_silence(stdin=folder)

    def test_closed(self):
        self.expect_silence(preexec_fn=lambda: os.close(0))

    def test_for_writing_only(self):
        with open(self.folder / "written", "wb") as writable:
            self.expect_silence(stdin=writable)

    def test_a_dead_terminal(self):
        for name, data in {"nothing": b"", "half": SMALL[:500], "all": SMALL}.items():
            with self.subTest(written=name):
                ours, theirs = pty.openpty()
                process = subprocess.Popen(
                    [CONVERTER], stdin=theirs, stdout=subprocess.PIPE, stderr=subprocess.PIPE
                )
                os.close(theirs)
                os.write(ours, data)
                os.close(ours)
                output, word = process.communicate(timeout=SECONDS_A_RUN)
                self.assertEqual((process.returncode, word, output), (*SILENCE, b""))

    def test_reads_that_fail(self):
        """The first, some in the middle, and the one that would tell the end."""
        path = self.file(LARGE)
        trace = self.folder / "trace"
        tracing = ["strace", "-o", str(trace), "-e", "trace=read", "-P", str(path)]

        def traced(*rules):
            with open(path, "rb") as document:
                return subprocess.run(
                    [*tracing, *rules, CONVERTER],
                    stdin=document,
                    capture_output=True,
                    timeout=SECONDS_A_RUN,
                )

        self.assertEqual(told(traced()), SUCCESS)
        reads = len(re.findall(r"^read\(0", trace.read_text(), re.MULTILINE))
        self.assertGreater(reads, 2)
        for number in sorted({1, 2, reads // 2, reads - 1, reads}):
            for error in ("EIO", "EAGAIN", "ENOTCONN"):
                with self.subTest(read=number, of=reads, error=error):
                    run = traced("-e", f"inject=read:error={error}:when={number}")
                    self.assertEqual((told(run), run.stdout), (SILENCE, b""))


class DeepDocuments(ConverterTest):
    """They convert as far as the output text can hold them, and never break the stack."""

    @staticmethod
    def deep(levels):
        section = b"coordinated_data_root"
        return b"<" + section + b">" + b"<a>" * levels + b"</a>" * levels + b"</" + section + b">"

    @staticmethod
    def expected_lines(levels):
        yield b'<coordinated_data_root version="0.3">\n'
        for level in range(1, levels):
            yield b" " * (4 * level) + b"<a>\n"
        yield b" " * (4 * levels) + b"<a/>\n"
        for level in range(levels - 1, 0, -1):
            yield b" " * (4 * level) + b"</a>\n"
        settings = [b"<compatibility_profile_settings ", b"/>\n"]
        yield (settings[0] + b'version="1.0" count="0"' + settings[1],
               settings[0] + b'count="0" version="1.0"' + settings[1])  # fmt: skip
        yield b"</coordinated_data_root>\n"

    def test_eight_thousand_levels_convert(self):
        path = self.file(self.deep(8000))
        with subprocess.Popen(
            [CONVERTER, str(path)], stdout=subprocess.PIPE, stderr=subprocess.PIPE
        ) as process:
            for expected in self.expected_lines(8000):
                line = process.stdout.readline()
                if isinstance(expected, tuple):
                    self.assertIn(line.lstrip(b" "), expected)
                else:
                    self.assertTrue(line == expected, line[-60:])
            self.assertEqual(process.stdout.read(), b"")
            word = process.stderr.read()
        self.assertEqual((process.returncode, word), SUCCESS)

    def test_deeper_ones_convert_or_abort_with_nothing_written(self):
        # The deepest from a file only, and in the long run only: the parser alone takes half a
        # minute for it.
        depths = [(20_000, True), (20_000, False)] + ([] if SHORT else [(60_000, True)])
        for levels, from_file in depths:
            with self.subTest(levels=levels, from_file=from_file):
                path = self.file(self.deep(levels))
                output_path = self.folder / "output"
                arguments = [CONVERTER] + ([str(path)] if from_file else [])
                with open(path, "rb") as document, open(output_path, "wb") as output:
                    run = convert(
                        arguments=arguments,
                        stdin=document,
                        stdout=output,
                        preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CORE, (0, 0)),
                    )
                written = output_path.stat().st_size
                output_path.unlink()
                if run.returncode == 0:
                    self.assertEqual(run.stderr, b"\nPROGRESS")
                    self.assertGreater(written, 4 * levels * levels)
                else:
                    self.assertEqual(run.returncode, -signal.SIGABRT)
                    self.assertEqual(written, 0)
                    self.assertNotIn(b"PROGRESS", run.stderr)


class NoLimitsOfItsOwn(ConverterTest):
    def test_entities_multiply_as_far_as_the_parser_goes(self):
        entity = f"<!ENTITY e '{'x' * 3000}'>"
        section = "coordinated_data_root"
        document = f"<!DOCTYPE {section} [{entity}]><{section}>{'&e;' * 3000}</{section}>"
        run = convert(document.encode())
        self.assertEqual(told(run), SUCCESS)
        self.assertEqual(run.stdout.count(b"x" * 3000 * 3000), 1)

    def test_a_long_text(self):
        section = b"coordinated_data_root"
        text = b"y" * 20_000_000
        run = convert(b"<" + section + b">" + text + b"</" + section + b">")
        self.assertEqual(told(run), SUCCESS)
        self.assertEqual(run.stdout.count(text), 1)


class TheOutcomeWord(ConverterTest):
    """It is the last act: after it nothing runs that could still fail."""

    def test_it_comes_after_the_document_and_before_the_end(self):
        def check(data, source):
            trace = self.folder / "trace"
            path = self.file(data)
            arguments = [CONVERTER] + ([str(path)] if "path" in source else [])
            with open(path, "rb") as document:
                run = subprocess.run(
                    ["strace", "-f", "-o", str(trace), *arguments],
                    stdin=document,
                    capture_output=True,
                    timeout=SECONDS_A_RUN,
                )
            self.assertEqual(told(run), SUCCESS)
            calls = re.findall(r"^\d+ +(\w+)\((\d*)", trace.read_text(), re.MULTILINE)
            writes = [(i, where) for i, (name, where) in enumerate(calls) if "write" in name]
            last_of_document = max(i for i, where in writes if where == "1")
            word = min(i for i, where in writes if where == "2")
            self.assertLess(last_of_document, word)
            after = {name for name, _ in calls[word + 1 :]}
            self.assertLessEqual(after, {"write", "exit_group", "munmap", "close", "futex"})

        self.for_sizes_and_ways(check)


if __name__ == "__main__":
    CONVERTER = os.path.abspath(sys.argv.pop(1))
    SHORT = "--short" in sys.argv
    unittest.main(argv=[argument for argument in sys.argv if argument != "--short"])
