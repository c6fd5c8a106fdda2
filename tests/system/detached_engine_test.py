"""The proxy engine as a process of its own, as it runs where no systemd does: start, reload, restart and end.

A program that stands in for the engine answers on its address, so all of it runs in a network namespace of its own. It
needs root, as the engine does.
"""

from __future__ import annotations

import contextlib
import json
import os
import shlex
import shutil
import signal
import stat
import unittest
from pathlib import Path
from typing import Any

from harness import SshTest, main, own_network, stored, wait_until
from lab.app import App
from lab.engine import StandIn
from lab.session import alive
from lab.wire import free_port, listens

STANDIN = Path(__file__).with_name("standin_engine.py")
API = 9090
TUN_OFF, TUN_ON = "tun:\n  enable: false\n", "tun:\n  enable: true\n"


@unittest.skipUnless(os.geteuid() == 0, "the engine is a process of the application's own for root only")
class Engine(SshTest):
    """The engine's program is installed, and there is a SOCKS tunnel with a rule that leads to it."""

    def setUp(self) -> None:
        """Puts the stand-in where the engine is looked for, and a pkill beside it that ends nothing of this machine."""
        super().setUp()
        self.folder = self.session.home / ".local/share/Fernwick/clash"
        shutil.rmtree(self.folder, ignore_errors=True)
        programs = self.session.root / "programs"
        programs.mkdir(exist_ok=True)
        shutil.copy(STANDIN, programs / "mihomo")
        (programs / "mihomo").chmod(0o755)
        self.pkill = self.session.root / "pkill-calls"
        self.pkill.write_text("")
        recorder = self.session.root / "pkill"
        recorder.write_text(f'#!/bin/sh\necho "$*" >> {shlex.quote(str(self.pkill))}\nexit 1\n')
        recorder.chmod(0o755)
        self.mounts = ["mount -t tmpfs tmpfs /run", f"mount --bind {shlex.quote(str(programs))} /usr/local/bin",
                       f"mount --bind {shlex.quote(str(recorder))} /usr/bin/pkill"]
        self.addCleanup(self.end_engines)

    def end_engines(self) -> None:
        """Leaves no stand-in behind."""
        for pid in {entry["pid"] for entry in self.record()}:
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, signal.SIGKILL)
        wait_until(lambda: not listens(API), "the address of the engine is free")

    def begin(self) -> App:
        """Starts the application and waits until it knows that the engine runs."""
        self.port = free_port()
        office = self.tunnel("Office", tunnelType=stored.SOCKS5, localPort=str(self.port))
        rule = {"id": stored.fresh_id(), "name": "Inside", "isEnabled": True, "applications": [],
                "targetHosts": ["office.example"], "targetPorts": [], "action": "Tunnel", "tunnelID": office["id"]}
        self.preferences.seed(**{stored.TUNNELS: [office], stored.KEYS: [self.key], "com.fernwick.rules": [rule]})
        app = self.start_as_is(engine=StandIn(self.mounts))
        wait_until(lambda: self.asked("GET /version"), "the engine is asked whether it lives")
        return app

    def record(self) -> list[dict[str, Any]]:
        """What the stand-in wrote down."""
        file = self.folder / "record"
        text = file.read_text(encoding="utf-8") if file.exists() else ""
        return [json.loads(line) for line in text.splitlines(keepends=True) if line.endswith("\n")]

    def asked(self, what: str) -> list[dict[str, Any]]:
        """The entries of that kind."""
        return [entry for entry in self.record() if entry["what"] == what]

    def reloads(self, count: int) -> dict[str, Any]:
        """Waits for that many reloads; the last one."""
        put = "PUT /configs?force=true"
        wait_until(lambda: len(self.asked(put)) >= count, f"reload {count} comes")
        return self.asked(put)[count - 1]

    def test_engine_starts_with_the_application_and_ends_with_it(self) -> None:
        app = self.begin()
        file = self.folder / "config.yaml"
        self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o600)
        [start] = self.asked("start")
        self.assertEqual((start["arguments"], start["user"]), (["-d", str(self.folder), "-f", str(file)], 0))
        # the three, and the one that lists them
        self.assertEqual(len(start["descriptors"]), 4, start["descriptors"])
        self.assertIn(TUN_OFF, start["configuration"])
        self.assertEqual(self.pkill.read_text(), "-x mihomo\n")
        app.quit()
        wait_until(lambda: not alive(start["pid"]), "the engine ends")

    def test_running_engine_reloads_when_a_tunnel_comes_and_goes(self) -> None:
        app = self.begin()
        self.connect(app, "Office")
        up = self.reloads(1)
        self.assertEqual((up["type"], json.loads(up["body"])),
                         ("application/json", {"path": str(self.folder / "config.yaml")}))
        self.assertIn(TUN_ON, up["configuration"])
        self.assertIn(f'  - name: "Office"\n    type: socks5\n    server: 127.0.0.1\n    port: {self.port}\n',
                      up["configuration"])
        self.assertIn("  - DOMAIN,office.example,TUN_Office\n", up["configuration"])
        app.press("Stop")
        down = self.reloads(2)
        self.assertIn(TUN_OFF, down["configuration"])
        self.assertNotIn("Office", down["configuration"])
        self.assertEqual(len(self.asked("start")), 1)

    def test_engine_that_refuses_a_reload_is_started_anew_with_it(self) -> None:
        app = self.begin()
        (self.folder / "reload-status").write_text("200")
        self.connect(app, "Office")
        wait_until(lambda: len(self.asked("start")) == 2, "the engine is started again")
        first, second = self.asked("start")
        self.assertFalse(alive(first["pid"]))
        self.assertIn(TUN_ON, second["configuration"])
        wait_until(lambda: self.record()[-1]["what"] == "GET /version", "the new engine is asked whether it lives")
        self.assertEqual(self.record()[-1]["pid"], second["pid"])

    def test_engine_outlives_an_application_that_is_killed_and_is_replaced(self) -> None:
        run = self.session.root / "engine-run"
        run.mkdir(exist_ok=True)
        self.mounts[0] = f"mount --bind {shlex.quote(str(run))} /run"  # which the second start finds again
        app = self.begin()
        [first] = self.asked("start")
        app.process.kill()
        app.ended()
        self.assertTrue(alive(first["pid"]))
        self.start_as_is(engine=StandIn(self.mounts))
        wait_until(lambda: len(self.asked("start")) == 2, "the engine is started again")
        wait_until(lambda: not alive(first["pid"]), "the old one ends")


if __name__ == "__main__":
    own_network()
    main()
