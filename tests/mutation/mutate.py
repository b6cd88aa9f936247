#!/usr/bin/python3
"""Makes small mistakes in the project's sources, one at a time, and runs the tests of that part.

    mutate.py [--count N] [--seed S] [--only PATTERN...] [--jobs N] [--folder FOLDER] [--list]

A mistake that the tests let pass is either shown to be none in no_mistakes.txt, with the reason, or
calls for a test. Ends with status 1 when fewer than 95 of 100 mistakes were caught, or one that
passed is not explained.

Works on copies below FOLDER (build/mutation), one for each job; the project's own files stay as
they are. Mistakes that the compiler refuses are replaced by others.
"""

import argparse
import concurrent.futures
import fnmatch
import os
import pathlib
import queue
import random
import subprocess
import sys
import time

import mistakes
import suites
from working_copy import COMPILER, WorkingCopy

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
BAR = 0.95


def no_mistakes():
    """(path, line's text, kind) of what is no mistake. Lines: path | kind | text | reason."""
    known = set()
    for line in pathlib.Path(__file__).with_name("no_mistakes.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            path, kind, rest = line.split(" | ", 2)
            text, _reason = rest.rsplit(" | ", 1)
            known.add((path, text, kind))
    return known


def sources():
    names = subprocess.run(
        ["git", "ls-files", "-z", "ZelMain/*.cpp", "FileConverters/*.cpp"],
        cwd=PROJECT, check=True, stdout=subprocess.PIPE,
    ).stdout.decode()  # fmt: skip
    return [name for name in names.split("\0") if name and suites.suite_of(name)]


def all_mistakes(copy, patterns):
    """Found in the copy's sources, which are the project's."""
    arguments = copy.compile_arguments()
    found = []
    for name in sources():
        if any(fnmatch.fnmatch(name, pattern) for pattern in patterns):
            found += mistakes.Finder(copy.source, name, arguments[name]).found
    return sorted(found)


class Trial:
    """Tries mistakes, each in a working copy that nobody else uses meanwhile."""

    def __init__(self, copies, count):
        self._copies = queue.SimpleQueue()
        for copy in copies:
            self._copies.put(copy)
        self._wanted = count
        self.caught = 0
        self.missed = []
        self.harmless = 0
        self._known = no_mistakes()

    def attempt(self, mistake):
        copy = self._copies.get()
        try:
            suite = suites.suite_of(mistake.path)
            copy.prepare(suite)
            start = time.monotonic()
            return mistake, copy.verdict(mistake, suite), time.monotonic() - start
        finally:
            self._copies.put(copy)

    def note(self, mistake, verdict, seconds):
        if verdict == COMPILER:
            return
        if verdict is not None:
            self.caught += 1
        elif (mistake.path, mistake.before, mistake.kind) in self._known:
            self.harmless += 1
            verdict = "is no mistake"
        else:
            self.missed.append(mistake)
        print(f"{verdict or 'MISSED'} ({seconds:.0f} s)  {mistake}", flush=True)

    @property
    def tried(self):
        return self.caught + self.harmless + len(self.missed)

    @property
    def done(self):
        return self.tried >= self._wanted


def run(trial, chosen, jobs):
    chosen = iter(chosen)
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        running = {pool.submit(trial.attempt, mistake) for mistake, _ in zip(chosen, range(jobs))}
        while running:
            ended, running = concurrent.futures.wait(
                running, return_when=concurrent.futures.FIRST_COMPLETED
            )
            for future in ended:
                trial.note(*future.result())
                mistake = None if trial.done else next(chosen, None)
                if mistake is not None:
                    running.add(pool.submit(trial.attempt, mistake))


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
    random.Random(options.seed).shuffle(found)
    trial = Trial(copies, options.count)
    run(trial, found, options.jobs)

    real = trial.caught + len(trial.missed)
    share = trial.caught / real if real else 0
    print(
        f"mutation: {trial.tried} of {len(found)} mistakes made, {trial.caught} caught, "
        f"{trial.harmless} are none, {len(trial.missed)} missed: {100 * share:.1f} % caught"
    )
    for mistake in trial.missed:
        print(f"missed: {mistake}")
    return 0 if share >= BAR and not trial.missed else 1


if __name__ == "__main__":
    sys.exit(main())
