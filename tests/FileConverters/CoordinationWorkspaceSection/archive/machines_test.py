#!/usr/bin/env python3
"""What coordworkspace-convert-archive promises of other machines, tried on ssh servers of our own.

    machines_test.py PROGRAM_FOLDER PROJECT_FOLDER [--sanitized] [unittest options]
"""

import fcntl
import json
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import tempfile
import unittest

import machines
from archive_case import (CONVERTER, DONE, FAILED, IS_SANITIZED, LIMIT, NOT_WRITTEN, OPTIONS,
                          PROGRAM, PROGRAMS, REFUSED, STOPPED, UNAVAILABLE, USAGE, WORKER,
                          ArchiveTest, converted, wait_until)
from archives import (BROKEN, CLEAN, LOSSY, NEWER, OLD, REPORT, SEVERAL, STRANGER, Archive, bomb,
                      contents, is_locked)

A_PARCEL = 16  # documents, where there are few
PARCELS = ".parallel/tmp"


class MachinesTest(ArchiveTest):
    def setUp(self):
        super().setUp()
        if machines.missing():
            self.skipTest(machines.missing())
        self.did = self.folder / "did"
        # Tells where it ran. On machines it waits while there is a file "wait".
        self.put_in_place(
            CONVERTER, f"echo \"${{MACHINE:-here}} $$\" >>'{self.did}'\n"
                       f"while [ \"$MACHINE\" ] && [ -e '{self.folder}/wait' ]; do sleep 0.05; done\n"
                       f"exec '{PROGRAMS / CONVERTER}' \"$1\"")
        self.network = machines.Network(self.folder, KEYS)
        self.archive.environment = self.network.environment

    def machine(self, name="one", **more):
        made = self.network.machine(name, **more)
        self.addCleanup(made.stop)
        return made.start()

    def use(self, *lines):
        file = self.folder / "machines"
        file.write_text("# where to convert\n\n" + "".join(f"2/{line}\n" for line in lines))
        self.archive.options = [*self.archive.options, f"--machines={file}"]

    def use_one(self, **more):
        made = self.machine(**more)
        self.use(made.name)
        return made

    def add_clean(self, count):
        for number in range(count):
            self.archive.add(f"{number:03}.xml", CLEAN.replace("Vocal", f"Vocal {number}"))

    def places(self):
        """Where documents were converted."""
        lines = self.did.read_text().splitlines() if self.did.exists() else []
        return [line.split()[0] for line in lines]

    def check_as_here(self, status, *options):
        """Another run over the same documents, on this machine only, ends in the same."""
        other = Archive(tempfile.mkdtemp(dir=self.folder), PROGRAMS / PROGRAM, OPTIONS)
        other.source.rmdir()
        shutil.copytree(self.archive.source, other.source, symlinks=True)
        self.assertEqual(other.run(*options).returncode, status)
        self.assertEqual(self.archive.targets(), other.targets())
        self.assertEqual(*([{**line, "seconds": 0} for line in archive.lines()]
                           for archive in (self.archive, other)))
        self.assert_nothing_is_left()

    def assert_nothing_is_left(self):
        folder = (self.archive.target / REPORT).parent
        self.assertEqual({path.name for path in folder.iterdir()}, {"report.jsonl", "lock", "jobs"})

    def start(self, *options):
        run = subprocess.Popen(self.archive.arguments(*options), stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               start_new_session=True, env=self.archive.environment)
        self.addCleanup(run.stdout.close)
        self.addCleanup(run.stderr.close)
        return run

    def start_and_wait_there(self, after=0):
        """A run of which a machine has done some documents, and is held up in the next one."""
        wait = self.folder / "wait"
        if after == 0:
            wait.touch()
        run = self.start("--timeout=none")
        wait_until(lambda: len(self.archive_lines()) >= after)
        wait.touch()
        return run

    def archive_lines(self):
        return self.archive.lines() if (self.archive.target / REPORT).exists() else []


