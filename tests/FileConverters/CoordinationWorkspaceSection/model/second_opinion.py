#!/usr/bin/env python3
"""Runs the converter and the model on seeded random documents and tells where they differ.

    second_opinion.py CONVERTER [--count N] [--seed FIRST] [--keep FOLDER]

Ends with status 1 when they differ anywhere; the documents concerned are kept in FOLDER.
"""

import argparse
import collections
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile

import conversion
import judge
import random_documents
from conversion import Outcome

SECONDS_A_RUN = 60


def run_converter(converter, data, from_file, folder):
    arguments = [converter]
    if from_file:
        path = pathlib.Path(folder, "document.xml")
        path.write_bytes(data)
        arguments.append(str(path))
    return subprocess.run(
        arguments, input=b"" if from_file else data, capture_output=True, timeout=SECONDS_A_RUN
    )


def outcome_of(run):
    """The outcome that the converter showed, or None when it showed none that it may show."""
    shown = (run.returncode, run.stderr, run.stdout != b"")
    if shown == (0, b"\nPROGRESS", True):
        return Outcome.PROGRESS
    if shown == (1, b"\nFAILURE", False):
        return Outcome.FAILURE
    if shown == (1, b"", False):
        return Outcome.SILENCE
    aborted = run.returncode == -signal.SIGABRT and run.stdout == b""
    if aborted and b"PROGRESS" not in run.stderr and b"FAILURE" not in run.stderr:
        return Outcome.ABORT
    return None


def difference(run, expected, document):
    """How the run differs from what the model expects, or None."""
    if outcome_of(run) is not expected:
        return f"expected {expected.value}; got status {run.returncode}, {run.stderr[:200]!r}"
    if expected is not Outcome.PROGRESS:
        return None
    return judge.difference(document, run.stdout.decode("utf-8"))


def carries_profiles(document):
    """Whether a converted document is one of those that show the joins at work."""
    settings = '<compatibility_profile_settings version="1.0" count="'
    return document is not None and re.search(settings + "[1-9]", document) is not None


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("converter", type=os.path.abspath)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", type=pathlib.Path, help="folder for documents that differ")
    options = parser.parse_args()

    outcomes = collections.Counter()
    with_entries = 0
    differences = 0
    with tempfile.TemporaryDirectory() as folder:
        for seed in range(options.seed, options.seed + options.count):
            data, from_file = random_documents.make(seed)
            expected, document = conversion.run(data, from_file)
            outcomes[expected] += 1
            with_entries += carries_profiles(document)
            run = run_converter(options.converter, data, from_file, folder)
            found = difference(run, expected, document)
            if found:
                differences += 1
                print(f"seed {seed} ({'file' if from_file else 'standard input'}): {found}")
                if options.keep:
                    options.keep.mkdir(parents=True, exist_ok=True)
                    options.keep.joinpath(f"{seed}.xml").write_bytes(data)
    for outcome, count in outcomes.items():
        print(f"{count:7} documents end in {outcome.value}")
    print(f"{with_entries:7} converted documents carry profiles in the new element")
    print(f"{options.count} documents, {differences} differences")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
