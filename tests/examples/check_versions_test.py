#!/usr/bin/env python3
"""Runs the example that judges a document, and compares it with the page that shows it.

usage: check_versions_test.py EXAMPLE PROJECT_FOLDER
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

EXAMPLE = sys.argv[1]
PROJECT = pathlib.Path(sys.argv[2])
SOURCE = PROJECT / "examples/check_versions/check_versions.cpp"
PAGE = PROJECT / "docs/versions.md"


def block(language: str) -> str:
    """The one block of the page in that language."""
    text, = re.findall(rf"^```{language}\n(.*?)^```$", PAGE.read_text(encoding="utf-8"),
                       re.DOTALL | re.MULTILINE)
    return text


class CheckVersions(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.home.mkdir()

    def run_example(self, *arguments):
        environment = {**os.environ, "HOME": str(self.home),
                       "XDG_CONFIG_HOME": str(self.home / ".config")}
        return subprocess.run([EXAMPLE, *map(str, arguments)], capture_output=True, timeout=60,
                              env=environment, encoding="utf-8")

    def judge(self, text: str):
        document = self.folder / "document.xml"
        document.write_text(text, encoding="utf-8")
        return self.run_example(document)

    def test_the_page_shows_the_source(self):
        self.assertEqual(block("cpp"), SOURCE.read_text(encoding="utf-8"))

    def test_the_page_shows_what_it_prints(self):
        run = self.judge(block("xml"))
        self.assertEqual((run.returncode, run.stdout, run.stderr), (1, block("text"), ""))

    def test_accepts_current_and_convertible_sections(self):
        for version, words in (("0.3", "current"), ("0.1", "older, can be converted")):
            run = self.judge(f'<coordinated_data_root version="{version}"><zones version="1.1"/>'
                             "</coordinated_data_root>")
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertEqual(run.stdout,
                             f"coordinated_data_root {version} (0.3 is current): {words}\n"
                             "zones 1.1 (1.1 is current): current\naccepted\n")

    def test_refuses_a_root_that_is_no_workspace(self):
        run = self.judge('<zones version="1.1"/>')
        self.assertEqual((run.returncode, run.stdout, run.stderr), (1, "refused\n", ""))

    def test_refuses_a_root_without_a_version(self):
        run = self.judge("<coordinated_data_root/>")
        self.assertEqual(run.returncode, 1)
        self.assertEqual(run.stdout, "coordinated_data_root - (0.3 is current): "
                                     "too old, or no number\nrefused\n")

    def test_tells_that_there_is_no_document(self):
        for run in (self.judge("no XML"), self.run_example(self.folder / "absent.xml"),
                    self.run_example(self.folder)):
            self.assertEqual((run.returncode, run.stdout, run.stderr),
                             (1, "no readable document\n", ""))

    def test_tells_how_it_is_used(self):
        for run in (self.run_example(), self.run_example("one.xml", "two.xml")):
            self.assertEqual((run.returncode, run.stdout, run.stderr),
                             (1, "usage: check_versions DOCUMENT\n", ""))

    def test_leaves_nothing_behind(self):
        self.judge(block("xml"))
        self.assertEqual(list(self.home.iterdir()), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
