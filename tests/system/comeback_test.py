"""Tunnels that come back by themselves: after a dead child, a dead server, a lost route, a sleep."""

from __future__ import annotations

import os
import signal
import subprocess
import time

from harness import SshTest, main, stored, wait_until
from lab import site
from lab.app import App
from lab.network import FAR, FAR_ADDRESS, NEAR, Network
from lab.power import Logind
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

    def said(self, app: App, begin: str, deadline: float = 10.0) -> None:
        """Waits for a line of the log that begins so."""
        wait_until(lambda: any(line.startswith(begin) for line in app.log()), f"the log says {begin!r}", deadline)

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
        time.sleep(5.5)  # the retry would have come by now
        self.assertFalse(app.children())
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


class Roaming(Comeback):
    """The application and the server on two sides of a cable, with a route that comes and goes."""

    # the cases of the other class run there alone
    test_killed_child_is_back_after_five_seconds = None
    test_dead_server_means_five_retries_and_then_a_hand = None
    test_stop_during_the_wait_is_final = None
    test_sleep_ends_the_children_and_wake_brings_them_back = None
    test_quit_lets_the_machine_sleep = None

    def setUp(self) -> None:
        """Lays the cable."""
        super().setUp()
        self.network = Network()
        self.addCleanup(self.network.close)
        self.server = self.lab.add_server("far", inside=FAR, address=FAR_ADDRESS)
        self.addCleanup(self.server.stop)

    def roaming(self, name: str) -> tuple[App, stored.Record]:
        """The application on the near side, with one tunnel to the far one, connected."""
        record = self.tunnel(name, host=FAR_ADDRESS, sshPort=str(self.server.port), localPort="18080",
                             remotePort=str(self.server.port), keepAliveInterval=1, reconnectOnFailure=True)
        self.preferences.seed(**{stored.TUNNELS: [record], stored.KEYS: [self.key]})
        app = self.start_as_is(inside=NEAR)
        self.connect(app, name)
        self.assert_banner()
        return app, record

    def assert_banner(self, deadline: float = 15.0) -> None:
        """The tunnel leads to the far side's ssh server, which speaks first."""
        probe = ("import socket; s = socket.create_connection(('127.0.0.1', 18080), 2); s.settimeout(2); "
                 "print(s.recv(64).decode())")

        def banner() -> bool:
            done = subprocess.run([*NEAR, "/usr/bin/python3", "-c", probe], capture_output=True, text=True)
            return done.stdout.startswith("SSH-2.0")
        wait_until(banner, "bytes come through the tunnel", deadline)

    def test_route_that_goes_and_returns(self) -> None:
        app, _ = self.roaming("Roamer")
        self.network.take_route()
        self.said(app, "🔴 Mất kết nối mạng — reconnect sau 5s (lần 1/5)...", 15)
        self.network.give_route()
        self.said(app, "🌐 Mạng trở lại — đang kết nối lại...")
        self.assert_banner()
        app.find("Connected")
        self.assertEqual(len(app.children()), 1)

    def test_wake_without_a_network_waits_for_it(self) -> None:
        app, _ = self.roaming("Traveller")
        self.logind.prepare_for_sleep()
        wait_until(lambda: not app.children(), "the child is gone", 2)
        self.network.take_route()
        time.sleep(0.5)  # the route's end is noticed while the machine sleeps
        self.logind.wake()
        self.said(app, "☀️ Mac woke up. Waiting for network...")
        time.sleep(1.0)
        self.assertFalse(app.children())
        self.network.give_route()
        self.said(app, "🌐 Mạng trở lại — đang kết nối lại...")
        self.assert_banner()
        app.find("Connected")


if __name__ == "__main__":
    main()
