#!/usr/bin/env python3
"""Measures what coordworkspace-convert-archive needs to hand documents to other machines.

    measure_machines.py [--programs FOLDER] [--documents N] [--rounds N] [--folder FOLDER]

The machine is an ssh server of our own on a loopback port, so that both ends share the cores. Runs
take turns, so that a busy machine is busy for all of them. Prints medians, for each document:

here        a run on this machine only
over ssh    a run with --machines
taken in    a run whose worker makes nothing, but hands back what was made before: what remains is
            what no number of machines makes faster; also what the front end's process takes of it
a login     one "ssh MACHINE true", at each end; a parcel takes five

and what follows for a million documents on 50 machines. Gives no verdict.
"""

import argparse
import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from measure import CORES, PROJECT, SMALL_SYSTEMS, archive_run, make_archive, medians

sys.path.insert(0, str(PROJECT / "tests/FileConverters/CoordinationWorkspaceSection/archive"))
import archives  # noqa: E402
import machines  # noqa: E402

PROGRAMS = (archives.PROGRAM, archives.CONVERTER)
LOGINS_A_PARCEL = 5
LOGINS = 20
PARCEL = 800  # documents of 10 kB in 8 MB
MILLION, MACHINES, MACHINE_CORES = 1_000_000, 50, 8

# All documents are the same, and so are all outputs.
MAKES_NOTHING = r"""#!/usr/bin/env python3
import json, os, pathlib, sys
plan = pathlib.Path(sys.argv[1])
made = pathlib.Path(__file__).parent / "made"
record = json.loads((made / "record").read_text())
with open(plan, encoding="utf-8") as lines:
    next(lines)
    for line in lines:
        record["path"] = json.loads(line)["path"]
        target = plan.parent / "out" / record["path"]
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes((made / "output").read_bytes())
        print(json.dumps(record))
"""


def put_worker_that_makes_nothing(folder, programs, source):
    """Programs of which the worker hands back one output, made here, for every document."""
    copies = folder / "programs/bin"
    copies.mkdir(parents=True)
    worker = copies / archives.worker_of(programs)
    made = worker.parent / "made"
    made.mkdir(parents=True)
    for program in PROGRAMS:
        # Not linked: it looks for its worker from the file that it is.
        shutil.copy(programs / program, copies / program)
    one = folder / "one"
    (one / "source").mkdir(parents=True)
    document = next(path for path in source.rglob("*.xml"))
    (one / "source/a.xml").write_bytes(document.read_bytes())
    subprocess.run([programs / PROGRAMS[0], one / "source", one / "target"], check=True,
                   stdout=subprocess.DEVNULL)
    (made / "output").write_bytes((one / "target/a.xml").read_bytes())
    (made / "record").write_bytes((one / "target/.coordworkspace/report.jsonl").read_bytes())
    worker.write_text(MAKES_NOTHING)
    worker.chmod(0o755)
    return copies


def processor_seconds(process, with_children):
    """Of a process that may be gone; of its children those that have ended."""
    try:
        fields = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
    except (FileNotFoundError, ProcessLookupError):
        return 0
    return sum(map(int, fields[11:15 if with_children else 13])) / os.sysconf("SC_CLK_TCK")


def front_end_seconds(arguments, target):
    """Processor seconds of the program itself, without what it starts."""
    shutil.rmtree(target, ignore_errors=True)
    seconds = 0
    with subprocess.Popen(arguments, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL) as process:
        while process.poll() is None:
            seconds = max(seconds, processor_seconds(process.pid, with_children=False))
            time.sleep(0.02)
    return seconds


def measure_logins(network, machine):
    """Of one login: the seconds it takes, and the processor seconds here and there."""
    walls = []
    here = resource.getrusage(resource.RUSAGE_CHILDREN)
    there = processor_seconds(machine.server.pid, with_children=True)
    for _ in range(LOGINS):
        start = time.monotonic()
        subprocess.run([network.folder / "bin/ssh", machine.name, "true"], check=True,
                       stdin=subprocess.DEVNULL)
        walls.append(time.monotonic() - start)
    there = processor_seconds(machine.server.pid, with_children=True) - there
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    here = after.ru_utime + after.ru_stime - here.ru_utime - here.ru_stime
    return statistics.median(walls), here / LOGINS, there / LOGINS


def tell_of_a_million(converting, login_here, taking_in, front_end):
    """By calculation from processor seconds: what each part would take if nothing else did."""
    parcels = MILLION / PARCEL
    print(f"{MILLION} documents of 10 kB on {MACHINES} machines of {MACHINE_CORES} such cores:")
    print(f"  converting: {MILLION * converting / MACHINES / MACHINE_CORES:.0f} s;"
          f" here alone {MILLION * converting / CORES:.0f} s")
    print(f"  logging in for {parcels:.0f} parcels:"
          f" {parcels * LOGINS_A_PARCEL * login_here / CORES:.0f} s of {CORES} cores")
    print(f"  taking in: {MILLION * front_end:.0f} s of processor, at most"
          f" {MILLION * taking_in:.0f} s")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--programs", type=lambda path: pathlib.Path(path).absolute(),
                        default=PROJECT / "build/bin")
    parser.add_argument("--documents", type=int, default=4000)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--folder", help="where the archives are made; on a disk, not in memory")
    options = parser.parse_args()
    load = os.getloadavg()[0]
    with tempfile.TemporaryDirectory(dir=options.folder) as name:
        folder = pathlib.Path(name)
        source, target = folder / "source", folder / "target"
        make_archive(source, options.documents, SMALL_SYSTEMS)
        network = machines.Network(folder, folder)
        machine = network.machine("loopback", shares_connection=False).start()
        os.environ["PATH"] = network.environment["PATH"]
        there, here = folder / "there", folder / "here"
        there.write_text(f"{CORES}/{machine.name}\n")
        here.write_text(f"{CORES}/:\n")
        idle = put_worker_that_makes_nothing(folder, options.programs, source)
        try:
            times = medians({
                "here": archive_run(options.programs, source, target),
                "over ssh": archive_run(options.programs, source, target, f"--machines={there}"),
                "taken in": archive_run(idle, source, target, f"--machines={here}"),
            }, options.rounds)
            front_end = front_end_seconds(
                [idle / PROGRAMS[0], f"--machines={here}", source, target], target)
            login, login_here, login_there = measure_logins(network, machine)
        finally:
            machine.stop()
    print(f"a load of {load:.1f} before and {os.getloadavg()[0]:.1f} after")
    for run, (wall, processor) in times.items():
        print(f"{run}: {1000 * wall / options.documents:.2f} ms a document,"
              f" processor {1000 * processor / options.documents:.2f} ms")
    print(f"the front end of it: processor {1000 * front_end / options.documents:.2f} ms")
    print(f"a login: {1000 * login:.0f} ms, processor {1000 * login_here:.0f} ms here and"
          f" {1000 * login_there:.0f} ms there")
    tell_of_a_million(times["here"][1] / options.documents, login_here,
                      times["taken in"][0] / options.documents, front_end / options.documents)


if __name__ == "__main__":
    main()
