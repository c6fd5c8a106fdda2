"""The real proxy engine in a run's own namespaces, and the way to keep a machine's own one out of all other runs."""

from __future__ import annotations

import shlex
import shutil
from pathlib import Path

from lab.geoip import write_country_database
from lab.session import Session

# Where the application looks, apart from its own folder.
_CANDIDATES = ("/home/linuxbrew/.linuxbrew/bin/mihomo", "/usr/local/bin/mihomo", "/usr/bin/mihomo")


def program() -> str | None:
    """The engine on this machine's PATH."""
    return shutil.which("mihomo")


def kept_away() -> list[str]:
    """Shell commands by which the application finds no engine that would run, and ends none that does."""
    here = [path for path in _CANDIDATES if Path(path).exists()]
    return [f"mount --bind /bin/true {path}" for path in [*here, "/usr/bin/pkill"]] if here else []


class StandIn:
    """Something in the engine's place, as it is handed to the application."""

    def __init__(self, commands: list[str]) -> None:
        """Takes the shell commands by which the application finds it."""
        self.commands = commands

    def mounts(self) -> list[str]:
        """Those commands."""
        return self.commands


class Engine(StandIn):
    """The engine itself, handed to the application."""

    def __init__(self, session: Session, path: str) -> None:
        """Lays out the folder of its configuration, with the country database that it insists on."""
        super().__init__([])
        self.session = session
        self.path = path
        self.folder = session.home / ".local/share/Fernwick/clash"
        self.folder.mkdir(parents=True, exist_ok=True, mode=0o700)
        write_country_database(self.folder / "Country.mmdb")

    def mounts(self) -> list[str]:
        """Shell commands by which the application finds it, with a folder of its own for pid files; of its kind it
        ends those only that run in the same network namespace."""
        real = self.session.root / "pkill-real"
        shutil.copy("/usr/bin/pkill", real)
        narrow = self.session.root / "pkill"
        narrow.write_text(f'#!/bin/sh\nexec {shlex.quote(str(real))} --ns $$ --nslist net "$@"\n')
        narrow.chmod(0o755)
        engine, pkill = shlex.quote(self.path), shlex.quote(str(narrow))
        local = "/usr/local/bin"
        return [f"cp {engine} {self.session.root}/mihomo", f"mount -t tmpfs tmpfs {local}", f"touch {local}/mihomo",
                f"mount --bind {self.session.root}/mihomo {local}/mihomo", "mount -t tmpfs tmpfs /run",
                f"mount --bind {pkill} /usr/bin/pkill"]