class Documents(MachinesTest):
    def test_all_ends_as_it_does_here(self):
        self.use_one()
        self.add_every_kind()
        self.add_clean(2 * A_PARCEL)
        run = self.run_archive(FAILED)
        self.assertEqual(run.stderr, b"")
        # The old one, lossy ones, clean ones; none of them here.
        self.assertEqual(self.places(), ["one"] * (2 * A_PARCEL + 4))
        self.check_as_here(FAILED)

    def test_three_runs_equal_one(self):
        self.use_one()
        self.add_clean(3)
        self.archive.add("current.xml", converted(CLEAN))
        self.run_archive(DONE)
        once = self.archive.targets(), self.archive.lines()
        for _ in range(2):
            self.assertIn(b"4 done by an earlier run", self.run_archive(DONE).stdout)
        self.assertEqual((self.archive.targets(), self.archive.lines()), once)
        self.assertEqual(self.places(), ["one"] * 3)

    def test_names_of_every_kind(self):
        self.use_one()
        names = ["a b.xml", "quote'\".xml", "$HOME `id` $(id).xml", "-n.xml", "new\nline.xml",
                 "{}{1}.xml", "back\\slash.xml", "x" * 251 + ".xml", "*.xml", "é folder/ü🎤.xml",
                 "\x1b[2J.xml", " ", "-", "--force", "a/./b".replace("./", "…/"), "~", "h:x",
                 "plan", "out/in", ".coordworkspace-x", "%20.xml", "#c", ";", "&"]  # fmt: skip
        for name in names:
            self.archive.add(name, CLEAN)
        self.assertEqual(self.run_archive(DONE).stderr, b"")
        self.assertEqual(set(self.archive.targets()), set(names))
        self.assertEqual(set(self.places()), {"one"})

    def test_folders_with_odd_names(self):
        made = self.machine()
        odd = Archive(tempfile.mkdtemp(prefix="a 'b' $x\n{1} ", dir=self.folder),
                      self.archive.program, self.archive.options)
        odd.add("clean.xml", CLEAN)
        file = odd.folder / "the \"machines\"\n"
        file.write_text(f"{self.network.folder}/bin/ssh {made.name}")  # with a command of its own
        run = odd.run("--machines", file, env=self.archive.environment)
        self.assertEqual((run.returncode, run.stderr), (DONE, b""))
        self.assertEqual(self.places(), ["one"])

    def test_links_to_documents_are_followed(self):
        self.use_one()
        self.archive.add("sub/clean.xml", CLEAN).chmod(0o640)
        (self.archive.source / "link.xml").symlink_to("sub/clean.xml")
        self.assertEqual(self.run_archive(DONE).stderr, b"")
        self.assertEqual(self.places(), ["one"] * 2)
        self.check_as_here(DONE)

    def test_entities_that_grow_end_as_limit_beside_their_neighbours(self):
        if IS_SANITIZED:
            self.skipTest("a sanitizer runs within no limit on memory")
        self.use_one()
        self.add_clean(3)
        self.archive.add("bomb.xml", bomb())
        self.assertEqual(self.run_archive(LIMIT).stderr, b"")
        self.assertEqual(self.places(), ["one"] * 3)
        self.check_as_here(LIMIT)

    def test_a_document_that_changes_under_way_is_converted_as_it_is_now(self):
        self.use_one()
        self.add_clean(2)
        run = self.start_and_wait_there()
        wait_until(lambda: self.places() == ["one"])
        self.archive.add("000.xml", LOSSY)
        (self.folder / "wait").unlink()
        _, errors = run.communicate(timeout=120)
        self.assertEqual(run.returncode, DONE, errors)
        self.check_as_here(DONE)


