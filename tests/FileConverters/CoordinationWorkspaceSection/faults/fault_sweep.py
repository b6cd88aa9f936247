#!/usr/bin/env python3
"""Lets everything fail that can fail below the converter, one thing at a time.

    fault_sweep.py CONVERTER LIBRARY [allocations] [calls] [space] [--sample]

allocations  every allocation fails in turn, once and from then on (LIBRARY is preloaded)
calls        every system call fails in turn, in several ways, or takes a part of what it was given
             (by strace)
space        the address space is limited, from too little to enough

Whatever fails: success is told only with the whole document, no document is cut short because
memory ran out, no wrong word is said, and the only signal from the project's own code is an abort.
Ends with status 1 when a run breaks this. A signal from inside Qt or what it stands on is listed.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import resource
import signal
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
import workspaces  # noqa: E402

SECONDS_A_RUN = 10  # hundreds of times what the longest takes in peace
# A document with more allocations than this has them fail at so many places, spread evenly.
ALLOCATIONS_TRIED = 1500
ERRORS = ["EIO", "ENOSPC", "EINTR", "EAGAIN"]
# A process that cannot end or start is not the converter's doing. And brk() knows no error: it
# tells that memory is out by the break it gives back, which the other sweeps bring about.
NOT_FAILED = {"exit_group", "execve", "brk"}
# Libraries in whose name a crash may happen: Qt, and what only Qt calls.
QT_AND_BELOW = ("libQt5", "libglib-2.0", "libicu")
# Passed over when the place of a crash is looked for: they only do what their caller asked for.
GO_BETWEENS = ("libfailing_allocations", "libc.so", "libstdc++", "libgcc_s", "ld-linux")


def documents():
    """Name, bytes and whether a run that lacks nothing converts it."""
    section = "coordinated_data_root"
    small = workspaces.workspace(1)
    return {
        "an empty section": f"<{section}/>".encode(),
        "one system": small.encode(),
        "one system in UTF-16": small.encode("utf-16-le"),
        "mixed content": (
            f"<!DOCTYPE {section} [<!ENTITY e 'ü'>]><{section}><!-- c --><?p i?>a<![CDATA[<]]>&e;"
            "<mic_channels><c><compat_key><zone>&e;</zone></compat_key></c></mic_channels>"
            f"</{section}>"
        ).encode(),
        "more than a pipe holds": workspaces.workspace(60).encode(),
        "no section": b"<workspace/>",
        "a bad profile id": workspaces.workspace(2, profile_id="7").encode(),
        "not well-formed": small[:-5].encode(),
    }


Result = collections.namedtuple("Result", "stdout stderr hangs returncode")


def finished(process):
    """What a process wrote, and whether it had to be ended; it then tells where it hung."""
    try:
        return *process.communicate(timeout=SECONDS_A_RUN), False
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGTRAP)  # the preloaded library reports the place
    try:
        return *process.communicate(timeout=SECONDS_A_RUN), True
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
    return *process.communicate(), True


class Run:
    """One run of the converter over one document, with what a fault needs around it."""

    def __init__(self, sweep, path, from_file):
        self.sweep = sweep
        self.path = path
        self.from_file = from_file

    def __call__(self, before=(), environment=None, space=None, report=None):
        def limit():
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            if space:
                resource.setrlimit(resource.RLIMIT_AS, (space, space))

        extra = dict(environment or {})
        if report:
            extra.update(LD_PRELOAD=self.sweep.library, ALLOCATION_REPORT=str(report))
        # A tracer must not be preloaded itself.
        settings = [f"-E{name}={value}" for name, value in extra.items()] if before else []
        arguments = [*before, *settings, self.sweep.converter]
        if self.from_file:
            arguments.append(str(self.path))
        with open(os.devnull if self.from_file else self.path, "rb") as source:
            process = subprocess.Popen(
                arguments,
                stdin=source,
                stdout=subprocess.PIPE,
                stderr=subprocess.PIPE,
                preexec_fn=limit,
                start_new_session=True,
                env=os.environ if before else {**os.environ, **extra},
            )
            return Result(*finished(process), process.returncode)


class Sweep:
    def __init__(self, options, folder):
        self.converter = options.converter
        self.library = options.library
        self.sample = options.sample
        self.folder = pathlib.Path(folder)
        self.runs = collections.Counter()
        self.results = collections.Counter()
        self.places = collections.Counter()
        self.violations = []

    # What a run may show -------------------------------------------------------------------------

    def judge(self, kind, name, run, whole, report, expected):
        """Counts a run and notes what it did wrong; `whole` is the run that lacked nothing."""
        memory = kind in ("allocations", "space")
        wrong = self.fault_in(run, whole, report, memory, expected)
        self.runs[kind] += 1
        if wrong:
            self.violations.append(f"{name}: {wrong}")

    def fault_in(self, run, whole, report, memory, expected):
        document = whole.stdout if expected is None else expected
        says_success = run.returncode == 0 or b"PROGRESS" in run.stderr
        if says_success and not (whole.returncode == 0 and run.stdout == document):
            return f"success is told without the whole document ({describe(run)})"
        if b"FAILURE" in run.stderr and b"FAILURE" not in whole.stderr:
            return f"a wrong word ({describe(run)})"
        if run.stdout and run.stdout != document:
            if memory:
                return f"a part of the document ({describe(run)})"
            if not document.startswith(run.stdout):
                return f"something else than a part of the document ({describe(run)})"
        return self.fault_of_signal(run, report)

    def fault_of_signal(self, run, report):
        if run.returncode >= 0 or run.returncode == -signal.SIGABRT:
            self.results["an abort" if run.returncode < 0 else f"status {run.returncode}"] += 1
            return None
        name = "no end" if run.hangs else signal.Signals(-run.returncode).name
        place = place_of_crash(report)
        self.results[name] += 1
        self.places[f"{name} in {place}"] += 1
        ours = not place.startswith(QT_AND_BELOW) and place != BEFORE_THE_LIBRARIES
        return f"{name} in {place}" if ours else None

    # The sweeps ------------------------------------------------------------------------------------

    def runs_of_documents(self):
        for name, data in documents().items():
            path = self.folder / (re.sub("[^a-z0-9]", "-", name) + ".xml")
            path.write_bytes(data)
            for from_file in (True, False):
                if not from_file and "UTF-16" in name:
                    continue
                source = "file" if from_file else "standard input"
                yield f"{name} from {source}", Run(self, path, from_file)

    def every(self, items, sample_size, most=None):
        """All the items; of a sample or of very many, some spread evenly, with both ends."""
        items = list(items)
        wanted = sample_size if self.sample else most or len(items)
        if len(items) <= wanted:
            return items
        last = len(items) - 1
        return [items[round(i * last / (wanted - 1))] for i in range(wanted)]

    def all_judged(self, kind, whole, fault, items):
        """Runs `fault` on all items, on all processors: it gives name, run, report, expectation."""
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for name, run, report, expected in pool.map(fault, items):
                self.judge(kind, name, run, whole, report, expected)
                report.unlink(missing_ok=True)

    def allocations(self):
        for name, run in self.runs_of_documents():
            count_report = self.folder / "allocations"
            whole = run(report=count_report)
            count = self.allocation_count(count_report, whole, run)
            cases = [
                (number, from_then_on)
                for number in self.every(range(1, count + 1), 12, ALLOCATIONS_TRIED)
                for from_then_on in (False, True)
            ]

            def fail(case, name=name, run=run):
                number, from_then_on = case
                report = self.folder / f"crash-{number}-{from_then_on}"
                environment = {"FAIL_ALLOCATION": str(number)}
                if from_then_on:
                    environment["FAIL_FROM_THEN_ON"] = "1"
                result = run(environment=environment, report=report)
                how = "from then on" if from_then_on else "once"
                title = f"{name}, allocation {number} fails {how}"
                return title, result, report, None

            self.all_judged("allocations", whole, fail, cases)

    def allocation_count(self, report, whole, run):
        if report.exists() and report.read_text().strip():
            return int(report.read_text())
        # A run that aborts leaves no count: as many as let it end as it does without a fault.
        low, high = 1, 1
        while self.fails_early(run, whole, high):
            low, high = high, high * 2
        while low < high:
            middle = (low + high) // 2
            if self.fails_early(run, whole, middle):
                low = middle + 1
            else:
                high = middle
        return high

    def fails_early(self, run, whole, number):
        environment = {"FAIL_ALLOCATION": str(number), "FAIL_FROM_THEN_ON": "1"}
        result = run(environment=environment, report=self.folder / "allocations")
        return (result.returncode, result.stderr) != (whole.returncode, whole.stderr)

    def calls(self):
        for name, run in self.runs_of_documents():
            trace = self.folder / "trace"
            report = self.folder / "report"
            whole = run(before=["strace", "-f", "-o", str(trace)], report=report)
            calls = traced_calls(trace.read_text())
            cases = [
                (call, injected)
                for call in self.every(calls, 15)
                for injected in call.faults(whole.stdout)
            ]
            outputs = [call for call in calls if call.writes_output]
            if self.sample and outputs:
                # The parts of the document matter most: the first, a middle and the last.
                for call in {outputs[0], outputs[len(outputs) // 2], outputs[-1]}:
                    cases += [(call, injected) for injected in call.faults(whole.stdout)]

            def inject(case, name=name, run=run):
                call, (fault, expected) = case
                tag = f"{call.name}-{call.number}-{fault.replace('=', '-')}"
                report = self.folder / f"crash-{tag}"
                rule = f"inject={call.name}:{fault}:when={call.number}"
                before = ["strace", "-f", "-o", os.devnull, "-e", f"trace={call.name}", "-e", rule]
                result = run(before=before, report=report)
                title = f"{name}, {call.name} number {call.number} with {fault}"
                return title, result, report, expected

            self.all_judged("calls", whole, inject, cases)

    def space(self):
        for name, run in self.runs_of_documents():
            whole = run()
            steps = self.every([(4 + 2 * step) * 2**20 for step in range(100)], 10)

            def limit(space, name=name, run=run):
                report = self.folder / f"crash-{space}"
                result = run(space=space, report=report)
                title = f"{name}, with {space >> 20} MiB of address space"
                return title, result, report, None

            self.all_judged("space", whole, limit, steps)


class Call:
    def __init__(self, name, number, descriptor, taken, offset):
        self.name = name
        self.number = number
        self.writes_output = name in ("write", "writev") and descriptor == 1
        self.taken = taken
        self.offset = offset

    def faults(self, document):
        """What to inject, with the document to expect then (None: the one of a run in peace)."""
        for error in ERRORS:
            yield f"error={error}", None
        if self.writes_output:
            for part in sorted({1, max(1, self.taken // 2)} - {self.taken}):
                # The call does not happen and says it took a part: the rest must follow.
                end = self.offset + part
                yield f"retval={part}", document[: self.offset] + document[end:]


def traced_calls(trace):
    calls = []
    numbers = collections.Counter()
    written = 0
    for line in trace.splitlines():
        match = re.match(r"\d+ +(\w+)\((\d*)", line)
        if not match or match[1] in NOT_FAILED:
            continue
        name, descriptor = match[1], int(match[2] or -1)
        numbers[name] += 1
        taken = re.search(r"= (\d+)$", line)
        call = Call(name, numbers[name], descriptor, int(taken[1]) if taken else 0, written)
        written += call.taken if call.writes_output else 0
        calls.append(call)
    return calls


BEFORE_THE_LIBRARIES = "the dynamic loader, before any library starts"


def place_of_crash(report):
    """The library, and the function where it has a name, that a crash happened in or for."""
    frames = report.read_text().splitlines() if report and report.exists() else []
    for frame in frames:
        path, _, function = frame.partition(" ")
        library = pathlib.Path(path).name
        if not library.startswith(GO_BETWEENS):
            return f"{library} {demangled(function)}"
    return " ".join(frames) or BEFORE_THE_LIBRARIES


def demangled(function):
    if function == "?":
        return "(a function without a name)"
    run = subprocess.run(["c++filt", function], capture_output=True, text=True, check=False)
    return run.stdout.strip() or function


def describe(run):
    return f"status {run.returncode}, {len(run.stdout)} bytes, {run.stderr[-60:]!r}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("converter", type=os.path.abspath)
    parser.add_argument("library", type=os.path.abspath)
    parser.add_argument("sweeps", nargs="*", choices=["allocations", "calls", "space", []])
    parser.add_argument("--sample", action="store_true", help="a spread of the faults, not all")
    options = parser.parse_args()

    with tempfile.TemporaryDirectory() as folder:
        sweep = Sweep(options, folder)
        for kind in options.sweeps or ["allocations", "calls", "space"]:
            getattr(sweep, kind)()
    for violation in sweep.violations:
        print(violation)
    for kind, count in sweep.runs.items():
        print(f"{count:7} runs with faults: {kind}")
    for result, count in sorted(sweep.results.items()):
        print(f"{count:7} ended in {result}")
    for place, count in sorted(sweep.places.items()):
        print(f"{count:7} {place}")
    print(f"{sum(sweep.runs.values())} runs, {len(sweep.violations)} broke a promise")
    return 1 if sweep.violations else 0


if __name__ == "__main__":
    sys.exit(main())
