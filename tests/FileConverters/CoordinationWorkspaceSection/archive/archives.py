"""Archives of workspace documents for the tests of the archive program."""

import fcntl
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent))
import workspaces  # noqa: E402

PROGRAM = "coordworkspace-convert-archive"
CONVERTER = "CoordWorkSpaceSectionConverter0_3"
SECTION = "coordinated_data_root"
SECONDS_A_RUN = 300
REPORT = ".coordworkspace/report.jsonl"

CLEAN = workspaces.workspace(3)
LOSSY = CLEAN.replace('name="robust"', 'name="Robust"')
OLD = CLEAN.replace('version="0.2"', 'version="0.05"')
NEWER = CLEAN.replace('version="0.2"', 'version="0.4"')
NO_UUID = workspaces.workspace(2, profile_id="7")
BROKEN = CLEAN[:-20]
STRANGER = "<?xml version='1.0'?><html><body>Set list</body></html>"
SEVERAL = f"<shows>{'<coordinated_data_root/>' * 2}</shows>"


def worker_of(programs):
    """The path of the worker from the folder of the programs: the archive program tells it where
    the worker is missing."""
    with tempfile.TemporaryDirectory() as folder:
        alone = pathlib.Path(folder).resolve() / "only/this/program"
        alone.mkdir(parents=True)
        run = subprocess.run([shutil.copy(programs / PROGRAM, alone), "source", "target"],
                             capture_output=True, check=False, timeout=60)
        begin, worker = run.stderr.decode().rstrip("\n").split(" is missing: ")
        assert begin == f"{PROGRAM}: a program", run
        return os.path.relpath(worker, alone)


def bomb(letters=500_000_000):
    """A small document whose entities grow to so many letters, as far as Qt's parser lets one."""
    entity = 4000
    return (f"<!DOCTYPE {SECTION} [<!ENTITY e '{'x' * entity}'>]>"
            f"<{SECTION} version='0.2'>{'&e;' * (letters // entity)}</{SECTION}>")


class Archive:
    """A folder of documents, and one for what becomes of them."""

    def __init__(self, folder, program, options=()):
        self.folder = pathlib.Path(folder)
        self.source = self.folder / "source"
        self.target = self.folder / "target"
        self.source.mkdir()
        self.program = program
        self.options = list(options)
        self.environment = None

    def add(self, path, document):
        file = self.source / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(document if isinstance(document, bytes) else document.encode())
        return file

    def arguments(self, *options):
        return [self.program, *self.options, *options, str(self.source), str(self.target)]

    def run(self, *options, **more):
        more = {"capture_output": True, "timeout": SECONDS_A_RUN,
                "env": self.environment, **more}
        return subprocess.run(self.arguments(*options), stdin=subprocess.DEVNULL, **more)

    def lines(self):
        # Of bytes: a text also ends lines where a name may have U+2028.
        return [json.loads(line) for line in (self.target / REPORT).read_bytes().splitlines()]

    def records(self):
        lines = self.lines()
        records = {line["path"]: line for line in lines}
        assert len(records) == len(lines), "a document has several lines"
        return records

    def outcomes(self):
        return {path: (record["outcome"], record.get("reason"))
                for path, record in self.records().items()}

    def targets(self):
        """What stands below the target, by path: contents, mode and time."""
        return contents(self.target)


def is_locked(target):
    """Whether a run or a job of one is at work."""
    for name in ("lock", "jobs"):
        file = pathlib.Path(target, ".coordworkspace", name)
        if not file.exists():
            continue
        with open(file, "r+") as lock:
            try:
                fcntl.lockf(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                return True
    return False


def contents(folder):
    found = {}
    for parent, folders, names in os.walk(folder):
        if pathlib.Path(parent) == pathlib.Path(folder) and ".coordworkspace" in folders:
            folders.remove(".coordworkspace")
        for name in names:
            file = pathlib.Path(parent, name)
            status = file.lstat()
            data = os.readlink(file).encode() if file.is_symlink() else file.read_bytes()
            found[str(file.relative_to(folder))] = (data, status.st_mode, status.st_mtime_ns)
    return found
