#!/usr/bin/env python3
"""What coordworkspace-convert-archive promises, tried on the programs themselves.

    archive_test.py PROGRAM_FOLDER PROJECT_FOLDER [--sanitized] [unittest options]
"""

import fcntl
import hashlib
import json
import os
import pathlib
import pty
import re
import resource
import shutil
import signal
import stat
import subprocess
import tempfile
import unittest

from archive_case import (BUSY, CONVERTER, DONE, FAILED, IS_LOSSY, IS_SANITIZED, LIMIT,
                          NOT_WRITTEN, PROGRAM, PROGRAMS, PROJECT, REFUSED, STOPPED, UNAVAILABLE,
                          UNDER_STRACE, USAGE, WORKER, ArchiveTest, converted, wait_until)
from archives import (BROKEN, CLEAN, LOSSY, NEWER, OLD, REPORT, STRANGER, Archive, bomb, contents,
                      is_locked)


def sha256(data):
    return hashlib.sha256(data).hexdigest()


def written(file):
    """Which file it is and when it was last touched."""
    status = file.stat()
    return status.st_ino, status.st_mtime_ns, status.st_ctime_ns


def slow_programs(test):
    """Programs whose converter waits until the file "go" is there."""
    test.put_in_place(CONVERTER,
                      f"echo $$ >> '{test.folder}/started'\n"
                      f"until [ -e '{test.folder}/go' ]; do sleep 0.05; done\n"
                      f"exec '{PROGRAMS / CONVERTER}' \"$1\"")


def start_slowly(test, **more):
    run = subprocess.Popen(test.archive.arguments("--timeout=none", "--jobs=1"),
                           stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                           stderr=subprocess.PIPE, start_new_session=True, **more)
    wait_until(lambda: (test.folder / "started").exists())
    return run


def add_huge(archive):
    """A document that no memory holds, and that takes no room on the disk."""
    with open(archive.add("huge.xml", "<"), "r+b") as file:
        file.truncate(2_200_000_000)


class Documents(ArchiveTest):
    def test_each_kind_ends_as_it_should(self):
        self.add_every_kind()
        before = contents(self.archive.source)
        run = self.run_archive(FAILED)
        self.assertEqual(self.archive.outcomes(), self.EVERY_OUTCOME)
        targets = self.archive.targets()
        self.assertEqual(
            {path: data for path, (data, _, _) in targets.items()},
            {
                "clean.xml": converted(CLEAN), "lossy.xml": converted(LOSSY),
                "old.xml": converted(OLD), "current.xml": converted(CLEAN),
                "2019/deep/er/clean.xml": converted(CLEAN.replace("Vocal", "Bass")),
            })  # fmt: skip
        self.assertEqual(
            run.stdout,
            b"9 documents: 2 converted, 1 current, 2 lossy, 2 refused, 0 limit, 2 failed;"
            b" 3 files are no workspace documents\n")
        self.assertEqual(contents(self.archive.source), before)

    def test_the_report_tells_hashes_sizes_and_losses(self):
        self.add_every_kind()
        self.run_archive(FAILED)
        for path, record in self.archive.records().items():
            if path in ("empty", "notes.txt"):
                # Not even read to its end: it may be a recording of any size.
                self.assertNotIn("source", record)
                continue
            source = (self.archive.source / path).read_bytes()
            self.assertEqual(record["source"], {"size": len(source), "sha256": sha256(source)})
            target = self.archive.target / path
            self.assertEqual("target" in record, target.exists())
            if target.exists():
                data = target.read_bytes()
                self.assertEqual(record["target"], {"size": len(data), "sha256": sha256(data)})
        kinds = {path: [loss["kind"] for loss in record["losses"]]
                 for path, record in self.archive.records().items() if record["losses"]}
        self.assertEqual(kinds, {"lossy.xml": ["profile-name-emptied"], "old.xml": ["too-old"]})

    def test_three_runs_equal_one(self):
        self.add_every_kind()
        self.run_archive(FAILED)
        source = contents(self.archive.source)
        once = (self.archive.targets(), (self.archive.target / REPORT).read_bytes())
        inodes = {path: (self.archive.target / path).stat().st_ino
                  for path in self.archive.targets()}
        for _ in range(2):
            run = self.run_archive(FAILED)
            self.assertIn(b"5 done by an earlier run", run.stdout)
            self.assertTrue(
                (self.archive.targets(), (self.archive.target / REPORT).read_bytes()) == once)
        self.assertTrue(contents(self.archive.source) == source)
        self.assertEqual({path: (self.archive.target / path).stat().st_ino
                          for path in self.archive.targets()}, inodes)

    def test_an_archive_of_what_was_converted_is_copied(self):
        self.archive.add("clean.xml", CLEAN)
        self.run_archive(DONE)
        again = Archive(tempfile.mkdtemp(dir=self.folder), self.archive.program,
                        self.archive.options)
        again.source.rmdir()
        self.archive.target.rename(again.source)
        self.assertEqual(again.run().returncode, DONE)
        self.assertEqual(again.outcomes(), {"clean.xml": ("current", None)})
        self.assertEqual(again.targets(), contents(again.source))

    def test_mode_and_time_are_kept(self):
        for number, mode in enumerate((0o640, 0o400, 0o755, 0o606)):
            for kind, document in (("clean", CLEAN), ("current", converted(CLEAN))):
                file = self.archive.add(f"{kind}{number}.xml", document)
                file.chmod(mode)
                os.utime(file, ns=(1, 1234567890_123456789 + number))
        self.run_archive(DONE)
        for path, (_, mode, modified) in self.archive.targets().items():
            source = (self.archive.source / path).stat()
            self.assertEqual((mode, modified), (source.st_mode, source.st_mtime_ns))

    def test_bits_that_give_rights_are_not_kept(self):
        self.archive.add("clean.xml", CLEAN).chmod(0o6755)
        self.run_archive(DONE)
        mode = (self.archive.target / "clean.xml").stat().st_mode
        self.assertEqual(stat.S_IMODE(mode), 0o755)

    def test_the_runs_own_files_have_the_rights_that_the_mask_leaves(self):
        self.archive.add("clean.xml", CLEAN)
        folder = self.archive.target / ".coordworkspace"
        for mask in (0, 0o027):
            with self.subTest(mask=oct(mask)):
                self.run_archive(DONE, preexec_fn=lambda mask=mask: os.umask(mask))
                modes = {path.name: oct(stat.S_IMODE(path.stat().st_mode))
                         for path in folder.iterdir()}
                self.assertEqual(modes, dict.fromkeys(("report.jsonl", "lock", "jobs"),
                                                      oct(0o666 & ~mask)))
                shutil.rmtree(self.archive.target)

    def test_names_of_every_kind(self):
        names = ["a b.xml", "quote'\".xml", "$HOME `id`.xml", "-n.xml", "new\nline.xml", "ü🎤.xml",
                 "{}{1}.xml", "tab\t.xml", "back\\slash.xml", "x" * 251 + ".xml", ".hidden",
                 "%20.xml", "*.xml", "é folder/é.xml", "x/\ufeffmark.xml", "\ufffd.xml",
                 "\x1b[2J.xml", " ", "  .xml ", "-", "--force", "\U0010ffff.xml"]  # fmt: skip
        for name in names:
            self.archive.add(name, CLEAN)
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), set(names))

    def test_names_that_are_no_utf8_are_reported_each(self):
        for name in (b"B\xfchne.xml", b"B\xe4hne.xml", b"\xe9", b"\xf0\x9f\x8e.xml",
                     b"\xef\xbb\xbfa.xml"):
            with open(os.path.join(os.fsencode(self.archive.source), name), "wb") as file:
                file.write(CLEAN.encode())
        self.archive.add("Bühne.xml", CLEAN)
        self.run_archive(REFUSED)
        outcomes = self.archive.outcomes()
        self.assertEqual(outcomes.pop("Bühne.xml"), ("converted", None))
        self.assertEqual(outcomes, dict.fromkeys(
            ("B\ufffdFChne.xml", "B\ufffdE4hne.xml", "\ufffdE9", "\ufffdF0\ufffd9F\ufffd8E.xml",
             "\ufffdEF\ufffdBB\ufffdBFa.xml"),
            ("refused", "name-not-utf8")))

    def test_paths_that_are_no_utf8_are_refused(self):
        self.archive.add("a.xml", CLEAN)
        folder = os.fsencode(self.folder)
        strange = os.path.join(folder, b"caf\xe9")
        os.mkdir(strange)
        os.symlink(b"caf\xe9", os.path.join(folder, b"link"))
        program, *_, source, target = map(os.fsencode, self.archive.arguments())
        for arguments in ((strange, target), (source, strange),
                          (source, target, b"--report=" + strange),
                          (folder + b"/link", target), (source, folder + b"/link"),
                          (source, target, b"--html=" + folder + b"/link/page.html")):
            with self.subTest(arguments):
                run = subprocess.run([program, *arguments], capture_output=True, timeout=60)
                self.assertEqual((run.returncode, run.stdout), (USAGE, b""))
                self.assertIn(b"not UTF-8", run.stderr)
        self.assertEqual((os.listdir(strange), self.archive.targets()), ([], {}))

    def test_folders_with_odd_names(self):
        odd = Archive(tempfile.mkdtemp(prefix="a 'b' $x\n", dir=self.folder),
                      self.archive.program, self.archive.options)
        odd.add("clean.xml", CLEAN)
        self.assertEqual(odd.run().returncode, DONE)
        self.assertEqual(odd.outcomes(), {"clean.xml": ("converted", None)})

    def test_links_are_followed_or_reported(self):
        document = self.archive.add("sub/clean.xml", CLEAN)
        (self.archive.source / "link.xml").symlink_to("sub/clean.xml")
        (self.archive.source / "broken.xml").symlink_to("nowhere")
        (self.archive.source / "round").symlink_to(".")
        (self.archive.source / "round.xml").symlink_to("round.xml")
        os.mkfifo(self.archive.source / "pipe.xml")
        self.run_archive(REFUSED)
        self.assertEqual(self.archive.outcomes(), {
            "sub/clean.xml": ("converted", None), "link.xml": ("converted", None),
            "broken.xml": ("refused", "broken-link"), "round": ("refused", "link-to-folder"),
            "round.xml": ("refused", "no-file"), "pipe.xml": ("refused", "no-file")})
        self.assertTrue((self.archive.target / "link.xml").is_file())
        self.assertFalse((self.archive.target / "link.xml").is_symlink())
        self.assertEqual((self.archive.target / "link.xml").stat().st_mtime_ns,
                         document.stat().st_mtime_ns)

    def test_an_empty_archive(self):
        run = self.run_archive(DONE)
        self.assertTrue(run.stdout.startswith(b"0 documents: "))

    def test_what_may_not_be_read(self):
        user = self.as_another_user()
        self.archive.add("secret.xml", CLEAN).chmod(0)
        self.archive.add("closed/clean.xml", CLEAN)
        self.archive.add("clean.xml", CLEAN)
        self.give_away()
        (self.archive.source / "closed").chmod(0)
        self.addCleanup((self.archive.source / "closed").chmod, 0o755)
        self.run_archive(FAILED, **user)
        self.assertEqual(self.archive.outcomes(), {
            "secret.xml": ("failed", "not-readable"), "closed": ("failed", "not-readable"),
            "clean.xml": ("converted", None)})

    def test_a_source_that_may_not_be_read(self):
        user = self.as_another_user()
        self.archive.add("clean.xml", CLEAN)
        self.give_away()
        self.addCleanup(self.archive.source.chmod, 0o755)
        for mode in (0o333, 0o666):
            with self.subTest(mode=oct(mode)):
                self.archive.source.chmod(mode)
                run = self.run_archive(USAGE, **user)
                self.assertIn(b"SOURCE may not be read", run.stderr)
                self.assertFalse(self.archive.target.exists())

    def test_where_nothing_may_be_written(self):
        user = self.as_another_user()
        self.archive.add("sub/clean.xml", CLEAN)
        self.archive.add("clean.xml", CLEAN)
        self.archive.target.mkdir()
        self.give_away()
        self.archive.target.chmod(0o555)
        self.addCleanup(self.archive.target.chmod, 0o755)
        run = self.run_archive(NOT_WRITTEN, **user)
        self.assertIn(b"cannot be written: Permission denied", run.stderr)
        self.assertEqual(list(self.archive.target.iterdir()), [])
        # Only one folder of it.
        self.archive.target.chmod(0o755)
        (self.archive.target / "sub").mkdir(mode=0o555)
        self.run_archive(FAILED, **user)
        self.assertEqual(self.archive.outcomes(), {
            "sub/clean.xml": ("failed", "not-written"), "clean.xml": ("converted", None)})

    def test_a_document_that_no_memory_holds(self):
        add_huge(self.archive)
        self.archive.add("clean.xml", CLEAN)
        self.run_archive(LIMIT)
        self.assertEqual(self.archive.outcomes(), {
            "huge.xml": ("limit", "size"), "clean.xml": ("converted", None)})

    def test_what_begins_otherwise_is_not_read_on(self):
        with open(self.archive.add("recording.wav", "RIFF"), "r+b") as file:
            file.truncate(1 << 42)
        blanks = self.archive.add("blanks.xml", " " * 65536 + CLEAN[CLEAN.index("<coord"):])
        self.run_archive(DONE)
        self.assertEqual(self.archive.outcomes(), {
            "recording.wav": ("refused", "no-workspace"), "blanks.xml": ("converted", None)})
        self.assertEqual((self.archive.target / "blanks.xml").read_bytes(),
                         converted(blanks.read_bytes()))


