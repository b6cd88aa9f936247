#!/usr/bin/env python3
"""Checks that the pages for readers are true: links lead somewhere, examples do what they show.

usage: docs_test.py CONVERTER PROJECT_FOLDER
"""

import pathlib
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

CONVERTER = sys.argv[1]
PROJECT = pathlib.Path(sys.argv[2])
PAGES = sorted([*PROJECT.glob("*.md"), *(PROJECT / "docs").rglob("*.md")])

LINK = re.compile(r"\[[^\]]+\]\(([^)\s]+)\)")


def blocks(page: str, language: str) -> list:
    text = (PROJECT / page).read_text(encoding="utf-8")
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def prose(page: pathlib.Path) -> str:
    return re.sub(r"^```.*?^```$", "", page.read_text(encoding="utf-8"),
                  flags=re.DOTALL | re.MULTILINE)


def headings(page: pathlib.Path) -> set:
    """The anchors that a page's headings get: lower case, words joined by hyphens."""
    return {re.sub(r"[^\w\- ]", "", line.lstrip("# ").lower()).strip().replace(" ", "-")
            for line in prose(page).splitlines() if line.startswith("#")}


def without_layout(document: str) -> str:
    return ElementTree.canonicalize(document, strip_text=True)


def luminance(colour: str) -> float:
    """The relative luminance of WCAG 2, of six hexadecimal digits."""
    parts = [int(colour[place:place + 2], 16) / 255 for place in (0, 2, 4)]
    linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4
              for part in parts]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


class Docs(unittest.TestCase):
    maxDiff = None

    def test_the_readme_is_short(self):
        lines = (PROJECT / "README.md").read_text(encoding="utf-8").splitlines()
        self.assertLess(len(lines), 120)

    def test_the_readme_begins_with_what_for_whom_and_how(self):
        beginning = (PROJECT / "README.md").read_text(encoding="utf-8").splitlines()[:10]
        text = " ".join(beginning)
        for words in ("wireless-microphone", "for programs and people", "old documents"):
            self.assertIn(words, text)
        self.assertIn("    scripts/convert samples/festival.xml > converted.xml", beginning)
        self.assertIn("    scripts/test", beginning)

    def test_the_readme_has_one_picture(self):
        pictures = re.findall(r"^!\[(.+)\]\((.+)\)$",
                              (PROJECT / "README.md").read_text(encoding="utf-8"), re.MULTILINE)
        self.assertEqual(len(pictures), 1)
        root = ElementTree.parse(PROJECT / pictures[0][1]).getroot()
        self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
        for name in ("title", "desc"):
            self.assertTrue(root.findtext(f"{{http://www.w3.org/2000/svg}}{name}").strip())

    def test_the_picture_can_be_read_in_light_and_dark(self):
        """By the contrast that WCAG 2 asks for: 4.5 of texts on what is behind them."""
        style = ElementTree.parse(PROJECT / "docs/three-places-to-one.svg").find(
            "{http://www.w3.org/2000/svg}style").text
        schemes = style.split("@media (prefers-color-scheme: dark)")
        self.assertEqual(len(schemes), 2)
        for scheme in schemes:
            colours = dict(re.findall(r"\.(\w+) \{ fill: #(\w{6})", scheme))
            for text in ("ink", "soft"):
                for behind in ("paper", "card", "result"):
                    with self.subTest(text=text, behind=behind):
                        lights = sorted(luminance(colours[name]) for name in (text, behind))
                        self.assertGreater((lights[1] + 0.05) / (lights[0] + 0.05), 4.5)

    def test_every_link_leads_to_a_file_and_a_heading(self):
        count = 0
        for page in PAGES:
            for link in LINK.findall(prose(page)):
                if link.startswith(("https://", "http://", "mailto:")):
                    continue
                with self.subTest(page=page.name, link=link):
                    path, _, anchor = link.partition("#")
                    target = (page.parent / path) if path else page
                    self.assertTrue(target.exists())
                    if anchor:
                        self.assertIn(anchor, headings(target))
                count += 1
        self.assertGreater(count, 4)

    def test_the_readme_reaches_every_page(self):
        seen, waiting = set(), [PROJECT / "README.md"]
        while waiting:
            page = waiting.pop().resolve()
            if page in seen or page.suffix != ".md":
                continue
            seen.add(page)
            waiting += [page.parent / link.partition("#")[0] for link in LINK.findall(prose(page))
                        if "://" not in link]
        self.assertEqual([page for page in PAGES if page.resolve() not in seen], [])

    def test_every_path_that_is_shown_as_code_exists(self):
        shown = re.compile(r"`((?:scripts|samples|docs|tests|examples|\.ci)/[\w./-]*)`")
        for page in PAGES:
            for path in shown.findall(prose(page)):
                with self.subTest(page=page.name, path=path):
                    self.assertTrue((PROJECT / path).exists())

    def test_documents_before_and_after_are_what_the_converter_makes(self):
        for page in ("README.md", "docs/formats.md"):
            with self.subTest(page=page):
                before, after = blocks(page, "xml")
                run = subprocess.run([CONVERTER], input=before.encode(), capture_output=True,
                                     timeout=60)
                self.assertEqual((run.returncode, run.stderr), (0, b"\nPROGRESS"))
                self.assertEqual(without_layout(run.stdout.decode()), without_layout(after))

    def test_the_caller_on_the_page_is_the_one_that_is_built(self):
        source = PROJECT / "examples/convert_with_qprocess/convert_with_qprocess.cpp"
        self.assertEqual(blocks("docs/embedding.md", "cpp"), [source.read_text(encoding="utf-8")])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
