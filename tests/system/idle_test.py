"""An application that nobody touches does nothing."""

from __future__ import annotations

import os
import time
from pathlib import Path

from harness import SshTest, main
from lab.wire import free_port

SETTLE, WATCH = 3.0, 5.0
TICK = 10_000_000  # nanoseconds; not even one is used
WAKE_UPS = 8


def processor_time(pid: int) -> dict[str, int]:
    """How long each thread has been on the processor so far, in nanoseconds, as the scheduler counts it: the ticks in
    /proc/PID/stat are shared out between user and system late, and one can appear while nothing runs."""
    return {task: int(Path(f"/proc/{pid}/task/{task}/schedstat").read_text().split()[0])
            for task in os.listdir(f"/proc/{pid}/task")}


def wake_ups(pid: int) -> dict[str, int]:
    """How often each thread gave up the processor of its own will, which is how often it was woken."""
    counts = {}
    for task in os.listdir(f"/proc/{pid}/task"):
        status = Path(f"/proc/{pid}/task/{task}/status").read_text().splitlines()
        fields = dict(line.split(":\t", 1) for line in status if ":\t" in line)
        counts[f"{task} {fields['Name']}"] = int(fields["voluntary_ctxt_switches"])
    return counts


class Idle(SshTest):
    """Watched from outside, through /proc, so that the watching itself wakes nobody."""

    def assert_idle(self, pid: int, what: str) -> None:
        """Over the watch the process uses no time and hardly wakes."""
        time.sleep(SETTLE)
        spent, before = processor_time(pid), wake_ups(pid)
        time.sleep(WATCH)
        used = sum(now - spent.get(task, 0) for task, now in processor_time(pid).items())
        after = wake_ups(pid)
        grown = {thread: after[thread] - before.get(thread, 0) for thread in after}
        print(f"idle, {what}: {used / 1e6:.2f} ms and {sum(grown.values())} wake-ups in {WATCH:g} s, "
              f"{len(after)} threads: {({name: count for name, count in grown.items() if count})}")
        self.assertLess(used, TICK)
        self.assertLessEqual(sum(grown.values()), WAKE_UPS, grown)

    def test_window_alone_is_idle(self) -> None:
        app = self.start(self.tunnel("Idle"))
        app.select("Idle")
        self.assert_idle(app.pid, "window on the screen")

    def test_connected_tunnel_is_idle(self) -> None:
        app = self.start(self.tunnel("Busy", localPort=str(free_port())), keys=[self.key])
        self.connect(app, "Busy")
        self.assert_idle(app.pid, "one tunnel connected")


if __name__ == "__main__":
    main()
