"""The hand of a person in the window, patient with an application that is busy."""

from __future__ import annotations

import time
from collections.abc import Callable
from typing import TypeVar

from lab.app import App
from lab.waiting import wait_until

T = TypeVar("T")
_SEARCH = "Search tunnels..."
_PATIENCE = 120.0  # a wake clears the port of every tunnel, one after the other, before the window answers again


class Hang(AssertionError):
    """The window did not answer for so long that a person would end it."""


class Hand:
    """Finds a tunnel by the search field, and presses what the detail column offers."""

    def __init__(self, app: App) -> None:
        self.app = app
        self.longest_wait = (0.0, "")

    def states(self) -> dict[str, str]:
        """The status of every tunnel by its name, as the sidebar tells it."""
        return self.patiently(self.app.states, "the sidebar is read")

    def toggle(self, name: str, button: str) -> bool:
        """Presses Connect or Stop for a tunnel if it is offered; whether it was."""
        def press() -> bool:
            self._show(name)
            if not self.app.has(button, "push button"):
                return False
            self.app.press(button)
            return True
        return self._on(press, f"{button} of {name}")

    def restart(self, name: str) -> bool:
        """Presses Stop and then Connect as fast as the window lets one."""
        def press() -> bool:
            self._show(name)
            if not self.app.has("Stop", "push button"):
                return False
            self.app.press("Stop")
            self.app.press("Connect")
            return True
        return self._on(press, f"the restart of {name}")

    def note(self, name: str, text: str) -> None:
        """Writes a tunnel's notes."""
        def write() -> None:
            self._show(name)
            self.app.turn_to("Configuration")
            self.app.type("Notes", text)
        self._on(write, f"the notes of {name}")

    def log(self, name: str, last: int) -> list[str]:
        """The end of a tunnel's log."""
        def read() -> list[str]:
            self._show(name)
            self.app.turn_to("Logs")
            rows = self.app.find("Logs", "list")
            count = rows.get_child_count()
            lines = [rows.get_child_at_index(index).get_name() for index in range(max(0, count - last), count)]
            self.app.turn_to("Configuration")  # five hundred rows on the screen make every later look slow
            return lines
        return self._on(read, f"the log of {name}")

    def stop_all(self) -> None:
        """Stops every tunnel that the sidebar shows as active."""
        for name, state in self.states().items():
            if state.startswith("Connect"):
                self.toggle(name, "Stop")

    def patiently(self, action: Callable[[], T], what: str) -> T:
        """Does something in the window again until it works; raises Hang when it does not."""
        from gi.repository import GLib

        began = time.monotonic()
        while True:
            try:
                return action()
            # a widget may be None, or have gone, while the window is being changed
            except (GLib.Error, AssertionError, AttributeError, TypeError, IndexError) as error:
                if not self.app.running():
                    raise Hang(f"the application ended with {self.app.process.returncode}: {what}") from error
                if time.monotonic() - began > _PATIENCE:
                    raise Hang(f"{what}: {error}") from error
            finally:
                self.longest_wait = max(self.longest_wait, (time.monotonic() - began, what))

    def _show(self, name: str) -> None:
        self.app.type(_SEARCH, name)
        wait_until(lambda: self.app.rows() == [name], f"the search finds {name}")
        self.app.select(name)

    def _on(self, action: Callable[[], T], what: str) -> T:
        """The action, and all tunnels in the sidebar again."""
        answer = self.patiently(action, what)
        self.patiently(lambda: self.app.type(_SEARCH, ""), "the search is cleared")
        return answer
