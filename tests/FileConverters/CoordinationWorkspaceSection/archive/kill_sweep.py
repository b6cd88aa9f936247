#!/usr/bin/env python3
"""Kills runs of coordworkspace-convert-archive, and lets the next run take them up.

usage: kill_sweep.py PROGRAM_FOLDER [--sample] [--kills N] [--seed S]

First the worker, then the front end is killed before each of its system calls in turn, on an
archive of one document: without a target, and with the target of an earlier run. Afterwards the target has
to be the old one, absent, or whole, and the next run has to end as if nothing had happened. Then
runs over an archive of every kind of document are killed at random moments while documents come, go
and change, and the last run has to leave the same bytes as one clean run.

--sample  kills before some of the system calls only, and a few times at random
"""

import argparse
import collections
import itertools
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from archives import (BROKEN, CLEAN, CONVERTER, LOSSY, NEWER, NO_UUID, OLD, PROGRAM, SECONDS_A_RUN,
                      STRANGER, Archive, contents, is_locked, worker_of)

CHANGED = CLEAN.replace("Vocal", "Drums")
DOCUMENT = "show/one.xml"
BUSY = 75


def converted(programs, file):
    return subprocess.run([programs / CONVERTER, file], capture_output=True, check=True,
                          timeout=60).stdout


def traced(trace, rules, arguments):
    return subprocess.run(
        ["strace", "-o", str(trace), *rules, *map(str, arguments)],
        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        check=False, timeout=SECONDS_A_RUN)  # fmt: skip


def calls_of(arguments, folder):
    """Its system calls in their order, each with its number among those of its name."""
    assert traced(folder / "trace", [], arguments).returncode == 0
    numbers = collections.Counter()
    calls = []
    for name in re.findall(r"^(\w+)\(", (folder / "trace").read_text(), re.MULTILINE):
        numbers[name] += 1
        calls.append((name, numbers[name]))
    return calls[1:]  # without the one that starts it


def killed_before(call, arguments):
    """Runs it until that call. Tells whether it came so far."""
    name, number = call
    run = traced("/dev/null", ["-e", f"inject={name}:signal=KILL:when={number}"], arguments)
    return run.returncode in (-signal.SIGKILL, 128 + signal.SIGKILL)


def processes_of(archive):
    """Those that have its folder among their arguments."""
    found = []
    for arguments in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            if bytes(archive.folder) in arguments.read_bytes():
                found.append(arguments.parent.name)
        except OSError:
            pass  # it has ended
    return found


def wait_for_jobs(archive):
    """Until the last job of a killed run has ended, and nothing of it is left."""
    end = time.monotonic() + SECONDS_A_RUN
    while is_locked(archive.target) or processes_of(archive):
        assert time.monotonic() < end, f"left of a killed run: {processes_of(archive)}"
        time.sleep(0.01)


def run_when_free(archive):
    """What is left of a killed run may begin a job yet, before it hears that it is to end."""
    end = time.monotonic() + SECONDS_A_RUN
    while (run := archive.run()).returncode == BUSY:
        assert time.monotonic() < end, "the jobs of a killed run begin for ever"
        wait_for_jobs(archive)
    return run


def saved_plan(archive, programs, folder):
    """The arguments of the worker's only job, with a plan that outlasts the run."""
    front = folder / "front/bin"
    front.mkdir(parents=True, exist_ok=True)
    for name in (PROGRAM, CONVERTER):
        shutil.copy(programs / name, front / name)
    saved = folder / "plan.jsonl"
    worker = front / worker_of(programs)
    worker.parent.mkdir(parents=True, exist_ok=True)
    worker.write_text(f'#!/bin/sh\ncp "$1" {saved}\necho "$2 $3" >{folder}/job\nexit 1\n')
    worker.chmod(0o755)
    subprocess.run([front / PROGRAM, archive.source, archive.target], capture_output=True,
                   check=False, timeout=SECONDS_A_RUN)
    (archive.target / ".coordworkspace/report.jsonl").unlink()
    return [saved, *(folder / "job").read_text().split()]


class OneDocument:
    """An archive of one document, before each kill as it was."""

    def __init__(self, folder, programs, has_old_target):
        self.programs = programs
        self.archive = Archive(folder, programs / PROGRAM)
        self.old = None
        document = self.archive.add(DOCUMENT, CLEAN)
        if has_old_target:
            assert self.archive.run().returncode == 0
            self.old = (self.archive.target / DOCUMENT).read_bytes()
            self.archive.add(DOCUMENT, CHANGED)
            shutil.copytree(self.archive.target, folder / "before")
            job = saved_plan(self.archive, programs, folder)
        else:
            job = saved_plan(self.archive, programs, folder)
            shutil.copytree(self.archive.target, folder / "before")
        self.whole = converted(programs, document)
        self.before = folder / "before"
        self.commands = {"worker": [programs / worker_of(programs), *job],
                         "front end": self.archive.arguments()}

    def restore(self):
        shutil.rmtree(self.archive.target)
        shutil.copytree(self.before, self.archive.target)

    def sweep(self, role, step):
        """Kills before every step-th call, and those that change what others see."""
        self.restore()
        calls = calls_of(self.commands[role], self.before.parent)
        chosen = [call for place, call in enumerate(calls) if place % step == 0
                  or re.match("rename|unlink|fsync|fchmod|utimens|mkdir", call[0])]
        kills = 0
        for call in chosen:
            self.restore()
            when = f"{role} killed before its call {call}"
            kills += killed_before(call, self.commands[role])
            wait_for_jobs(self.archive)
            self.check_killed(when)
            self.check_taken_up(when)
        # How often the front end asks whether there is news differs from run to run.
        assert kills > len(chosen) * 0.7, f"{role}: {kills} of {len(chosen)}"
        return kills

    def check_killed(self, when):
        target = self.archive.target / DOCUMENT
        data = target.read_bytes() if target.exists() else None
        assert data in (self.old, self.whole), f"{when}: the target is neither old nor whole"

    def check_taken_up(self, when):
        run = run_when_free(self.archive)
        assert run.returncode == 0, f"{when}: {run}"
        targets = self.archive.targets()
        assert set(targets) == {DOCUMENT}, f"{when}: {set(targets)}"
        assert targets[DOCUMENT][0] == self.whole, f"{when}: the target is not whole"
        assert targets[DOCUMENT][2] == (self.archive.source / DOCUMENT).stat().st_mtime_ns, when
        assert self.archive.outcomes() == {DOCUMENT: ("converted", None)}, when
        assert run.stderr == b"", f"{when}: {run.stderr}"


