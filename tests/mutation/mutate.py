#!/usr/bin/python3
"""Makes small mistakes in the project's sources, one at a time, and runs the tests of that part.

    mutate.py [--count N] [--seed S] [--only PATTERN...] [--jobs N] [--folder FOLDER] [--list]

A mistake that the tests let pass is either shown to be none in no_mistakes.txt, with the reason, or
calls for a test. Ends with status 1 when fewer than 95 of 100 mistakes were caught, or one that
passed is not explained.

Mistakes are made in sources; what headers decide is little, and not tried.

Works on copies below FOLDER (build/mutation), one for each job; the project's own files stay as
they are. Mistakes that the compiler refuses are replaced by others.
"""

import argparse
import collections
import concurrent.futures
import fnmatch
import hashlib
import os
import pathlib
import subprocess
import sys
import threading
import time

import mistakes
import suites
from working_copy import COMPILER, WorkingCopy

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(PROJECT / "tests"))
import reasons  # noqa: E402

BAR = 0.95


def sources():
    names = subprocess.run(
        ["git", "ls-files", "-z", "ZelMain/*.cpp", "FileConverters/*.cpp"],
        cwd=PROJECT, check=True, stdout=subprocess.PIPE,
    ).stdout.decode()  # fmt: skip
    named = [name for name in names.split("\0") if name]
    without = [name for name in named if not suites.suite_of(name)]
    if without:
        raise RuntimeError(f"no tests are named for {without}")
    return named


def all_mistakes(copy, patterns):
    """Found in the copy's sources, which are the project's."""
    arguments = copy.compile_arguments()
    found = []
    for name in sources():
        if any(fnmatch.fnmatch(name, pattern) for pattern in patterns):
            found += mistakes.Finder(copy.source, name, arguments[name]).found
    return sorted(found)


def drawn(found, seed):
    """In an order of chance that a change of one source changes only for the mistakes there, and a
    move to another folder for none."""
    seen = collections.Counter()
    order = []
    for mistake in found:
        told = f"{seed} {pathlib.PurePath(mistake.path).name} {mistake.kind} {mistake.before}"
        seen[told] += 1  # the same change can be made twice in a line, and in lines that are equal
        order.append((hashlib.sha256(f"{told} {seen[told]}".encode()).digest(), mistake))
    return [mistake for _, mistake in sorted(order)]


class Trial:
    """Tries mistakes until as many as wanted were made, each copy in a thread of its own."""

    def __init__(self, order, wanted):
        # Of two mistakes in a row in one source only the second is compiled anew.
        self._next = collections.deque(sorted(order[:wanted]))
        self._spare = collections.deque(order[wanted:])  # for those that the compiler refuses
        self._wanted = wanted
        self._lock = threading.Lock()
        self._known = reasons.reasons(pathlib.Path(__file__).with_name("no_mistakes.txt"))
        self.caught = 0
        self.missed = []
        self.harmless = 0

    @property
    def tried(self):
        return self.caught + self.harmless + len(self.missed)

    def run(self, copies):
        with concurrent.futures.ThreadPoolExecutor(len(copies)) as pool:
            # Half of the copies begin at the end, so that few tests are built in all of them.
            loops = [pool.submit(self._loop, copy, number % 2) for number, copy in enumerate(copies)]
            for loop in concurrent.futures.as_completed(loops):
                loop.result()

    def _loop(self, copy, from_end):
        while (mistake := self._take(from_end)) is not None:
            suite = suites.suite_of(mistake.path)
            copy.prepare(suite)
            start = time.monotonic()
            verdict = copy.verdict(mistake, suite)
            with self._lock:
                self._note(mistake, verdict, time.monotonic() - start)
        copy.confirm()

    def _take(self, from_end):
        with self._lock:
            if self._next:
                return self._next.pop() if from_end else self._next.popleft()
            return self._spare.popleft() if self._spare and self.tried < self._wanted else None

    def _note(self, mistake, verdict, seconds):
        if verdict == COMPILER:
            return
        if verdict is not None:
            self.caught += 1
        elif (mistake.path, mistake.kind, mistake.place) in self._known:
            self.harmless += 1
            verdict = "is no mistake"
        else:
            self.missed.append(mistake)
        print(f"{verdict or 'MISSED'} ({seconds:.0f} s)  {mistake}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=600, help="how many mistakes (600)")
    parser.add_argument("--seed", type=int, default=1, help="draws other mistakes")
    parser.add_argument("--only", nargs="*", default=["*"], help="sources, with wildcards")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="working copies")
    parser.add_argument("--folder", type=pathlib.Path, default=PROJECT / "build/mutation")
    parser.add_argument("--list", action="store_true", help="only print the mistakes there are")
    options = parser.parse_args()

    copies = [WorkingCopy(PROJECT, options.folder / str(number)) for number in range(options.jobs)]
    found = all_mistakes(copies[0], options.only)
    if options.list:
        print(*found, sep="\n")
        return 0
    start = time.monotonic()
    trial = Trial(drawn(found, options.seed), options.count)
    trial.run(copies)

    real = trial.caught + len(trial.missed)
    share = trial.caught / real if real else 0
    print(
        f"mutation: {trial.tried} of {len(found)} mistakes made, {trial.caught} caught, "
        f"{trial.harmless} are none, {len(trial.missed)} missed: {100 * share:.1f} % caught, "
        f"in {(time.monotonic() - start) / 60:.0f} minutes"
    )
    for mistake in trial.missed:
        print(f"missed: {mistake}")
    return 0 if share >= BAR and not trial.missed and trial.tried >= options.count else 1


if __name__ == "__main__":
    sys.exit(main())