class Options(ArchiveTest):
    def test_only_clean_documents_are_written(self):
        self.archive.add("clean.xml", CLEAN)
        self.archive.add("lossy.xml", LOSSY)
        self.run_archive(DONE, "--only-clean")
        self.assertEqual(self.archive.outcomes(), {
            "clean.xml": ("converted", None), "lossy.xml": ("lossy", "not-clean")})
        self.assertEqual(set(self.archive.targets()), {"clean.xml"})
        # Asked for later, it is written.
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), {"clean.xml", "lossy.xml"})

    def test_lossy_documents_set_the_status_when_asked(self):
        self.archive.add("lossy.xml", LOSSY)
        self.run_archive(IS_LOSSY, "--fail-if-lossy", "--only-clean")
        self.run_archive(IS_LOSSY, "--fail-if-lossy")
        self.run_archive(IS_LOSSY, "--fail-if-lossy")
        self.run_archive(DONE)

    def test_verify(self):
        self.archive.add("clean.xml", CLEAN)
        self.archive.add("lossy.xml", LOSSY)
        self.run_archive(DONE)
        self.assertEqual([line["verified"] for line in self.archive.lines()], [False, False])
        # What was converted without is verified by a run with.
        self.run_archive(DONE, "--verify")
        self.assertEqual([line["verified"] for line in self.archive.lines()], [True, True])
        run = self.run_archive(DONE, "--verify")
        self.assertIn(b"2 done by an earlier run", run.stdout)

    def test_verify_finds_a_wrong_conversion(self):
        self.put_in_place(CONVERTER,
                          f"'{PROGRAMS / CONVERTER}' \"$1\" | sed s/Standard/Robust/")
        self.archive.add("clean.xml", CLEAN)
        self.run_archive(FAILED, "--verify")
        self.assertEqual(self.archive.outcomes(), {"clean.xml": ("failed", "not-verified")})
        self.assertEqual(self.archive.targets(), {})
        self.run_archive(DONE)

    def test_a_dry_run_writes_nothing_and_tells_the_same(self):
        self.add_every_kind()
        before = contents(self.folder)
        dry = self.run_archive(FAILED, "--dry-run")
        self.assertFalse(self.archive.target.exists())
        self.assertEqual(contents(self.folder), before)
        real = self.run_archive(FAILED)
        *lines, summary = dry.stdout.decode().splitlines()
        self.assertEqual(summary, real.stdout.decode().rstrip("\n"))

        def told(records):
            return {record["path"]: {**record, "seconds": 0} for record in records}

        self.assertEqual(told(map(json.loads, lines)), told(self.archive.lines()))
        # Of what a killed run did not come to report, too.
        report = self.archive.target / REPORT
        report.rename(report.with_name("pending.jsonl"))
        before = contents(self.archive.target / ".coordworkspace")
        again = self.run_archive(FAILED, "--dry-run")
        self.assertEqual(again.stderr, b"")
        self.assertIn(b"5 done by an earlier run", again.stdout)
        self.assertEqual(contents(self.archive.target / ".coordworkspace"), before)
        report.with_name("pending.jsonl").rename(report)
        # Again with the targets there.
        before = contents(self.folder)
        self.run_archive(FAILED, "--dry-run")
        self.assertEqual(contents(self.folder), before)

    def test_the_report_may_stand_elsewhere(self):
        self.archive.add("clean.xml", CLEAN)
        report = self.folder / "report.jsonl"
        self.run_archive(DONE, f"--report={report}")
        self.assertEqual(json.loads(report.read_text())["path"], "clean.xml")
        self.assertFalse((self.archive.target / REPORT).exists())
        run = self.run_archive(DONE, f"--report={report}")
        self.assertIn(b"1 done by an earlier run", run.stdout)

    def test_what_it_prints_about_itself(self):
        for option, begin in (("--help", b"usage: coordworkspace-convert-archive"),
                              ("--version", b"coordworkspace-convert-archive ")):
            run = subprocess.run([self.archive.program, option], capture_output=True, timeout=60)
            self.assertEqual((run.returncode, run.stderr), (DONE, b""))
            self.assertTrue(run.stdout.startswith(begin))
        run = subprocess.run([self.archive.program, "--json-schema"], capture_output=True,
                             timeout=60)
        self.assertEqual(json.loads(run.stdout), self.schema.schema)


