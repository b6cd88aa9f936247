#!/usr/bin/env python3
"""Runs the commands that pages and man pages show, and compares the sources that they show.

usage: commands_test.py PROJECT_FOLDER BUILD_FOLDER [--sanitized] [TEST...]
       commands_test.py PROJECT_FOLDER BUILD_FOLDER WithLibrary
       commands_test.py PROJECT_FOLDER BUILD_FOLDER WholeClone

A test of every change runs what needs no building. WithLibrary builds programs with the library that
is installed in the folder zelmain of the home folder. WholeClone builds the project, which should be
a clone made for that.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from programs import ManPage

PROJECT, BUILD = map(pathlib.Path, sys.argv[1:3])
SANITIZED = "--sanitized" in sys.argv
PAGES = sorted([*PROJECT.glob("*.md"), *(PROJECT / "docs").glob("*.md")])
# Which tells of commands, not how to use them.
PAGES.remove(PROJECT / "CHANGELOG.md")
MAN_PAGES = sorted((PROJECT / "docs/man").glob("*.1"))

# What ends with another status than 0 by its nature.
STATUSES = {"build/bin/coordworkspace-inspect samples/festival.xml\n": 2}

# What continuous integration and the long checks do all the time, by the beginning.
ELSEWHERE = ("scripts/test ", "scripts/proof ", "scripts/fuzz ", "cmake --preset asan ")

BUILDS = re.compile(r"^(cmake|scripts/|c\+\+|export|ctest)", re.MULTILINE)

# In the middle of a text. Words in capitals stand for what the reader puts in their places.
INLINE = re.compile(r"`((?:cmake|scripts/|build/)[^`]* [^`]*)`")
PLACEHOLDER = re.compile(r"(?<![-=\w])[A-Z]{2,}\b")


def without_what_runs_elsewhere(command):
    return "".join(line for line in command.splitlines(keepends=True)
                   if not f"{line.rstrip()} ".startswith(ELSEWHERE))


def commands_of(page):
    """The blocks of a page that stand four blanks to the right, outside of fences and lists, and
    what is told within a line."""
    text = re.sub(r"^```.*?^```$", "", page.read_text(encoding="utf-8"),
                  flags=re.DOTALL | re.MULTILINE)
    blocks = re.findall(r"(?<=\n\n)(?: {4}.*\n)+", text)
    commands = [re.sub(r"^ {4}", "", block, flags=re.MULTILINE) for block in blocks]
    commands += [f"{command}\n" for command in INLINE.findall(text)
                 if not PLACEHOLDER.search(command)]
    return [command for command in map(without_what_runs_elsewhere, commands) if command]


def all_commands():
    """Of pages and man pages, each with the name of its page."""
    for page in PAGES:
        for command in commands_of(page):
            yield page.name, command
    for page in MAN_PAGES:
        for command in ManPage(page).commands():
            yield page.name, command


def put_documents(folder):
    """What a user has, under the names that the pages use."""
    samples = PROJECT / "samples"
    for name in ("show.xml", "document.xml", "BEFORE"):
        shutil.copy(samples / "club-show.xml", folder / name)
    shutil.copy(samples / "festival.xml", folder)
    for name in ("shows", "SOURCE"):
        shutil.copytree(samples, folder / name)
    (folder / "machines").write_text("2/:\n")


class Sandbox(unittest.TestCase):
    """A folder with the project's files and with documents."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name in ("docs", "examples", "samples"):
            (self.folder / name).symlink_to(PROJECT / name)
        put_documents(self.folder)
        converter = BUILD / "bin/CoordWorkSpaceSectionConverter0_3"
        with open(self.folder / "AFTER", "wb") as after:
            subprocess.run([converter, self.folder / "BEFORE"], stdout=after, check=True,
                           stderr=subprocess.DEVNULL, timeout=60)

        archive = BUILD / "bin/coordworkspace-convert-archive"
        if not SANITIZED:
            subprocess.run([archive, self.folder / "SOURCE", self.folder / "TARGET"], check=True,
                           capture_output=True, timeout=60)

    def run_command(self, page, command, **environment):
        settings = {**os.environ, "PATH": f"{BUILD / 'bin'}:{os.environ['PATH']}", **environment}
        ran = subprocess.run(["bash", "-eu", "-c", command], cwd=self.folder,
                             capture_output=True, encoding="utf-8", timeout=1800, env=settings,
                             stdin=subprocess.DEVNULL)
        self.assertEqual(ran.returncode, STATUSES.get(command, 0),
                         f"{page}: {command}{ran.stdout}{ran.stderr}")
        for written in re.findall(r"> ?(\w+\.xml)", command):
            text = (self.folder / written).read_text(encoding="utf-8")
            self.assertIn("<compatibility_profile_settings", text)
        return ran.stdout


class Commands(Sandbox):
    def setUp(self):
        super().setUp()
        (self.folder / "build").symlink_to(BUILD)

    def test_every_command_does_what_it_says(self):
        count = 0
        for page, command in all_commands():
            if BUILDS.search(command):
                continue
            # The sanitizer reserves more memory than any bound would leave it.
            if SANITIZED and re.search("prlimit|convert_with_qprocess|archive|TARGET", command):
                continue
            with self.subTest(page=page, command=command):
                self.run_command(page, command)
            count += 1
        self.assertGreater(count, 5)

    def test_every_source_on_a_page_is_built(self):
        sources = {path.read_text(encoding="utf-8"): path
                   for path in (PROJECT / "examples").glob("*/*") if path.is_file()}
        count = 0
        for page in PAGES:
            text = page.read_text(encoding="utf-8")
            languages = re.findall(r"^```(\w*)\n", text, re.MULTILINE)
            self.assertLessEqual({*languages}, {"cpp", "cmake", "xml", "text", ""}, page.name)
            for block in re.findall(r"^```(?:cpp|cmake)\n(.*?)^```$", text,
                                    re.DOTALL | re.MULTILINE):
                with self.subTest(page=page.name, begins=block.splitlines()[0]):
                    self.assertIn(block, sources)
                count += 1
        self.assertGreater(count, 5)


class WithLibrary(Sandbox):
    def test_programs_are_built_with_the_installed_library(self):
        self.assertTrue((pathlib.Path.home() / "zelmain").is_dir())
        commands = [command for command in commands_of(PROJECT / "docs/library.md")
                    if "--install" not in command]
        self.assertEqual(len(commands), 2)
        by_cmake, by_pkg_config = commands
        self.assertIn("470.125 MHz", self.run_command("library.md", by_cmake))
        shown = self.run_command("library.md", by_pkg_config + "./show_frequency 1")
        self.assertIn("1.000 MHz", shown)


class WholeClone(Sandbox):
    def setUp(self):
        home = tempfile.TemporaryDirectory()
        self.addCleanup(home.cleanup)
        self.home, self.folder = home.name, PROJECT
        put_documents(PROJECT)

    def test_every_command_that_builds(self):
        for page, command in all_commands():
            if BUILDS.search(command):
                self.run_command(page, command, HOME=self.home)


if __name__ == "__main__":
    chosen = [word for word in sys.argv[3:] if word and not word.startswith("--")]
    unittest.main(argv=[sys.argv[0], *(chosen or ["Commands"])])
