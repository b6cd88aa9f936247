#!/usr/bin/env python3
"""The page that coordworkspace-convert-archive --html writes, as its readers and scripts meet it.

    archive_page_test.py PROGRAM_FOLDER PROJECT_FOLDER [--sanitized] [unittest options]
"""

import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import tempfile
import unittest

import lxml.etree
import lxml.html

from archive_case import (DONE, FAILED, NOT_WRITTEN, PROGRAMS, REFUSED, UNAVAILABLE, UNDER_STRACE,
                          USAGE, ArchiveTest)
from archives import CLEAN, LOSSY, NEWER, REPORT, contents

HOSTILE = "</script><img src=x onerror=alert(1)>\"'&amp;"


class Page:
    """What a reader finds on a page."""

    def __init__(self, file):
        self.bytes = pathlib.Path(file).read_bytes()
        self.tree = lxml.etree.fromstring(self.bytes)

    def text(self):
        return "".join(self.tree.itertext())

    def files(self):
        """The cells of each file's row, by path."""
        rows = self.tree.xpath("//table[@id='documents']/tbody/tr[1]")
        cells = [["".join(cell.itertext()) for cell in row] for row in rows]
        return {path: rest for path, *rest in cells}

    def outcomes(self):
        return {path: cells[0] for path, cells in self.files().items()}

    def spacings(self):
        """The rows of systems, by their names."""
        rows = self.tree.xpath("//table[@class='systems']/tbody/tr")
        cells = [["".join(cell.itertext()) for cell in row] for row in rows]
        return {name: rest for name, *rest in cells}


class PageTest(ArchiveTest):
    def setUp(self):
        super().setUp()
        self.file = self.folder / "page.html"

    def run_archive(self, status, *options, **more):
        return super().run_archive(status, f"--html={self.file}", *options, **more)

    def everything(self):
        return contents(self.folder), sorted(str(path) for path in self.folder.rglob("*"))


