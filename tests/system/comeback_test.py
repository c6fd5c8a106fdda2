"""Tunnels that come back by themselves: after a dead child, a dead server, a sleep."""

from __future__ import annotations

import os
import signal
import time

from harness import SshTest, main, stored, wait_until
from lab import site
from lab.app import App
from lab.power import Logind
from lab.waiting import wait_for
from lab.wire import fetch, free_port, listens

GIVE_UP = "Error: Mất kết nối — thử lại thủ công"


class Comeback(SshTest):
    """Real time: a retry waits five seconds."""

    logind: Logind

    @classmethod
    def setUpClass(cls) -> None:
        """Adds a logind to what all cases share."""
        super().setUpClass()
        cls.logind = Logind(cls.session)

    def up(self, name: str, **fields: object) -> tuple[App, stored.Record]:
        """The application with one tunnel that comes back by itself, connected."""
        record = self.tunnel(name, localPort=str(free_port()), remoteHost=site.NAME,
                             remotePort=str(self.lab.site_port), **{"reconnectOnFailure": True, **fields})
        app = self.start(record, keys=[self.key])
        self.connect(app, name)
        wait_until(lambda: listens(int(record["localPort"])), "the forward is up")
        return app, record

    def assert_back(self, record: stored.Record, deadline: float = 15.0) -> None:
        """Bytes flow again."""
        wait_until(lambda: listens(int(record["localPort"])), "the forward is back", deadline)
        self.assertEqual(fetch(int(record["localPort"]), site.NAME).decode(), site.GREETING)

    def test_killed_child_is_back_after_five_seconds(self) -> None:
        app, record = self.up("Killed child")
        old = app.children()
        began = time.monotonic()
        os.kill(old[0], signal.SIGKILL)
        self.said(app, "⚠ Process thoát bất thường — reconnect sau 5s (lần 1/5)...")
        self.assert_back(record)
        self.assertGreater(time.monotonic() - began, 5.0)
        self.said(app, "↻ Đang kết nối lại...")
        app.find("Connected")
        self.assertEqual(len(app.children()), 1)
        self.assertNotEqual(app.children(), old)

    def test_dead_server_means_five_retries_and_then_a_hand(self) -> None:
        app, record = self.up("Dead server")
        self.lab.server.kill()
        for attempt in range(1, 6):
            self.said(app, f"🔴 Mất kết nối mạng — reconnect sau 5s (lần {attempt}/5)...", 9)
        self.said(app, "✗ Đã thử 5 lần, không kết nối được.", 9)
        wait_until(lambda: GIVE_UP in app.texts(), "the status says so")
        self.assertFalse(app.children())
        self.lab.server.start()
        app.press("Connect")
        self.assert_back(record)
        app.find("Connected")

    def test_stop_during_the_wait_is_final(self) -> None:
        app, record = self.up("Stopped")
        os.kill(app.children()[0], signal.SIGKILL)
        self.said(app, "⚠ Process thoát bất thường")
        app.press("Stop")
        app.find("Idle")
        self.assertFalse(wait_for(app.children, 5.5), "no retry comes")
        self.assertFalse(listens(int(record["localPort"])))

    def test_sleep_ends_the_children_and_wake_brings_them_back(self) -> None:
        app, record = self.up("Sleeper")
        wait_until(lambda: self.logind.inhibitors() == 1, "sleep is held back")
        self.logind.prepare_for_sleep()
        wait_until(lambda: not app.children(), "the child is gone", 2)
        self.said(app, "🌙 Sleep đang diễn ra, sẽ reconnect khi thức dậy.")
        self.assertFalse(listens(int(record["localPort"])))
        self.logind.wake()
        self.assert_back(record, 5.0)
        self.said(app, "🌐 Woke up — reconnecting...")
        wait_until(lambda: self.logind.inhibitors() == 1, "sleep is held back again")

    def test_quit_lets_the_machine_sleep(self) -> None:
        app, _ = self.up("Quitter")
        wait_until(lambda: self.logind.inhibitors() == 1, "sleep is held back")
        app.quit()
        wait_until(lambda: self.logind.inhibitors() == 0, "nobody holds it back")


if __name__ == "__main__":
    main()
