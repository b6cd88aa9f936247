#!/usr/bin/env python3
"""One file tells of licences: that the project has none yet, and those of what is linked in.

usage: copyright_test.py PROJECT_FOLDER PROGRAM...
"""

import pathlib
import re
import subprocess
import sys
import unittest

PROJECT = pathlib.Path(sys.argv[1])
PROGRAMS = sys.argv[2:]
COPYRIGHT = (PROJECT / "COPYRIGHT").read_text(encoding="utf-8")

# The heading under which the file tells of each library.
HEADINGS = {
    r"libQt5(Core|Xml)": "Qt 5, modules Core and Xml",
    r"libcrypto": "OpenSSL, its library libcrypto",
    r"libtinyxml2": "tinyxml2",
    r"libutf8proc": "utf8proc",
    r"lib(stdc\+\+|gcc_s)": "The C++ runtime of the GNU Compiler Collection",
    r"(lib[cm]|ld-linux.*)": "The GNU C Library",
    # Put in place of the others in an instrumented build, which nobody ships.
    r"lib(asan|ubsan|tsan|gcov)": "",
}
CLAIM = re.compile("SPDX-License" "-Identifier|[Ll]icen[sc]ed " "under|all rights " "reserved", re.I)


class Copyright(unittest.TestCase):
    def test_it_says_first_that_no_licence_is_chosen(self):
        self.assertEqual(COPYRIGHT.splitlines()[0],
                         "THE OWNER OF THIS PROJECT HAS NOT CHOSEN A LICENCE FOR IT.")

    def test_every_library_that_programs_load_is_told(self):
        for program in PROGRAMS:
            if pathlib.Path(program).read_bytes()[:4] != b"\x7fELF":
                continue
            shown = subprocess.run(["readelf", "--dynamic", program], capture_output=True,
                                   check=True, encoding="utf-8", timeout=60).stdout
            libraries = re.findall(r"\(NEEDED\).*\[(.*?)\.so", shown)
            self.assertIn("libQt5Core", libraries)
            for library in libraries:
                if library == "libZelMain":
                    continue
                with self.subTest(program=program, library=library):
                    heading, = [heading for pattern, heading in HEADINGS.items()
                                if re.fullmatch(pattern, library)]
                    self.assertIn(f"\n{heading}", COPYRIGHT)

    def test_headers_that_are_compiled_in_are_told(self):
        self.assertIn("\nBoost.Uuid, whose headers are compiled in", COPYRIGHT)
        self.assertIn("Boost Software License - Version 1.0", COPYRIGHT)
        self.assertIn("\nRapidJSON, whose headers are compiled in", COPYRIGHT)

    def test_no_other_file_claims_a_licence(self):
        shown = subprocess.run(
            ["git", "-c", f"safe.directory={PROJECT}", "ls-files", "-z"], cwd=PROJECT,
            capture_output=True, check=True, encoding="utf-8", timeout=60).stdout
        names = [name for name in shown.split("\0") if name and name != "COPYRIGHT"]
        self.assertGreater(len(names), 100)
        for name in names:
            self.assertNotRegex(pathlib.PurePath(name).name.upper(), "^(LICEN[SC]E|COPYING)")
            path = PROJECT / name
            if path.is_file():
                self.assertIsNone(CLAIM.search(path.read_text(encoding="utf-8", errors="replace")),
                                  name)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
