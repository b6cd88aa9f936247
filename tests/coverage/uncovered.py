#!/usr/bin/env python3
"""Holds the lines that no test executes against the list of those that have a reason.

    uncovered.py COVERAGE

COVERAGE is what `gcovr --json` writes. Ends with status 1 when a line has no reason in uncovered.txt,
or when a line of that list is gone. Some of its lines are executed in some runs: threads meet there.
"""

import json
import pathlib
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent


def reasons():
    """(source, line's text). Lines of the list: source | the line as it stands | reason."""
    listed = set()
    for line in pathlib.Path(__file__).with_name("uncovered.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            source, rest = line.split(" | ", 1)
            text, _reason = rest.rsplit(" | ", 1)
            listed.add((source, text))
    return listed


def uncovered(coverage):
    found = {}
    for file in coverage["files"]:
        source = (PROJECT / file["file"]).read_text().splitlines()
        for line in file["lines"]:
            if line["count"] == 0 and not line.get("gcovr/noncode"):
                number = line["line_number"]
                found[(file["file"], source[number - 1].strip())] = number
    return found


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        found = uncovered(json.load(file))
    listed = reasons()
    wrong = [f"{path}:{found[path, text]}: never executed: {text}" for path, text in sorted(found.keys() - listed)]
    wrong += [
        f"{path}: a line that is gone has a reason: {text}"
        for path, text in sorted(listed)
        if text not in map(str.strip, (PROJECT / path).read_text().splitlines())
    ]
    print(f"coverage: {len(found)} lines never executed, {len(found.keys() & listed)} of them with a reason")
    print(*wrong, sep="\n", end="\n" if wrong else "")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
