"""Runs programs one after the other and reads off what they took."""

import argparse
import os
import pathlib
import random
import resource
import statistics

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
WORKSPACES = PROJECT / "tests/FileConverters/CoordinationWorkspaceSection"

# Bare Qt overflows the usual stack on deep documents, which the converter raises for itself.
DEEP_STACK = 2**30
_, _most = resource.getrlimit(resource.RLIMIT_STACK)
resource.setrlimit(
    resource.RLIMIT_STACK,
    (DEEP_STACK if _most == resource.RLIM_INFINITY else min(DEEP_STACK, _most), _most),
)


def option_parser(description):
    """For the programs that are measured, and for whether they are judged."""
    parser = argparse.ArgumentParser(description=description)
    build = PROJECT / "build"
    parser.add_argument("--converter", default=build / "bin/CoordWorkSpaceSectionConverter0_3")
    parser.add_argument("--bare", default=build / "tests/bare")
    parser.add_argument(
        "--no-verdict", action="store_true", help="only print: the machine is busy with other things"
    )
    return parser


def make_document(folder, make, size):
    """Made by a child, so that the memory it takes does not count for what is measured."""
    path = pathlib.Path(folder, f"{size}.xml")
    child = os.fork()
    if child == 0:
        path.write_text(make(size), encoding="utf-8")
        os._exit(0)
    os.waitpid(child, 0)
    return str(path)


def taken(arguments):
    """Processor seconds and peak memory in KiB of one run, which must succeed."""
    silent = os.open(os.devnull, os.O_RDWR)
    actions = [(os.POSIX_SPAWN_DUP2, silent, descriptor) for descriptor in (0, 1, 2)]
    process = os.posix_spawn(arguments[0], arguments, os.environ, file_actions=actions)
    os.close(silent)
    _, status, usage = os.wait4(process, 0)
    if status != 0:
        raise RuntimeError(f"{arguments} ended with wait status {status}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def medians(programs, rounds):
    """The medians of seconds and of KiB for each program, by name.

    The programs take turns in an order drawn anew each time: what ran before leaves its traces in
    the processor's caches, and a program always behind a large one would pay for it.
    """
    turns = random.Random(rounds)
    order = list(programs.items())
    seconds = {name: [] for name in programs}
    memory = {name: [] for name in programs}
    for _ in range(rounds):
        turns.shuffle(order)
        for name, arguments in order:
            run_seconds, run_memory = taken(arguments)
            seconds[name].append(run_seconds)
            memory[name].append(run_memory)
    return {
        name: (statistics.median(seconds[name]), statistics.median(memory[name]))
        for name in programs
    }
