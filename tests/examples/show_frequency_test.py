#!/usr/bin/env python3
"""Runs the example that shows a frequency, and compares it with the page that shows it.

usage: show_frequency_test.py EXAMPLE PROJECT_FOLDER
"""

import os
import pathlib
import re
import subprocess
import sys
import unittest

EXAMPLE = sys.argv[1]
PROJECT = pathlib.Path(sys.argv[2])
SOURCE = PROJECT / "examples/show_frequency/show_frequency.cpp"
PAGE = (PROJECT / "docs/frequencies.md").read_text(encoding="utf-8")

FORMS = ["to read", "trimmed", "kilohertz", "megahertz", "gigahertz", "carried as"]


def block(language: str) -> str:
    """The one block of the page in that language."""
    text, = re.findall(rf"^```{language}\n(.*?)^```$", PAGE, re.DOTALL | re.MULTILINE)
    return text


def run(*arguments):
    environment = {**os.environ, "LC_ALL": "C.UTF-8"}
    return subprocess.run([EXAMPLE, *arguments], capture_output=True, timeout=60,
                          env=environment, encoding="utf-8")


def forms(text: str, locale: str) -> list:
    """What the program shows, a form a line, in the order of FORMS."""
    lines = run(text, locale).stdout.splitlines()
    return [line.removeprefix(form).strip() for form, line in zip(FORMS, lines, strict=True)]


class ShowFrequency(unittest.TestCase):
    maxDiff = None

    def test_the_page_shows_the_source(self):
        self.assertEqual(block("cpp"), SOURCE.read_text(encoding="utf-8"))

    def test_the_page_shows_what_it_prints(self):
        text, locale = re.search(r'^`show_frequency "(.*)" (\w+)` prints$', PAGE,
                                 re.MULTILINE).groups()
        shown = run(text, locale)
        self.assertEqual((shown.returncode, shown.stdout, shown.stderr), (0, block("text"), ""))

    def test_the_page_has_the_forms_of_each_locale(self):
        rows = re.findall(r"^\| (C|\w\w_\w\w) \| (.*) \| (.*) \|$", PAGE, re.MULTILINE)
        self.assertEqual(len(rows), 3)
        for locale, to_string, kilohertz in rows:
            with self.subTest(locale=locale):
                shown = forms("470.125 MHz", locale)
                self.assertEqual(shown[0], f"{to_string} (main stage)")
                self.assertEqual(shown[2], kilohertz)

    def test_a_bare_number_is_in_megahertz(self):
        self.assertEqual(forms("470.12345", "C")[2], "470123.45 kHz")

    def test_digits_are_the_locales(self):
        self.assertEqual(forms("470.1", "fa_IR")[1], "\u06f4\u06f7\u06f0\u066b\u06f1\u06f0\u06f0 MHz")

    def test_zero_reads_find_best(self):
        self.assertEqual(forms("0 kHz", "C"), ["Find Best"] * 5 + ["Frequency"])

    def test_tells_what_is_no_frequency(self):
        for text in ("", "abc", "470125 Hz", "470,125 MHz", "470.125 MHz extra"):
            with self.subTest(text=text):
                told = run(text, "C")
                self.assertEqual((told.returncode, told.stdout, told.stderr),
                                 (1, "", f"not a frequency: {text}\n"))

    def test_tells_how_it_is_used(self):
        for told in (run(), run("1", "C", "x")):
            self.assertEqual((told.returncode, told.stdout, told.stderr),
                             (2, "", "usage: show_frequency TEXT [LOCALE]\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
