#!/usr/bin/env python3
"""Every place that tells the version tells the same one.

usage: version_test.py PROJECT_FOLDER BUILD_FOLDER VERSION_OF_THE_BUILD PROGRAM...
"""

import pathlib
import re
import sys
import unittest

from programs import ManPage, run

PROJECT, BUILD = map(pathlib.Path, sys.argv[1:3])
VERSION = sys.argv[3]
PROGRAMS = {pathlib.Path(path).name: path for path in sys.argv[4:]}
SILENT = "CoordWorkSpaceSectionConverter0_3"


def found(path, pattern):
    """The one group of the pattern's first place in the file."""
    return re.search(pattern, path.read_text(encoding="utf-8"), re.MULTILINE).group(1)


class Version(unittest.TestCase):
    def test_it_is_a_semantic_version(self):
        self.assertRegex(VERSION, r"\A(0|[1-9]\d*)\.(0|[1-9]\d*)\.(0|[1-9]\d*)\Z")

    def test_the_header_tells_it(self):
        header = PROJECT / "ZelMain/Version.h"
        parts = [found(header, rf"^#define ZELMAIN_VERSION_{part} (\d+)$")
                 for part in ("MAJOR", "MINOR", "PATCH")]
        self.assertEqual(".".join(parts), VERSION)

    def test_the_changelog_begins_with_it(self):
        self.assertEqual(found(PROJECT / "CHANGELOG.md", r"^## \[(.*?)\] - "), VERSION)

    def test_what_finds_the_library_tells_it(self):
        self.assertEqual(found(BUILD / "ZelMainConfigVersion.cmake",
                               r'^set\(PACKAGE_VERSION "(.*)"\)$'), VERSION)
        self.assertEqual(found(BUILD / "ZelMain.pc", r"^Version: (.*)$"), VERSION)

    def test_the_packages_have_it(self):
        self.assertEqual(found(BUILD / "CPackConfig.cmake",
                               r'^set\(CPACK_PACKAGE_VERSION "(.*)"\)$'), VERSION)

    def test_the_programs_tell_it(self):
        for name, path in PROGRAMS.items():
            if name != SILENT:
                with self.subTest(program=name):
                    self.assertEqual(run(path, "--version"), f"{name} {VERSION}\n")

    def test_the_man_pages_tell_it(self):
        for name in PROGRAMS:
            with self.subTest(program=name):
                page = ManPage(BUILD / "man" / f"{name}.1")
                self.assertEqual(page.footer.split()[:2], [name, VERSION])

    def test_it_is_written_down_once(self):
        """Beside the header and the changelog, which tells of every version."""
        for path in [*PROJECT.glob("*.txt"), *PROJECT.glob("cmake/*"), *PROJECT.glob("*.json"),
                     PROJECT / "README.md", *PROJECT.glob("docs/man/*"),
                     *PROJECT.glob("ZelMain/**/*.txt"), *PROJECT.glob("FileConverters/**/*.txt")]:
            with self.subTest(path=path.name):
                text = path.read_text(encoding="utf-8")
                self.assertNotRegex(text, rf"(?<![\d.]){re.escape(VERSION)}(?![\d.])")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
