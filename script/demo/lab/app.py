"""The application as a person meets it: its sidebar, its log, its preference file, its children and its end."""

from __future__ import annotations

import os
import shlex
import signal
import subprocess
from collections.abc import Sequence
from pathlib import Path

from lab.desktop import Desktop
from lab.engine import StandIn, kept_away
from lab.namespace import NESTED
from lab.preferences import Preferences
from lab.screen import Screen, Widget, act, checked, selected, walk
from lab.session import POWERLESS, Session, descendants, program_name
from lab.waiting import wait_for, wait_until

REPOSITORY = Path(__file__).resolve().parents[3]
# The items of a row's context menu, by how far down they stand.
ROW_MENU = {"Start Tunnel": 1, "Stop Tunnel": 1, "Duplicate": 2, "Delete": 3}


def program() -> Path:
    """The application's program: FERNWICK_PROGRAM, or the release build of this repository."""
    return Path(os.environ.get("FERNWICK_PROGRAM") or REPOSITORY / "build/release/Fernwick")


class App(Screen):
    """One start of the application."""

    def __init__(self, session: Session, desktop: Desktop, *,
                 environment: dict[str, str] | None = None, stand_in: Path | None = None,
                 mounts: Sequence[str] = (), inside: Sequence[str] = (), engine: StandIn | None = None,
                 command: Sequence[str] = (), powers: Sequence[str] = POWERLESS) -> None:
        """Starts the program, or `command`, which ends up as the program; with `stand_in` in place of ssh, after the
        shell commands `mounts` in a namespace, and by way of the command `inside`. It meets the proxy engine only when
        it is given one, and then has all powers."""
        self.session = session
        self.desktop = desktop
        self.preferences = Preferences(session.config)
        self.stderr_path = session.root / f"app-{len(list(session.root.glob('app-*')))}.log"
        before = [*mounts, *(engine.mounts() if engine else kept_away()),
                  *([f"mount --bind {shlex.quote(str(stand_in))} /usr/bin/ssh"] if stand_in else [])]
        wrap = [*NESTED, "sh", "-c", " && ".join([*before, 'exec "$@"']), "sh"] if before else []
        with open(self.stderr_path, "wb") as stderr, open(self.stderr_path.with_suffix(".out"), "wb") as stdout:
            words = [*inside, *wrap, *([] if engine else powers), *(command or [program()])]
            self.process = session.start(words, environment=environment, stdout=stdout, stderr=stderr)
        self.pid = self.process.pid

    # Its windows

    def choose(self, row: Widget, item: str) -> None:
        """Chooses an item of the context menu of a sidebar row, with the keyboard.

        Accessibility does not list popups, so the menu is seen as one more window of the program.
        """
        before = self._windows()
        self.click(row, 3)
        menu = wait_until(lambda: self._windows() - before, f"the context menu with {item!r} opens")
        self.desktop.xdotool("key", *["Down"] * ROW_MENU[item], "Return")
        wait_until(lambda: not self._windows() & menu, f"the menu closes after {item!r}")

    def _windows(self) -> set[str]:
        return set(self.desktop.xdotool("search", "--onlyvisible", "--pid", self.pid).split())

    def window(self, title: str = "Fernwick") -> str:
        """The X id of the window with exactly that title; empty while it is hidden."""
        found = self.desktop.xdotool("search", "--all", "--onlyvisible", "--pid", self.pid, "--name", f"^{title}$")
        return found.split("\n")[0]

    def keys(self, *chords: str) -> None:
        """Presses keys in the main window."""
        self.desktop.xdotool("windowactivate", "--sync", self.window(), "key", "--clearmodifiers", *chords)

    # Its catalogue, its log and its children

    def row(self, name: str) -> Widget:
        """The sidebar's row of a tunnel; waits for it."""
        def look() -> list[Widget]:
            return [row for row in self._sidebar() if _title(row.get_name()) == name]
        return wait_until(look, f"the sidebar has a row {name!r}", 5.0)[0]

    def rows(self) -> list[str]:
        """The names of the tunnels in the sidebar, from the top down."""
        return [_title(row.get_name()) for row in self._sidebar()]

    def _sidebar(self) -> list[Widget]:
        lists = self.all("Tunnels", "list")
        return self.all(role="list item", under=lists[0]) if lists else []

    def select(self, name: str) -> None:
        """Shows a tunnel in the detail column."""
        def clicked() -> bool:
            self.click(self.row(name))
            return wait_for(lambda: selected(self.row(name)), 0.5)
        # a window that has just come up may still be on its way to its place
        wait_until(clicked, f"{name!r} is selected")
        wait_until(lambda: self.has("Connect") or self.has("Stop"), f"the detail column shows {name!r}")

    def start_all(self) -> None:
        """Starts every tunnel of the sidebar, one after the other, from its context menu with the keyboard alone."""
        rows = self.find("Tunnels", "list")
        self.click(rows.get_child_at_index(0))
        # the pointer must not lie where a menu opens, or it would choose an item too
        self.desktop.xdotool("mousemove", 0, 0)
        for index in range(rows.get_child_count()):
            row = rows.get_child_at_index(index)
            if not wait_for(lambda row=row: selected(row), 0.5):
                # when a menu has closed, the keyboard takes a moment to come back to the window
                self.desktop.xdotool("key", "Down")
                wait_until(lambda row=row: selected(row), f"row {index} is selected")
            self.desktop.xdotool("key", "--delay", "2", "Menu", "Down", "Return")
            wait_until(lambda row=row: _state(row.get_name()) != "Idle", f"the tunnel in row {index} starts")
            self.desktop.xdotool("key", "Down")

    def states(self) -> dict[str, str]:
        """The status of each tunnel in the sidebar by its name, those scrolled out of sight included."""
        rows = self.find("Tunnels", "list")
        names = [rows.get_child_at_index(index).get_name() for index in range(rows.get_child_count())]
        return {_title(name): _state(name) for name in names}

    def turn_to(self, tab: str) -> None:
        """Opens a tab of the detail column: Configuration, Advanced or Logs."""
        button = self.find(tab, "radio button")
        if not checked(button):
            act(button)
            wait_until(lambda: checked(button), f"the tab {tab!r} is open")

    def log(self) -> list[str]:
        """The messages in the log of the selected tunnel that are on the screen, or near it; opens its tab."""
        self.turn_to("Logs")
        lists = self.all("Logs", "list")
        return [row.get_name() for row in walk(lists[0]) if row.get_role_name() == "list item"] if lists else []

    def create(self, **fields: str) -> None:
        """Fills the sheet that makes a tunnel, and confirms it; `fields` are name, host, user and port."""
        labels = {"name": "Tunnel Name", "host": "Host / IP", "user": "Username", "port": "Local Port"}
        self.press("Add new tunnel")
        sheet = self.find("New Tunnel", "dialog")
        for field, text in fields.items():
            self.type(labels[field], text, sheet)
        self.press("Create Tunnel")
        self.gone("Create Tunnel")

    def children(self, name: str = "ssh") -> list[int]:
        """The living processes below the application that run a program of that name."""
        return [pid for pid in descendants(self.pid) if program_name(pid) == name]

    # Its life

    def stderr(self) -> str:
        """What the application wrote to standard error."""
        return self.stderr_path.read_text(errors="replace")

    def stdout(self) -> str:
        """What the application printed."""
        return self.stderr_path.with_suffix(".out").read_text(errors="replace")

    def running(self) -> bool:
        """Whether the process lives."""
        return self.process.poll() is None

    def ended(self, deadline: float = 5.0) -> int:
        """Waits for the process to end by itself and returns its exit status (negative: the signal)."""
        try:
            return self.process.wait(deadline)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the application did not end within {deadline:g} s") from None

    def quit(self, by: signal.Signals = signal.SIGTERM) -> int:
        """Asks the process to end by a signal and waits for it."""
        if self.running():
            self.process.send_signal(by)
        return self.ended()


def _title(row: str) -> str:
    """A row reads "name, status, user@host"."""
    return row.rsplit(", ", 2)[0]


def _state(row: str) -> str:
    return row.rsplit(", ", 2)[1]
