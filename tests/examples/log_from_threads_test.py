#!/usr/bin/env python3
"""Runs the example that logs from threads, and compares it with the page that shows it.

usage: log_from_threads_test.py EXAMPLE PROJECT_FOLDER
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
SOURCE = PROJECT / "examples/log_from_threads/log_from_threads.cpp"
PAGE = PROJECT / "docs/logging.md"
SECTION = "\n## A program that logs\n"


def blocks(language: str):
    """The blocks of the page's section in that language, in their order."""
    section = PAGE.read_text(encoding="utf-8").split(SECTION)[1].split("\n## ")[0]
    return re.findall(rf"^```{language}\n(.*?)^```$", section, re.DOTALL | re.MULTILINE)


def timeless(text: str):
    """The lines in the order of their messages, without what differs from run to run."""
    text = re.sub(r"\d\d \w{3} \d{4} \d\d:\d\d:\d\d", "TIME", text)
    text = re.sub(r"TIME\.\d{3}", "TIME.ms", text)
    text = re.sub(r"\d{6,}", "THREAD", text)
    return sorted(text.splitlines(), key=lambda line: line.split("scanner")[-1])


class LogFromThreads(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_example(self, *arguments):
        home = self.folder / "home"
        home.mkdir()
        environment = {**os.environ, "HOME": str(home), "XDG_CONFIG_HOME": str(home / ".config"),
                       "LC_ALL": "C.UTF-8"}
        return subprocess.run([EXAMPLE, *map(str, arguments)], capture_output=True, timeout=60,
                              env=environment, encoding="utf-8")

    def test_the_page_shows_the_source(self):
        self.assertEqual(blocks("cpp"), [SOURCE.read_text(encoding="utf-8")])

    def test_the_page_shows_what_it_logs(self):
        run = self.run_example(self.folder)
        self.assertEqual((run.returncode, run.stdout), (0, ""))
        console, common, alerts = blocks("text")
        self.assertEqual(run.stderr.split(), console.split())  # with the end of line of a message
        self.assertEqual(timeless((self.folder / "common.txt").read_text()), timeless(common))
        self.assertEqual(timeless((self.folder / "alerts.txt").read_text()), timeless(alerts))

    def test_says_how_it_is_called(self):
        run = self.run_example()
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertTrue(run.stderr.startswith("usage: "))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
