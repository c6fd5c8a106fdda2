"""A real keyring on the session's bus, with secrets in it that the application finds."""

from __future__ import annotations

import subprocess
from lab.desktop import Desktop
from lab.session import Session, stop
from lab.waiting import wait_until

TUNNEL_PASSWORD = "com.fernwick.tunnelpassword"
KEY_PASSPHRASE = "com.fernwick.keypassphrase"
_MASTER = "the keyring's own password"
_SECRETS = "org.freedesktop.secrets"
_LOGIN = "/org/freedesktop/secrets/collection/login"


class Keyring:
    """One gnome-keyring-daemon, unlocked; its files lie in the session's home, encrypted."""

    def __init__(self, session: Session, desktop: Desktop) -> None:
        self.session = session
        self.desktop = desktop
        (session.root / "keyring-password").write_text(_MASTER)
        self.start()

    def start(self) -> None:
        """Starts the daemon and waits until it serves."""
        script = 'exec gnome-keyring-daemon --foreground --unlock --components=secrets <"$0"'
        self.process = self.session.start(["sh", "-c", script, self.session.root / "keyring-password"])
        bus = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", _SECRETS)
        wait_until(lambda: "true" in self.desktop.call(*bus), "the keyring is on the bus")
        wait_until(lambda: self._locked() == "(<false>,)", "the keyring is unlocked")

    def stop(self) -> None:
        """Ends the daemon; what it keeps stays on disk."""
        stop(self.process)

    def lock(self) -> None:
        """Locks the collection, as a desktop does when its user leaves."""
        self.desktop.call(_SECRETS, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service.Lock", f"['{_LOGIN}']")

    def store(self, service: str, account: str, secret: str) -> None:
        """Keeps a secret."""
        self._tool("store", "--label=laboratory", "service", service, "account", account, feed=secret)

    def lookup(self, service: str, account: str) -> str | None:
        """The secret, or None when there is none."""
        done = self._tool("lookup", "service", service, "account", account)
        return done.stdout.decode() if done.returncode == 0 else None

    def label(self, service: str, account: str) -> str:
        """What a person reads in the keyring's own window beside the secret."""
        found = self._tool("search", "service", service, "account", account).stdout.decode()
        return next((line.removeprefix("label = ") for line in found.splitlines() if line.startswith("label = ")), "")

    def _locked(self) -> str:
        try:
            return self.desktop.call(_SECRETS, _LOGIN, "org.freedesktop.DBus.Properties.Get",
                                     "org.freedesktop.Secret.Collection", "Locked")
        except ConnectionError:
            return ""

    def _tool(self, *words: str, feed: str = "") -> subprocess.CompletedProcess[bytes]:
        return subprocess.run(["secret-tool", *words], input=feed.encode(), env=self.session.environment,
                              capture_output=True, timeout=10)
