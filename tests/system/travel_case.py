"""What the tests of exports, backups and the cloud share: computers, each with a home and a session bus of its own."""

from __future__ import annotations

import json
import os
import plistlib
import subprocess
from collections.abc import Callable
from pathlib import Path
from typing import Any

from harness import SystemTest, stored, wait_until
from lab.app import App
from lab.preferences import Preferences
from lab.screen import Widget, act, checked, showing
from lab.session import stop
from lab.waiting import wait_for

LISTS = {"tunnels": stored.TUNNELS, "tags": stored.TAGS, "keys": stored.KEYS, "proxies": stored.PROXIES,
         "rules": stored.RULES}  # by the name that a file gives each
SETTINGS = "Settings"
_ADDRESS = Path(__file__).with_name("accessibility_address.py")
SAMPLE = "My First Tunnel"

Blobs = dict[str, bytes]


class Computer:
    """One home and one session bus, in which one application can run; the desktop is the test's."""

    def __init__(self, test: TravelTest, name: str) -> None:
        """Makes the folders and starts the bus; it ends with the case."""
        self.test = test
        self.home = test.place / name
        self.config = self.home / ".config"
        self.cloud = self.home / ".local/share/Fernwick/Cloud"
        self.backups = self.home / "Documents/Fernwick/Backups"
        run = self.home / "run"
        for folder in (self.config, self.cloud.parent, run):
            folder.mkdir(parents=True, mode=0o700)
        self.preferences = Preferences(self.config)
        self.environment = test.session.environment | {
            "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.config), "XDG_CACHE_HOME": str(self.home / ".cache"),
            "XDG_DATA_HOME": str(self.home / ".local/share"), "XDG_STATE_HOME": str(self.home / ".local/state"),
            "XDG_RUNTIME_DIR": str(run), "DBUS_SESSION_BUS_ADDRESS": f"unix:path={run}/bus"}
        bus = test.session.start(["dbus-daemon", "--session", "--nofork", "--nopidfile",
                                  f"--address=unix:path={run}/bus"],
                                 environment=self.environment | {"NO_AT_BRIDGE": "1"})
        test.addCleanup(stop, bus)
        wait_until((run / "bus").exists, f"the bus of {name} is up")
        told = test.session.start(["/usr/bin/python3", "-B", _ADDRESS, os.environ["AT_SPI_BUS_ADDRESS"]],
                                  environment=self.environment)
        test.addCleanup(stop, told)
        wait_until(self._has_accessibility, f"the bus of {name} knows the accessibility bus")

    def _has_accessibility(self) -> bool:
        """Whether a program that starts now will find the accessibility bus."""
        command = ["gdbus", "call", "--session", "-d", "org.freedesktop.DBus", "-o", "/org/freedesktop/DBus",
                   "-m", "org.freedesktop.DBus.NameHasOwner", "org.a11y.Bus"]
        return "true" in subprocess.run(command, env=self.environment, capture_output=True, text=True).stdout

    def seed(self, blobs: Blobs, **settings: Any) -> None:
        """Writes the preference file: lists as they are under their keys, and settings."""
        self.preferences.path.write_bytes(plistlib.dumps(blobs | settings))

    def blobs(self) -> Blobs:
        """The lists in the preference file, byte for byte, by their keys; those that are missing are left out."""
        read = self.preferences.read()
        return {key: read[key] for key in LISTS.values() if key in read}

    def holds(self, wanted: Blobs, what: str = "the preference file") -> None:
        """Waits until the preference file holds these lists and no others, byte for byte."""
        def differing() -> list[str]:
            found = self.blobs()
            return [key for key in LISTS.values() if found.get(key) != wanted.get(key)]
        assert wait_for(lambda: not differing(), 5.0), f"{what} of {self.home.name} differs in {differing()}"

    def keeps(self, wanted: Blobs, what: str) -> None:
        """The preference file holds these lists and goes on to for a while."""
        self.holds(wanted, what)
        assert not wait_for(lambda: self.blobs() != wanted, 0.8), f"{what}: the lists of {self.home.name} changed"

    def start(self, **options: Any) -> App:
        """Starts the application here and waits for its window."""
        app = self.test.start_as_is(environment=self.environment, **options)
        wait_until(app.window, f"the window of {self.home.name} shows")
        wait_until(self._written, "the lists are stored as the application writes them")
        return app

    def _written(self) -> bool:
        """Whether the three lists that are written at each start are; they have no blanks then."""
        found = self.blobs()
        return stored.TAGS in found and not any(found.get(key, b"").startswith(b"[\n")
                                                for key in (stored.TUNNELS, stored.TAGS, stored.KEYS))

    def start_at_sync(self, **options: Any) -> App:
        """The same, with the page open."""
        app = self.start(**options)
        self.test.open_sync(app)
        return app


