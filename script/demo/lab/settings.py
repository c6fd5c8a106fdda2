"""The settings window as a person meets it: opened by the keyboard, turned from tab to tab, closed again."""

from __future__ import annotations

from pathlib import Path

from lab.app import App
from lab.screen import Widget, act
from lab.waiting import wait_for, wait_until

TITLE = "Settings"
TABS = "page tab list"  # its name is the title of the open tab
IMPORT_TITLE = "Select SSH Private Key"


class Settings:
    """The settings window of a running application."""

    def __init__(self, app: App) -> None:
        """Opens it from the main window."""
        self.app = app
        self.desktop = app.desktop
        wait_until(app.window, "the main window shows")
        wait_until(self._asked, "the settings open")

    def _asked(self) -> bool:
        """Presses the keys until a window is there: the main window may not have the keyboard yet."""
        self.app.keys("ctrl+comma")
        return bool(wait_for(self.window, 1.0))

    def window(self) -> str:
        """Its X id, or the empty text."""
        return self.app.window(TITLE)

    @property
    def frame(self) -> Widget:
        """The window in the accessibility tree; waits for it."""
        return self.app.find(TITLE, "frame")

    def turn_to(self, tab: str) -> None:
        """Opens a tab by its title."""
        act(self.find(tab, "page tab"))
        self.find(tab, TABS)

    def close(self) -> None:
        """Closes it by its shortcut."""
        self.keys("ctrl+w")
        wait_until(lambda: not self.window(), "the settings close")

    # What is on the open tab

    def find(self, name: str | None = None, role: str | None = None) -> Widget:
        """The first widget of that name and role; waits for it."""
        return self.app.find(name, role, self.frame)

    def has(self, name: str, role: str | None = None) -> bool:
        """Whether such a widget is on the screen at this moment."""
        return bool(self.app.all(name, role, self.frame))

    def press(self, name: str, role: str = "push button") -> None:
        """Presses a button, or throws a switch (a check box)."""
        self.app.press(name, role, self.frame)

    def type(self, field: str, text: str) -> None:
        """Replaces the text of a field."""
        self.app.type(field, text, self.frame)

    def sheet(self, title: str) -> Widget:
        """The sheet of that title; waits for it."""
        return self.app.find(title, "dialog")

    # The keyboard

    def keys(self, *chords: str) -> None:
        """Presses keys in the window, or in the sheet over it."""
        if not self.app.all(role="dialog"):
            self.desktop.xdotool("windowactivate", "--sync", self.window())
        self.desktop.xdotool("key", "--clearmodifiers", "--delay", "20", *chords)

    def import_files(self, *files: Path) -> None:
        """Chooses key files in the panel of the tab "Identity", with the keyboard."""
        self.press("Import")
        panel = wait_until(lambda: self.app.window(IMPORT_TITLE), "the panel opens")
        names = " ".join(f'"{file}"' for file in files)
        self.desktop.xdotool("windowactivate", "--sync", panel, "type", "--delay", "5", names)
        self.desktop.xdotool("key", "Return")
        wait_until(lambda: not self.app.window(IMPORT_TITLE), "the panel closes")
