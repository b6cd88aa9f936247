#!/usr/bin/env python3
"""Fails on an include that goes against the arrows between the folders.

usage: include_arrows_test.py PROJECT_FOLDER
"""

import pathlib
import re
import sys

CONVERTER = "FileConverters/CoordinationWorkspaceSection"
INSPECTOR = f"{CONVERTER}/inspect"
ARCHIVE = f"{CONVERTER}/archive"
FILES = f"{ARCHIVE}/files"
PROCESSES = f"{ARCHIVE}/processes"
JOBS = f"{ARCHIVE}/jobs"
REPORT = f"{ARCHIVE}/report"
PAGE = f"{ARCHIVE}/page"
WORKER = f"{ARCHIVE}/worker"
MACHINES = f"{ARCHIVE}/machines"
COMPATIBILITY = "ZelMain/FrequencyCompatibility"
RECORDS = "ZelMain/FrequencyCompatibility/shared"

# Which other folders a folder's files may include from. Files directly in ZelMain are rooms of
# their own: Frequency and DirectoryMemory know nothing of each other.
ARROWS = {
    CONVERTER: {COMPATIBILITY, RECORDS, "ZelMain/ImportExport"},
    INSPECTOR: {CONVERTER, COMPATIBILITY, RECORDS, "ZelMain/ImportExport"},
    FILES: {INSPECTOR},
    PROCESSES: {FILES},
    JOBS: {FILES, PROCESSES, INSPECTOR},
    REPORT: {FILES, JOBS, INSPECTOR},
    PAGE: {FILES, REPORT},
    WORKER: {FILES, PROCESSES, JOBS, REPORT, INSPECTOR},
    MACHINES: {FILES, JOBS, REPORT, WORKER},
    ARCHIVE: {FILES, PROCESSES, JOBS, REPORT, PAGE, WORKER, MACHINES, CONVERTER, INSPECTOR},
    COMPATIBILITY: {RECORDS, "ZelMain/Frequency"},
    RECORDS: set(),
    "ZelMain/ImportExport": {"ZelMain/Diagnostics"},
    "ZelMain/Diagnostics": {"ZelMain/DirectoryMemory"},
    "ZelMain/Frequency": set(),
    "ZelMain/Version": set(),
    "ZelMain/DirectoryMemory": set(),
}

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')
QT_XML = re.compile(r"^(QtXml(/.*)?|QDom\w*|QXml\w*)$")


def room(path: str) -> str:
    """The room that a source path belongs to, "" for a path outside the house."""
    parts = path.split("/")
    if parts[0] == "FileConverters":
        return "/".join(parts[:-1])
    if parts[0] != "ZelMain":
        return ""
    folder = "/".join(parts[:-1])
    if folder != "ZelMain":
        return folder
    stem = parts[-1].split(".")[0]
    return "ZelMain/DirectoryMemory" if stem.startswith("DirectoryMemory") else (
        "ZelMain/Frequency" if stem.startswith("Frequency") else f"ZelMain/{stem}")


def wrong_includes(path: str, text: str):
    """Each include of the file that has no arrow, with the reason."""
    source = room(path)
    if source not in ARROWS:
        yield path, f"{source} is no room of the house"
        return
    for number, line in enumerate(text.splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        name = match.group(1)
        if name.startswith("../") or "/../" in name:
            yield f"{path}:{number}", f"{name} leaves its folder by .."
        target = room(name)
        if target and target != source and target not in ARROWS[source]:
            yield f"{path}:{number}", f"no arrow from {source} to {target}"
        if source == RECORDS and path.endswith(".h") and QT_XML.match(name):
            yield f"{path}:{number}", "the plain records' headers do not know the Qt DOM"


def check_the_check() -> None:
    """The rules find what they are there to find."""
    must_fail = [
        ("ZelMain/Frequency.h", '#include "FileConverters/CoordinationWorkspaceSection/A.h"'),
        ("ZelMain/Diagnostics/A.cpp", '#include "ZelMain/ImportExport/XmlVersions.h"'),
        ("ZelMain/DirectoryMemory.cpp", '#include "ZelMain/Frequency.h"'),
        (f"{RECORDS}/A.cpp", f'#include "{COMPATIBILITY}/A.h"'),
        (f"{RECORDS}/A.h", "#include <QDomDocument>"),
        (f"{RECORDS}/A.h", '#  include "ZelMain/Frequency.h"'),
        (f"{CONVERTER}/A.cpp", f'#include "{INSPECTOR}/A.h"'),
        (f"{INSPECTOR}/A.cpp", f'#include "{ARCHIVE}/A.h"'),
        (f"{WORKER}/A.cpp", f'#include "{MACHINES}/A.h"'),
        ("ZelMain/Other/A.cpp", ""),
        ("ZelMain/Frequency.cpp", '#include "../FileConverters/A.h"'),
    ]
    for path, text in must_fail:
        assert list(wrong_includes(path, text)), f"{path}: {text} went unseen"
    must_pass = [
        (f"{CONVERTER}/A.cpp", '#include "ZelMain/ImportExport/XmlVersions.h"'),
        (f"{COMPATIBILITY}/A.h", '#include "ZelMain/Frequency.h"\n#include <QDomDocument>'),
        ("ZelMain/FrequencyParsing.cpp", '#include "ZelMain/Frequency.h"'),
    ]
    for path, text in must_pass:
        assert not list(wrong_includes(path, text)), f"{path}: {text} was refused"


def main() -> int:
    check_the_check()
    project = pathlib.Path(sys.argv[1])
    files = [file for folder in ("ZelMain", "FileConverters")
             for pattern in ("*.h", "*.cpp")
             for file in sorted((project / folder).rglob(pattern))]
    if not files:
        print("no source file found")
        return 1
    wrong = [found for file in files
             for found in wrong_includes(file.relative_to(project).as_posix(),
                                         file.read_text(encoding="utf-8"))]
    for place, reason in wrong:
        print(f"{place}: {reason}")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