class TravelTest(SystemTest):
    """Computers, the page that this is about, its alerts and its panels."""

    def setUp(self) -> None:
        """A folder for the case, in which homes are made."""
        super().setUp()
        self.place = self.session.root / self.id().rpartition(".")[2][5:25]
        self.place.mkdir()

    def window(self, app: App, title: str) -> Widget:
        """The window or sheet with that title; waits for it."""
        return wait_until(lambda: windows(app, title), f"a window {title!r} is on the screen", 8.0)[0]

    def closed(self, app: App, title: str) -> None:
        """Waits until there is none."""
        wait_until(lambda: not windows(app, title), f"the window {title!r} closes", 5.0)

    def open_settings(self, app: App) -> Widget:
        """Opens the settings window with the keyboard; the tab of the page."""
        def opened() -> bool:
            app.keys("ctrl+comma")
            return wait_for(lambda: app.window(SETTINGS) != "", 1.0)
        wait_until(opened, "the settings window opens")
        return self.shows(app, "Sync", "page tab")

    def open_sync(self, app: App) -> None:
        """Opens the page."""
        act(self.open_settings(app))
        self.shows(app, "Sync with iCloud", "check box")

    def shows(self, app: App, name: str, role: str | None = None) -> Widget:
        """Waits until the settings window shows a widget of that name."""
        return app.find(name, role, under=self.window(app, SETTINGS))

    def press(self, app: App, button: str, title: str = SETTINGS) -> None:
        """Presses a button of the window with that title."""
        app.press(button, under=self.window(app, title))

    def told(self, app: App, title: str, message: str) -> None:
        """Waits for an alert, reads it and closes it."""
        sheet = self.window(app, title)
        wait_until(lambda: message in app.texts(sheet), f"{title!r} says {message!r}, not {app.texts(sheet)}", 2.0)
        self.press(app, "OK", title)
        self.closed(app, title)

    def turn(self, app: App, label: str, on: bool = True) -> None:
        """Throws a switch of the page, which is off, or on."""
        switch = self.shows(app, label, "check box")
        assert checked(switch) != on, f"{label!r} stands as it is to be"
        act(switch)
        wait_until(lambda: checked(switch) == on, f"{label!r} is thrown")

    def choose(self, app: App, button: str, title: str, path: Path) -> None:
        """Presses a button that opens a file panel, and types the path into it."""
        self.panel(app, button, title)
        self.desktop.xdotool("key", "ctrl+a")
        self.desktop.xdotool("type", "--delay", "4", str(path))
        self.desktop.xdotool("key", "Return")

    def panel(self, app: App, button: str, title: str) -> Widget:
        """Presses the button, and waits until its panel has the keyboard."""
        self.press(app, button)
        wait_until(lambda: app.window(title), f"the panel {title!r} opens")
        self.desktop.xdotool("windowactivate", "--sync", app.window(title))
        return self.window(app, title)

    def stays(self, condition: Callable[[], bool], what: str, seconds: float = 0.8) -> None:
        """Something is so, and goes on to be for a while."""
        self.assertFalse(wait_for(lambda: not condition(), seconds), f"{what} no longer")


def windows(app: App, title: str) -> list[Widget]:
    """The windows and sheets of the application that are on the screen and have that title."""
    root = app.root
    found = [root.get_child_at_index(index) for index in range(root.get_child_count())]
    return [each for each in found if each is not None and each.get_name() == title and showing(each)]


def catalogue(*names: str) -> Blobs:
    """A catalogue in which every list has something, in bytes as the application writes none: with blanks."""
    tunnels = [stored.tunnel(name, notes="Ghi chú 🏠 \u2028", localPort="8080") for name in names]
    proxy = {"id": stored.fresh_id(), "name": f"Proxy of {names[0]}", "address": "127.0.0.1", "port": 1080,
             "proto": "SOCKS5", "authentication": {"enabled": True, "username": "u", "password": "p"},
             "useTargetHostname": False}
    lists = {stored.TUNNELS: tunnels, stored.TAGS: [stored.tag(f"Tag of {names[0]}")],
             stored.KEYS: [stored.key(Path("/nowhere/id_of_a_test"))], stored.PROXIES: [proxy],
             stored.RULES: [stored.rule(f"Rule of {names[0]}", "Direct", targetHosts=["a.example", "b.example"])]}
    return {key: json.dumps(records, indent=1).encode() for key, records in lists.items()}
