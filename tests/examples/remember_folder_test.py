#!/usr/bin/env python3
"""Runs the example that remembers a folder, and compares it with the page that shows it.

usage: remember_folder_test.py EXAMPLE PROJECT_FOLDER
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
SOURCE = PROJECT / "examples/remember_folder/remember_folder.cpp"
PAGE = (PROJECT / "docs/directories.md").read_text(encoding="utf-8")


def blocks(language: str):
    return re.findall(rf"^```{language}\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)


class RememberFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name, "home")
        (self.home / "Shows").mkdir(parents=True)

    def run_example(self, *arguments):
        """What it prints, the home folder as on the page."""
        environment = {**os.environ, "HOME": str(self.home),
                       "XDG_CONFIG_HOME": str(self.home / ".config")}
        ran = subprocess.run([EXAMPLE, *map(str, arguments)], capture_output=True, timeout=60,
                             encoding="utf-8", env=environment)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout.replace(str(self.home), "/home/you")

    def test_the_page_shows_the_source(self):
        self.assertEqual(blocks("cpp"), [SOURCE.read_text(encoding="utf-8")])

    def test_the_page_shows_what_it_prints(self):
        fresh, chosen = blocks("text")
        self.assertEqual(self.run_example(), fresh)
        self.assertEqual(self.run_example(self.home / "Shows"), chosen)
        self.assertEqual(self.run_example(), chosen)

    def test_a_folder_that_is_gone_comes_back(self):
        fresh, chosen = blocks("text")
        self.run_example(self.home / "Shows")
        (self.home / "Shows").rmdir()
        self.assertEqual(self.run_example(), fresh)
        (self.home / "Shows").mkdir()
        self.assertEqual(self.run_example(), chosen)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
