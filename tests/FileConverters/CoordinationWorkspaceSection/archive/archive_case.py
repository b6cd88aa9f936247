"""What tests of the archive program have in common: its programs, and a folder for each test.

Imported, this takes PROGRAM_FOLDER PROJECT_FOLDER [--sanitized] out of the program's arguments.
"""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import jsonschema

from archives import (BROKEN, CLEAN, CONVERTER, LOSSY, NEWER, NO_UUID, OLD, PROGRAM, REPORT,
                      SEVERAL, STRANGER, Archive, worker_of)

PROGRAMS = pathlib.Path(sys.argv.pop(1)).absolute()
PROJECT = pathlib.Path(sys.argv.pop(1))
WORKER = worker_of(PROGRAMS)
IS_SANITIZED = "--sanitized" in sys.argv
if IS_SANITIZED:
    sys.argv.remove("--sanitized")
# Within no limit a sanitizer can run.
OPTIONS = ["--memory=none"] if IS_SANITIZED else []

NOBODY = 65534
# A sanitizer cannot look for leaks in a process that is traced.
UNDER_STRACE = {**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}

# The numbers are those of the man page.
DONE, IS_LOSSY, REFUSED, LIMIT, FAILED = 0, 2, 3, 4, 5
USAGE, UNAVAILABLE, NOT_WRITTEN, BUSY, STOPPED = 64, 69, 74, 75, 130


def converted(document):
    """What the converter makes of it."""
    with tempfile.NamedTemporaryFile(suffix=".xml") as file:
        file.write(document if isinstance(document, bytes) else document.encode())
        file.flush()
        return subprocess.run([PROGRAMS / CONVERTER, file.name],
                              capture_output=True, check=True, timeout=60).stdout


def wait_until(is_so):
    end = time.monotonic() + 120
    while not is_so():
        assert time.monotonic() < end, "it never came"
        time.sleep(0.02)


class ArchiveTest(unittest.TestCase):
    """A folder with an archive, and the programs that convert it."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.archive = Archive(self.folder, PROGRAMS / PROGRAM, OPTIONS)
        self.schema = jsonschema.Draft202012Validator(
            json.loads((PROJECT / "docs/schemas/archive-report.schema.json").read_text()))

    def run_archive(self, status, *options, **more):
        """Runs it, checks the status, and each line of the report against its schema."""
        run = self.archive.run(*options, **more)
        self.assertEqual(run.returncode, status, (run.stdout, run.stderr))
        if (self.archive.target / REPORT).exists():
            for line in self.archive.lines():
                self.schema.validate(line)
        return run

    def another(self):
        """A test of the same kind, with an archive of its own."""
        other = type(self)()
        other.setUp()
        self.addCleanup(other.doCleanups)
        return other

    def put_in_place(self, name, script):
        """Has the archive program run a script in the place of one of the programs that it runs."""
        if self.archive.program.parent == PROGRAMS:
            self.copy_programs(self.folder / "programs/bin")
        (self.archive.program.parent / name).write_text(f"#!/bin/sh\n{script}\n")

    def copy_programs(self, folder):
        """Has a copy of the programs run."""
        for name in (PROGRAM, WORKER, CONVERTER):
            copy = pathlib.Path(os.path.normpath(folder / name))
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(PROGRAMS / name, copy)
        self.archive.program = folder / PROGRAM

    def uncounted(self):
        """For programs that count what they execute, and must not leave half of their counts."""
        return {"GCOV_PREFIX": str(self.folder / "counts"), "GCOV_ERROR_FILE": "/dev/null",
                "LLVM_PROFILE_FILE": "/dev/null"}  # fmt: skip

    def as_another_user(self):
        """How to run as somebody who may not do everything, when we may."""
        if os.geteuid() != 0:
            return {}
        self.copy_programs(self.folder / "everybodys/bin")
        return {"user": NOBODY, "group": NOBODY, "extra_groups": []}

    def give_away(self):
        """Gives that user all that is there by now."""
        if os.geteuid() == 0:
            for parent, folders, files in os.walk(self.folder):
                for name in (".", *folders, *files):
                    os.chown(os.path.join(parent, name), NOBODY, NOBODY)

    def add_every_kind(self):
        for path, document in {
            "clean.xml": CLEAN, "lossy.xml": LOSSY, "old.xml": OLD, "newer.xml": NEWER,
            "current.xml": converted(CLEAN), "no-uuid.xml": NO_UUID, "broken.xml": BROKEN,
            "stranger.xml": STRANGER, "several.xml": SEVERAL, "empty": "", "notes.txt": "Hi <3",
            "2019/deep/er/clean.xml": CLEAN.replace("Vocal", "Bass"),
        }.items():
            self.archive.add(path, document)

    EVERY_OUTCOME = {
        "clean.xml": ("converted", None), "lossy.xml": ("lossy", None),
        "old.xml": ("lossy", None), "newer.xml": ("refused", "too-new"),
        "current.xml": ("current", None), "no-uuid.xml": ("failed", "invalid-profile-id"),
        "broken.xml": ("failed", "not-well-formed"),
        "stranger.xml": ("refused", "no-workspace"),
        "several.xml": ("refused", "several-sections"), "empty": ("refused", "no-workspace"),
        "notes.txt": ("refused", "no-workspace"),
        "2019/deep/er/clean.xml": ("converted", None),
    }  # fmt: skip