def sweep_system_calls(programs, is_sample):
    for role, has_old_target in itertools.product(("worker", "front end"), (False, True)):
        with tempfile.TemporaryDirectory() as folder:
            step = 100 if is_sample else 1
            kills = OneDocument(pathlib.Path(folder), programs, has_old_target).sweep(role, step)
            old = "with" if has_old_target else "without"
            print(f"{role}, {old} an old target: killed before {kills} system calls", flush=True)


KINDS = (CLEAN, CHANGED, LOSSY, OLD, NEWER, NO_UUID, BROKEN, STRANGER, "", "notes")


def change_something(archive, choose):
    """One document comes, goes or changes."""
    documents = [path for path in contents(archive.source)]
    what = choose.random()
    if what < 0.4:
        archive.add(f"{choose.randrange(10)}/{choose.random()}.xml", choose.choice(KINDS))
    elif what < 0.6:
        (archive.source / choose.choice(documents)).unlink()
    else:
        archive.add(choose.choice(documents), choose.choice(KINDS))


def victims_of(run):
    """The processes of a run by now, the front end first."""
    found = [run.pid]
    for process in found:
        try:
            children = pathlib.Path(f"/proc/{process}/task/{process}/children").read_text()
        except OSError:
            continue
        found += map(int, children.split())
    return found


def kill_at_random(archive, choose):
    """Whether the run was alive yet."""
    run = subprocess.Popen(archive.arguments(), stdin=subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        run.wait(choose.uniform(0, 1.5))
    except subprocess.TimeoutExpired:
        pass
    was_alive = run.poll() is None
    victims = victims_of(run) if was_alive else []
    # All of it, as a machine does that is switched off, or one process.
    for victim in victims if choose.random() < 0.3 else victims and [choose.choice(victims)]:
        try:
            os.kill(victim, signal.SIGKILL)
        except ProcessLookupError:
            pass
    run.wait(SECONDS_A_RUN)
    wait_for_jobs(archive)
    return was_alive


def check_against_clean_run(archive, folder, programs):
    # A process that was killed alone may have left a document failed, which the next run takes up.
    run = run_when_free(archive)
    clean = Archive(folder, programs / PROGRAM)
    clean.source.rmdir()
    clean.source = archive.source
    expected = clean.run()
    assert run.returncode == expected.returncode, (run, expected)
    records = clean.records()
    assert not records.keys() - archive.records().keys()
    targets = archive.targets()
    for path, record in archive.records().items():
        # A clean run knows nothing of documents that are gone, or were sound once.
        if path not in records or "earlier" in record:
            targets.pop(path, None)
    # A document that was only touched is the same one: the bytes count, not the time.
    ours, theirs = ({path: data for path, (data, _, _) in found.items()}
                    for found in (targets, clean.targets()))
    assert ours == theirs, [path for path in ours.keys() | theirs.keys()
                            if ours.get(path) != theirs.get(path)]
    for path, record in archive.records().items():
        if path in records:
            for other in (record, records[path]):
                other["seconds"] = 0
                other.pop("earlier", None)
            assert record == records[path], (record, records[path])


def kill_randomly(programs, kills, seed):
    choose = random.Random(seed)
    with tempfile.TemporaryDirectory() as folder:
        archive = Archive(folder, programs / PROGRAM)
        for number in range(150):
            archive.add(f"{number % 7}/{number}.xml", KINDS[number % len(KINDS)])
        done = 0
        while done < kills:
            done += kill_at_random(archive, choose)
            change_something(archive, choose)
            for file, (data, _, _) in archive.targets().items():
                assert file.endswith(".part") or data.endswith(b"</coordinated_data_root>\n"), file
        clean = pathlib.Path(folder, "clean")
        clean.mkdir()
        check_against_clean_run(archive, clean, programs)
    print(f"killed {kills} times at random with the seed {seed}", flush=True)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("programs", type=lambda path: pathlib.Path(path).absolute())
    parser.add_argument("--sample", action="store_true")
    parser.add_argument("--kills", type=int)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    kills = options.kills or (4 if options.sample else 100)
    kill_randomly(options.programs, kills, options.seed)
    sweep_system_calls(options.programs, options.sample)
    return 0


if __name__ == "__main__":
    sys.exit(main())