class Contents(PageTest):
    OUTCOMES = {path: "no document" if reason == "no-workspace" else outcome
                for path, (outcome, reason) in ArchiveTest.EVERY_OUTCOME.items()}

    def test_it_tells_what_the_report_tells(self):
        self.add_every_kind()
        run = self.run_archive(FAILED, "--verify")
        page = Page(self.file)
        self.assertEqual(page.outcomes(), self.OUTCOMES)
        self.assertIn(run.stdout.decode().strip() + ".", page.text())
        self.assertIn(str(self.archive.source), page.text())
        for path, record in self.archive.records().items():
            _, told, before, after, seconds = page.files()[path]
            sizes = [re.sub(r"\D", "", text) for text in (before, after)]
            self.assertEqual(sizes, [str(record.get(which, {}).get("size", ""))
                                     for which in ("source", "target")])
            self.assertEqual(float(seconds), record["seconds"])
            for loss in record["losses"]:
                self.assertIn(f"{loss['kind']} in line {loss['line']}: {loss['text']}", told)
            self.assertIn(record.get("text", ""), told)

    def test_html_and_xml_parsers_read_the_same(self):
        self.add_every_kind()
        self.archive.add(f"{HOSTILE}/a.xml".replace("</", "<"), CLEAN)
        self.run_archive(FAILED)
        page = Page(self.file)
        html = lxml.html.fromstring(page.bytes)
        texts = [[text.strip() for text in tree.xpath("//body//text()")]
                 for tree in (html, page.tree)]
        self.assertEqual(texts[0], texts[1])
        self.assertEqual([element.tag for element in html.iter() if isinstance(element.tag, str)],
                         [element.tag for element in page.tree.iter()])

    def test_foreign_text_is_text(self):
        escaped = HOSTILE.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")
        document = (CLEAN.replace('name="robust"', f'name="{escaped}"')
                    .replace("<zone>Zone é</zone>", f"<zone>{escaped}&#x202e;&#x2028;</zone>"))
        name = f"{HOSTILE}\n\x1b\u202e.xml".replace("/", "_")
        self.archive.add(name, document)
        self.run_archive(DONE)
        page = Page(self.file)
        shown = name.replace("\n\x1b\u202e", "⟨U+000A⟩⟨U+001B⟩⟨U+202E⟩")
        self.assertEqual(page.outcomes(), {shown: "lossy"})
        self.assertEqual(page.tree.xpath("//img"), [])
        self.assertEqual(len(page.tree.xpath("//script")), 1)
        self.assertEqual(page.bytes.count(b"</script"), 1)
        for system in page.spacings():
            self.assertTrue(system.startswith(f"{HOSTILE}⟨U+202E⟩⟨U+2028⟩ · S"), system)
        self.assertIn(f"{HOSTILE} → (none)",
                      [profile for profile, *_ in page.spacings().values()])

    def test_spacings_are_those_that_the_inspector_tells(self):
        document = self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        inspected = json.loads(subprocess.run(
            [PROGRAMS / "coordworkspace-inspect", "--json", document], capture_output=True,
            timeout=60).stdout)
        expected = []
        for system in inspected["systems"]:
            changes = {name: change for name, change in system["spacings"].items()
                       if change["before"] != change["after"]}
            if changes:
                expected.append({**{key: system[key] for key in
                                    ("zone", "series", "band", "tx_profile", "incl_group", "name")},
                                 "spacings": changes})
        self.assertEqual(len(expected), 3)
        self.assertEqual(self.archive.records()["a.xml"]["systems"], expected)
        names = ["ch_ch", "imd_2t3o", "imd_2t5o", "imd_2t7o", "imd_2t9o", "imd_3t3o"]
        self.assertEqual(Page(self.file).spacings(), {
            " · ".join(system[key] for key in
                       ("zone", "series", "band", "tx_profile", "incl_group")): [
                f"{system['name']['before']} → {system['name']['after']}",
                *("{before} → {after}".format(**system["spacings"][name])
                  if name in system["spacings"] else "" for name in names)]
            for system in expected})

    def test_a_report_from_before_spacings_were_told(self):
        self.archive.add("a.xml", CLEAN)
        self.archive.add("b.xml", LOSSY)
        self.run_archive(DONE)
        report = self.archive.target / REPORT
        old = []
        for line in self.archive.lines():
            self.schema.validate(line)
            self.assertTrue(line.pop("systems"))
            self.schema.validate(line)
            old.append(json.dumps(line, separators=(",", ":")) + "\n")
        report.write_text("".join(old))
        run = self.run_archive(DONE)
        self.assertIn(b"2 done by an earlier run", run.stdout)
        self.assertEqual(report.read_text(), "".join(old))
        page = Page(self.file)
        self.assertEqual(page.spacings(), {})
        self.assertEqual(page.text().count("by a version that did not report spacings"), 2)

    def test_documents_that_are_gone(self):
        self.archive.add("a.xml", CLEAN)
        self.archive.add("b.xml", CLEAN)
        self.run_archive(DONE)
        (self.archive.source / "b.xml").unlink()
        self.run_archive(DONE)
        self.assertEqual(Page(self.file).outcomes(), {"a.xml": "converted", "b.xml": "gone"})

    def test_a_dry_run_writes_the_page_alone(self):
        self.add_every_kind()
        before = contents(self.folder)
        self.run_archive(FAILED, "--dry-run")
        after = contents(self.folder)
        page = after.pop("page.html")
        self.assertEqual(after, before)
        self.assertFalse(self.archive.target.exists())
        self.assertIn(b"dry run", page[0])
        self.assertEqual(Page(self.file).outcomes(), self.OUTCOMES)

    def test_an_archive_without_documents(self):
        self.run_archive(DONE)
        self.assertEqual(Page(self.file).files(), {})


