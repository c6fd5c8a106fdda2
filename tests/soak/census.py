"""What the kernel knows of the application: its ssh children by tunnel, its descriptors, threads and memory."""

from __future__ import annotations

import contextlib
import os
import re
import time
from dataclasses import dataclass
from pathlib import Path

from lab.session import descendants, program_name

# The one forward on ssh's command line, with the tunnel's local port in it.
_FORWARD = re.compile(rb"\0-(?:L|D|R)\0(?:127\.0\.0\.1:(\d+)|\d+:localhost:(\d+))")


@dataclass
class Measure:
    """One look at a process."""

    descriptors: int
    threads: int
    resident: float  # megabytes
    proportional: float  # the same, with what is shared divided among those who share it

    def __str__(self) -> str:
        return (f"{self.descriptors} descriptors, {self.threads} threads, "
                f"{self.resident:.1f} MB resident, {self.proportional:.1f} MB proportional")


def measure(pid: int) -> Measure:
    """Counts what a process holds."""
    fields = dict(line.split(":", 1) for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:])
    resident, proportional = (int(fields[name].split()[0]) * 1024 / 1e6 for name in ("Rss", "Pss"))
    return Measure(len(os.listdir(f"/proc/{pid}/fd")), len(os.listdir(f"/proc/{pid}/task")), resident, proportional)


def descriptors(pid: int) -> dict[str, int]:
    """How many descriptors of each kind a process has open."""
    counts: dict[str, int] = {}
    for entry in os.scandir(f"/proc/{pid}/fd"):
        with contextlib.suppress(OSError):
            kind = re.sub(r"\d+", "N", os.readlink(entry.path))
            counts[kind] = counts.get(kind, 0) + 1
    return counts


def threads(pid: int) -> list[str]:
    """The names of a process's threads."""
    return sorted(Path(f"/proc/{pid}/task/{task}/comm").read_text().strip() for task in os.listdir(f"/proc/{pid}/task"))


def wake_ups(pid: int, seconds: float) -> tuple[int, int]:
    """How often the main thread, and all threads together, were woken while nobody touched the process."""
    def now() -> dict[str, int]:
        return {task: _switches(pid, task) for task in os.listdir(f"/proc/{pid}/task")}
    before = now()
    time.sleep(seconds)
    grown = {task: count - before.get(task, 0) for task, count in now().items()}
    return grown[str(pid)], sum(grown.values())


def _switches(pid: int, task: str) -> int:
    with contextlib.suppress(OSError):
        found = re.search(r"^voluntary_ctxt_switches:\t(\d+)", Path(f"/proc/{pid}/task/{task}/status").read_text(),
                          re.MULTILINE)
        return int(found[1]) if found else 0
    return 0


def children(pid: int, names: dict[str, str]) -> dict[str, list[int]]:
    """The ssh processes with a forward below a process, by the names of the tunnels with these local ports."""
    found: dict[str, list[int]] = {}
    for child in descendants(pid):
        with contextlib.suppress(OSError):
            if program_name(child) == "ssh":
                forward = _FORWARD.search(Path(f"/proc/{child}/cmdline").read_bytes())
                port = (forward[1] or forward[2]).decode() if forward else ""
                found.setdefault(names.get(port, ""), []).append(child)  # "": what ssh started for a jump host
    return found
