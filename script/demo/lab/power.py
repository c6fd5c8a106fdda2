"""The machine's sleep and wake, played by a mock of logind on a system bus of the run's own."""

from __future__ import annotations

import subprocess

from lab.session import Session
from lab.waiting import wait_until

_PYTHON = "/usr/bin/python3"  # where Debian's modules are
_LOGIN1 = ("-d", "org.freedesktop.login1", "-o", "/org/freedesktop/login1", "-m")


class Logind:
    """The mock; programs started from now on find it."""

    def __init__(self, session: Session) -> None:
        self.session = session
        address = f"unix:path={session.run}/system-bus"
        session.start(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--address={address}"])
        session.environment["DBUS_SYSTEM_BUS_ADDRESS"] = address
        wait_until((session.run / "system-bus").exists, "the system bus is there")
        session.start([_PYTHON, "-m", "dbusmock", "--system", "--template", "logind"])
        wait_until(lambda: self._call("org.freedesktop.DBus.Peer.Ping") is not None, "logind answers")

    def inhibitors(self) -> int:
        """How many programs hold sleep back at this moment."""
        return (self._call("org.freedesktop.login1.Manager.ListInhibitors") or "").count("Fernwick")

    def prepare_for_sleep(self) -> None:
        """Announces that the machine is about to sleep, and waits until nobody holds it back."""
        self._signal("true")
        wait_until(lambda: self.inhibitors() == 0, "sleep is not held back any more")

    def wake(self) -> None:
        """Announces that the machine woke."""
        self._signal("false")

    def _signal(self, asleep: str) -> None:
        self._call("org.freedesktop.DBus.Mock.EmitSignal", "org.freedesktop.login1.Manager", "PrepareForSleep", "b",
                   f"[<{asleep}>]")

    def _call(self, method: str, *arguments: str) -> str | None:
        command = ["gdbus", "call", "--system", "--timeout", "10", *_LOGIN1, method, *arguments]
        done = subprocess.run(command, env=self.session.environment, capture_output=True, text=True)
        return done.stdout.strip() if done.returncode == 0 else None
