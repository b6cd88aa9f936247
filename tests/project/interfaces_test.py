#!/usr/bin/env python3
"""Holds what --help, the man page and the completions of each program say against each other.

usage: interfaces_test.py PROJECT_FOLDER MAN_FOLDER PROGRAM...
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

from programs import ENVIRONMENT, Bash, Fish, Help, ManPage, Zsh

PROJECT = pathlib.Path(sys.argv[1])
MAN_FOLDER = pathlib.Path(sys.argv[2])
PROGRAMS = {pathlib.Path(path).name: str(pathlib.Path(path).resolve()) for path in sys.argv[3:]}
COMPLETIONS = PROJECT / "completions"

# A filter for other programs to run: it talks to nobody and takes what it is given for a path.
SILENT = "CoordWorkSpaceSectionConverter0_3"
TALKING = [name for name in PROGRAMS if name != SILENT]

# Each option whose values are words, with these words.
VALUES = {
    ("coordworkspace-inspect", "--color"): {"auto", "always", "never"},
    ("coordworkspace-convert-archive", "--timeout"): {"none"},
    ("coordworkspace-convert-archive", "--memory"): {"none"},
}

# Programs whose arguments are folders; those of the others are documents.
OF_FOLDERS = {"coordworkspace-convert-archive"}

SECTIONS = ["NAME", "SYNOPSIS", "DESCRIPTION", "INPUT", "OUTPUT", "DIAGNOSTICS", "EXIT STATUS",
            "MEMORY", "EXAMPLES", "SEE ALSO"]


def page(name):
    return ManPage(MAN_FOLDER / f"{name}.1")


class Interfaces(unittest.TestCase):
    maxDiff = None

    def test_there_are_programs(self):
        self.assertIn(SILENT, PROGRAMS)
        self.assertGreater(len(TALKING), 0)

    def test_every_program_has_its_files_and_every_file_its_program(self):
        expected = sorted(PROGRAMS)
        for folder, pattern in (("docs/man", "{}.1"), ("completions/bash", "{}"),
                                ("completions/zsh", "_{}"), ("completions/fish", "{}.fish")):
            with self.subTest(folder=folder):
                names = sorted(path.name for path in (PROJECT / folder).iterdir())
                self.assertEqual(names, sorted(pattern.format(name) for name in expected))

    def test_every_option_is_told_everywhere(self):
        for name in TALKING:
            told = Help(PROGRAMS[name]).options()
            self.assertIn("--help", told)
            self.assertIn("--version", told)
            for teller in (page(name), Bash(COMPLETIONS, name), Zsh(COMPLETIONS, name),
                           Fish(COMPLETIONS, name)):
                with self.subTest(program=name, teller=type(teller).__name__):
                    self.assertEqual(teller.options(), told)

    def test_every_option_is_known_to_the_program(self):
        for name in TALKING:
            for option, takes_value in Help(PROGRAMS[name]).options().items():
                with self.subTest(program=name, option=option):
                    # --help makes sure that nothing is done.
                    argument = f"{option}=" if takes_value else option
                    ran = subprocess.run([PROGRAMS[name], argument, "--help"], timeout=60,
                                         capture_output=True, encoding="utf-8")
                    self.assertNotIn("nknown option", ran.stderr)
            ran = subprocess.run([PROGRAMS[name], "--no-such-option"], capture_output=True,
                                 timeout=60, encoding="utf-8")
            self.assertEqual(ran.returncode, 64)
            self.assertIn("nknown option", ran.stderr)

    def test_values_that_are_words_are_offered(self):
        for (name, option), words in VALUES.items():
            for teller in (Bash(COMPLETIONS, name), Zsh(COMPLETIONS, name),
                           Fish(COMPLETIONS, name)):
                with self.subTest(program=name, option=option, teller=type(teller).__name__):
                    self.assertEqual(set(teller.values(option)), words)

    def test_what_is_typed_already_narrows_what_bash_offers(self):
        for name in TALKING:
            completion = Bash(COMPLETIONS, name)
            for option, takes_value in completion.options().items():
                with self.subTest(program=name, option=option):
                    self.assertIn(f"{option}=" if takes_value else option,
                                  completion.complete(option))
                    self.assertEqual(completion.complete(f"{option}x"), [])
        for (name, option), words in VALUES.items():
            for word in words:
                with self.subTest(program=name, option=option, word=word):
                    offered = Bash(COMPLETIONS, name).complete(option, "=", word[:2])
                    self.assertEqual(offered, [word])

    def test_the_usage_is_the_synopsis(self):
        for name in TALKING:
            with self.subTest(program=name):
                self.assertEqual(page(name).usage(), Help(PROGRAMS[name]).usage())

    def test_every_status_is_told_on_both(self):
        for name in TALKING:
            with self.subTest(program=name):
                statuses = Help(PROGRAMS[name]).statuses()
                self.assertLess({"0", "64"}, statuses)
                self.assertEqual(page(name).statuses(), statuses)

    def test_man_pages_have_what_a_caller_needs(self):
        for name in PROGRAMS:
            with self.subTest(program=name):
                found = page(name).sections
                self.assertEqual([title for title in SECTIONS if title not in found], [])
                self.assertTrue(found["NAME"].strip().startswith(f"{name} - "), found["NAME"])

    def test_files_or_folders_are_offered_for_arguments(self):
        with tempfile.TemporaryDirectory() as folder:
            document, shows = pathlib.Path(folder, "a show.xml"), pathlib.Path(folder, "all shows")
            document.touch()
            shows.mkdir()
            for name in PROGRAMS:
                with self.subTest(program=name):
                    expected = {shows} if name in OF_FOLDERS else {document, shows}
                    offered = Bash(COMPLETIONS, name).lines(f"{folder}/a")
                    self.assertEqual({*map(pathlib.Path, offered)}, expected)
                    offered = Fish(COMPLETIONS, name).complete(f"{folder}/a")
                    self.assertEqual({pathlib.Path(word[0].replace("\\", ""))
                                      for word in offered}, expected)

    def test_the_filter_has_no_options(self):
        self.assertEqual(page(SILENT).options(), {})
        for teller in (Bash(COMPLETIONS, SILENT), Zsh(COMPLETIONS, SILENT),
                       Fish(COMPLETIONS, SILENT)):
            self.assertEqual(teller.options(), {})
        for option in ("--help", "--version"):
            with tempfile.TemporaryDirectory() as folder:
                ran = subprocess.run([PROGRAMS[SILENT], option], capture_output=True, timeout=60,
                                     cwd=folder, env=ENVIRONMENT)
            self.assertEqual((ran.returncode, ran.stdout, ran.stderr), (1, b"", b""))

    def test_the_filter_takes_one_document(self):
        self.assertEqual(Bash(COMPLETIONS, SILENT).complete("one.xml", "/"), [])
        self.assertEqual(Fish(COMPLETIONS, SILENT).complete("one.xml /"), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
