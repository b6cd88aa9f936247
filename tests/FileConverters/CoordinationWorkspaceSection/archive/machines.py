"""Machines for tests of the archive program: ssh servers of our own on loopback ports."""

import os
import pathlib
import pwd
import shutil
import signal
import socket
import subprocess

SERVER = "/usr/sbin/sshd"


def missing():
    """Why there can be no machines; empty when there can be."""
    for program in (SERVER, "ssh", "ssh-keygen", "rsync"):
        if not shutil.which(program):
            return f"{program} is not installed"
    return ""


def make_key(file):
    if not file.exists():
        subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-C", "", "-f", file],
                       check=True, timeout=60)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Network:
    """Machines, and an ssh that knows the way to them.

    While the file "gone" is there, nobody comes through, and waits.
    """

    def __init__(self, folder, keys):
        self.folder = pathlib.Path(folder)
        self.keys = pathlib.Path(keys)
        for name in ("host_key", "user_key"):
            make_key(self.keys / name)
        self.gone = self.folder / "gone"
        self.client = self.folder / "client"
        (self.folder / "bin").mkdir()
        self.be_patient(10)

    def be_patient(self, seconds):
        """Notice only after so long that a machine is gone; the program's own wish comes second."""
        write_script(self.folder / "bin/ssh",
                     f"while [ -e '{self.gone}' ]; do sleep 0.02; done",
                     f"exec {shutil.which('ssh')} -F '{self.client}' -o ConnectTimeout={seconds}"
                     f" -o ServerAliveInterval={seconds} -o ServerAliveCountMax=2 \"$@\"")

    @property
    def environment(self):
        return {**os.environ, "PATH": f"{self.folder}/bin:{os.environ['PATH']}"}

    def machine(self, name, **more):
        made = Machine(self, name, **more)
        with open(self.client, "a", encoding="utf-8") as client:
            client.write(made.client)
        return made


class Machine:
    """An ssh server, and a home folder in which all that it is asked for is done.

    What runs there finds the machine's name in MACHINE.
    """

    def __init__(self, network, name, knows_us=True, shares_connection=True):
        """Where the connection is shared, logging in takes next to no time."""
        self.network = network
        self.name = name
        self.folder = network.folder / name
        self.home = self.folder / "home"
        self.home.mkdir(parents=True)
        self.server = None
        self._port = free_port()
        self._socket = self.folder / "socket" if knows_us and shares_connection else None
        self._write_server(knows_us)

    def _write_server(self, knows_us):
        key = (self.network.keys / "user_key.pub").read_text()
        (self.folder / "authorized_keys").write_text(key if knows_us else "")
        # The home folder of the account is the user's own, which no test touches, and of which no
        # start-up file of a shell has a say.
        write_script(self.folder / "command", 'cd "$HOME" || exit 255',
                     'exec /bin/sh -c "$SSH_ORIGINAL_COMMAND"')
        (self.folder / "server").write_text("\n".join((
            "ListenAddress 127.0.0.1", f"Port {self._port}",
            f"HostKey {self.network.keys}/host_key",
            f"AuthorizedKeysFile {self.folder}/authorized_keys", "PidFile none", "StrictModes no",
            "UsePAM no", "PermitRootLogin yes", "PasswordAuthentication no",
            "KbdInteractiveAuthentication no", "MaxStartups 100", "MaxSessions 100",
            f"SetEnv HOME={self.home} MACHINE={self.name} SHLVL=2",
            f"ForceCommand {self.folder}/command", "")))

    @property
    def client(self):
        """What ssh has to know of it."""
        host_key = (self.network.keys / "host_key.pub").read_text()
        known_hosts = self.folder / "known_hosts"
        known_hosts.write_text(f"[127.0.0.1]:{self._port} {host_key}")
        return "\n  ".join((
            f"Host {self.name}", "HostName 127.0.0.1", f"Port {self._port}",
            f"User {pwd.getpwuid(os.geteuid()).pw_name}",
            f"IdentityFile {self.network.keys}/user_key", "IdentitiesOnly yes",
            "IdentityAgent none", "GlobalKnownHostsFile none", f"UserKnownHostsFile {known_hosts}",
            "StrictHostKeyChecking yes", f"ControlPath {self._socket or 'none'}")) + "\n"

    def start(self):
        if os.geteuid() == 0:
            # Only root's server asks for it, where no service has made it.
            os.makedirs("/run/sshd", mode=0o755, exist_ok=True)
        self.server = subprocess.Popen(
            [SERVER, "-D", "-e", "-f", self.folder / "server"], stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, start_new_session=True)
        said = b""
        while b"Server listening" not in said:
            line = self.server.stderr.readline()
            if not line:
                raise RuntimeError(f"the ssh server has ended: {said.decode()}")
            said += line
        if self._socket:
            self._socket.unlink(missing_ok=True)
            self._ssh("-M", "-N", "-f", "-o", "BatchMode=yes", check=True)
        return self

    def _ssh(self, *arguments, **more):
        return subprocess.run(["ssh", "-F", self.network.client, *arguments, self.name],
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, timeout=60, **more)

    def processes(self):
        """The server, its connections, and what they run."""
        return [self.server.pid, *descendants(self.server.pid)]

    def freeze(self):
        """As a machine that hangs."""
        for process in self.processes():
            send(process, signal.SIGSTOP)

    def cut_off(self):
        """As when it loses its power."""
        for process in self.processes():
            send(process, signal.SIGKILL)
        self.server.stderr.close()
        self.server.wait(60)
        self.server = None

    def stop(self):
        if self._socket and self._socket.exists():
            self._ssh("-O", "exit", check=False)
        if self.server is not None:
            self.cut_off()


def write_script(file, *lines):
    file.write_text("\n".join(("#!/bin/sh", *lines, "")))
    file.chmod(0o755)


def send(process, request):
    try:
        os.kill(process, request)
    except ProcessLookupError:
        pass


def descendants(process):
    """The children of a process, and theirs."""
    try:
        children = pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
    except (FileNotFoundError, ProcessLookupError):
        return []
    return [found for child in map(int, children) for found in (child, *descendants(child))]
