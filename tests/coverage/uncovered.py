#!/usr/bin/env python3
"""Holds the lines that no test executes against the list of those that have a reason.

    uncovered.py COVERAGE

COVERAGE is what `gcovr --json` writes. Ends with status 1 when a line has no reason in uncovered.txt.
Some lines of that list are executed in some runs: threads meet there.
"""

import json
import pathlib
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(PROJECT / "tests"))
import places  # noqa: E402
import reasons  # noqa: E402


def places_of(source):
    """The number of each line, by (source, place)."""
    lines = (PROJECT / source).read_text().splitlines()
    return {(source, place): number for number, place in places.places(lines).items()}


def uncovered(coverage):
    """(source, number)."""
    return {
        (file["file"], line["line_number"])
        for file in coverage["files"]
        for line in file["lines"]
        if line["count"] == 0 and not line.get("gcovr/noncode")
    }


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        never = uncovered(json.load(file))
    listed = reasons.reasons(pathlib.Path(__file__).with_name("uncovered.txt"), tells_what=False)
    known = {}
    for source in sorted({source for source, _ in never}):
        known.update(places_of(source))
    found = {(path, place) for (path, place), number in known.items() if (path, number) in never}
    wrong = [
        f"{path}:{known[path, place]}: never executed: {place}"
        for path, place in sorted(found - listed.keys())
    ]
    reasoned = len(found & listed.keys())
    print(f"coverage: {len(found)} lines never executed, {reasoned} of them with a reason")
    print(*wrong, sep="\n", end="\n" if wrong else "")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