class Statuses(ArchiveTest):
    """The table of the man page is the data."""

    @staticmethod
    def man_page():
        page = PROJECT / "docs/man/coordworkspace-convert-archive.1"
        return page.read_text().replace("\\-", "-")

    def rows(self):
        page = self.man_page()
        table = page[page.index(".TS"):page.index(".TE")]
        return re.findall(r"^(\d+)\|(.*)$", table, re.MULTILINE)

    def test_each_of_the_man_page_is_met(self):
        rows = self.rows()
        self.assertEqual([int(number) for number, _ in rows], sorted(self.WAYS))
        for number, meaning in rows:
            with self.subTest(status=number, meaning=meaning):
                self.assertEqual(self.WAYS[int(number)](self.another()), int(number))

    @staticmethod
    def of_document(document, *options):
        def way(test):
            test.archive.add("a.xml", document)
            return test.archive.run(*options).returncode
        return way

    @staticmethod
    def of_size(test):
        add_huge(test.archive)
        return test.archive.run().returncode

    @staticmethod
    def without_parallel(test):
        return test.archive.run(env={"PATH": "/nowhere"}).returncode

    @staticmethod
    def without_room(test):
        with open("/dev/full", "wb") as full:
            return test.archive.run(capture_output=False, stdout=full).returncode

    @staticmethod
    def beside_another(test):
        (test.archive.target / ".coordworkspace").mkdir(parents=True)
        with open(test.archive.target / ".coordworkspace/lock", "w") as lock:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            return test.archive.run().returncode

    @staticmethod
    def stopped(test):
        slow_programs(test)
        test.archive.add("a.xml", CLEAN)
        run = start_slowly(test)
        run.terminate()
        run.communicate(timeout=60)
        return run.returncode

    WAYS = {
        DONE: of_document(CLEAN), IS_LOSSY: of_document(LOSSY, "--fail-if-lossy"),
        REFUSED: of_document(NEWER), LIMIT: of_size, FAILED: of_document(BROKEN),
        USAGE: of_document(CLEAN, "--unknown"), UNAVAILABLE: without_parallel,
        NOT_WRITTEN: without_room, BUSY: beside_another, STOPPED: stopped,
    }  # fmt: skip

    def test_of_several_the_highest_counts(self):
        self.archive.add("clean.xml", CLEAN)
        self.archive.add("stranger.xml", STRANGER)
        for status, add in ((IS_LOSSY, lambda: self.archive.add("lossy.xml", LOSSY)),
                            (REFUSED, lambda: self.archive.add("newer.xml", NEWER)),
                            (LIMIT, lambda: add_huge(self.archive)),
                            (FAILED, lambda: self.archive.add("broken.xml", BROKEN))):
            add()
            self.run_archive(status, "--fail-if-lossy")

    def test_the_pages_tell_the_same(self):
        rows = self.rows()
        guide = (PROJECT / "docs/archive.md").read_text().replace("`", "")
        self.assertEqual(re.findall(r"^\| (\d+) \| (.*) \|$", guide, re.MULTILINE), rows)
        help_text = subprocess.run([self.archive.program, "--help"], capture_output=True,
                                   timeout=60, text=True).stdout
        status = help_text[help_text.index("Status:"):]
        self.assertEqual(re.findall(r"(?<![\w-])\d+", status), [number for number, _ in rows])
        options = set(re.findall(r"--[a-z-]+", help_text))
        self.assertEqual(set(re.findall(r"--[a-z-]+", self.man_page())), options)


class WrongUsage(ArchiveTest):
    def refuse(self, *arguments):
        before = contents(self.folder)
        folders = sorted(str(path) for path in self.folder.rglob("*"))
        run = subprocess.run([self.archive.program, *map(str, arguments)], capture_output=True,
                             timeout=60, cwd=self.folder)
        self.assertEqual((run.returncode, run.stdout), (USAGE, b""), run.stderr)
        self.assertTrue(run.stderr.startswith(b"coordworkspace-convert-archive: "))
        self.assertEqual(contents(self.folder), before)
        self.assertEqual(sorted(str(path) for path in self.folder.rglob("*")), folders)
        return run.stderr

    def test_folders_that_overlap(self):
        source = self.archive.source
        self.archive.add("sub/clean.xml", CLEAN)
        (self.folder / "link").symlink_to(source)
        (self.folder / "other").mkdir()
        for one, two in ((source, source), (source, source / "sub"), (source / "sub", source),
                         (source, source / "sub/new/er"), (source, self.folder / "link"),
                         (source, self.folder / "link/new"), (self.folder / "link/sub", source),
                         (source, f"{source}/"), (source, f"{source}/../source/./new"),
                         ("source", source), ("source/../source", "source/new"),
                         (source, self.folder), (source, "/"), (source, "other/../source")):
            with self.subTest(source=str(one), target=str(two)):
                self.refuse(one, two)

    def test_a_folder_beside_with_a_longer_name_is_none_of_them(self):
        self.archive.add("clean.xml", CLEAN)
        self.archive.target = self.folder / "source2"
        self.run_archive(DONE)

    def test_what_is_no_folder(self):
        file = self.archive.add("clean.xml", CLEAN)
        self.refuse(file, self.archive.target)
        self.refuse(self.folder / "nowhere", self.archive.target)
        other = self.folder / "file"
        other.write_text("")
        self.refuse(self.archive.source, other)

    def test_reports_where_none_may_be(self):
        source, target = self.archive.source, self.archive.target
        mine = self.folder / "mine.txt"
        mine.write_text("not a report")
        folder = self.folder / "folder"
        folder.mkdir()
        for report in (source / "report.jsonl", mine, folder, self.folder, self.folder / "no/folder/r", "",
                       target / "no/folder/r", target / ".coordworkspace/lock",
                       target / ".coordworkspace/pending.jsonl",
                       target / "../target/.coordworkspace/jobs", target / ".coordworkspace"):
            with self.subTest(report=str(report)):
                self.refuse(f"--report={report}", source, target)

    def test_options(self):
        source, target = self.archive.source, self.archive.target
        for wrong in ("--timeout=0", "--timeout=x", "--timeout=-1", "--timeout=", "--memory=0",
                      "--memory=1.5", "--jobs=0", "--jobs=x", "--jobs=100000", "--force=yes",
                      "--unknown", "--memory=99999999999999999999",
                      "--memory=9223372036854775807", "--timeout=9223372036854775807",
                      "--machines=", "--machines=/nowhere"):
            with self.subTest(option=wrong):
                told = self.refuse(wrong, source, target)
                self.assertIn(wrong.split("=")[0].lstrip("-").encode(), told)
        self.refuse()
        self.refuse(source)
        self.refuse(source, target, target)
        self.refuse("", target)


