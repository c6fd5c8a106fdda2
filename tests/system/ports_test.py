"""Local ports that somebody holds when a tunnel wants them, or still holds when it has stopped."""

from __future__ import annotations

import sys

from harness import SshTest, main, stored, wait_until
from lab import site
from lab.session import POWERLESS
from lab.sshlab import start_site
from lab.wire import fetch, free_port, listens

CLIENT = "import socket, sys, time; s = socket.create_connection((sys.argv[1], int(sys.argv[2]))); time.sleep(600)"


class Ports(SshTest):
    """The real lsof finds the holders; those that are to be found have no more rights than the application."""

    def local(self, name: str, port: int) -> stored.Record:
        """A forward to the site behind the server."""
        return self.tunnel(name, localPort=str(port), remoteHost=site.NAME, remotePort=str(self.lab.site_port))

    def test_holder_of_the_port_is_ended_and_the_tunnel_comes_up(self) -> None:
        port = free_port()
        holder = start_site(self.session, port, inside=POWERLESS)
        app = self.start(self.local("Held", port), keys=[self.key])
        self.connect(app, "Held")
        wait_until(lambda: listens(port), "the forward is up")
        self.assertEqual(fetch(port, site.NAME).decode(), site.GREETING)
        self.assertIsNotNone(holder.poll())
        log = app.log()
        self.assertEqual(log[1:3], [f"⚠ Port :{port} bị chiếm — đang kill...", f"✓ Port :{port} đã được giải phóng"])

    def test_client_of_a_far_port_of_that_number_is_ended_too(self) -> None:
        port = free_port("127.83.72.2")
        start_site(self.session, port, "127.83.72.2")
        client = self.session.start([*POWERLESS, sys.executable, "-c", CLIENT, "127.83.72.2", str(port)])
        app = self.start(self.local("Client", port), keys=[self.key])
        app.select("Client")
        wait_until(lambda: f":{port:04X} " in _connections(client.pid), "the client is connected")
        app.press("Connect")
        app.find("Connected")
        wait_until(lambda: client.poll() is not None, "the client was ended")

    def test_free_port_gives_no_line(self) -> None:
        port = free_port()
        app = self.start(self.local("Free", port), keys=[self.key])
        self.connect(app, "Free")
        self.assertFalse([line for line in app.log() if "Port :" in line])

    def test_what_is_left_on_the_port_is_ended_after_the_stop(self) -> None:
        port = free_port()
        app = self.start(self.local("Orphan", port), keys=[self.key])
        self.connect(app, "Orphan")
        wait_until(lambda: listens(port), "the forward is up")
        orphan = start_site(self.session, port, "127.83.72.3", inside=POWERLESS)
        app.press("Stop")
        wait_until(lambda: orphan.poll() is not None, "the orphan was ended")
        wait_until(lambda: f"■ Killed orphaned PID(s) on :{port}" in app.log(), "the log says so")

    def test_stop_while_the_port_is_cleared_launches_nothing(self) -> None:
        port = free_port()
        stubborn = self.session.start([*POWERLESS, sys.executable, "-c", _STUBBORN, str(port)])
        wait_until(lambda: listens(port), "the holder listens")
        app = self.start(self.local("Hasty", port), keys=[self.key])
        app.select("Hasty")
        app.press("Connect")
        app.press("Stop")
        wait_until(lambda: stubborn.poll() is not None, "the holder was killed")
        wait_until(lambda: f"✓ Port :{port} đã được giải phóng" in app.log(), "the port is clear")
        self.assertFalse(app.children())
        self.assertFalse([line for line in app.log() if line.startswith("Executing: ")])
        app.find("Idle")


# Listens, and takes no notice of being asked to end.
_STUBBORN = ("import signal, socket, sys, time; signal.signal(signal.SIGTERM, signal.SIG_IGN); s = socket.socket(); "
             "s.bind(('127.0.0.1', int(sys.argv[1]))); s.listen(); time.sleep(600)")


def _connections(pid: int) -> str:
    """The kernel's list of TCP connections as the process sees it."""
    with open(f"/proc/{pid}/net/tcp", encoding="ascii") as table:
        return table.read()


if __name__ == "__main__":
    main()
