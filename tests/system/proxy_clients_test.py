"""A real client honours the desktop's proxy settings as we make them, and goes direct when they are taken away."""

from __future__ import annotations

import itertools
import os
import subprocess
import sys
import threading
import unittest
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

from harness import SystemTest
from lab import namespace
from lab.proxysettings import ProxySettings

PROGRAM = os.environ.get("FERNWICK_PROXY_PROGRAM", "")
FAR, NEAR = "http://far.fernwick.test/", "http://near.fernwick.test/"
PAC = """function FindProxyForURL(url, host) {
  if (host === "far.fernwick.test") return "SOCKS5 127.0.0.1:1080; DIRECT";
  return "DIRECT";
}"""
THROUGH, DIRECT = ["socks5://127.0.0.1:1080", "direct://"], ["direct://"]


class PacHandler(BaseHTTPRequestHandler):
    """Answers every request with the text."""

    def do_GET(self) -> None:
        """Answers one request."""
        self.send_response(200)
        self.send_header("Content-Type", "application/x-ns-proxy-autoconfig")
        self.send_header("Content-Length", str(len(PAC)))
        self.end_headers()
        self.wfile.write(PAC.encode())

    def log_message(self, *_: object) -> None:
        """Keeps quiet."""


class ProxyClients(SystemTest):
    """The program under test sets what the application would; libproxy is the client."""

    numbers = itertools.count()

    def setUp(self) -> None:
        """Serves the text under an address that no client has met, on a desktop without proxies."""
        server = ThreadingHTTPServer(("127.0.0.1", 0), PacHandler)
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.url = f"http://127.0.0.1:{server.server_port}/{next(self.numbers)}.pac"
        self.desktops = ProxySettings(self.session)
        self.desktops.set_gnome("mode", "none")

    def ours(self, what: str, argument: str) -> str:
        """Runs the program and returns what it prints."""
        done = subprocess.run([PROGRAM, what, argument], env=self.session.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=30, check=True)
        return done.stdout

    def assert_through(self) -> None:
        """The client takes the proxy for the far side only, and both desktops have the address."""
        self.assertEqual(self.desktops.proxies_for(FAR), THROUGH)
        self.assertEqual(self.desktops.proxies_for(NEAR), DIRECT)
        self.assertEqual((self.desktops.gnome("mode"), self.desktops.gnome("autoconfig-url")),
                         ("'auto'", f"'{self.url}'"))
        self.assertEqual((self.desktops.kde("ProxyType"), self.desktops.kde("Proxy Config Script")), ("2", self.url))

    def assert_direct(self) -> None:
        """The client takes no proxy, and both desktops say so."""
        self.assertEqual(self.desktops.proxies_for(FAR), DIRECT)
        self.assertEqual((self.desktops.gnome("mode"), self.desktops.kde("ProxyType")), ("'none'", "0"))

    def test_client_goes_through_and_then_direct(self) -> None:
        said = self.ours("apply", self.url)
        self.assertEqual(said, f"[SystemProxyManager] ✅ PAC URL set: {self.url} on [GNOME, KDE]\n")
        self.assert_through()
        said = self.ours("remove", "No active tunnels")
        self.assertEqual(said, "[SystemProxyManager] 🔴 All proxy removed on 2 interface(s) (No active tunnels)\n")
        self.assert_direct()

    def test_last_port_gone_switches_off(self) -> None:
        self.ours("apply", self.url)
        self.assertEqual(self.ours("without-tunnels", self.url), "")
        self.assert_direct()

    def test_address_left_by_a_crash_is_cleared_silently(self) -> None:
        self.ours("apply", self.url)
        self.assertEqual(self.ours("clear-stale", self.url + "?other"), "")
        self.assert_through()
        self.assertEqual(self.ours("clear-stale", self.url), "")
        self.assert_direct()

    def test_users_manual_proxy_ends_with_the_last_tunnel_only(self) -> None:
        self.desktops.set_gnome("mode", "manual")
        self.ours("clear-stale", self.url)
        self.ours("without-tunnels", self.url)
        self.assertEqual(self.desktops.gnome("mode"), "'manual'")
        self.ours("remove", "")
        self.assertEqual(self.desktops.gnome("mode"), "'none'")


if __name__ == "__main__":
    namespace.enter()
    if not os.access(PROGRAM, os.X_OK):
        sys.exit(f"FERNWICK_PROXY_PROGRAM ({PROGRAM}) is not built")
    unittest.main(verbosity=2, warnings="ignore")
