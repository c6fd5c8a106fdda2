"""Every way out of the application, with a connected tunnel: no ssh child outlives it."""

from __future__ import annotations

import signal
import time

from harness import SshTest, main, wait_until
from lab import site
from lab.app import App
from lab.wire import free_port, listens


class Quitting(SshTest):
    """Each case connects one tunnel first and looks for its child afterwards."""

    def setUp(self) -> None:
        """Connects a tunnel."""
        super().setUp()
        self.port = free_port()
        record = self.tunnel("Open", localPort=str(self.port), remoteHost=site.NAME, remotePort="80",
                             reconnectOnFailure=True)
        self.app: App = self.start(record, keys=[self.key])
        self.connect(self.app, "Open")
        self.assertEqual(len(self.app.children()), 1)

    def assert_left_nothing(self, began: float, limit: float = 3.5) -> None:
        """No ssh is alive, the port is free, and it took no longer than the two seconds that quitting may wait."""
        self.no_child_left()
        self.assertFalse(listens(self.port))
        self.assertLess(time.monotonic() - began, limit)

    def test_terminate_signal_quits(self) -> None:
        began = time.monotonic()
        self.assertEqual(self.app.quit(signal.SIGTERM), 0)
        self.assert_left_nothing(began)

    def test_interrupt_signal_quits(self) -> None:
        began = time.monotonic()
        self.assertEqual(self.app.quit(signal.SIGINT), 0)
        self.assert_left_nothing(began)

    def test_hangup_signal_quits(self) -> None:
        began = time.monotonic()
        self.app.quit(signal.SIGHUP)
        self.assert_left_nothing(began)

    def test_quit_shortcut_quits(self) -> None:
        began = time.monotonic()
        self.app.keys("ctrl+q")
        self.assertEqual(self.app.ended(), 0)
        self.assert_left_nothing(began)

    def test_kill_takes_the_children_along(self) -> None:
        began = time.monotonic()
        self.app.quit(signal.SIGKILL)
        self.assert_left_nothing(began)

    def test_crash_takes_the_children_along(self) -> None:
        began = time.monotonic()
        self.app.quit(signal.SIGSEGV)
        self.assert_left_nothing(began)

    def test_quit_while_connecting_leaves_nothing(self) -> None:
        self.app.press("Stop")
        self.app.find("Idle")
        wait_until(lambda: not self.app.children(), "the child ends")
        self.app.press("Connect")
        wait_until(self.app.children, "the child is there")
        began = time.monotonic()
        self.assertEqual(self.app.quit(), 0)
        self.assert_left_nothing(began)

    def test_end_of_the_display_leaves_nothing(self) -> None:
        began = time.monotonic()
        self.desktop.xdotool("windowkill", self.app.window())
        self.app.ended()
        self.assert_left_nothing(began)


if __name__ == "__main__":
    main()
