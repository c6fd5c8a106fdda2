"""The real proxy engine: it accepts what is generated, and routes by it. Skipped where there is no mihomo on the PATH.

The application, the engine and its network device live in a network namespace of their own.
"""

from __future__ import annotations

import os
import signal
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from harness import SshTest, main, stored, wait_until
from lab import engine, site
from lab.app import App
from lab.geoip import write_country_database
from lab.network import FAR, FAR_ADDRESS, NEAR, Network
from lab.session import program_name
from lab.sshlab import start_site
from lab.wire import free_port

GOLDEN = Path(__file__).resolve().parents[1] / "routing/golden"
MIHOMO = engine.program()
SITE_ADDRESS = "127.83.72.1"


class Goldens(unittest.TestCase):
    """What the engine says of the configurations that the tests hold us to."""

    def said(self, text: str) -> tuple[int, str]:
        """The exit status of the engine's own check, and what it wrote."""
        with tempfile.TemporaryDirectory() as folder:
            write_country_database(Path(folder) / "Country.mmdb")
            config = Path(folder) / "config.yaml"
            config.write_text(text, encoding="utf-8")
            done = subprocess.run([str(MIHOMO), "-t", "-d", folder, "-f", str(config)], capture_output=True, text=True,
                                  timeout=30, stdin=subprocess.DEVNULL)
            return done.returncode, done.stdout + done.stderr

    def test_every_configuration_is_accepted_but_the_one_with_equal_names(self) -> None:
        for path in sorted(GOLDEN.glob("*.yaml")):
            with self.subTest(path.name):
                status, output = self.said(path.read_text(encoding="utf-8"))
                if path.name == "mixed.yaml":
                    self.assertIn("duplicate group name", output)
                self.assertEqual(status != 0, path.name == "mixed.yaml", output)


class RealEngine(SshTest):
    """A tunnel to a server on the far side of a cable, beside which lies a page that only that side can name."""

    def setUp(self) -> None:
        """Lays the cable, and a rule that sends the page's name through the tunnel."""
        super().setUp()
        self.network = Network()
        self.addCleanup(self.network.close)
        self.server = self.lab.add_server("far", inside=FAR, address=FAR_ADDRESS)
        self.addCleanup(self.server.stop)
        self.site_port = free_port()
        start_site(self.session, self.site_port, SITE_ADDRESS, inside=FAR)
        start_site(self.session, self.site_port, FAR_ADDRESS, inside=FAR)
        self.record = self.tunnel("Far", host=FAR_ADDRESS, sshPort=str(self.server.port), tunnelType=stored.SOCKS5,
                                  localPort=str(free_port()))
        self.rule = {"id": stored.fresh_id(), "name": "Page", "isEnabled": True, "applications": [],
                     "targetHosts": [site.NAME], "targetPorts": [], "action": "Tunnel", "tunnelID": self.record["id"]}
        names = self.session.root / "resolv.conf"
        names.write_text("nameserver 198.51.100.53\n")  # nobody is there; the engine takes the question
        self.asking = [*NEAR, "unshare", "--mount", "--propagation", "private", "--", "sh", "-c",
                       f'mount --bind {names} /etc/resolv.conf && exec "$@"', "sh"]

    def begin(self) -> App:
        """Starts the application with the engine, and waits until the engine answers."""
        self.preferences.seed(**{stored.TUNNELS: [self.record], stored.KEYS: [self.key],
                                 "com.fernwick.rules": [self.rule]})
        assert MIHOMO
        app = self.start_as_is(inside=NEAR, engine=engine.Engine(self.session, MIHOMO))
        wait_until(lambda: "mihomo is running" in app.stdout(), "the application has seen the engine", 20)
        self.assertTrue(self.answers())
        return app

    def curl(self, *words: str) -> str:
        """What curl prints on this side of the cable; empty when it fails."""
        done = subprocess.run([*self.asking, "curl", "--silent", "--fail", "--max-time", "3", *words],
                              capture_output=True, text=True, timeout=20, stdin=subprocess.DEVNULL)
        return done.stdout if done.returncode == 0 else ""

    def answers(self) -> bool:
        """Whether the engine's controller does."""
        return "version" in self.curl("--noproxy", "*", "http://127.0.0.1:9090/version")

    def page(self) -> str:
        """The page by its name, as any program asks for it."""
        return self.curl("--noproxy", "*", f"http://{site.NAME}:{self.site_port}/")

    def direct(self) -> str:
        """The same site by its address, through the engine but by no rule of ours."""
        return self.curl("--socks5", "127.0.0.1:7891", "--header", f"Host: {site.NAME}",
                         f"http://{FAR_ADDRESS}:{self.site_port}/")

    def device(self) -> bool:
        """Whether the engine's network device is there."""
        return subprocess.run([*NEAR, "ip", "link", "show", "Meta"], capture_output=True).returncode == 0

    def engines(self) -> list[int]:
        """The engine's processes of this run."""
        return [pid for pid in self.session.processes() if program_name(pid) == "mihomo"]

    def test_traffic_follows_the_rule_while_the_tunnel_is_up(self) -> None:
        app = self.begin()
        self.assertFalse(self.device())
        self.assertEqual(self.direct(), site.GREETING)
        self.connect(app, "Far")
        wait_until(self.device, "the configuration is reloaded with its network device", 15)
        wait_until(lambda: self.page() == site.GREETING, "the page comes through the tunnel", 15)
        self.assertEqual(self.direct(), site.GREETING)
        self.assertEqual(len(self.engines()), 1)
        app.press("Stop")
        wait_until(lambda: not self.device(), "the device goes with the last tunnel", 15)
        self.assertEqual(self.page(), "")
        self.assertTrue(self.answers())

    def test_engine_that_died_comes_back_and_ends_with_the_application(self) -> None:
        app = self.begin()
        before = self.engines()
        os.kill(before[0], signal.SIGKILL)
        wait_until(lambda: self.engines() not in ([], before), "the engine is started again", 50)
        wait_until(self.answers, "the engine answers again", 15)
        self.assertIn("❌ mihomo health check failed. Tự động khởi động lại...", app.stdout())
        app.quit()
        wait_until(lambda: not self.engines(), "the engine ends", 5)


if __name__ == "__main__":
    if MIHOMO is None:
        sys.exit("skipped: no mihomo")
    main()
