#!/usr/bin/env python3
"""Checks the walls between the floors of src/, and the size of its files.

Prints one line per fault as "path:line: what is wrong" and exits with status 1 if there is any.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SRC = ROOT / "src"

# From the bottom up; a folder includes itself and those before it.
FLOORS = ["support", "platform", "catalogue", "tunnel", "routing", "portability", "updating", "screens", "shell"]
CORE = set(FLOORS[:7])
BACKENDS = {"qt", "posix", "linux", "macos", "modules"}
# The one core source that speaks to the operating system itself: the sockets of the PAC server.
SOCKETS = "routing/PACListener.cpp"
HEADER_LINES, SOURCE_LINES = 150, 500

# The C++ standard library's headers have no extension; these are the only others that the core may include.
CORE_LIBRARIES = re.compile(r"^(fmt|unicode|simdjson|plist)\b")
OS_HEADER = re.compile(r"\.h$|/")
OS_CONDITION = re.compile(r"^\s*#\s*(el)?if(n?def)?\b.*(__linux__|__APPLE__|__unix__|_WIN32|Q_OS_|TARGET_OS)")
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def faults_of(path: pathlib.Path) -> list[str]:
    """The faults of one file, each as "path:line: text"."""
    relative = path.relative_to(SRC)
    floor = relative.parts[0] if len(relative.parts) > 1 else "main"
    backend = floor == "platform" and relative.parts[1] in BACKENDS
    sockets = relative.as_posix() == SOCKETS
    shown = path.relative_to(ROOT)
    lines = path.read_text(encoding="utf-8").splitlines()
    faults = []
    limit = HEADER_LINES if path.suffix == ".h" else SOURCE_LINES
    if len(lines) > limit:
        faults.append(f"{shown}:1: {len(lines)} lines, the limit is {limit}")
    for number, line in enumerate(lines, 1):
        if OS_CONDITION.search(line) and floor != "platform":
            faults.append(f"{shown}:{number}: asks for the operating system outside platform/")
        included = INCLUDE.match(line)
        if not included:
            continue
        quoted, target = included.group(1) == '"', included.group(2)
        if sockets and (target.startswith("platform/posix/") if quoted else not target.startswith("Q")):
            continue
        if quoted:
            faults += [f"{shown}:{number}: {text}" for text in quoted_faults(floor, target)]
        elif floor in CORE and not backend and is_foreign(target):
            faults.append(f"{shown}:{number}: <{target}> in a floor that knows neither Qt nor the operating system")
    return faults


def quoted_faults(floor: str, target: str) -> list[str]:
    """What is wrong with a floor's include of one of our own files."""
    if floor == "main":
        return [] if target.startswith("shell/") else ["the entry includes only the shell"]
    parts = target.split("/")
    if parts[0] not in FLOORS:
        return [f'"{target}" is not written from src/']
    if FLOORS.index(parts[0]) > FLOORS.index(floor):
        return [f'{floor}/ includes "{target}" of a floor above it']
    if parts[0] == "platform" and parts[1] in BACKENDS and floor not in ("platform", "shell"):
        return [f'{floor}/ includes the backend "{target}"']
    return []


def is_foreign(header: str) -> bool:
    """Whether an angled include is neither the standard library nor a library of the core."""
    if CORE_LIBRARIES.match(header):
        return False
    return header.startswith("Q") or bool(OS_HEADER.search(header))


def main() -> int:
    """Checks every source file under src/."""
    files = [p for p in sorted(SRC.rglob("*")) if p.suffix in (".h", ".cpp", ".mm")]
    faults = [fault for path in files for fault in faults_of(path)]
    print("\n".join(faults) if faults else f"walls: {len(files)} files, no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
