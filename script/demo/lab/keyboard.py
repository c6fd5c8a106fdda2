"""A program driven by its keyboard alone; accessibility only tells which widget the keys go to."""

from __future__ import annotations

import subprocess
from collections.abc import Callable

from lab.desktop import Desktop
from lab.screen import Screen, Widget, active, called, extents, focused, showing
from lab.waiting import wait_for, wait_until

Visit = Callable[[Widget], None]

_PARTS = ("list item", "page tab", "table cell", "menu item")  # of a widget that has the keyboard as a whole
_GROUPS = ("panel", "filler")
_LONG = 50


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
        return next(filter(None, map(with_keyboard, filter(active, self._windows()))), None)

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
        node = self.focus()
        while node is None or called(node) != name or role not in (None, node.get_role_name()):
            assert seen.count(describe(node)) < 2, f"{name!r} is not reached by {key}; on the way were {seen}"
            seen.append(describe(node))
            node = self.step(node, key)
        return node

    def step(self, here: Widget, key: str = "Tab") -> Widget:
        """Presses Tab once, waits until the keyboard is no longer here, and returns where it is."""
        self.press(key)
        before, found = describe(here), here

        def moved() -> bool:
            nonlocal found
            found = self.focus()
            return describe(found) != before
        wait_for(moved, 1.0)
        return found

    def round(self, key: str = "Tab", arrive: Visit = lambda node: None, leave: Visit = lambda node: None) -> list[str]:
        """Where the key leads from here until it comes back; each widget is visited with the keyboard on it and when it
        has just left."""
        here = self.step(self.focus(), key)
        chain: list[str] = []
        while not chain or describe(here) != chain[0]:
            assert here is not None, f"the keyboard is nowhere after {chain}"
            assert len(chain) < 80, f"{key} does not come back to {chain[0]!r}: {chain}"
            chain.append(describe(here))
            arrive(here)
            left, here = here, self.step(here, key)
            leave(left)
        return chain

    def _windows(self) -> list[Widget]:
        root = self.screen.root
        return [window for window in map(root.get_child_at_index, range(root.get_child_count())) if window]


class Sight:
    """Whether a person sees where the keyboard is: each widget must look other with it than without."""

    def __init__(self, desktop: Desktop) -> None:
        self.desktop = desktop
        self.unseen: list[str] = []
        self._picture = b""

    def arrive(self, node: Widget) -> None:
        """Looks at the widget that has the keyboard, once it is painted."""
        self._picture = self._look(node)

    def leave(self, node: Widget) -> None:
        """Looks at it when the keyboard has just left, and notes one that stays as it was."""
        if not wait_for(lambda: self._look(node) != self._picture, 1.0):
            self.unseen.append(describe(node))

    def _look(self, node: Widget) -> bytes:
        area = extents(node)
        crop = f"{area.width}x{area.height}+{area.x}+{area.y}"
        return subprocess.run(["import", "-silent", "-window", "root", "-crop", crop, "-depth", "8", "rgb:-"],
                              env=self.desktop.session.environment, check=True, capture_output=True).stdout


def with_keyboard(node: Widget) -> Widget:
    """The widget with the keyboard from `node` down, or nothing; long lists count as a whole."""
    from gi.repository import GLib

    try:
        if not showing(node):
            return None
        if focused(node) and node.get_role_name() not in _PARTS:
            return node
        count = node.get_child_count()
        if count > _LONG and node.get_role_name() == "list":
            return None
        below = (with_keyboard(child) for child in map(node.get_child_at_index, range(count)) if child is not None)
        return next(filter(None, below), None)
    except GLib.Error:  # it vanished meanwhile
        return None


def describe(node: Widget) -> str:
    """A widget's name and role, and what it is a part of if that has a name too."""
    if node is None:
        return ""
    group = node.get_parent()
    whole = group.get_name() if group is not None and group.get_role_name() in _GROUPS else ""
    return f"{called(node)} ({node.get_role_name()})" + (f" in {whole}" if whole else "")