class Options(MachinesTest):
    def test_verify_and_only_clean(self):
        self.use_one()
        self.add_clean(2)
        for name, document in (("old", OLD), ("lossy", LOSSY), ("newer", NEWER),
                               ("current", converted(CLEAN)), ("stranger", STRANGER),
                               ("several", SEVERAL)):
            self.archive.add(f"{name}.xml", document)
        self.assertEqual(self.run_archive(REFUSED, "--verify", "--only-clean").stderr, b"")
        self.assertEqual(self.places(), ["one"] * 2)
        self.check_as_here(REFUSED, "--verify", "--only-clean")

    def test_what_stands_in_the_way_is_kept_unless_forced(self):
        self.use_one()
        self.add_clean(2)
        mine = self.archive.target / "000.xml"
        mine.parent.mkdir()
        mine.write_text("mine")
        self.run_archive(REFUSED)
        self.assertEqual(self.archive.outcomes(), {"000.xml": ("refused", "target-exists"),
                                                   "001.xml": ("converted", None)})
        self.assertEqual(mine.read_text(), "mine")
        self.run_archive(DONE, "--force")
        self.assertEqual(self.places(), ["one"] * 2)
        self.check_as_here(DONE)

    def test_a_changed_document_is_converted_again(self):
        self.use_one()
        self.add_clean(2)
        self.run_archive(DONE)
        self.archive.add("000.xml", LOSSY)
        self.archive.add("001.xml", BROKEN)
        self.run_archive(FAILED)
        self.assertEqual(self.archive.targets()["000.xml"][0], converted(LOSSY))
        self.assertIn("earlier", self.archive.records()["001.xml"])
        self.assertEqual(self.places(), ["one"] * 3)

    def test_a_report_that_cannot_grow_ends_the_run_at_once(self):
        self.use_one()
        self.add_clean(2 * A_PARCEL)
        limit = 32_000  # more than a parcel and what is told of it, less than the report of both
        run = self.run_archive(
            NOT_WRITTEN, env={**self.archive.environment, **self.uncounted()},
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
        self.assertEqual(run.stdout, b"")
        self.assertTrue(run.stderr.endswith(b"report.jsonl cannot be written: File too large\n"),
                        run.stderr)
        self.run_archive(DONE)
        self.check_as_here(DONE)

    def test_a_dry_run_writes_nothing_and_tells_the_same(self):
        one = self.use_one()
        self.add_every_kind()
        before = contents(self.archive.source)
        dry = self.run_archive(FAILED, "--dry-run")
        self.assertEqual(dry.stderr, b"")
        self.assertFalse(self.archive.target.exists())
        self.assertEqual(contents(self.archive.source), before)
        self.assertEqual(contents(one.home), {})
        self.assertEqual(self.places(), ["one"] * 4)
        real = self.run_archive(FAILED)
        *lines, summary = dry.stdout.decode().splitlines()
        self.assertEqual(summary, real.stdout.decode().rstrip("\n"))
        told = sorted(({**json.loads(line), "seconds": 0} for line in lines),
                      key=lambda line: line["path"])
        self.assertEqual(told, [{**line, "seconds": 0} for line in self.archive.lines()])

    def test_this_machine_may_be_among_them(self):
        self.use(":", self.machine().name)
        self.add_clean(4 * A_PARCEL)
        self.assertEqual(self.run_archive(DONE).stderr, b"")
        self.assertEqual(set(self.places()), {"here", "one"})
        self.check_as_here(DONE)

    def test_this_machine_alone_needs_no_other(self):
        """A file of it does what no file does, in as many jobs as it tells."""
        commands = self.folder / "neither ssh nor rsync"
        commands.mkdir()
        asked = self.folder / "asked"
        machines.write_script(commands / "parallel", f"echo \"$*\" >'{asked}'",
                              f"PATH='{os.environ['PATH']}' exec parallel \"$@\"")
        file = self.folder / "here"
        for number, (text, options, jobs) in enumerate((
                (":\n", [], r"\d+"), ("# all\n\n2/:\n", [], "2"), ("2/:\n", ["--jobs=1"], "1"))):
            with self.subTest(text=text, options=options):
                file.write_text(text)
                self.archive.add(f"{number}.xml", CLEAN)
                run = self.run_archive(DONE, f"--machines={file}", *options,
                                       env={**os.environ, "PATH": str(commands)})
                self.assertEqual(run.stderr, b"")
                self.assertRegex(asked.read_text(), f" --jobs {jobs} ")
        self.assertEqual(self.places(), ["here"] * 3)
        self.check_as_here(DONE)


class WrongUsage(MachinesTest):
    def test_a_file_that_names_no_machine(self):
        self.add_clean(1)
        empty = self.folder / "empty"
        empty.write_text("# none\n \n")
        before = sorted(self.folder.rglob("*"))
        for file in (self.folder / "nowhere", self.folder, empty, ""):
            with self.subTest(file=file):
                run = self.archive.run(f"--machines={file}")
                self.assertEqual((run.returncode, run.stdout), (USAGE, b""))
                self.assertIn(b"--machines is a file that names machines", run.stderr)
                self.assertEqual(sorted(self.folder.rglob("*")), before)

    def test_without_what_reaches_them(self):
        self.use("one")
        self.add_clean(1)
        programs = self.folder / "programs"
        for there in (("parallel",), ("parallel", "ssh"), ("parallel", "rsync")):
            for name in there:
                (programs / name).symlink_to(shutil.which(name))
            run = self.archive.run(env={"PATH": str(programs)})
            self.assertEqual((run.returncode, run.stdout), (UNAVAILABLE, b""))
            self.assertIn(b"ssh and rsync", run.stderr)
            self.assertFalse(self.archive.target.exists())
            for name in there:
                (programs / name).unlink()


class MachinesThatGo(MachinesTest):
    def finish_here(self, run, *said):
        (self.folder / "wait").unlink(missing_ok=True)
        _, errors = run.communicate(timeout=120)
        self.assertEqual(run.returncode, DONE, errors)
        for text in said:
            self.assertEqual(errors.count(text), 1, errors)
        self.check_as_here(DONE)

    def test_one_that_does_not_come_back(self):
        one = self.use_one()
        self.add_clean(4 * A_PARCEL)
        run = self.start_and_wait_there(after=A_PARCEL)
        asked = len(self.places())
        wait_until(lambda: len(self.places()) > asked or run.poll() is not None)
        one.cut_off()
        self.finish_here(run, b"came back from no machine")
        self.assertEqual(set(self.places()), {"one", "here"})

    def test_one_that_comes_back(self):
        one = self.use_one()
        self.add_clean(3 * A_PARCEL)
        run = self.start_and_wait_there(after=A_PARCEL)
        self.network.gone.touch()
        one.cut_off()
        one.start()
        begun = len(self.places())
        (self.folder / "wait").unlink(missing_ok=True)
        self.network.gone.unlink()
        self.finish_here(run)
        # On a busy machine a document may have been given up there and be converted here.
        self.assertIn("one", self.places()[begun:])

    def test_one_that_hangs(self):
        one = self.use_one(shares_connection=False)
        self.network.be_patient(1)
        self.add_clean(2)
        run = self.start_and_wait_there()
        wait_until(lambda: self.places() == ["one"])
        one.freeze()
        self.finish_here(run, b"2 documents came back from no machine")
        self.assertEqual(self.places(), ["one", "here", "here"])

    def test_one_that_refuses_beside_one_that_does_not(self):
        self.use(self.machine("two", knows_us=False).name, self.machine().name)
        self.add_clean(3 * A_PARCEL)
        run = self.run_archive(DONE)
        self.assertEqual(run.stderr.count(b"Permission denied"), 1, run.stderr)
        self.assertEqual(self.places(), ["one"] * 3 * A_PARCEL)
        self.check_as_here(DONE)

    def test_one_that_is_named_no_longer(self):
        one = self.use_one()
        self.add_clean(4 * A_PARCEL)
        run = self.start_and_wait_there(after=A_PARCEL)
        (self.folder / "machines").unlink()
        one.cut_off()
        self.finish_here(run, b"came back from no machine")
        self.assertEqual(set(self.places()), {"one", "here"})

    def test_none_at_all(self):
        one = self.use_one()
        one.cut_off()
        self.add_clean(2)
        run = self.start()
        self.finish_here(run, b"Connection refused", b"2 documents came back from no machine")
        self.assertEqual(self.places(), ["here"] * 2)


class MachinesThatLie(MachinesTest):
    def put_worker(self, script):
        """A worker that is itself here, and something else on machines."""
        worker = self.archive.program.parent / WORKER
        real = worker.rename(worker.with_name("worker"))
        machines.write_script(worker, f"worker='{real}'",
                              '[ "$MACHINE" ] || exec "$worker" "$@"', "cd \"${1%/*}\" || exit",
                              'parcel=${1%/*} plan="$PWD/plan"; shift', script)

    def refuse_to_believe(self, script, parcels=1):
        self.use_one()
        self.put_worker(script)
        self.add_clean(parcels * A_PARCEL)
        run = self.run_archive(DONE)
        self.assertEqual(self.places().count("here"), parcels * A_PARCEL)
        self.check_as_here(DONE)
        return run

    def test_outputs_and_records_that_are_not_what_they_should_be(self):
        lies = {
            "bytes are added": 'for file in out/*.xml; do echo >>"$file"; done',
            "outputs are links": "for file in out/*.xml; do rm \"$file\";"
                                 f" ln -s '{self.did}' \"$file\"; done",
            "outputs are folders": 'for file in out/*.xml; do rm "$file"; mkdir "$file"; done',
            "nothing comes back": "rm -r out",
            "other bytes are told": "sed -i 's/\"sha256\":\"[0-9a-f]/\"sha256\":\"x/g' told",
            "another parcel's outputs": "sed -i 's/\"path\":\"./\"path\":\"1/' told",
            "the document is blamed": "sed -i 's/\"outcome\":\"converted\"/\"outcome\":\"failed\","
                                      '"reason":"not-readable","text":"it cannot be read"/;'
                                      " s/,\"target\":{[^}]*}//' told",
        }  # fmt: skip
        cases = "".join(f"{number}) {lie};;\n" for number, lie in enumerate(lies.values(), 1))
        run = self.refuse_to_believe(
            f'"$worker" "$plan" "$@" >told; case $parcel in\n{cases}esac; cat told', len(lies))
        self.assertEqual(self.places().count("one"), len(lies) * A_PARCEL)
        # Those that are blamed are converted here as a matter of course.
        self.assertIn(f"{(len(lies) - 1) * A_PARCEL} documents came back from no machine".encode(),
                      run.stderr)

    def test_records_of_what_was_not_asked_for(self):
        evil = self.folder / "evil.xml"
        (self.archive.source / "sub").mkdir()
        run = self.refuse_to_believe(
            'echo noise; printf "%s" "$@"; "$worker" "$plan" "$@" >told; cp out/000.xml out/evil.xml\n'
            "hash=$(sha256sum <out/evil.xml) size=$(wc -c <out/evil.xml) hash=${hash%% *}\n"
            'identity="{\\"sha256\\":\\"${hash%% *}\\",\\"size\\":$size}"\n'
            f"for path in evil.xml ../evil.xml sub/../../evil.xml {evil} 000.xml/ ''; do\n"
            'echo "{\\"format\\":1,\\"path\\":\\"$path\\",\\"outcome\\":\\"current\\",'
            '\\"losses\\":[],\\"verified\\":false,\\"seconds\\":0,\\"source\\":$identity,'
            '\\"target\\":$identity}"; done')
        self.assertFalse(evil.exists())
        self.assertNotIn("evil.xml", str(sorted(self.archive.target.rglob("*"))))
        self.assertIn(b"16 documents came back from no machine", run.stderr)

    def test_another_version(self):
        run = self.refuse_to_believe(
            'sed -i \'s/"version":"[^"]*"/"version":"0.0.1"/\' "$plan"\n'
            'exec "$worker" "$plan" "$(head -n 1 "$plan" | wc -c)" "$2"')
        self.assertRegex(run.stderr, rb"version \S+ is installed here, and version 0\.0\.1 hands")
        self.assertNotIn("one", self.places())

    def test_nothing_installed(self):
        run = self.refuse_to_believe("exit 127")
        self.assertIn(b"16 documents came back from no machine", run.stderr)

    def test_no_room(self):
        run = self.refuse_to_believe("echo 'problem: the report cannot be written: no room'; exit 1")
        self.assertEqual(run.stderr.count(b"the report cannot be written: no room"), 1, run.stderr)

    def test_what_is_told_twice_counts_once(self):
        self.use_one()
        self.put_worker('"$worker" "$plan" "$@" >told; cat told told')
        self.add_clean(1)
        self.archive.add("newer.xml", NEWER)
        for options in ["--dry-run"], []:
            run = self.run_archive(REFUSED, *options)
            self.assertEqual(run.stdout.splitlines()[-1], b"2 documents: 1 converted, 0 current,"
                                                          b" 0 lossy, 1 refused, 0 limit, 0 failed")
        self.assertEqual(self.places(), ["one"] * 2)
        self.check_as_here(REFUSED)

    def test_a_worker_that_dies_at_a_document(self):
        self.use_one()
        self.add_clean(A_PARCEL)
        put = self.archive.program.parent / CONVERTER
        put.write_text(put.read_text().replace(
            "exec", "case $MACHINE$1 in one*/007.xml) kill -9 $PPID;; esac\nexec"))
        run = self.run_archive(DONE)
        self.assertIn(b"16 documents came back from no machine", run.stderr)
        self.check_as_here(DONE)


class KilledRuns(MachinesTest):
    def kill_in_the_middle(self, request):
        # A machine notices that nobody is there any more when its connection ends.
        self.use_one(shares_connection=False)
        self.add_clean(3 * A_PARCEL)
        run = self.start_and_wait_there(after=A_PARCEL)
        asked = len(self.places())
        wait_until(lambda: len(self.places()) > asked or self.waits_there())
        os.kill(run.pid, request)
        run.communicate(timeout=60)
        wait_until(lambda: not is_locked(self.archive.target))
        # The machine does not work on for nobody.
        wait_until(lambda: not self.waits_there())
        (self.folder / "wait").unlink()
        return run.returncode

    def waits_there(self):
        last = self.did.read_text().splitlines()[-1].split()[1]
        return pathlib.Path("/proc", last, "exe").exists()

    def test_a_killed_run_is_taken_up(self):
        self.kill_in_the_middle(signal.SIGKILL)
        done = len(self.archive.targets())
        self.assertLess(done, 3 * A_PARCEL)
        run = self.run_archive(DONE)
        self.assertIn(f"; {done} done by an earlier run".encode(), run.stdout)
        self.assertEqual(set(self.places()), {"one"})
        self.check_as_here(DONE)

    def test_a_stopped_run_is_taken_up(self):
        self.assertEqual(self.kill_in_the_middle(signal.SIGTERM), STOPPED)
        self.assert_nothing_is_left_but_pending()
        self.run_archive(DONE)
        self.check_as_here(DONE)

    def assert_nothing_is_left_but_pending(self):
        folder = (self.archive.target / REPORT).parent
        names = {path.name for path in folder.iterdir()} - {"pending.jsonl"}
        self.assertEqual(names, {"report.jsonl", "lock", "jobs"})

    def test_what_killed_runs_leave_on_a_machine_is_swept_after_a_day(self):
        one = self.use_one()
        old, young, busy, foreign = ("box-1-1", "box-2-1", "box-3-1", "box-4-1")
        for name in (old, young, busy):
            (one.home / PARCELS / name / "1/out/.coordworkspace").mkdir(parents=True)
            (one.home / PARCELS / name / "1/in").mkdir()
            plan = one.home / PARCELS / name / "1/plan"
            plan.write_text("{}")
            age = 3600 if name == young else 25 * 3600
            os.utime(plan, (plan.stat().st_mtime - age,) * 2)
        (one.home / PARCELS / foreign).mkdir()
        (one.home / PARCELS / foreign / "result").write_text("theirs")
        os.utime(one.home / PARCELS / foreign / "result", (1, 1))
        self.add_clean(1)
        with open(one.home / PARCELS / busy / "1/out/.coordworkspace/jobs", "w") as lock:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            self.run_archive(DONE)
        self.assertEqual({path.name for path in (one.home / PARCELS).iterdir()},
                         {young, busy, foreign})


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as keys:
        KEYS = pathlib.Path(keys)
        unittest.main()
