"""A copy of the project in which mistakes are made, built and tested."""

import contextlib
import json
import os
import shlex
import shutil
import signal
import subprocess
import time

import suites

# A test that runs on for ever has noticed the mistake, too. Other work on the machine slows tests down.
TEST_SECONDS = 120
PATIENCE_SECONDS = 20
SLOWED_DOWN = 10
COMPILER = "compiler"
# Memory that is freed, or not written yet, is filled, so that who reads it notices.
FILLED_MEMORY = {**os.environ, "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0:glibc.malloc.perturb=165"}
SILENT = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


class WorkingCopy:
    def __init__(self, project, folder):
        self.source = folder / "source"
        self.build = folder / "ninja"
        self._copy(project)
        self._run(
            ["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, "-DCMAKE_BUILD_TYPE=Debug",
             "-DCMAKE_CXX_FLAGS_DEBUG=-O0", "-DZEL_WARNINGS=OFF", "-DZEL_HARDENING=OFF",
             "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"]
        )  # fmt: skip
        self._prepared = {}
        self._seconds = {}

    def _copy(self, project):
        # What is as it was keeps its time, so that a copy taken again is built in a moment.
        names = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
            cwd=project, check=True, stdout=subprocess.PIPE,
        ).stdout.decode().split("\0")  # fmt: skip
        wanted = {name for name in names if name and (project / name).is_file()}
        for name in wanted:
            target = self.source / name
            target.parent.mkdir(parents=True, exist_ok=True)
            if not target.exists() or target.read_bytes() != (project / name).read_bytes():
                shutil.copy(project / name, target)
        for path in self.source.rglob("*"):
            if path.is_file() and str(path.relative_to(self.source)) not in wanted:
                path.unlink()

    def _run(self, arguments):
        result = subprocess.run(arguments, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if result.returncode != 0:
            raise RuntimeError(f"{arguments} failed:\n{result.stdout.decode(errors='replace')}")

    def compile_arguments(self):
        """The options of each source, by its path in the project."""
        commands = json.loads((self.build / "compile_commands.json").read_text())
        arguments = {}
        for entry in commands:
            name = os.path.relpath(entry["file"], self.source)
            words = shlex.split(entry["command"])[1:]
            kept = [word for word in words if word.startswith(("-I", "-D", "-std"))]
            kept += [
                part
                for option, folder in zip(words, words[1:])
                if option == "-isystem"
                for part in (option, folder)
            ]
            arguments.setdefault(name, kept)
        return arguments

    def prepare(self, suite):
        """Builds the suite's tests, which must pass as things are."""
        if suite.name in self._prepared:
            return
        for test in suite.tests:
            if not self._builds(test):
                raise RuntimeError(f"{test} cannot be built")
            start = time.monotonic()
            if not self._passes(test):
                raise RuntimeError(f"{test} fails before any mistake was made")
            needed = time.monotonic() - start
            self._seconds[test] = min(TEST_SECONDS, PATIENCE_SECONDS + SLOWED_DOWN * needed)
        self._prepared[suite.name] = suite

    def confirm(self):
        """Raises unless what was prepared still passes: else the machine was at fault, not a mistake."""
        for suite in self._prepared.values():
            for test in suite.tests:
                if not (self._builds(test) and self._passes(test)):
                    raise RuntimeError(f"{test} fails after all mistakes are gone")

    def verdict(self, mistake, suite):
        """The test that catches the mistake, "compiler" where that refuses it, or None."""
        path = self.source / mistake.path
        text = path.read_bytes()
        path.write_bytes(mistake.in_text(text))
        try:
            for test in suite.tests:
                if not self._builds(test):
                    return COMPILER
                if not self._passes(test):
                    return test
            return None
        finally:
            path.write_bytes(text)

    def _builds(self, test):
        command = ["cmake", "--build", self.build, "--target", *suites.targets_of(test)]
        return subprocess.run(command, **SILENT, check=False).returncode == 0

    def _passes(self, test):
        process = subprocess.Popen(
            ["ctest", "--test-dir", self.build, "-R", f"^{test}$", "--no-tests=error",
             "--timeout", str(round(self._seconds.get(test, TEST_SECONDS)))],
            start_new_session=True, env=FILLED_MEMORY, **SILENT,
        )  # fmt: skip
        try:
            return process.wait() == 0
        finally:
            # What a test started and left behind.
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
