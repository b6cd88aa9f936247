#!/usr/bin/env python3
"""Compiles each header of the project by itself, and twice in a row: it needs nothing before it, and
minds no second time.

    headers.py DATABASE

A header is compiled like the source of the compilation database that stands closest to it. Ends with
status 1 when one does not compile.
"""

import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent


def headers():
    names = subprocess.run(
        ["git", "ls-files", "-z", "*.h"], cwd=PROJECT, check=True, stdout=subprocess.PIPE
    ).stdout.decode()
    return [PROJECT / name for name in names.split("\0") if name]


def closest(header, entries):
    return max(entries, key=lambda entry: len(os.path.commonpath([header, entry["file"]])))


def complaints(header, entry):
    """What the compiler says of one header; None when it takes it."""
    words = shlex.split(entry["command"])
    words = words[: words.index("-o")] + ["-fsyntax-only", "-x", "c++", "-"]
    run = subprocess.run(
        words, cwd=entry["directory"], input=f'#include "{header}"\n' * 2, text=True,
        stderr=subprocess.PIPE, check=False,
    )  # fmt: skip
    return f"{header}: {run.stderr}" if run.stderr or run.returncode != 0 else None


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        entries = json.load(file)
    found = headers()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        told = list(pool.map(lambda header: complaints(header, closest(header, entries)), found))
    for text in filter(None, told):
        print(text)
    print(f"{len(found)} headers compiled by themselves")
    return 1 if any(told) or not found else 0


if __name__ == "__main__":
    sys.exit(main())
