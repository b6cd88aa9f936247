#!/usr/bin/env python3
"""Fails where a list of reasons names a place that is gone from the sources, or gives no reason.

usage: reasons_test.py PROJECT_FOLDER
"""

import functools
import pathlib
import sys

PROJECT = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(PROJECT / "tests"))
import places  # noqa: E402
import reasons  # noqa: E402

LISTS = {  # whether they tell what it is about a place
    "tests/coverage/uncovered.txt": False,
    "tests/coverage/undecided.txt": True,
    "tests/mutation/no_mistakes.txt": True,
}


@functools.lru_cache(maxsize=None)
def places_of(source):
    file = PROJECT / source
    if not file.is_file():
        return frozenset()
    return frozenset(places.places(file.read_text(encoding="utf-8").splitlines()).values())


def main():
    wrong = []
    for name, tells_what in LISTS.items():
        listed = reasons.reasons(PROJECT / name, tells_what)
        if not listed:
            wrong.append(f"{name}: nothing is listed")
        for (source, *_, place), reason in listed.items():
            if place not in places_of(source):
                wrong.append(f"{name}: gone from {source}, or there several times: {place}")
            if not reason.strip():
                wrong.append(f"{name}: no reason for a place in {source}: {place}")
    print(*wrong, sep="\n", end="\n" if wrong else "")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
