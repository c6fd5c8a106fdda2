#!/usr/bin/python3
"""Prints the version of this source, the second in which it was released, and that day: "3.1.0 1789000000 2026-09-10".

The version is that of project() in CMakeLists.txt. The day is the one in the heading of that version in CHANGELOG.md;
while it says "unreleased", the time is that of the last commit. SOURCE_DATE_EPOCH in the environment wins
(https://reproducible-builds.org/specs/source-date-epoch/).
"""

import datetime
import os
import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[1]
UTC = datetime.timezone.utc


def version() -> str:
    """The version in CMakeLists.txt."""
    found = re.search(r"^project\(Fernwick VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)
    if found is None:
        raise SystemExit("CMakeLists.txt has no version in project()")
    return found[1]


def released(of: str) -> int:
    """When that version was released, in seconds since 1970."""
    if given := os.environ.get("SOURCE_DATE_EPOCH"):
        return int(given)
    heading = rf"^## \[{re.escape(of)}\] - ([0-9]{{4}}-[0-9]{{2}}-[0-9]{{2}})$"
    if dated := re.search(heading, (ROOT / "CHANGELOG.md").read_text(), re.MULTILINE):
        return int(datetime.datetime.fromisoformat(dated[1]).replace(tzinfo=UTC).timestamp())
    last = subprocess.run(["git", "-C", ROOT, "log", "-1", "--format=%ct"], capture_output=True, text=True, check=True)
    return int(last.stdout)


if __name__ == "__main__":
    number = version()
    second = released(number)
    print(number, second, datetime.datetime.fromtimestamp(second, UTC).date().isoformat())
