"""Rules reach other programs: the page of the far side is fetched by the system's proxy settings, while a tunnel is up.

All of it runs in a network namespace of its own, since the address of the script is the same in every run.
"""

from __future__ import annotations

import os
import signal
import subprocess
from pathlib import Path

from harness import SshTest, main, own_network, stored, wait_until
from lab import pac, site
from lab.app import App
from lab.proxysettings import ProxySettings
from lab.waiting import wait_for
from lab.wire import free_port

CLIENT = Path(__file__).resolve().parents[2] / "script/demo/lab/webclient.py"


class Routing(SshTest):
    """A SOCKS tunnel to a private server, beside which lies a page that only that server can name."""

    def setUp(self) -> None:
        """A tunnel and a rule for the page; no proxy is set."""
        super().setUp()
        self.settings = ProxySettings(self.session)
        self.settings.set_gnome("mode", "none")
        self.port = free_port()
        self.record = self.tunnel("Office", tunnelType=stored.SOCKS5, localPort=str(self.port))
        self.page = f"http://{site.NAME}:{self.lab.site_port}/"

    def begin(self, *more: stored.Record, rules: list[stored.Record] | None = None) -> App:
        """Starts the application with the tunnel, `more` tunnels and the rules."""
        wanted = [stored.rule("Inside", "Tunnel", targetHosts=[site.NAME], tunnelID=self.record["id"])]
        self.preferences.seed(**{stored.TUNNELS: [self.record, *more], stored.KEYS: [self.key],
                                 stored.RULES: wanted if rules is None else rules})
        app = self.start_as_is()
        wait_until(lambda: wait_for(lambda: pac.served() == pac.DIRECT, 0.2), "the script is served")
        return app

    def fetch(self) -> str:
        """What a program made for GNOME gets of the page; the empty text if it gets none."""
        environment = self.session.environment | {"XDG_CURRENT_DESKTOP": "GNOME"}
        done = subprocess.run(["/usr/bin/python3", "-B", CLIENT, self.page], env=environment, timeout=60,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)
        return done.stdout.strip()

    def on(self) -> None:
        """Waits until GNOME and KDE point at the script."""
        wait_until(lambda: self.settings.gnome("mode") == "'auto'" and self.settings.kde("ProxyType") == "2",
                   "the settings point at the script")
        self.assertEqual(self.settings.gnome("autoconfig-url"), f"'{pac.ADDRESS}'")
        self.assertEqual(self.settings.kde("Proxy Config Script"), pac.ADDRESS)

    def off(self) -> None:
        """Waits until neither does."""
        wait_until(lambda: self.settings.gnome("mode") == "'none'" and self.settings.kde("ProxyType") in ("", "0"),
                   "the settings are taken back")

    def test_page_of_the_far_side_comes_by_the_rule_until_disconnect(self) -> None:
        app = self.begin()
        self.assertEqual(self.fetch(), "")
        self.connect(app, "Office")
        self.on()
        wait_until(lambda: f'return "SOCKS5 127.0.0.1:{self.port}; DIRECT";' in pac.served(), "the rule is served")
        self.assertEqual(self.fetch(), site.GREETING)
        app.press("Stop")
        self.off()
        wait_until(lambda: pac.served() == pac.DIRECT, "the script sends everything direct")
        self.assertEqual(self.fetch(), "")

    def test_one_of_two_tunnels_keeps_the_settings(self) -> None:
        other = self.tunnel("Lab", tunnelType=stored.SOCKS5, localPort=str(free_port()))
        app = self.begin(other, rules=[
            stored.rule("One", "Tunnel", targetHosts=["one.example"], tunnelID=self.record["id"]),
            stored.rule("Two", "Tunnel", targetHosts=["two.example"], tunnelID=other["id"])])
        for name in ("Office", "Lab"):
            self.connect(app, name)
        wait_until(lambda: "two.example" in pac.served() and "one.example" in pac.served(), "both rules are served")
        app.select("Office")
        app.press("Stop")
        wait_until(lambda: "one.example" not in pac.served(), "the rule of the stopped tunnel goes")
        self.assertIn("two.example", pac.served())
        self.on()

    def test_last_tunnel_that_dies_takes_the_settings_back(self) -> None:
        app = self.begin()
        self.connect(app, "Office")
        self.on()
        for pid in app.children():
            os.kill(pid, signal.SIGKILL)
        self.off()

    def test_quitting_takes_the_settings_back(self) -> None:
        app = self.begin()
        self.connect(app, "Office")
        self.on()
        app.quit()
        self.assertEqual((self.settings.gnome("mode"), self.settings.kde("ProxyType")), ("'none'", "0"))
        self.assertEqual(pac.served(), "")

    def test_settings_left_by_a_crash_are_cleared_at_the_next_start(self) -> None:
        app = self.begin()
        self.connect(app, "Office")
        self.on()
        app.process.kill()
        app.ended()
        self.assertEqual(self.settings.gnome("mode"), "'auto'")
        self.start_as_is()
        self.off()

    def test_proxy_of_the_users_own_is_left_alone_at_the_start(self) -> None:
        self.settings.set_gnome("mode", "manual")
        app = self.begin()
        self.connect(app, "Office")
        app.press("Stop")
        self.off()

    def test_script_is_a_matter_of_the_rules_alone(self) -> None:
        app = self.begin(rules=[stored.rule("Tiếng Việt", "Block", targetHosts=["ads.example"]),
                                stored.rule("Gone", "Tunnel", targetHosts=["gone.example"], tunnelID=stored.fresh_id())])
        self.connect(app, "Office")
        wait_until(lambda: "ads.example" in pac.served(), "the script is built")
        self.assertEqual(pac.served(), "\n".join([
            "function FindProxyForURL(url, host) {", "", "  // Rule: Tiếng Việt",
            '  if ((host === "ads.example")) { return "PROXY 0.0.0.0:0"; }', "", '  return "DIRECT";', "}"]))

    def test_engine_that_is_missing_changes_nothing(self) -> None:
        app = self.begin()
        self.connect(app, "Office")
        self.on()
        self.assertFalse((self.session.home / ".local/share/Fernwick/clash/config.yaml").exists())


if __name__ == "__main__":
    own_network()
    main()
