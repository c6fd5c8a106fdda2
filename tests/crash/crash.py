"""Kills the application again and again while it saves, backs up and restores, and looks at what is left.

crash.py [--rounds N] [--seed N]. After each kill the preference file is whole, each list in it is one that the
application meant to store (the last one that was certainly written, or a later one), every backup is whole, and the
next start finds exactly what the file holds. Ends with status 1 at the first round where that is not so.
"""

from __future__ import annotations

import argparse
import base64
import json
import os
import plistlib
import random
import subprocess
import sys
import tempfile
import threading
import time
import zlib
from collections import Counter
from pathlib import Path

DOMAIN = "com.fernwick.Fernwick"
LISTS = {"tunnels": "savedTunnelsData_v2", "tags": "savedTunnelTags", "keys": "savedSSHKeys",
         "proxies": "com.fernwick.proxies", "rules": "com.fernwick.rules"}
Sum = tuple[int, int]  # checksum and length


class Journal:
    """What the application said that it stores, over all its lives."""

    def __init__(self) -> None:
        self.possible: dict[str, list[Sum]] = {key: [] for key in LISTS.values()}  # the file holds one of these
        self.known: dict[str, set[Sum]] = {key: set() for key in LISTS.values()}
        self.loaded: list[int] = []
        self.seen: Counter[str] = Counter()

    def take(self, line: str) -> None:
        """Takes in one line."""
        word, *rest = line.split()
        self.seen[word] += 1
        if word == "loaded":
            self.loaded = [int(number) for number in rest]
        elif word == "set" and rest[0] in self.possible:
            value = (int(rest[1]), int(rest[2]))
            self.possible[rest[0]].append(value)
            self.known[rest[0]].add(value)
        elif word == "synced":
            for key, values in self.possible.items():
                self.possible[key] = values[-1:]

    def settle(self, stored: dict[str, bytes]) -> None:
        """What the file holds is all that is left."""
        for key in self.possible:
            self.possible[key] = [sum_of(stored[key])] if key in stored else []


def sum_of(data: bytes) -> Sum:
    """What the application tells of a list."""
    return zlib.crc32(data), len(data)


class Broken(Exception):
    """Something was lost or torn."""


class Home:
    """The folders of one user, and how the application lives and dies there."""

    def __init__(self, folder: Path, program: Path) -> None:
        self.folder, self.program = folder, program
        self.file = folder / f".config/{DOMAIN}.plist"
        self.backups = folder / "Documents/Fernwick/Backups"

    def live(self, seed: int, seconds: float, journal: Journal) -> None:
        """One life, of that many seconds; it may not even have loaded by then."""
        environment = {"HOME": str(self.folder), "PATH": os.environ["PATH"], "LANG": "C.UTF-8"}
        child = subprocess.Popen([self.program, str(seed)], env=environment, stdout=subprocess.PIPE, text=True)
        assert child.stdout is not None
        journal.loaded = []
        killer = threading.Timer(seconds, child.kill)
        killer.start()
        for line in child.stdout:
            journal.take(line)
        killer.join()
        if child.wait() != -9:
            raise Broken(f"it ended by itself with {child.returncode}")

    def stored(self) -> dict[str, bytes]:
        """The lists of the preference file."""
        if not self.file.exists():
            return {}
        with self.file.open("rb") as file:
            return {key: value for key, value in plistlib.load(file).items() if key in LISTS.values()}

    def check(self, journal: Journal) -> None:
        """Raises when anything is not as it must be."""
        stored = self.stored()
        for key, values in journal.possible.items():
            if key in stored:
                json.loads(stored[key])
            if (sum_of(stored[key]) if key in stored else None) not in (values or [None]):
                raise Broken(f"{key} is none of the {len(values)} that it may be")
        journal.settle(stored)
        for path in self.backups.glob("Fernwick_*"):
            for name, text in json.loads(path.read_text()).items():
                if sum_of(base64.b64decode(text, validate=True)) not in journal.known[LISTS[name]]:
                    raise Broken(f"{path.name}: {name} was never stored")
        aside = [path.name for path in self.file.parent.iterdir() if "unreadable" in path.name.lower()]
        if aside:
            raise Broken(f"set aside: {aside}")

    def litter(self) -> int:
        """How many temporary files were left behind."""
        folders = [folder for folder in (self.file.parent, self.backups) if folder.exists()]
        return sum(1 for folder in folders for path in folder.iterdir()
                   if path != self.file and not path.name.startswith("Fernwick_"))


def rounds(home: Home, count: int, seed: int) -> Counter[str]:
    """Lives that many times; returns how often what was seen."""
    chance, journal = random.Random(seed), Journal()
    for number in range(count):
        before = [len(json.loads(data)) if data else 0
                  for data in (home.stored().get(key) for key in LISTS.values())]
        home.live(chance.randrange(1 << 30), chance.uniform(0.0, 0.3), journal)
        # a first start makes a tunnel and tags of its own
        if number > 0 and journal.loaded and journal.loaded != before:
            raise Broken(f"round {number}: stored {before}, loaded {journal.loaded}")
        home.check(journal)
    return journal.seen


def main() -> None:
    parser = argparse.ArgumentParser()
    parser.add_argument("--rounds", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=int(time.time()))
    options = parser.parse_args()
    program = Path(os.environ["FERNWICK_CRASH_PROGRAM"])
    with tempfile.TemporaryDirectory(prefix="fernwick-crash-") as folder:
        home = Home(Path(folder), program)
        try:
            seen = rounds(home, options.rounds, options.seed)
        except Broken as broken:
            sys.exit(f"FAILED with --seed {options.seed}: {broken}")
        litter = home.litter()
    print(f"{options.rounds} kills: {seen['set']} lists stored, {seen['backup']} backups and {seen['restored']} restores "
          f"made, {seen['failed']} failed; {litter} temporary files left")
    if min(seen["loaded"], seen["set"], seen["backup"], seen["restored"], seen["synced"]) == 0 or seen["failed"] or litter > 3:
        sys.exit("FAILED: not everything was tried, or something was left behind")


if __name__ == "__main__":
    main()
