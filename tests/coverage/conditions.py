#!/usr/bin/env python3
"""Prints in how many conditions each outcome was decided by that condition alone, a part a line.

    conditions.py COVERAGE

COVERAGE is what `llvm-cov export` writes of the modified condition/decision coverage. Ends with
status 1 when a part has less than 95 %, or a condition that did not decide has no reason in
undecided.txt.
"""

import json
import pathlib
import sys

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(PROJECT / "tests"))
import places  # noqa: E402
import reasons  # noqa: E402

BAR = 95.0
CONVERSION = "FileConverters/CoordinationWorkspaceSection/"
PARTS = {
    "the conversion": tuple(
        CONVERSION + name
        for name in ("main.cpp", "ProcessSetup.cpp", "StandardInput.cpp", "Utf8Output.cpp",
                     "ConversionSteps.cpp", "CoordWorkSpaceSectionConverter0_3.cpp")
    ),
    "the keys": ("ZelMain/FrequencyCompatibility/shared/CompatKey.*",),
    "frequency texts": ("ZelMain/Frequency*",),
    "the inspector's verdicts": tuple(
        f"{CONVERSION}inspect/{name}"
        for name in ("*Inspection.*", "ExpectedDocument.*", "Verification.*", "DocumentPlaces.*",
                     "DocumentTree.*", "Finding*.*", "Report.*", "inspect_main.cpp")
    ),
    "the log service": ("ZelMain/Diagnostics/*",),
}  # fmt: skip


def undecided(entry):
    """(source, number, place) of the conditions in a file that did not decide."""
    path = pathlib.Path(entry["filename"]).relative_to(PROJECT)
    told = places.places((PROJECT / path).read_text(encoding="utf-8").splitlines())
    for line, *_, decided in entry["mcdc_records"]:
        for number, has_decided in enumerate(decided, 1):
            if not has_decided:
                yield str(path), str(number), told[line]


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["data"][0]["files"]
    listed = reasons.reasons(pathlib.Path(__file__).with_name("undecided.txt"))
    status = 0
    for part, patterns in PARTS.items():
        entries = []
        for pattern in patterns:
            matching = [entry for entry in files if pathlib.PurePath(entry["filename"]).match(pattern)]
            if not matching:
                print(f"no such source: {pattern}")
                status = 1
            entries += matching
        count = sum(entry["summary"]["mcdc"]["count"] for entry in entries)
        covered = sum(entry["summary"]["mcdc"]["covered"] for entry in entries)
        share = 100 * covered / count if count else 0
        print(f"conditions: {part}: {covered} of {count}, {share:.1f} %")
        if share < BAR:
            status = 1
        found = {condition for entry in entries for condition in undecided(entry)}
        for path, number, place in sorted(found - listed.keys()):
            print(f"no reason: {path}: condition {number} of {place}")
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
