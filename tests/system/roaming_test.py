"""A laptop that loses its way out to the network and finds it again, awake or asleep."""

from __future__ import annotations

import subprocess

from harness import SshTest, main, stored, wait_until
from lab.app import App
from lab.network import FAR, FAR_ADDRESS, NEAR, Network
from lab.power import Logind
from lab.session import sleeps
from lab.waiting import wait_for

WATCHER = "network path"


class Roaming(SshTest):
    """The application and the server on two sides of a cable, with a route that comes and goes."""

    logind: Logind

    @classmethod
    def setUpClass(cls) -> None:
        """Adds a logind to what all cases share."""
        super().setUpClass()
        cls.logind = Logind(cls.session)

    def setUp(self) -> None:
        """Lays the cable."""
        super().setUp()
        self.network = Network()
        self.addCleanup(self.network.close)
        self.server = self.lab.add_server("far", inside=FAR, address=FAR_ADDRESS)
        self.addCleanup(self.server.stop)

    def roaming(self, name: str) -> tuple[App, stored.Record]:
        """The application on the near side, with one tunnel to the far one, connected."""
        port = str(self.server.port)
        record = self.tunnel(name, host=FAR_ADDRESS, sshPort=port, localPort="18080", remoteHost=FAR_ADDRESS,
                             remotePort=port, keepAliveInterval=1, reconnectOnFailure=True)
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

    def take_route_seen(self, app: App) -> None:
        """Takes the route away and waits until the application has noticed, which nothing in its window tells.

        The thread that watches sleeps twice more then: while the change settles, and when it has been told on.
        """
        before = sleeps(app.pid, WATCHER)
        self.assertGreater(before, 0, f"a thread {WATCHER!r} watches the network")
        self.network.take_route()
        wait_until(lambda: sleeps(app.pid, WATCHER) >= before + 2, "the route's end is noticed")

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
        self.take_route_seen(app)
        self.logind.wake()
        self.said(app, "☀️ Mac woke up. Waiting for network...")
        self.assertFalse(wait_for(app.children, 1.0), "nothing comes back")
        self.network.give_route()
        self.said(app, "🌐 Mạng trở lại — đang kết nối lại...")
        self.assert_banner()
        app.find("Connected")


if __name__ == "__main__":
    main()
