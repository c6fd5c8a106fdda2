"""Too much of everything: a child that writes without end, and two hundred tunnels at once."""

from __future__ import annotations

import os
import time
from pathlib import Path

from harness import App, SystemTest, main, stored, wait_until

LINES, TUNNELS = 100_000, 200
MEGABYTES_ALLOWED = 60
CONNECTED_WITHIN, SLACK = 2.0, 2.0


def resident(pid: int) -> float:
    """The memory of a process that is in use, in megabytes."""
    return int(Path(f"/proc/{pid}/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 1e6


class Flood(SystemTest):
    """Programs of the test's own stand in the place of ssh."""

    def program(self, name: str, *lines: str) -> Path:
        """A shell program in the session's folder."""
        path = self.session.root / name
        path.write_text("\n".join(["#!/bin/sh", *lines, ""]))
        path.chmod(0o755)
        return path

    def begin(self, stand_in: Path, *tunnels: stored.Record) -> App:
        """The application with these tunnels and another ssh."""
        self.preferences.seed(**{stored.TUNNELS: list(tunnels)})
        return self.start_as_is(stand_in=stand_in)

    def test_hundred_thousand_lines(self) -> None:
        app = self.begin(self.program("flood", f"seq -f 'debug1: line %.0f' {LINES} >&2", "exec sleep 600"),
                         stored.tunnel("Flood"))
        app.select("Flood")
        before, began, slowest = resident(app.pid), time.monotonic(), 0.0
        app.press("Connect")
        while not app.has("500 entries") or f"debug1: line {LINES}" not in app.log():
            asked = time.monotonic()
            app.root.get_child_at_index(0).get_name()
            slowest = max(slowest, time.monotonic() - asked)
            self.assertLess(time.monotonic() - began, 30, "the last line did not come")
        grown = resident(app.pid) - before
        print(f"flood: {LINES} lines in {time.monotonic() - began:.2f} s, slowest answer {slowest * 1000:.0f} ms, "
              f"memory grew by {grown:.1f} MB")
        self.assertLess(slowest, 1.0)
        self.assertLess(grown, MEGABYTES_ALLOWED)
        app.press("Stop")
        app.find("Idle", role=None)

    def test_endless_line_does_no_harm(self) -> None:
        app = self.begin(self.program("endless", "head -c 20000000 /dev/zero | tr '\\0' 'x' >&2", "exec sleep 600"),
                         stored.tunnel("Endless"))
        app.select("Endless")
        app.press("Connect")
        app.find("Connected", role=None)
        self.assertTrue(app.running())

    def test_two_hundred_tunnels_at_once(self) -> None:
        app = self.begin(self.program("sleeper", "exec sleep 600"),
                         *(stored.tunnel(f"T{number:03}") for number in range(TUNNELS)))
        app.row("T000")
        began = time.monotonic()
        app.start_all(TUNNELS)
        wait_until(lambda: len(app.children("sleep")) == TUNNELS, "all children are there", 20)
        launched = time.monotonic() - began
        wait_until(lambda: sum("lastConnectedAt" in record for record in self.preferences.tunnels()) == TUNNELS,
                   "all connect", 20)
        connected = time.monotonic() - began
        print(f"{TUNNELS} tunnels: children after {launched:.2f} s, connected after {connected:.2f} s")
        self.assertLess(connected, launched + CONNECTED_WITHIN + SLACK)
        began = time.monotonic()
        self.assertEqual(app.quit(), 0)
        wait_until(lambda: not self.session.processes("sleep"), "the children end")
        print(f"{TUNNELS} tunnels: gone {time.monotonic() - began:.2f} s after quitting")


if __name__ == "__main__":
    main()
