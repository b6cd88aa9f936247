#!/usr/bin/env python3
"""Runs the example that bounds a conversion against the converter itself.

usage: convert_with_qprocess_test.py EXAMPLE CONVERTER PROJECT_FOLDER
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

EXAMPLE, CONVERTER = sys.argv[1:3]
SAMPLE = pathlib.Path(sys.argv[3]) / "samples" / "festival.xml"


def run(*arguments):
    return subprocess.run([EXAMPLE, *map(str, arguments)], capture_output=True, timeout=120)


class ConvertWithQProcess(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def document(self, text):
        path = self.folder / "document.xml"
        path.write_text(text)
        return path

    def assert_told(self, result, words):
        self.assertEqual((result.returncode, result.stdout), (1, b""))
        self.assertIn(words, result.stderr)

    def test_hands_on_the_converted_document(self):
        result = run(CONVERTER, SAMPLE)
        expected = subprocess.run([CONVERTER, SAMPLE], capture_output=True, timeout=120)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertIn(b"compatibility_profile_settings", result.stdout)
        self.assertEqual(result.stdout, expected.stdout)

    def test_tells_a_refused_document(self):
        self.assert_told(run(CONVERTER, self.document("<workspace/>")),
                         b"not one coordination workspace")

    def test_tells_an_unreadable_document(self):
        self.assert_told(run(CONVERTER, self.document("no XML")), b"cannot be read")
        self.assert_told(run(CONVERTER, self.folder / "absent.xml"), b"cannot be read")

    def test_tells_a_profile_without_a_valid_id(self):
        text = '<coordinated_data_root><compat_profile id="7"/></coordinated_data_root>'
        self.assert_told(run(CONVERTER, self.document(text)), b"broke off")

    def test_a_document_too_large_for_the_memory_ends_the_conversion(self):
        # A million elements take more than 200 bytes each.
        large = self.document(f"<coordinated_data_root>{'<a/>' * 1_000_000}"
                              "</coordinated_data_root>")
        self.assert_told(run(CONVERTER, large, 200), b"broke off")
        self.assertEqual(run(CONVERTER, large, 2000).returncode, 0)

    def test_a_conversion_that_takes_too_long_is_ended(self):
        # Nobody ever writes to it, so opening it never returns.
        silent = self.folder / "silent"
        os.mkfifo(silent)
        self.assert_told(run(CONVERTER, silent, 1024, 1), b"took too long")

    def test_tells_a_converter_that_does_not_run(self):
        self.assert_told(run(self.folder / "no converter", SAMPLE), b"could not be started")
        # Too little memory to load the libraries.
        self.assert_told(run(CONVERTER, SAMPLE, 8), b"could not run")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
