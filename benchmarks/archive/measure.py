#!/usr/bin/env python3
"""Measures coordworkspace-convert-archive against xargs over the bare converter, and over the cores.

    measure.py [--programs FOLDER] [--small N] [--large N] [--rounds N] [--no-verdict]

First N documents of 10 kB: the archive program, which hashes, inspects, converts, syncs and reports,
against "xargs -P", which starts the bare converter for each and syncs nothing. Then N documents of
10 MB: all cores against one. Prints medians of the wall time and the processor time of runs that take
turns, so that a busy machine is busy for all of them. Ends with status 1 when a bar is missed.
"""

import argparse
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(PROJECT / "tests/FileConverters/CoordinationWorkspaceSection"))
import workspaces  # noqa: E402

SMALL_SYSTEMS, LARGE_SYSTEMS = 9, 9300  # some 10 kB and 10 MB
SMALL_BAR = 1.0
CORES_BAR = 0.9  # of the number of cores: 1.8 times one on two
CORES = len(os.sched_getaffinity(0))


def make_archive(folder, count, systems):
    folder.mkdir()
    document = workspaces.workspace(systems).encode()
    for number in range(count):
        parent = folder / str(number // 100)
        parent.mkdir(exist_ok=True)
        (parent / f"{number}.xml").write_bytes(document)
    print(f"{count} documents of {len(document)} bytes on {CORES} cores", flush=True)


def taken(arguments, target, **options):
    """Wall seconds and processor seconds of one run into a fresh folder."""
    shutil.rmtree(target, ignore_errors=True)
    subprocess.run(["sync"], check=True)
    start = time.monotonic()
    process = subprocess.Popen(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                               **options)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.monotonic() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if status != 0:
        raise RuntimeError(f"{arguments} ended with wait status {status}")
    return wall, usage.ru_utime + usage.ru_stime


def medians(runs, rounds):
    """For each run by its name: the medians of wall and processor seconds."""
    times = {name: [] for name in runs}
    for number in range(rounds):
        for name, run in runs.items():
            times[name].append(run())
            wall, processor = times[name][-1]
            print(f"  {name}, round {number + 1}: {wall:.2f} s, processor {processor:.2f} s",
                  flush=True)
    result = {name: tuple(map(statistics.median, zip(*taken_by))) for name, taken_by in
              times.items()}
    for name, (wall, processor) in result.items():
        print(f"{name}: {wall:.2f} s, processor {processor:.2f} s", flush=True)
    return result


def archive_run(programs, source, target, *options):
    return lambda: taken([programs / "coordworkspace-convert-archive", *options, source, target],
                         target)


def xargs_run(programs, source, target):
    script = ('mkdir -p "$TARGET"; cd "$SOURCE" && find . -type d -exec mkdir -p "$TARGET/{}" ";" &&'
              ' find . -type f -print0 | xargs -0 -n 1 -P "$CORES" sh -c'
              ' \'exec "$CONVERTER" "$0" >"$TARGET/$0"\'')
    environment = {**os.environ, "SOURCE": str(source), "TARGET": str(target),
                   "CORES": str(CORES),
                   "CONVERTER": str(programs / "CoordWorkSpaceSectionConverter0_3")}
    return lambda: taken(["sh", "-c", script], target, env=environment)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--programs", type=lambda path: pathlib.Path(path).absolute(),
                        default=PROJECT / "build/bin")
    parser.add_argument("--small", type=int, default=10_000)
    parser.add_argument("--large", type=int, default=200)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--folder", help="where the archives are made; on a disk, not in memory")
    parser.add_argument("--no-verdict", action="store_true", help="only print")
    options = parser.parse_args()
    missed = False
    with tempfile.TemporaryDirectory(dir=options.folder) as folder:
        source, target = pathlib.Path(folder, "source"), pathlib.Path(folder, "target")
        if options.small:
            make_archive(source, options.small, SMALL_SYSTEMS)
            times = medians({"archive": archive_run(options.programs, source, target),
                             "xargs": xargs_run(options.programs, source, target)}, options.rounds)
            ratio = times["archive"][0] / times["xargs"][0]
            print(f"archive / xargs: {ratio:.2f} (at most {SMALL_BAR})")
            missed = ratio > SMALL_BAR
            shutil.rmtree(source)
        if options.large:
            make_archive(source, options.large, LARGE_SYSTEMS)
            runs = {f"{jobs} at a time":
                    archive_run(options.programs, source, target, f"--jobs={jobs}",
                                "--timeout=none") for jobs in (1, CORES)}
            walls = [wall for wall, _ in medians(runs, options.rounds).values()]
            print(f"one core / all cores: {walls[0] / walls[-1]:.2f}"
                  f" (at least {CORES_BAR * CORES:.1f})")
            missed |= walls[0] / walls[-1] < CORES_BAR * CORES
    return 1 if missed and not options.no_verdict else 0


if __name__ == "__main__":
    sys.exit(main())
