"""The desktops' proxy settings of a session, and a real client that honours GNOME's."""

from __future__ import annotations

import subprocess

from lab.session import Session

GNOME = "org.gnome.system.proxy"
_CONFIG_FILE = ["--file", "kioslaverc", "--group", "Proxy Settings", "--key"]


class ProxySettings:
    """What the programs of a desktop see; the session has a bus, which starts dconf when it is first written to."""

    def __init__(self, session: Session) -> None:
        self.session = session

    def proxies_for(self, url: str) -> list[str]:
        """The proxies that a program made for GNOME uses for the address, the best first; libproxy fetches the PAC."""
        environment = {"DESKTOP_SESSION": "gnome", "XDG_CURRENT_DESKTOP": "GNOME"}
        return self._output("proxy", url, **environment).split()

    def gnome(self, key: str) -> str:
        """One of GNOME's settings as gsettings prints it, texts in single quotes."""
        return self._output("gsettings", "get", GNOME, key)

    def set_gnome(self, key: str, value: str) -> None:
        """Changes one of GNOME's settings, as its user does."""
        self._output("gsettings", "set", GNOME, key, value)

    def kde(self, key: str) -> str:
        """One of KDE's settings; empty when it was never set."""
        return self._output("kreadconfig5", *_CONFIG_FILE, key)

    def _output(self, *command: str, **environment: str) -> str:
        done = subprocess.run(command, env=self.session.environment | environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=20, check=True)
        return done.stdout.strip()
