#!/usr/bin/env python3
"""Adds up the JUnit files of a test run: count_tests.py FOLDER [BROKEN-STAGE...].

Prints the sum as "N passed, N failed" on the last line. Each broken stage that has no failed test to show for it (a
build that broke, a check of form) counts as one failure. Exits with 1 if anything failed.
"""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def count(path: pathlib.Path) -> tuple[int, int]:
    """How many tests of one file passed, and how many failed."""
    suite = ElementTree.parse(path).getroot()
    number = {key: int(suite.get(key, "0")) for key in ("tests", "failures", "disabled", "skipped")}
    return number["tests"] - number["failures"] - number["disabled"] - number["skipped"], number["failures"]


def main(folder: str, broken: list[str]) -> int:
    """Prints a line per run and the sum of all."""
    passed = failed = 0
    for path in sorted(pathlib.Path(folder).glob("*.xml")):
        good, bad = count(path)
        print(f"{path.stem}: {good} passed, {bad} failed")
        passed, failed = passed + good, failed + bad
        if bad and path.stem in broken:
            broken.remove(path.stem)
    for stage in broken:
        print(f"{stage}: broken")
    failed += len(broken)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
