"""A program driven by its keyboard alone; accessibility only tells which widget the keys go to."""

from __future__ import annotations

from lab.screen import Screen, Widget, active, called, controls, focused
from lab.waiting import wait_for, wait_until

_PARTS = ("list item", "page tab", "table cell", "menu item")  # of a widget that has the keyboard as a whole


class Keyboard:
    """Keys for the window of the program that has the keyboard."""

    def __init__(self, screen: Screen) -> None:
        self.screen = screen

    def press(self, *chords: str) -> None:
        """Presses keys, one after the other."""
        self.screen.desktop.xdotool("key", "--delay", "15", *chords)

    def write(self, text: str) -> None:
        """Types a text."""
        self.screen.desktop.xdotool("type", "--delay", "6", text)

    def window(self, name: str) -> Widget:
        """The window of that name; waits until it has the keyboard."""
        def look() -> list[Widget]:
            return [window for window in self._windows() if window.get_name() == name and active(window)]
        return wait_until(look, f"the window {name!r} has the keyboard", 5.0)[0]

    def focus(self) -> Widget:
        """The widget that the keys go to, or nothing."""
        for window in filter(active, self._windows()):
            for node in controls(window):
                if focused(node) and node.get_role_name() not in _PARTS:
                    return node
        return None

    def where(self) -> str:
        """What that widget is, for a person; the empty text if there is none."""
        return describe(self.focus())

    def at(self, name: str) -> Widget:
        """Waits until the keys go to the widget with that name."""
        def look() -> Widget:
            node = self.focus()
            return node if node is not None and called(node) == name else None
        return wait_until(look, f"the keyboard is at {name!r}, not {self.where()!r}", 3.0)

    def reach(self, name: str, role: str | None = None, key: str = "Tab") -> Widget:
        """Presses Tab until the keys go to the widget with that name and role."""
        seen: list[str] = []
        while True:
            node = self.focus()
            if node is not None and called(node) == name and role in (None, node.get_role_name()):
                return node
            assert seen.count(describe(node)) < 2, f"{name!r} is not reached by {key}; on the way were {seen}"
            seen.append(describe(node))
            self.step(key)

    def step(self, key: str = "Tab") -> str:
        """Presses Tab once, waits until the keyboard is elsewhere, and says where."""
        before = self.where()
        self.press(key)
        wait_for(lambda: self.where() != before, 1.0)
        return self.where()

    def round(self) -> list[str]:
        """Where Tab leads from here until it comes back."""
        start = self.step()
        chain = [start]
        while (here := self.step()) != start:
            chain.append(here)
            assert len(chain) < 80, f"Tab does not come back to {start!r}: {chain}"
        return chain

    def _windows(self) -> list[Widget]:
        root = self.screen.root
        return [window for window in map(root.get_child_at_index, range(root.get_child_count())) if window]


def describe(node: Widget) -> str:
    """A widget's name and role, and where it is if others may be called the same."""
    return f"{called(node)} ({node.get_role_name()})" if node is not None else ""
