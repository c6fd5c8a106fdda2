"""Places for the icons of running applications: a tray of the X server, and a host of StatusNotifierItems."""

from __future__ import annotations

import ast
import re

from lab import watcher
from lab.desktop import Desktop
from lab.session import Session, stop
from lab.waiting import wait_until

_ITEM, _ITEM_PATH = "org.kde.StatusNotifierItem", "/StatusNotifierItem"
_PYTHON = "/usr/bin/python3"  # where Debian's modules are


class XTray:
    """The program trayer in the upper right corner, a tray by the X server's protocol."""

    HEIGHT = 24

    def __init__(self, session: Session, desktop: Desktop) -> None:
        self.desktop = desktop
        self.process = session.start(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request",
                                      "--height", str(self.HEIGHT), "--SetDockType", "true"])

    def stop(self) -> None:
        """Ends the program; its icons lose their place."""
        stop(self.process)

    def has_icon(self) -> bool:
        """Whether something as wide as an icon is in the tray."""
        return self._box().get("WIDTH", 0) >= self.HEIGHT // 2

    def click(self, button: int = 1) -> None:
        """Clicks the only icon."""
        wait_until(self.has_icon, "the tray has an icon")
        box = self._box()
        self.desktop.xdotool("mousemove", box["X"] + box["WIDTH"] // 2, box["Y"] + box["HEIGHT"] // 2,
                             "click", button)

    def _box(self) -> dict[str, int]:
        found = self.desktop.xdotool("search", "--onlyvisible", "--class", "trayer").split()
        if not found:
            return {}
        shell = self.desktop.xdotool("getwindowgeometry", "--shell", found[-1])
        return {name: int(value) for name, value in (line.split("=") for line in shell.splitlines())}


class NotifierHost:
    """A host of StatusNotifierItems on the session bus, in a process of its own."""

    def __init__(self, session: Session, desktop: Desktop) -> None:
        self.desktop = desktop
        self.process = session.start([_PYTHON, "-B", watcher.__file__])
        owner = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", watcher.NAME)
        wait_until(lambda: "true" in desktop.call(*owner), "the watcher is on the bus")

    def stop(self) -> None:
        """Ends the host."""
        stop(self.process)

    def items(self) -> list[str]:
        """The bus names of the items that are registered and alive."""
        answer = self.desktop.call(watcher.NAME, watcher.PATH, "org.freedesktop.DBus.Properties.Get", watcher.NAME,
                                   "RegisteredStatusNotifierItems")
        begin = answer.find("[")
        return [str(name) for name in ast.literal_eval(answer[begin:answer.rfind("]") + 1])] if begin >= 0 else []

    def item(self) -> str:
        """The only item; waits for it."""
        return wait_until(self.items, "an item is registered")[0]

    def get(self, what: str) -> str:
        """A property of the item, as gdbus prints it."""
        return self.desktop.call(self.item(), _ITEM_PATH, "org.freedesktop.DBus.Properties.Get", _ITEM, what)

    def activate(self) -> None:
        """What a host does at a click on the item."""
        self.desktop.call(self.item(), _ITEM_PATH, f"{_ITEM}.Activate", "600", "4")

    def menu(self) -> dict[str, int]:
        """The entries of the item's menu, by their label as a host shows it, with their numbers."""
        from gi.repository import GLib

        answer = self.desktop.call(self.item(), self._menu_path(), "com.canonical.dbusmenu.GetLayout", "0", "9", "[]")
        _, layout = GLib.Variant.parse(None, answer, None, None).unpack()
        # an underscore marks the letter that follows, and is not shown
        return {re.sub("_(.)", r"\1", entry[1]["label"]): entry[0] for entry in layout[2] if entry[1].get("label")}

    def choose(self, label: str) -> None:
        """What a host does when an entry of the item's menu is chosen."""
        self.desktop.call(self.item(), self._menu_path(), "com.canonical.dbusmenu.Event", str(self.menu()[label]),
                          "clicked", "<''>", "0")

    def _menu_path(self) -> str:
        return self.get("Menu").split("'")[1]
