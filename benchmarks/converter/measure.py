#!/usr/bin/env python3
"""Measures the converter against Qt alone and against the same conversion in Python with lxml.

    measure.py [--converter PATH] [--bare PATH] [--rounds FACTOR] [--only SIZE...] [--no-verdict]

Prints a table of medians: processor time and peak memory for documents of 10 to 50 000 systems.
"bare" only reads, parses, prints and writes a document by Qt; it is built with the tests. The three
programs take turns, so that a busy machine is busy for all of them. Ends with status 1 when a bar
is missed. The memory of tiny runs is that of this script: Linux hands it on to what it starts.
"""

import pathlib
import sys
import tempfile

import measuring

sys.path.insert(0, str(measuring.WORKSPACES))
import workspaces  # noqa: E402

ROUNDS = {10: 301, 1000: 31, 10_000: 9, 50_000: 5}
SMALL_BAR, LARGE_BAR, LARGE_FROM = 1.05, 1.40, 1000
MEMORY_BAR = 1.00
GROWTH_BAR = 11.0


def missed_bars(systems, result):
    (seconds, memory), (bare_seconds, bare_memory) = result["converter"], result["bare"]
    bar = LARGE_BAR if systems >= LARGE_FROM else SMALL_BAR
    if seconds > bar * bare_seconds:
        yield f"{systems} systems: more than {bar} of the bare program's processor time"
    if systems >= LARGE_FROM and memory > MEMORY_BAR * bare_memory:
        yield f"{systems} systems: more memory than the bare program"
    if seconds >= result["lxml"][0]:
        yield f"{systems} systems: not faster than the script with lxml"


def print_row(systems, result):
    seconds = {name: result[name][0] for name in result}
    memory = {name: result[name][1] / 1024 for name in result}
    print(
        f"{systems:8} "
        + " ".join(f"{seconds[name] * 1000:9.1f} ms" for name in result)
        + f" {seconds['converter'] / seconds['bare']:8.2f} {seconds['converter'] / seconds['lxml']:8.2f}"
        + " ".join(f"{memory[name]:9.1f} MiB" for name in result)
        + f" {memory['converter'] / memory['bare']:8.2f}",
        flush=True,
    )


def main():
    parser = measuring.option_parser(__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=float, default=1.0, help="times as many rounds as usual")
    parser.add_argument("--only", type=int, nargs="*", choices=list(ROUNDS), default=list(ROUNDS))
    options = parser.parse_args()

    script = str(pathlib.Path(__file__).with_name("convert_with_lxml.py"))
    missed = []
    times = {}
    print(" systems    converter         bare         lxml   / bare   / lxml"
          "    converter           bare           lxml   / bare")  # fmt: skip
    with tempfile.TemporaryDirectory() as folder:
        for systems in options.only:
            path = measuring.make_document(folder, workspaces.workspace, systems)
            programs = {
                "converter": [str(options.converter), path],
                "bare": [str(options.bare), path],
                # lxml comes with the system's own Python, which need not be the first one.
                "lxml": ["/usr/bin/python3", script, path],
            }
            rounds = max(1, round(ROUNDS[systems] * options.rounds))
            result = measuring.medians(programs, rounds)
            print_row(systems, result)
            missed += missed_bars(systems, result)
            times[systems] = result["converter"][0]
    for smaller, larger in ((1000, 10_000), (10_000, 50_000)):
        if smaller in times and larger in times:
            growth = times[larger] / times[smaller]
            print(f"{smaller} to {larger} systems: {growth:.1f} times the time")
            if growth > GROWTH_BAR * (larger / smaller) / 10:
                missed.append(f"{smaller} to {larger} systems: {growth:.1f} times the time")
    for line in missed:
        print(line)
    return 1 if missed and not options.no_verdict else 0


if __name__ == "__main__":
    sys.exit(main())