class ExistingTargets(ArchiveTest):
    def setUp(self):
        super().setUp()
        for name in ("one.xml", "two.xml", "three.xml"):
            self.archive.add(name, CLEAN)
        self.archive.target.mkdir()

    def test_they_are_kept_and_told_before_the_first_conversion(self):
        for name in ("one.xml", "two.xml"):
            (self.archive.target / name).write_text("mine")
        for _ in range(2):
            run = self.run_archive(REFUSED)
            told = [line for line in run.stderr.decode().splitlines() if "in the way" in line]
            self.assertEqual([line.rsplit("/", 1)[1] for line in told], ["one.xml", "two.xml"])
            self.assertEqual(self.archive.outcomes(), {
                "one.xml": ("refused", "target-exists"), "two.xml": ("refused", "target-exists"),
                "three.xml": ("converted", None)})
            for name in ("one.xml", "two.xml"):
                self.assertEqual((self.archive.target / name).read_text(), "mine")

    def test_force_replaces_them(self):
        (self.archive.target / "one.xml").write_text("mine")
        (self.archive.target / "two.xml").symlink_to(self.folder / "elsewhere")
        (self.folder / "elsewhere").write_text("mine")
        self.run_archive(DONE, "--force")
        self.assertEqual({data for data, _, _ in self.archive.targets().values()},
                         {converted(CLEAN)})
        self.assertEqual((self.folder / "elsewhere").read_text(), "mine")

    def test_a_dangling_link_is_in_the_way_too(self):
        (self.archive.target / "one.xml").symlink_to("nowhere")
        self.run_archive(REFUSED)
        self.assertEqual(os.readlink(self.archive.target / "one.xml"), "nowhere")

    def test_what_not_even_force_replaces(self):
        (self.archive.target / "one.xml").mkdir()
        (self.archive.target / "sub").write_text("mine")
        self.archive.add("sub/clean.xml", CLEAN)
        self.archive.add("linked/clean.xml", CLEAN)
        outside = self.folder / "outside"
        outside.mkdir()
        (outside / "clean.xml").write_text("mine")
        (self.archive.target / "linked").symlink_to(outside)
        run = self.run_archive(REFUSED, "--force")
        refused = {path for path, (outcome, _) in self.archive.outcomes().items()
                   if outcome == "refused"}
        self.assertEqual(refused, {"one.xml", "sub/clean.xml", "linked/clean.xml"})
        self.assertEqual(run.stderr.count(b"in the way"), 3)
        self.assertEqual((outside / "clean.xml").read_text(), "mine")

    def test_strangers_are_in_nobodys_way(self):
        self.archive.add("notes.txt", "in both folders")
        (self.archive.target / "notes.txt").write_text("in both folders")
        run = self.run_archive(DONE)
        self.assertEqual(run.stderr, b"")

    def test_a_report_in_a_targets_place_is_kept(self):
        report = self.archive.target / "one.xml"
        for options in ((), ("--force",)):
            self.run_archive(REFUSED, f"--report={report}", *options)
            lines = {line["path"]: line
                     for line in map(json.loads, report.read_text().splitlines())}
            self.assertEqual(lines["one.xml"]["reason"], "target-exists")
            self.assertEqual(lines["two.xml"]["outcome"], "converted")

    def test_a_name_does_not_command_the_terminal(self):
        name = "\x1b[2J\nnew.xml"
        self.archive.add(name, CLEAN)
        (self.archive.target / name).write_text("mine")
        run = self.run_archive(REFUSED)
        self.assertNotIn(b"\x1b", run.stderr)
        self.assertEqual(run.stderr.count(b"\n"), 1)

    def test_a_target_that_was_changed_is_the_users(self):
        self.run_archive(DONE)
        (self.archive.target / "one.xml").write_text("mine now")
        run = self.run_archive(REFUSED)
        self.assertIn(b"in the way, and kept: ", run.stderr)
        self.assertEqual((self.archive.target / "one.xml").read_text(), "mine now")


