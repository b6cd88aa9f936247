#!/usr/bin/env python3
"""Runs the example that reads and writes compatibility profiles, and compares it with its page.

usage: widen_profile_test.py EXAMPLE PROJECT_FOLDER
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

EXAMPLE = sys.argv[1]
PROJECT = pathlib.Path(sys.argv[2])
SOURCE = PROJECT / "examples/widen_profile/widen_profile.cpp"
PAGE = PROJECT / "docs/compatibility.md"
USAGE = "usage: widen_profile PROFILE KHZ WIDER_PROFILE\n"


def blocks(language: str):
    return re.findall(rf"^```{language}\n(.*?)^```$", PAGE.read_text(encoding="utf-8"),
                      re.DOTALL | re.MULTILINE)


class WidenProfile(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.profile = self.folder / "profile.xml"
        self.wider = self.folder / "wider.xml"
        self.profile.write_text(blocks("xml")[0], encoding="utf-8")

    def run_example(self, *arguments):
        return subprocess.run([EXAMPLE, *map(str, arguments)], capture_output=True, timeout=60,
                              encoding="utf-8")

    def test_the_page_shows_the_source(self):
        self.assertIn(SOURCE.read_text(encoding="utf-8"), blocks("cpp"))

    def test_the_page_shows_what_it_makes(self):
        ran = self.run_example(self.profile, 25, self.wider)
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (0, blocks("text")[0], ""))
        self.assertEqual(ElementTree.canonicalize(self.wider.read_text(), strip_text=True),
                         ElementTree.canonicalize(blocks("xml")[1], strip_text=True))

    def test_tells_a_file_that_holds_no_profile(self):
        self.profile.write_text("<profile/>")
        for path in (self.profile, self.folder / "absent.xml"):
            ran = self.run_example(path, 25, self.wider)
            self.assertEqual((ran.returncode, ran.stdout), (1, ""))
            self.assertEqual(ran.stderr, f"no profile in {path}\n")
        self.assertFalse(self.wider.exists())

    def test_tells_an_id_that_is_none(self):
        self.profile.write_text('<compat_profile id="7"/>')
        ran = self.run_example(self.profile, 25, self.wider)
        self.assertEqual((ran.returncode, ran.stderr),
                         (1, f"the id of the profile in {self.profile} is no UUID\n"))

    def test_tells_a_file_that_cannot_be_written(self):
        ran = self.run_example(self.profile, 25, self.folder)
        self.assertEqual((ran.returncode, ran.stderr), (1, f"cannot write {self.folder}\n"))

    def test_tells_how_it_is_used(self):
        for arguments in ((), (self.profile,), (self.profile, "wide", self.wider)):
            ran = self.run_example(*arguments)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (2, "", USAGE))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
