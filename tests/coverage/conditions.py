#!/usr/bin/env python3
"""Prints in how many conditions each outcome was decided by that condition alone, a part a line.

    conditions.py COVERAGE

COVERAGE is what `llvm-cov export` writes of the modified condition/decision coverage. Ends with
status 1 when a part has less than 95 %.
"""

import json
import pathlib
import sys

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


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        files = json.load(file)["data"][0]["files"]
    status = 0
    for part, patterns in PARTS.items():
        summaries = [
            entry["summary"]["mcdc"]
            for entry in files
            if any(pathlib.PurePath(entry["filename"]).match(pattern) for pattern in patterns)
        ]
        count = sum(summary["count"] for summary in summaries)
        covered = sum(summary["covered"] for summary in summaries)
        share = 100 * covered / count if count else 0
        print(f"conditions: {part}: {covered} of {count}, {share:.1f} %")
        if share < BAR:
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