class TakingUp(ArchiveTest):
    def test_documents_added_removed_changed(self):
        for name in ("b.xml", "c.xml", "d.xml"):
            self.archive.add(name, CLEAN)
        self.run_archive(DONE)
        self.archive.add("a.xml", CLEAN)  # in front of all others
        self.archive.add("c.xml", LOSSY)
        (self.archive.source / "d.xml").unlink()
        kept = written(self.archive.target / "b.xml")
        run = self.run_archive(DONE)
        self.assertIn(b"1 done by an earlier run; 1 gone since, their targets kept", run.stdout)
        self.assertEqual({path: data for path, (data, _, _) in self.archive.targets().items()},
                         {"a.xml": converted(CLEAN), "b.xml": converted(CLEAN),
                          "c.xml": converted(LOSSY), "d.xml": converted(CLEAN)})
        self.assertEqual(written(self.archive.target / "b.xml"), kept)

    def test_a_target_stays_ours_while_its_document_is_broken(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        for trouble, status in ((BROKEN, FAILED), (NEWER, REFUSED), (STRANGER, DONE)):
            self.archive.add("a.xml", trouble)
            for _ in range(2):
                run = self.run_archive(status)
                self.assertEqual(run.stderr, b"")
            self.assertEqual((self.archive.target / "a.xml").read_bytes(), converted(CLEAN))
        (self.archive.source / "a.xml").unlink()
        self.run_archive(DONE)
        self.archive.add("a.xml", LOSSY)
        self.run_archive(DONE)
        self.assertEqual((self.archive.target / "a.xml").read_bytes(), converted(LOSSY))
        self.assertNotIn("earlier", self.archive.records()["a.xml"])

    def test_a_change_that_keeps_size_and_time_is_seen(self):
        file = self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        before = file.stat()
        self.archive.add("a.xml", CLEAN.replace("Vocal", "Drums"))
        os.utime(file, ns=(before.st_atime_ns, before.st_mtime_ns))
        self.assertEqual(file.stat().st_size, before.st_size)
        self.run_archive(DONE)
        self.assertIn(b"Drums", (self.archive.target / "a.xml").read_bytes())

    def test_a_target_that_is_gone_comes_again(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        (self.archive.target / "a.xml").unlink()
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), {"a.xml"})

    def test_what_is_left_unfinished_is_swept(self):
        self.archive.add("sub/a.xml", CLEAN)
        (self.archive.target / "sub").mkdir(parents=True)
        for folder in (self.archive.target, self.archive.target / "sub"):
            (folder / ".coordworkspace-ab12CD.part").write_text("half")
        (self.archive.target / "mine.part").write_text("mine")
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), {"sub/a.xml", "mine.part"})

    def test_what_the_runs_of_a_target_within_are_at_is_left_to_them(self):
        self.archive.add("a.xml", CLEAN)
        inner = self.archive.target / "inner"
        (inner / ".coordworkspace").mkdir(parents=True)
        (inner / ".coordworkspace-ab12CD.part").write_text("half")
        self.run_archive(DONE)
        self.assertTrue((inner / ".coordworkspace-ab12CD.part").exists())

    def test_a_report_that_was_left_unfinished_is_taken_over(self):
        self.archive.add("a.xml", CLEAN)
        report = self.folder / "reports/report.jsonl"
        report.parent.mkdir()
        (report.parent / ".coordworkspace-report.jsonl.part").write_text("half")
        self.run_archive(DONE, f"--report={report}")
        self.assertEqual([path.name for path in report.parent.iterdir()], ["report.jsonl"])

    def test_a_report_with_a_torn_last_line(self):
        for name in ("a.xml", "b.xml"):
            self.archive.add(name, CLEAN)
        self.run_archive(DONE)
        report = self.archive.target / REPORT
        whole = report.read_bytes()
        for cut in (1, 20, len(whole) // 2, len(whole) - 5):
            report.write_bytes(whole[:-cut])
            (self.archive.target / "b.xml").unlink()
            if cut > len(whole) // 2 - 1:
                (self.archive.target / "a.xml").unlink()
            self.run_archive(DONE)
            self.assertEqual([line["path"] for line in self.archive.lines()], ["a.xml", "b.xml"])

    def test_what_stands_without_a_line_is_known_as_pending(self):
        self.archive.add("a.xml", CLEAN)
        self.archive.add("b.xml", CLEAN)
        self.run_archive(DONE)
        report = self.archive.target / REPORT
        lines = report.read_bytes()
        report.rename(report.with_name("pending.jsonl"))
        (self.archive.target / "b.xml").unlink()
        before = written(self.archive.target / "a.xml")
        run = self.run_archive(DONE)
        self.assertEqual(run.stderr, b"")
        self.assertIn(b"1 done by an earlier run", run.stdout)
        self.assertEqual(written(self.archive.target / "a.xml"), before)
        self.assertEqual(report.read_bytes().splitlines()[0], lines.splitlines()[0])
        self.assertFalse(report.with_name("pending.jsonl").exists())

    def test_a_second_run_at_the_same_time_is_refused(self):
        self.archive.add("a.xml", CLEAN)
        (self.archive.target / ".coordworkspace").mkdir(parents=True)
        for name in ("lock", "jobs"):
            with open(self.archive.target / ".coordworkspace" / name, "w") as lock:
                fcntl.lockf(lock, fcntl.LOCK_EX)
                run = self.run_archive(BUSY)
                self.assertEqual((run.stdout, self.archive.targets()), (b"", {}))
        self.run_archive(DONE)

    def is_locked(self):
        return is_locked(self.archive.target)

    def test_jobs_of_a_killed_run_keep_the_next_one_out(self):
        slow_programs(self)
        for number in range(4):
            self.archive.add(f"{number}.xml", CLEAN)
        run = start_slowly(self)
        parallel = self.child_of(run.pid)
        os.kill(parallel, signal.SIGKILL)
        _, errors = run.communicate(timeout=60)
        self.assertEqual(run.returncode, UNAVAILABLE)
        self.assertIn(b"broke off", errors)
        self.run_archive(BUSY)
        (self.folder / "go").touch()
        wait_until(lambda: not self.is_locked())
        # The one at work came to its end and was reported; no other was begun.
        self.assertEqual(list(self.archive.outcomes()), ["0.xml"])
        run = self.run_archive(DONE)
        self.assertIn(b"1 done by an earlier run", run.stdout)
        self.assertEqual(len(self.archive.targets()), 4)

    def test_a_killed_run_takes_its_jobs_along(self):
        slow_programs(self)
        self.archive.add("a.xml", CLEAN)
        run = start_slowly(self)
        run.kill()
        run.communicate(timeout=60)
        wait_until(lambda: not self.is_locked())
        self.assertFalse((self.archive.target / "a.xml").exists())
        (self.folder / "go").touch()
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), {"a.xml"})

    @staticmethod
    def child_of(process):
        """The only one."""
        return int(pathlib.Path(f"/proc/{process}/task/{process}/children").read_text())

    def test_a_signal_ends_the_jobs_too(self):
        # One process gets it, or all that a terminal has in front.
        for number, (request, send) in enumerate((
                (signal.SIGINT, os.kill), (signal.SIGTERM, os.kill), (signal.SIGHUP, os.kill),
                (signal.SIGINT, os.killpg))):
            with self.subTest(signal=request, send=send):
                if number == 0:
                    slow_programs(self)
                self.archive.add(f"{number}.xml", CLEAN)
                run = start_slowly(self)
                send(run.pid, request)
                _, errors = run.communicate(timeout=60)
                self.assertEqual(run.returncode, STOPPED)
                self.assertEqual(errors, b"coordworkspace-convert-archive: stopped;"
                                         b" the next run goes on from here\n")
                wait_until(lambda: not self.is_locked())
                self.assertEqual(
                    [path for path in self.archive.targets() if not path.endswith(".part")], [])
                (self.folder / "started").unlink()
        (self.folder / "go").touch()
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.targets()), {"0.xml", "1.xml", "2.xml", "3.xml"})

    def test_a_signal_that_is_ignored_stops_nothing(self):
        slow_programs(self)
        self.archive.add("a.xml", CLEAN)
        run = start_slowly(
            self, preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))  # as under nohup
        os.killpg(run.pid, signal.SIGHUP)
        (self.folder / "go").touch()
        self.assertEqual(run.wait(60), DONE)
        run.communicate()
        self.assertEqual(set(self.archive.targets()), {"a.xml"})

    def test_a_signal_stops_the_search_for_documents(self):
        paths = [self.archive.add(f"{number % 3}/{number}.xml", CLEAN) for number in range(9)]
        run = subprocess.run(
            ["strace", "-o", self.folder / "opened", *(word for path in paths for word in ("-P", path)),
             "-e", "trace=openat", "-e", "inject=openat:signal=TERM:when=1",
             *self.archive.arguments()],
            capture_output=True, timeout=60, env=UNDER_STRACE)  # fmt: skip
        self.assertEqual((run.returncode, run.stdout), (STOPPED, b""))
        self.assertEqual((self.folder / "opened").read_text().count("openat("), 1)
        self.assertEqual(self.archive.targets(), {})
        self.run_archive(DONE)
        self.assertEqual(len(self.archive.targets()), 9)

    def test_a_signal_stops_the_look_at_what_is_done(self):
        self.archive.add("a.xml", CLEAN)
        self.archive.add("b.xml", CLEAN)
        self.run_archive(DONE)
        run = subprocess.run(
            ["strace", "-o", "/dev/null", "-P", self.archive.target / "a.xml",
             "-e", "inject=openat:signal=TERM:when=1+", *self.archive.arguments()],
            capture_output=True, timeout=60, env=UNDER_STRACE)  # fmt: skip
        self.assertEqual((run.returncode, run.stdout), (STOPPED, b""))


