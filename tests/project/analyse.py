#!/usr/bin/env python3
"""Lets gcc's analyser read the sources of a compilation database.

    analyse.py DATABASE PATTERN [OPTION...]

PATTERN, a regular expression, chooses the sources by their paths below the working folder; the
options go to the compiler. Ends with status 1 when it warns.
"""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys


def analysed(entry, options):
    """What the compiler says of one source; None when it finds nothing."""
    words = shlex.split(entry["command"])
    words = words[: words.index("-o")]
    words = [word for word in words if not word.startswith("-flto") and word != "-ffat-lto-objects"]
    words += ["-O1", "-fanalyzer", "-Werror", "-fdiagnostics-path-format=none", *options, "-c", entry["file"], "-o", os.devnull]
    run = subprocess.run(words, cwd=entry["directory"], stderr=subprocess.PIPE, check=False, text=True)
    return f"{entry['file']}: {run.stderr}" if run.stderr or run.returncode != 0 else None


def main():
    database, pattern, *options = sys.argv[1:]
    with open(database, encoding="utf-8") as file:
        entries = [e for e in json.load(file) if re.match(pattern, os.path.relpath(e["file"]))]
    found = False
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for text in pool.map(lambda entry: analysed(entry, options), entries):
            if text:
                found = True
                print(text, flush=True)
    print(f"  {len(entries)} sources read")
    return 1 if found or not entries else 0


if __name__ == "__main__":
    sys.exit(main())