class Places(PageTest):
    def refuse(self, file, *options):
        before = self.everything()
        run = self.archive.run(f"--html={file}", *options, cwd=self.folder)
        self.assertEqual((run.returncode, run.stdout), (USAGE, b""), run.stderr)
        self.assertTrue(run.stderr.startswith(b"coordworkspace-convert-archive: "), run.stderr)
        self.assertEqual(self.everything(), before)

    def test_places_that_hold_something_else(self):
        self.archive.add("a.xml", CLEAN)
        target = self.archive.target
        foreign = self.folder / "notes.html"
        foreign.write_text("<!DOCTYPE html>\n<html lang=\"en\"><title>Mine</title></html>")
        (self.folder / "into").symlink_to(self.archive.source)
        report = self.folder / "report.jsonl"
        # Stands for devices, which a program at fault would replace for the whole machine.
        elsewhere = self.enterContext(tempfile.TemporaryDirectory())
        pipe = pathlib.Path(elsewhere, "pipe")
        os.mkfifo(pipe)
        (self.folder / "to-pipe").symlink_to(pipe)
        for file in ("source/page.html", "source", self.archive.source / "a.xml", self.folder,
                     "into/page.html", "none/page.html", foreign, pipe, "to-pipe", "",
                     "target/.coordworkspace/page.html", "target/.coordworkspace/report.jsonl",
                     target, "target/sub/page.html"):
            with self.subTest(file=str(file)):
                self.refuse(file)
        self.refuse(report, f"--report={report}")
        # A dry run makes no folder.
        self.refuse(target / "page.html", "--dry-run")
        self.refuse(foreign, "--force")

    def test_a_page_is_replaced_and_a_link_followed(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        link = self.folder / "link.html"
        link.symlink_to("page.html")
        self.archive.add("b.xml", CLEAN)
        self.file, page = link, self.file
        self.run_archive(DONE)
        self.assertTrue(link.is_symlink())
        self.assertEqual(set(Page(page).files()), {"a.xml", "b.xml"})

    def test_in_the_target_that_the_run_makes(self):
        self.archive.add("a.xml", CLEAN)
        self.file = self.archive.target / "page.html"
        self.run_archive(DONE)
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), {"a.xml", "page.html"})
        # No document takes its place.
        self.archive.add("page.html", CLEAN)
        run = self.run_archive(REFUSED, "--force")
        self.assertIn(b"in the way, and kept", run.stderr)
        self.assertEqual(Page(self.file).outcomes(),
                         {"a.xml": "converted", "page.html": "refused"})

    def test_a_report_that_begins_with_a_kept_target_is_known(self):
        self.archive.add("a.xml", CLEAN)
        report = self.folder / "report.jsonl"
        self.run_archive(DONE, f"--report={report}")
        self.archive.add("a.xml", NEWER)
        self.run_archive(REFUSED, f"--report={report}")
        self.assertTrue(report.read_text().startswith('{"earlier"'))
        self.run_archive(REFUSED, f"--report={report}")


class Failures(PageTest):
    def test_a_page_for_which_there_is_no_room(self):
        for number in range(40):
            self.archive.add(f"{number}.xml", CLEAN)
        self.run_archive(DONE)
        before = self.file.read_bytes()
        self.archive.add("clean.xml", CLEAN)
        report = (self.archive.target / REPORT).stat().st_size
        limit = (report + len(before)) // 2  # the report fits, and the page does not
        self.assertLess(report + 4000, limit)
        run = self.run_archive(NOT_WRITTEN, env={**os.environ, **self.uncounted()},
                               preexec_fn=lambda: resource.setrlimit(
                                   resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertEqual(run.stderr.decode(), f"coordworkspace-convert-archive: {self.file} cannot"
                                              " be written: File too large\n")
        self.assertTrue(run.stdout.startswith(b"41 documents: 41 converted"))
        self.assertEqual(len(self.archive.records()), 41)
        self.assertEqual(self.file.read_bytes(), before)
        left = {path.name for path in self.folder.iterdir()} - {"counts"}
        self.assertEqual(left, {"source", "target", "page.html"})

    def test_a_folder_that_takes_nothing_is_told_before_the_work(self):
        user = self.as_another_user()
        self.archive.add("a.xml", CLEAN)
        closed = self.folder / "closed"
        closed.mkdir(mode=0o555)
        self.give_away()
        self.file = closed / "page.html"
        before = self.everything()
        run = self.run_archive(NOT_WRITTEN, **user)
        self.assertIn(b"page.html cannot be written: Permission denied", run.stderr)
        self.assertEqual((run.stdout, self.everything()), (b"", before))

    def test_a_run_that_does_not_come_to_its_end_writes_none(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(UNAVAILABLE, env={"PATH": "/nowhere"})
        self.assertFalse(self.file.exists())

    def test_killed_before_the_page_has_its_name_the_former_one_stands(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        before = self.file.read_bytes()
        # Nothing is to be done, so the page is the first file that gets its name.
        run = subprocess.run(
            ["strace", "-o", "/dev/null", "-e", "inject=rename:signal=KILL:when=1",
             *self.archive.arguments(f"--html={self.file}")],
            capture_output=True, timeout=120, env=UNDER_STRACE)
        self.assertEqual(run.returncode, -signal.SIGKILL, run.stderr)
        self.assertEqual(self.file.read_bytes(), before)
        self.run_archive(DONE)
        self.assertIn("1 done by an earlier run", Page(self.file).text())


if __name__ == "__main__":
    unittest.main()
