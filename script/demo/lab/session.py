"""One run: its folder, its environment, and every process that belongs to it."""

from __future__ import annotations

import contextlib
import ctypes
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import uuid
from collections.abc import Iterator, Sequence
from pathlib import Path
from typing import IO

from lab import namespace
from lab.waiting import wait_until

MARKER = "FERNWICK_LAB"
# Without capabilities file permissions hold for a program even when root runs it.
POWERLESS = ["setpriv", "--inh-caps=-all", "--ambient-caps=-all", "--bounding-set=-all", "--"]
NOWHERE = "http://127.0.0.1:9"  # an address that refuses every connection
_KEPT = ("PATH", "USER", "LOGNAME", "XAUTHORITY")


class Session:
    """A temporary folder with a home in it, and the processes started for it, all of which end with `close`."""

    def __init__(self) -> None:
        self.mark = uuid.uuid4().hex
        self.root = Path(tempfile.mkdtemp(prefix="fw-"))  # short: socket paths have room for 107 bytes
        self.home = self._folder("home")
        self.config = self._folder("home/.config")
        self.run = self._folder("run", 0o700)
        self._folder("home/.ssh", 0o700)
        self.environment = self._environment()
        self._children: list[subprocess.Popen[bytes]] = []
        self._guard = self._start_guard()
        _adopt_orphans()
        namespace.move_home(self.home, self.root)

    def _folder(self, name: str, mode: int = 0o755) -> Path:
        folder = self.root / name
        folder.mkdir(parents=True, mode=mode)
        return folder

    def _environment(self) -> dict[str, str]:
        kept = {name: os.environ[name] for name in _KEPT if name in os.environ}
        folders = {"XDG_CONFIG_HOME": self.config, "XDG_DATA_HOME": self.home / ".local/share",
                   "XDG_CACHE_HOME": self.home / ".cache", "XDG_STATE_HOME": self.home / ".local/state",
                   "XDG_RUNTIME_DIR": self.run, "TMPDIR": self._folder("tmp"), "HOME": self.home}
        return kept | {name: str(folder) for name, folder in folders.items()} | {
            MARKER: self.mark,
            "LANG": "C.UTF-8",
            "FERNWICK_UPDATE_URL": NOWHERE,  # no run asks the maker's server
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.run}/no-bus",
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.run}/no-bus",
        }

    def _start_guard(self) -> subprocess.Popen[bytes]:
        """Starts the one process that outlives a killed run, and ends what that leaves behind."""
        return subprocess.Popen([sys.executable, "-B", "-m", "lab.guard", self.mark, str(self.root)],
                                stdin=subprocess.PIPE, cwd=Path(__file__).parents[1], start_new_session=True)

    def start(self, command: Sequence[str | Path], *, environment: dict[str, str] | None = None,
              stdout: IO[bytes] | int = subprocess.DEVNULL, stderr: IO[bytes] | int = subprocess.DEVNULL,
              pass_fds: Sequence[int] = ()) -> subprocess.Popen[bytes]:
        """Starts a program of this run; it also dies when this program is killed."""
        words = ["setpriv", "--pdeathsig", "KILL", "--", *map(str, command)]
        child = subprocess.Popen(words, env=environment or self.environment, cwd=self.home, start_new_session=True,
                                 stdin=subprocess.DEVNULL, stdout=stdout, stderr=stderr, pass_fds=pass_fds)
        self._children.append(child)
        return child

    def processes(self, program: str | None = None) -> list[int]:
        """The living processes of this run (zombies do not count), or those whose program has that name.

        Whatever is orphaned comes to us, and the mark in the environment finds what got away even so.
        """
        found = {*descendants(os.getpid()), *marked(self.mark)} - {os.getpid(), self._guard.pid}
        return sorted(pid for pid in found if program is None or program_name(pid) == program)

    def close(self) -> None:
        """Ends what is left, asks first and insists then, and removes the folder."""
        for child in reversed(self._children):
            stop(child, patience=2.0)
        for pid in self.processes():
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, signal.SIGKILL)
        wait_until(lambda: not self.processes(), "the run's processes end", 5.0)
        self._guard.communicate(timeout=10)
        shutil.rmtree(self.root, ignore_errors=True)


def stop(child: subprocess.Popen[bytes], patience: float = 5.0) -> int:
    """Ends a child, by force after `patience` seconds, and returns its exit status."""
    if child.poll() is None:
        child.terminate()
        try:
            child.wait(patience)
        except subprocess.TimeoutExpired:
            child.kill()
    return child.wait(5.0)


def program_name(pid: int) -> str | None:
    """The name of the program that a process runs, or None when it is gone."""
    try:
        return Path(f"/proc/{pid}/comm").read_text().strip()
    except OSError:
        return None


def sleeps(pid: int, thread: str) -> int:
    """How often the thread of that name has gone to sleep of its own will; 0 when there is none."""
    for task in Path(f"/proc/{pid}/task").iterdir():
        with contextlib.suppress(OSError):
            fields = dict(line.split(":\t", 1) for line in (task / "status").read_text().splitlines() if ":\t" in line)
            if fields["Name"] == thread:
                return int(fields["voluntary_ctxt_switches"])
    return 0


def alive(pid: int) -> bool:
    """Whether the process exists and is no zombie."""
    try:
        return Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def descendants(ancestor: int) -> list[int]:
    """The living children of a process, their children, and so on."""
    children: dict[int, list[int]] = {}
    for entry in filter(str.isdigit, os.listdir("/proc")):
        with contextlib.suppress(OSError):
            parent = int(Path(f"/proc/{entry}/stat").read_text().rpartition(")")[2].split()[1])
            children.setdefault(parent, []).append(int(entry))
    found, queue = [], [ancestor]
    while queue:
        below = children.get(queue.pop(), [])
        queue += below
        found += below
    return [pid for pid in found if alive(pid)]


def _adopt_orphans() -> None:
    """Makes this process the parent of every descendant whose own parent ends (prctl(2))."""
    set_child_subreaper = 36
    ctypes.CDLL(None).prctl(set_child_subreaper, 1, 0, 0, 0)


def marked(mark: str) -> Iterator[int]:
    """The living processes with this mark in their environment."""
    wanted = f"{MARKER}={mark}".encode()
    for entry in filter(str.isdigit, os.listdir("/proc")):
        try:
            environment = Path(f"/proc/{entry}/environ").read_bytes()
        except OSError:
            continue
        if wanted in environment.split(b"\0") and alive(int(entry)):
            yield int(entry)
