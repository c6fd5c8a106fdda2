"""Too much of everything: a child that writes without end, and two hundred tunnels at once."""

from __future__ import annotations

import os
import time
from pathlib import Path

from harness import App, SystemTest, main, stored, wait_until
from lab.screen import Widget

LINES, TUNNELS = 100_000, 200
MEGABYTES_ALLOWED = 60
UP = "Tunnel is up localhost: -> 127.0.0.1"
CONNECTED_WITHIN, SLACK = 2.0, 2.0


def resident(pid: int) -> float:
    """The memory of a process that is in use, in megabytes."""
    return int(Path(f"/proc/{pid}/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE") / 1e6


def last_of(log: Widget) -> str:
    """The newest message in the log."""
    last = log.get_child_at_index(log.get_child_count() - 1)
    return str(last.get_name()) if last is not None else ""


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
        app.turn_to("Logs")
        before, began = resident(app.pid), time.monotonic()
        app.press("Connect")
        log, slowest, last = app.find("Logs", "list"), 0.0, ""
        while last not in (f"debug1: line {LINES}", UP):
            asked = time.monotonic()
            last = last_of(log)
            slowest = max(slowest, time.monotonic() - asked)
            self.assertLess(asked - began, 30, f"the last line did not come, but {last!r}")
            time.sleep(0.01)
        took = time.monotonic() - began
        app.find("500 entries")
        wait_until(lambda: f"debug1: line {LINES}" in app.log(), "the last line is on the screen")
        grown = resident(app.pid) - before
        print(f"flood: {LINES} lines in {took:.2f} s, slowest answer {slowest * 1000:.1f} ms, "
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
        app.start_all()
        wait_until(lambda: len(app.children("sleep")) == TUNNELS, "all children are there", 20)
        launched = time.monotonic()
        wait_until(lambda: set(app.states().values()) == {"Connected"}, "all tunnels are connected", 20)
        late = time.monotonic() - launched
        print(f"{TUNNELS} tunnels: started by hand in {launched - began:.2f} s, all connected {late:.2f} s later")
        self.assertLess(late, CONNECTED_WITHIN + SLACK)
        wait_until(lambda: all("lastConnectedAt" in record for record in self.preferences.tunnels()),
                   "the times are kept")
        began = time.monotonic()
        self.assertEqual(app.quit(), 0)
        wait_until(lambda: not self.session.processes("sleep"), "the children end")
        print(f"{TUNNELS} tunnels: gone {time.monotonic() - began:.2f} s after quitting")


if __name__ == "__main__":
    main()
