"""Bytes through every kind of tunnel, started by the real window, carried by the real ssh to a real server."""

from __future__ import annotations

import json
import plistlib
import subprocess

from harness import SshTest, main, stored, wait_until
from lab import site
from lab.app import App
from lab.sshlab import JUMP, start_site
from lab.waiting import wait_for
from lab.wire import fetch, free_port, listens, socks_connect

MEGABYTES = 8 * 1024 * 1024


class Forwards(SshTest):
    """One tunnel per case; the site behind the server answers only to its name there."""

    def local(self, name: str, **fields: object) -> stored.Record:
        """A local forward to the site behind the server."""
        return self.tunnel(name, localPort=str(free_port()), remoteHost=site.NAME,
                           remotePort=str(self.lab.site_port), **fields)

    def assert_carries(self, record: stored.Record, path: str = "/", expected: bytes = site.GREETING.encode()) -> None:
        """Fetches a page of the site through a local forward."""
        self.assertEqual(fetch(int(record["localPort"]), site.NAME, path), expected)

    def connected(self, record: stored.Record) -> App:
        """The application with this one tunnel, connected."""
        app = self.start(record, keys=[self.key])
        self.connect(app, record["name"])
        self.assert_up(record)
        return app

    def assert_up(self, record: stored.Record) -> None:
        """Waits for the forward itself: the window counts on time alone, and a busy machine may need longer."""
        port = record["remotePort" if record["tunnelType"] == stored.REMOTE else "localPort"]
        wait_until(lambda: listens(int(port)), f"port {port} is forwarded")

    def command_line(self, app: App) -> list[str]:
        """The words of the ssh child's command line; of the first one where a jump host makes two."""
        with open(f"/proc/{app.children()[0]}/cmdline", encoding="utf-8") as words:
            return words.read().rstrip("\0").split("\0")

    def test_local_forward_carries_megabytes(self) -> None:
        record = self.local("Local")
        self.connected(record)
        self.assert_carries(record)
        self.assert_carries(record, f"/bytes/{MEGABYTES}", site.some_bytes(MEGABYTES))

    def test_connecting_is_remembered_in_the_catalogue(self) -> None:
        before = stored.now()
        self.connected(self.local("Remembered"))
        wait_until(lambda: "lastConnectedAt" in self.preferences.tunnel("Remembered"), "the moment is stored")
        self.assertAlmostEqual(self.preferences.tunnel("Remembered")["lastConnectedAt"], before, delta=30)

    def test_remote_forward_leads_back_to_this_side(self) -> None:
        here, there = free_port(), free_port()
        record = self.tunnel("Remote", tunnelType=stored.REMOTE, localPort=str(here), remotePort=str(there))
        app = self.connected(record)
        start_site(self.session, here)
        self.assertEqual(fetch(there, site.NAME), site.GREETING.encode())
        self.assertIn(f"{there}:localhost:{here}", self.command_line(app))

    def test_socks5_proxy_resolves_names_on_the_far_side(self) -> None:
        self.assert_proxies(stored.SOCKS5)

    def test_dynamic_forward_resolves_names_on_the_far_side(self) -> None:
        self.assert_proxies(stored.DYNAMIC)

    def assert_proxies(self, kind: str) -> None:
        """Fetches a large page by the site's name through a tunnel of this type."""
        port = free_port()
        self.connected(self.tunnel("Proxy", tunnelType=kind, localPort=str(port)))
        wire = socks_connect(port, site.NAME, self.lab.site_port)
        page = fetch(port, site.NAME, f"/bytes/{MEGABYTES}", through=wire)
        self.assertEqual(page, site.some_bytes(MEGABYTES))

    def test_jump_host_of_the_configuration_file_is_used(self) -> None:
        record = self.local("Jump", jumpHost=JUMP)
        logins = self.lab.jump.log().count("Accepted publickey")
        self.connected(record)
        self.assert_carries(record)
        self.assertEqual(self.lab.jump.log().count("Accepted publickey"), logins + 1)

    def test_agent_logs_in_without_a_key_file(self) -> None:
        record = self.local("Agent", authMethod="SSH Agent") | {"identityKeyID": stored.fresh_id()}
        app = self.start(record)
        self.connect(app, "Agent")
        self.assert_up(record)
        self.assert_carries(record)
        self.assertNotIn("-i", self.command_line(app))

    def test_plain_key_logs_in_without_the_agent(self) -> None:
        record = self.local("Key")
        app = self.connected(record)
        self.assert_carries(record)
        words = self.command_line(app)
        self.assertEqual(words[words.index("-i") + 1], str(self.lab.key))
        with open(f"/proc/{app.children()[0]}/environ", encoding="utf-8", errors="replace") as environment:
            self.assertNotIn("SSH_AUTH_SOCK=", environment.read())

    def test_compression_is_asked_for(self) -> None:
        record = self.local("Compressed", compression=True)
        app = self.connected(record)
        self.assert_carries(record, f"/bytes/{MEGABYTES}", site.some_bytes(MEGABYTES))
        self.assertIn("-C", self.command_line(app))

    def test_stopping_frees_the_port_and_ends_the_child(self) -> None:
        record = self.local("Stopped")
        app = self.connected(record)
        app.press("Stop")
        app.find("Idle")
        wait_until(lambda: not app.children(), "the child ends")
        self.assertFalse(listens(int(record["localPort"])))

    def test_closed_window_keeps_the_tunnel(self) -> None:
        record = self.local("Hidden")
        app = self.connected(record)
        self.desktop.xdotool("windowactivate", "--sync", app.window(), "key", "alt+F4")
        wait_until(lambda: not app.window(), "the window is hidden")
        self.assertTrue(app.running())
        self.assert_carries(record)

    def test_nothing_connects_at_the_start_whatever_is_stored(self) -> None:
        record = self.local("Waiting")
        self.preferences.path.write_bytes(plistlib.dumps({
            "connectOnLaunch": True,
            stored.TUNNELS: json.dumps([record]).encode(),
            stored.KEYS: json.dumps([self.key]).encode(),
        }))
        app = self.start_as_is()
        app.select("Waiting")
        self.assertFalse(wait_for(app.children, 2.5))
        self.assertTrue(app.has("Connect"))

    def test_host_key_goes_to_the_known_hosts_of_the_run(self) -> None:
        known = self.session.home / ".ssh/known_hosts"
        known.unlink(missing_ok=True)
        self.connected(self.local("Known"))
        found = subprocess.run(["ssh-keygen", "-f", known, "-F", f"[127.0.0.1]:{self.lab.server.port}"],
                               capture_output=True, text=True)
        self.assertIn(self.lab.host_key.with_suffix(".pub").read_text().split()[1], found.stdout)


if __name__ == "__main__":
    main()
