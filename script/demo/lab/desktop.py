"""A desktop for the run: an X server where there is none, a window manager, a session bus, the accessibility bus."""

from __future__ import annotations

import os
import subprocess
from pathlib import Path

from lab.session import Session
from lab.waiting import wait_until

_BUS_LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")


class Desktop:
    """Makes the session's environment one in which a window shows and can be driven.

    The buses are always the run's own, so an application that the user runs already is not met. With `use_own_display`
    the X server in DISPLAY is used if there is one, so that a person sees the window.
    """

    def __init__(self, session: Session, *, use_own_display: bool = False) -> None:
        self.session = session
        given = os.environ.get("DISPLAY", "") if use_own_display else ""
        environment = session.environment
        environment |= {"DISPLAY": given or self._start_x_server(), "QT_QPA_PLATFORM": "xcb",
                        "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_SCALE_FACTOR": "1"}
        self.virtual = not given
        if given and "XAUTHORITY" not in environment:
            environment["XAUTHORITY"] = str(Path(os.environ.get("HOME", "/")) / ".Xauthority")
        if self.virtual:
            environment.pop("XAUTHORITY", None)
            self._start_window_manager()
        environment["DBUS_SESSION_BUS_ADDRESS"] = self._start_bus()
        # libatspi and GLib read this process's own environment when the first widget is looked for; Qt asks the bus.
        os.environ |= {name: environment[name] for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")}
        os.environ["AT_SPI_BUS_ADDRESS"] = self._start_accessibility()

    def call(self, destination: str, path: str, method: str, *arguments: str) -> str:
        """Calls a method on the session bus and returns the answer as gdbus prints it."""
        command = ["gdbus", "call", "--session", "--timeout", "10", "-d", destination, "-o", path, "-m", method]
        done = subprocess.run([*command, *arguments], env=self.session.environment, capture_output=True, text=True)
        if done.returncode != 0:
            raise ConnectionError(f"{destination} {method}: {done.stderr.strip()}")
        return done.stdout.strip()

    def xdotool(self, *arguments: str | int) -> str:
        """Runs xdotool on the desktop and returns what it prints."""
        done = subprocess.run(["xdotool", *map(str, arguments)], env=self.session.environment,
                              capture_output=True, text=True, timeout=20)
        return done.stdout.strip()

    def screenshot(self, path: Path, window: str = "root") -> Path:
        """Writes a picture of the whole screen, or of one window given by its X id."""
        path.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["import", "-silent", "-window", window, path], env=self.session.environment, check=True)
        return path

    def _start_x_server(self) -> str:
        read, write = os.pipe()
        self.session.start(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24", "-nolisten", "tcp"],
                           pass_fds=(write,))
        return ":" + _first_line(read, write, "the X server")

    def _start_window_manager(self) -> None:
        """A window that is shown while openbox looks at what is there already can stay unmapped, so it comes first."""
        ready = self.session.root / "window-manager-is-up"
        self.session.start(["openbox", "--sm-disable", "--startup", f"touch '{ready}'"])
        wait_until(ready.exists, "the window manager is up")

    def _start_bus(self) -> str:
        read, write = os.pipe()
        # What the bus starts (a keyring's prompter) keeps away from accessibility: libatspi, which drives our window,
        # can lock itself up when another program comes there.
        self.session.start(["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--print-address={write}",
                            f"--address=unix:path={self.session.run}/bus"],
                           environment=self.session.environment | {"NO_AT_BRIDGE": "1"}, pass_fds=(write,))
        return _first_line(read, write, "the session bus")

    def _start_accessibility(self) -> str:
        """Starts the accessibility bus; without a display of its own it leaves the X server's root window alone."""
        launcher = next((path for path in _BUS_LAUNCHERS if Path(path).exists()), None)
        if launcher is None:
            raise FileNotFoundError("at-spi-bus-launcher is not installed (package at-spi2-core)")
        environment = {name: value for name, value in self.session.environment.items() if name != "DISPLAY"}
        self.session.start([launcher, "--launch-immediately"], environment=environment)
        bus = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", "org.a11y.Bus")
        wait_until(lambda: "true" in self.call(*bus), "the accessibility bus is there")
        answer = self.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress")
        return answer.partition("'")[2].rpartition("'")[0]


def _first_line(read: int, write: int, who: str) -> str:
    """The first line that a program just started writes into the pipe."""
    os.close(write)
    with os.fdopen(read, "rb") as pipe:
        line = pipe.readline().decode().strip()
    if not line:
        raise ChildProcessError(f"{who} did not start")
    return line