class HostileDocuments(ArchiveTest):
    def test_entities_that_grow_end_as_limit_beside_their_neighbours(self):
        if IS_SANITIZED:
            self.skipTest("a sanitizer runs within no limit on memory")
        for number in range(6):
            self.archive.add(f"{number}.xml", CLEAN)
        self.assertLess(self.archive.add("3-bomb.xml", bomb()).stat().st_size, 400_000)
        self.run_archive(LIMIT, "--jobs=1")
        outcomes = self.archive.outcomes()
        self.assertEqual(outcomes.pop("3-bomb.xml"), ("limit", "memory"))
        self.assertEqual(set(outcomes.values()), {("converted", None)})

    def test_memory(self):
        if IS_SANITIZED:
            self.skipTest("a sanitizer runs within no limit on memory")
        self.archive.add("clean.xml", CLEAN)
        self.run_archive(LIMIT, "--memory=20")
        self.assertEqual(self.archive.outcomes(), {"clean.xml": ("limit", "memory")})
        self.assertEqual(self.archive.targets(), {})
        self.run_archive(DONE, "--memory=1000")

    def test_the_converter_begins_within_its_limits(self):
        limits = self.folder / "limits"
        self.put_in_place(CONVERTER, f"(ulimit -v; ulimit -t; ulimit -c) >'{limits}'\n"
                                     f"exec '{PROGRAMS / CONVERTER}' \"$1\"")
        self.archive.add("clean.xml", CLEAN)
        # A sanitizer runs within no limit on memory.
        memory = "none" if IS_SANITIZED else "1024"
        self.run_archive(DONE, f"--memory={memory}", "--timeout=1000")
        kilobytes, seconds, core = limits.read_text().split()
        self.assertEqual(kilobytes, "unlimited" if IS_SANITIZED else "1000000")
        # What the inspection has left of the time, and a second more.
        self.assertIn(int(seconds), range(900, 1002))
        self.assertEqual(core, "0")

    def test_time(self):
        slow_programs(self)
        self.archive.add("clean.xml", CLEAN)
        self.run_archive(LIMIT, "--timeout=1")
        self.assertEqual(self.archive.outcomes(), {"clean.xml": ("limit", "time")})
        self.assertEqual(self.archive.targets(), {})
        # The converter did not survive it.
        process = (self.folder / "started").read_text().strip()
        self.assertFalse(pathlib.Path("/proc", process).exists())

    def test_a_report_that_is_lost_while_a_worker_dies(self):
        """What stands is not known then, so nothing is begun any more."""
        self.archive.add("a.xml", CLEAN)
        runs = self.folder / "runs"
        pending = self.archive.target / ".coordworkspace/pending.jsonl"
        self.put_in_place(WORKER, f"echo >> '{runs}'\nrm -f '{pending}'\n"
                                  f"mkdir -p '{pending}/taken'\nkill -9 $$")
        run = self.run_archive(NOT_WRITTEN)
        self.assertIn(b"cannot be written", run.stderr)
        self.assertEqual((run.stdout, runs.read_text()), (b"", "\n"))

    def test_a_worker_that_dies_takes_no_neighbour_along(self):
        for number in range(40):
            self.archive.add(f"{number:02}.xml", CLEAN)
        self.put_in_place(CONVERTER, "case $1 in */07.xml) kill -9 $PPID;; esac\n"
                                     f"exec '{PROGRAMS / CONVERTER}' \"$1\"")
        self.run_archive(FAILED, "--jobs=2")
        outcomes = self.archive.outcomes()
        self.assertEqual(outcomes.pop("07.xml"), ("failed", "broke-off"))
        self.assertEqual(set(outcomes.values()), {("converted", None)})


    def test_a_worker_that_dies_between_two_renames(self):
        self.trace_worker("-e inject=renameat2:signal=KILL:when=3", only_once=True)
        for number in range(30):
            self.archive.add(f"{number:02}.xml", CLEAN)
        self.run_archive(DONE, "--jobs=1")
        self.assertTrue((self.folder / "traced").exists())
        self.assertEqual(len(self.archive.targets()), 30)
        self.assertEqual(set(self.archive.outcomes().values()), {("converted", None)})

    def test_all_is_synced_before_it_is_reported(self):
        self.trace_worker("-y -e trace=fsync,rename,renameat2,write")
        self.archive.add("sub/deep/a.xml", CLEAN)
        self.run_archive(DONE)
        calls = (self.folder / "traced").read_text().replace(str(self.archive.target), "T")
        place = 0
        for what in (r"fsync\(\d+<T/sub/deep/\.coordworkspace-\w+\.part>\) += 0",
                     r"write\(\d+<T/\.coordworkspace/pending\.jsonl>",
                     r"fsync\(\d+<T/\.coordworkspace/pending\.jsonl>\) += 0",
                     r"fsync\(\d+<T/\.coordworkspace>\) += 0",
                     r'renameat2\(.*"T/sub/deep/a\.xml", RENAME_NOREPLACE\) += 0',
                     r"fsync\(\d+<T/sub/deep>\) += 0", r"fsync\(\d+<T/sub>\) += 0",
                     r"fsync\(\d+<T>\) += 0", r"write\(\d+<T/\.coordworkspace/report\.jsonl>",
                     r"fsync\(\d+<T/\.coordworkspace/report\.jsonl>\) += 0",
                     r"fsync\(\d+<T/\.coordworkspace>\) += 0"):
            found = re.compile(what).search(calls, place)
            self.assertTrue(found, (what, calls))
            place = found.end()

    def test_the_report_and_its_page_are_synced_before_they_stand(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        self.archive.add("a.xml", OLD)  # which has two lines in the report until the run's end
        page = self.archive.target / "page.html"
        traced = self.folder / "traced"
        subprocess.run(["strace", "-y", "-e", "trace=fsync,rename,renameat2", "-o", traced,
                        *self.archive.arguments(f"--html={page}")], check=True, timeout=60,
                       env=UNDER_STRACE, stdout=subprocess.DEVNULL)
        calls = traced.read_text().replace(str(self.archive.target), "T")
        for folder, name in (("T/.coordworkspace", "report.jsonl"), ("T", "page.html")):
            part = rf"{re.escape(folder)}/[^/>\"]*\.part"
            self.assertRegex(calls, rf'fsync\(\d+<{part}>\) += 0\n'
                                    rf'rename\w*\([^\n]*"{part}",[^\n]*"{folder}/{name}"')

    def test_a_file_system_that_cannot_tell_whether_a_name_is_taken(self):
        self.trace_worker("-e inject=renameat2:error=EINVAL")
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        self.assertEqual(self.archive.outcomes(), {"a.xml": ("converted", None)})
        self.assertEqual({path: data for path, (data, _, _) in self.archive.targets().items()},
                         {"a.xml": converted(CLEAN)})

    def test_a_file_system_that_fails_in_the_end(self):
        folder = self.archive.target
        for rules in ("-e inject=renameat2:error=EIO", f"-P '{folder}' -e inject=fsync:error=EIO",
                      "-e inject=fsync:error=EIO:when=1"):  # the document's
            with self.subTest(rules):
                test = self.another()
                test.trace_worker(rules.replace(str(folder), str(test.archive.target)),
                                  only_once=True)
                test.archive.add("a.xml", CLEAN)
                test.run_archive(FAILED, "--verify")
                self.assertEqual(test.archive.outcomes(), {"a.xml": ("failed", "not-written")})
                self.assertIn("Input/output error", test.archive.records()["a.xml"]["text"])
                self.assertFalse(test.archive.records()["a.xml"]["verified"])
                # What stands by now is the run's own, and no stranger's in the way.
                run = test.run_archive(DONE, "--verify")
                self.assertEqual(run.stderr, b"")
                self.assertEqual(test.archive.outcomes(), {"a.xml": ("converted", None)})

    def test_a_report_that_cannot_be_read_is_no_empty_one(self):
        self.archive.add("a.xml", CLEAN)
        for options in ((), ("--dry-run",)):
            run = self.run_archive(NOT_WRITTEN, "--report=/proc/self/mem", *options)
            self.assertIn(b"cannot be read: Input/output error", run.stderr)
            self.assertEqual((run.stdout, self.archive.targets()), (b"", {}))

    def test_a_copy_that_finds_no_room(self):
        current = converted(CLEAN).replace(b"</coordinated_data_root>",
                                           b"<!-- " + b"x" * 50_000 + b" --></coordinated_data_root>")
        self.archive.add("a.xml", current)
        run = self.run_archive(FAILED, env={**os.environ, **self.uncounted()},
                               preexec_fn=lambda: resource.setrlimit(
                                   resource.RLIMIT_FSIZE, (40_000, 40_000)))
        self.assertIn(b"1 failed", run.stdout)
        self.assertEqual(self.archive.outcomes(), {"a.xml": ("failed", "not-written")})
        self.assertIn("File too large", self.archive.records()["a.xml"]["text"])
        self.assertEqual(self.archive.targets(), {})

    def trace_worker(self, rules, only_once=False):
        """Runs the worker under strace, which writes what it sees into "traced"."""
        program = PROGRAMS / WORKER
        otherwise = f"[ ! -e '{self.folder}/traced' ] || exec '{program}' \"$@\"\n"
        self.put_in_place(WORKER, (otherwise if only_once else "") +
                          f"exec strace -o '{self.folder}/traced' {rules} '{program}' \"$@\"")

    def test_a_report_that_cannot_grow_ends_the_run_before_the_work(self):
        for number in range(60):
            self.archive.add(f"{number:02}.xml", CLEAN)
        self.run_archive(DONE)
        limit = (self.archive.target / REPORT).stat().st_size  # no plan or output is as large
        self.archive.add("new.xml", CLEAN)
        self.archive.add("note.txt", "no XML")  # of which the run tells before it converts
        run = self.run_archive(NOT_WRITTEN, env={**os.environ, **self.uncounted()},
                               preexec_fn=lambda: resource.setrlimit(
                                   resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertIn(b"report.jsonl cannot be written: ", run.stderr)
        self.assertNotIn("new.xml", self.archive.targets())

    def test_a_report_that_cannot_grow_ends_the_run_at_once(self):
        for number in range(60):
            self.archive.add(f"{number:02}.xml", CLEAN)
        limit = 12_000  # more than the plan and each output, less than the report
        run = self.run_archive(NOT_WRITTEN, "--jobs=2", env={**os.environ, **self.uncounted()},
                               preexec_fn=lambda: resource.setrlimit(
                                   resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertEqual(run.stdout, b"")
        self.assertEqual(run.stderr, b"coordworkspace-convert-archive: the report cannot be"
                                     b" written: File too large\n")
        self.run_archive(DONE)
        self.assertEqual(set(self.archive.outcomes().values()), {("converted", None)})
        self.assertEqual(len(self.archive.targets()), 60)


class Streams(ArchiveTest):
    def test_a_terminal_sees_progress_with_the_time_left(self):
        for number in range(8):
            self.archive.add(f"{number}.xml", CLEAN)
        seen = self.seen_at_a_terminal()
        self.assertRegex(seen, rb"\r\x1b\[K\d of 8 documents")
        self.assertTrue(seen.endswith(b"\r\x1b[K8 documents: 8 converted, 0 current, 0 lossy,"
                                      b" 0 refused, 0 limit, 0 failed\r\n"), seen)

    def test_one_stream_at_a_terminal_shows_no_progress(self):
        self.archive.add("a.xml", CLEAN)
        line = b"1 documents: 1 converted, 0 current, 0 lossy, 0 refused, 0 limit, 0 failed"
        with tempfile.TemporaryFile() as errors:
            self.assertEqual(self.seen_at_a_terminal(stderr=errors), line + b"\r\n")
            self.assertEqual(errors.tell(), 0)
        shutil.rmtree(self.archive.target)
        with tempfile.TemporaryFile() as output:
            self.assertEqual(self.seen_at_a_terminal(stdout=output), b"")
            self.assertEqual(output.tell(), len(line) + 1)

    def seen_at_a_terminal(self, *options, **elsewhere):
        ours, theirs = pty.openpty()
        streams = {"stdout": theirs, "stderr": theirs, **elsewhere}
        run = subprocess.Popen(self.archive.arguments(*options), stdin=subprocess.DEVNULL, **streams)
        os.close(theirs)
        seen = b""
        try:
            while data := os.read(ours, 4096):
                seen += data
        except OSError:
            pass  # the other end is closed
        self.assertEqual(run.wait(60), DONE)
        os.close(ours)
        return seen

    def test_without_a_terminal_a_short_run_says_one_line(self):
        self.archive.add("a.xml", CLEAN)
        run = self.run_archive(DONE)
        self.assertEqual((run.stderr, run.stdout.count(b"\n")), (b"", 1))

    def test_output_that_nobody_takes(self):
        self.archive.add("a.xml", CLEAN)
        with open("/dev/full", "wb") as full:
            run = subprocess.run(self.archive.arguments(), stdout=full, stderr=subprocess.PIPE,
                                 timeout=60)
        self.assertEqual(run.returncode, NOT_WRITTEN)
        self.assertEqual(set(self.archive.targets()), {"a.xml"})

    def test_closed_streams(self):
        self.note_streams()
        for closed in ((0,), (1,), (2,), (0, 1, 2)):
            for options, kept in (["--dry-run"], []), ([], ["a.xml"]):
                with self.subTest(closed=closed, options=options):
                    shutil.rmtree(self.archive.target, ignore_errors=True)
                    run = self.archive.run(*options, preexec_fn=lambda: [os.close(stream)
                                                                         for stream in closed])
                    self.assertEqual(run.returncode, NOT_WRITTEN if 1 in closed else DONE)
                    self.assertEqual(run.stdout.count(b"1 converted"), 0 if 1 in closed else 1)
                    self.assertEqual(sorted(self.archive.targets()), kept)
                    # No line was meant for a stream and went into a file.
                    for file in (self.archive.target / REPORT).parent.glob("*"):
                        self.assertEqual(file.read_bytes().count(b"\n"), file.suffix == ".jsonl")
                    self.check_streams()

    def test_a_worker_with_closed_streams(self):
        self.note_streams()
        self.put_in_place(WORKER, f"exec '{PROGRAMS / WORKER}' \"$@\" <&- 2>&-")
        for options in ["--dry-run"], []:
            with self.subTest(options=options):
                self.run_archive(DONE, *options)
                self.check_streams()

    def note_streams(self):
        """Has the converter tell what its streams are. Little else is open while it is at work: a
        document of this size has left no process behind that reads the next one."""
        self.archive.add("a.xml", CLEAN.replace("Vocal", "V" * 70_000))
        self.put_in_place(CONVERTER, "(cd /proc/$$/fd; echo \"$(readlink 0 1 2)\") "
                                     f">'{self.folder}/streams'\n"
                                     f"exec '{PROGRAMS / CONVERTER}' \"$1\"")

    def check_streams(self):
        streams = self.folder / "streams"
        self.assertRegex(streams.read_text(), r"\A/dev/null\n.*\.part\npipe:.*\n\Z")
        streams.unlink()

    def test_without_parallel(self):
        self.archive.add("a.xml", CLEAN)
        run = self.run_archive(UNAVAILABLE, env={"PATH": "/nowhere"})
        self.assertIn(b"GNU Parallel", run.stderr)
        self.assertFalse(self.archive.target.exists())

    def with_parallel(self, script):
        """An environment in which the script stands in for GNU Parallel."""
        other = self.folder / "bin/parallel"
        other.parent.mkdir()
        other.write_text(script)
        other.chmod(0o755)
        return {**os.environ, "PATH": f"{other.parent}:{os.environ['PATH']}"}

    def test_another_program_of_that_name(self):
        self.archive.add("a.xml", CLEAN)
        environment = self.with_parallel(
            "#!/bin/sh\necho 'parallel: invalid option' >&2\nexit 1\n")
        run = self.run_archive(UNAVAILABLE, env=environment)
        self.assertIn(b"is not GNU Parallel", run.stderr)
        self.assertEqual((run.stdout, self.archive.targets()), (b"", {}))
        self.run_archive(DONE)

    def test_a_parallel_that_cannot_be_started(self):
        self.archive.add("a.xml", CLEAN)
        run = self.run_archive(UNAVAILABLE, env=self.with_parallel("#!/nowhere/sh\n"))
        self.assertEqual(run.stderr, b"coordworkspace-convert-archive: GNU Parallel cannot be"
                                     b" started\n")
        self.assertEqual((run.stdout, self.archive.targets()), (b"", {}))
        self.run_archive(DONE)

    def test_a_parallel_that_breaks_off(self):
        """Whose jobs may be at work still: it says so with the status that its manual names."""
        self.archive.add("a.xml", CLEAN)
        environment = self.with_parallel(
            f"#!/bin/sh\n'{shutil.which('parallel')}' \"$@\"\nexit 255\n")
        run = self.run_archive(UNAVAILABLE, env=environment)
        self.assertIn(b"GNU Parallel broke off", run.stderr)
        self.assertEqual(run.stdout, b"")
        self.run_archive(DONE)

    def test_a_current_folder_that_is_gone(self):
        self.archive.add("a.xml", CLEAN)
        gone = self.folder / "gone"
        gone.mkdir()
        run = self.run_archive(DONE, cwd=gone, preexec_fn=gone.rmdir)
        self.assertEqual(run.stderr, b"")

    def test_a_dry_run_at_a_terminal_mixes_no_lines(self):
        for number in range(4):
            self.archive.add(f"{number}.xml", CLEAN)
        seen = self.seen_at_a_terminal("--dry-run")
        lines = re.sub(rb"[^\n]*\r\x1b\[K", b"", seen).split(b"\r\n")
        self.assertEqual({json.loads(line)["path"] for line in lines[:4]},
                         {f"{number}.xml" for number in range(4)})

    def test_a_target_that_takes_nothing(self):
        self.archive.add("a.xml", CLEAN)
        self.archive.target = pathlib.Path("/proc/coordworkspace")
        run = self.archive.run()
        self.assertEqual((run.returncode, run.stdout), (NOT_WRITTEN, b""))

    def test_a_dry_run_without_a_folder_for_temporary_files(self):
        self.archive.add("a.xml", CLEAN)
        run = self.run_archive(NOT_WRITTEN, "--dry-run", env={**os.environ, "TMPDIR": "/dev/null"})
        self.assertIn(b"the folder for temporary files cannot be written: ", run.stderr)
        self.assertEqual((run.stdout, self.archive.target.exists()), (b"", False))
        self.run_archive(DONE, "--dry-run")

    def test_what_stands_in_the_place_of_a_runs_own_files(self):
        part = ".coordworkspace-report.jsonl.part"
        for name, put, told in (
            ("lock", pathlib.Path.mkdir, "lock"),
            ("jobs", pathlib.Path.mkdir, "jobs"),
            ("parallel", pathlib.Path.touch, "parallel"),
            ("pending.jsonl", pathlib.Path.mkdir, "report.jsonl"),
            ("report.jsonl", pathlib.Path.mkdir, "report.jsonl"),
            (part, pathlib.Path.mkdir, "report.jsonl"),
        ):
            with self.subTest(name):
                test = self.another()
                test.archive.add("a.xml", CLEAN)
                test.run_archive(DONE)
                test.archive.add("b.xml", CLEAN)
                test.archive.add("notes.txt", "no XML")
                test.check_that_nothing_is_lost(name, put, told)

    def check_that_nothing_is_lost(self, name, put, told):
        own = self.archive.target / ".coordworkspace"
        place, aside = own / name, self.folder / "aside"
        if place.exists():
            place.rename(aside)
        put(place)
        run = self.archive.run()
        self.assertEqual((run.returncode, run.stdout), (NOT_WRITTEN, b""))
        self.assertIn(f"{PROGRAM}: {own / told} cannot be written: ", run.stderr.decode())
        stands = {path: written(self.archive.target / path) for path in self.archive.targets()}
        self.assertIn("a.xml", stands)
        (shutil.rmtree if place.is_dir() else os.unlink)(place)
        if aside.exists():
            aside.rename(place)
        self.run_archive(DONE)
        self.assertEqual(self.archive.outcomes(), {
            "a.xml": ("converted", None), "b.xml": ("converted", None),
            "notes.txt": ("refused", "no-workspace")})
        for path, before in stands.items():
            self.assertEqual(written(self.archive.target / path), before)

    def test_the_users_parallel_and_shell_have_no_say(self):
        self.archive.add("a.xml", CLEAN)
        home = self.folder / "home"
        (home / ".parallel").mkdir(parents=True)
        (home / ".parallel/config").write_text("--dry-run\n")
        env = {**os.environ, "HOME": str(home), "PARALLEL": "--dry-run", "SHELL": "/bin/false",
               "PARALLEL_SHELL": "/bin/false", "PARALLEL_HOME": str(home / ".parallel"),
               "TMPDIR": "/nowhere", "LC_ALL": "xx_XX.UTF-8"}
        before = sorted(home.rglob("*"))
        run = self.run_archive(DONE, env=env)
        self.assertEqual(run.stderr, b"")
        self.assertEqual(sorted(home.rglob("*")), before)
        self.assertEqual({path.name for path in (self.archive.target / REPORT).parent.iterdir()},
                         {"report.jsonl", "lock", "jobs"})


class Mishaps(ArchiveTest):
    """What the programs meet while they are at work."""

    def assert_left(self, outcome, reason, before=None):
        """The document was left with this outcome, and nothing in its target's place was touched."""
        self.assertEqual(self.archive.outcomes(), {"a.xml": (outcome, reason)})
        self.assertNotIn("target", self.archive.records()["a.xml"])
        self.assertEqual({path: data for path, (data, _, _) in self.archive.targets().items()},
                         before or {})

    def run_with_converter(self, status, script, *options):
        self.archive.add("a.xml", CLEAN)
        self.put_in_place(CONVERTER, script)
        return self.run_archive(status, *options)

    def test_a_document_that_is_changed_while_it_is_read(self):
        for change in ("printf '\\n' >> \"$1\"", "touch -d 2001-01-01 \"$1\"", "rm \"$1\""):
            with self.subTest(change):
                test = self.another()
                test.run_with_converter(
                    FAILED, f"'{PROGRAMS / CONVERTER}' \"$1\"; {change}")
                test.assert_left("failed", "changed")

    def test_a_target_that_comes_while_its_document_is_converted(self):
        target = self.archive.target / "a.xml"
        self.run_with_converter(
            REFUSED, f"printf mine > '{target}'; exec '{PROGRAMS / CONVERTER}' \"$1\"", "--verify")
        self.assert_left("refused", "target-exists", {"a.xml": b"mine"})
        self.assertFalse(self.archive.records()["a.xml"]["verified"])

    def test_a_folder_that_comes_in_a_targets_place(self):
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        target = self.archive.target / "a.xml"
        earlier = sha256(target.read_bytes())
        self.archive.add("a.xml", CLEAN.replace("Vocal", "Bass"))
        self.put_in_place(CONVERTER, f"rm '{target}'; mkdir '{target}'\n"
                                     f"exec '{PROGRAMS / CONVERTER}' \"$1\"")
        self.run_archive(FAILED)
        self.assertEqual(self.archive.outcomes(), {"a.xml": ("failed", "not-written")})
        self.assertEqual(self.archive.records()["a.xml"]["earlier"]["sha256"], earlier)
        self.assertTrue(target.is_dir())

    def test_a_converter_that_cannot_be_started(self):
        self.archive.add("a.xml", CLEAN)
        self.put_in_place(CONVERTER, "")
        (self.archive.program.parent / CONVERTER).write_text("#!/nowhere/sh\n")
        self.run_archive(FAILED)
        self.assert_left("failed", "no-converter")

    def test_a_converter_that_refuses(self):
        for script in ("exit 1", "printf '\\nFAILURE' >&2; exit 1"):
            with self.subTest(script):
                test = self.another()
                test.run_with_converter(FAILED, f"echo half; {script}")
                test.assert_left("failed", "not-converted")

    def test_a_converter_that_dies(self):
        for script in ("kill -11 $$", "exit 127"):
            with self.subTest(script):
                test = self.another()
                test.run_with_converter(LIMIT, f"echo half; {script}")
                test.assert_left("limit", "memory")

    def test_a_program_that_is_missing(self):
        self.archive.add("a.xml", CLEAN)
        self.put_in_place(CONVERTER, "")
        (self.archive.program.parent / CONVERTER).unlink()
        run = self.run_archive(UNAVAILABLE)
        self.assertEqual(run.stderr.decode(), f"{PROGRAM}: a program is missing:"
                                              f" {self.archive.program.parent / CONVERTER}\n")
        self.assertFalse(self.archive.target.exists())

    def test_the_worker_alone(self):
        def worker(*arguments):
            return subprocess.run([PROGRAMS / WORKER, *arguments], capture_output=True, timeout=60)

        run = worker()
        self.assertEqual((run.returncode, run.stdout), (USAGE, b""))
        self.assertIn(b"usage: ", run.stderr)
        run = worker(self.folder / "nowhere", "0", "1")
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertIn(b"the plan cannot be read", run.stderr)

    def test_a_worker_whose_run_is_over(self):
        self.put_in_place(WORKER, f"cp \"$1\" '{self.folder}/plan'\n"
                                  f"echo \"$2 $3\" > '{self.folder}/job'\n"
                                  f"exec '{PROGRAMS / WORKER}' \"$@\"")
        self.archive.add("a.xml", CLEAN)
        self.run_archive(DONE)
        (self.archive.target / "a.xml").unlink()
        job = (self.folder / "job").read_text().split()
        with open(self.archive.target / ".coordworkspace/jobs", "r+") as lock:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            run = subprocess.run([PROGRAMS / WORKER, self.folder / "plan", *job],
                                 capture_output=True, timeout=60)
        self.assertEqual((run.returncode, run.stdout), (1, b""))
        self.assertIn(b"the run is over", run.stderr)
        self.assertEqual(self.archive.targets(), {})


if __name__ == "__main__":
    unittest.main()
