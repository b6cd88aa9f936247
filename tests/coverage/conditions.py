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
                     "DocumentTree.*", "Finding*.*", "Report.*")
    ),
    "the log service": ("ZelMain/Diagnostics/*",),
}  # fmt: skip


def explained():
    """(source, line, number) of what undecided.txt gives a reason for."""
    lines = pathlib.Path(__file__).with_name("undecided.txt").read_text(encoding="utf-8").splitlines()
    split = [line.rsplit(" | ", 2) for line in lines if line and not line.startswith("#")]
    return {(*place.split(" | ", 1), int(number)) for place, number, _reason in split}


def undecided(entry):
    """The same of the conditions in a file that did not decide."""
    path = pathlib.Path(entry["filename"]).relative_to(PROJECT)
    lines = (PROJECT / path).read_text(encoding="utf-8").splitlines()
    for line, *_, decided in entry["mcdc_records"]:
        for number, has_decided in enumerate(decided, 1):
            if not has_decided:
                yield str(path), lines[line - 1].strip(), number


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["data"][0]["files"]
    reasons = explained()
    status = 0
    for part, patterns in PARTS.items():
        entries = [
            entry
            for entry in files
            if any(pathlib.PurePath(entry["filename"]).match(pattern) for pattern in patterns)
        ]
        count = sum(entry["summary"]["mcdc"]["count"] for entry in entries)
        covered = sum(entry["summary"]["mcdc"]["covered"] for entry in entries)
        share = 100 * covered / count if count else 0
        print(f"conditions: {part}: {covered} of {count}, {share:.1f} %")
        if share < BAR:
            status = 1
        for condition in {found for entry in entries for found in undecided(entry)} - reasons:
            path, line, number = condition
            print(f"no reason: {path}: condition {number} of {line}")
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
