"""The start at login: the entry that the switch writes, the start that nobody sees, and what brings a window up."""

from __future__ import annotations

import os
import signal
import subprocess
import time
from pathlib import Path

from harness import SystemTest, main, stored, wait_until
from lab.app import App, program
from lab.screen import checked
from lab.settings import TITLE, Settings
from lab.tray import NotifierHost
from lab.waiting import wait_for

SWITCH = "Launch at login"
NO_TRAY = "this desktop has no tray"
PATIENCE = 10.0  # seconds that a panel has to come
MENU = ["Proxies & Rules...", "Open Main Window", "Preferences...", "Quit Fernwick"]


def words_of(entry: Path) -> list[str]:
    """The command line of a desktop entry as a desktop reads it."""
    from gi.repository import Gio, GLib

    return list(GLib.shell_parse_argv(Gio.DesktopAppInfo.new_from_filename(str(entry)).get_commandline())[1])


class AtLogin(SystemTest):
    """What all cases share: a catalogue of one tunnel, and no entry yet."""

    def setUp(self) -> None:
        super().setUp()
        self.folder = self.session.config / "autostart"
        self.entry = self.folder / f"{stored.DOMAIN}.desktop"
        self.addCleanup(self.clear)

    def clear(self) -> None:
        """Takes away what a case left in the folder of entries."""
        if self.folder.is_dir():
            self.folder.chmod(0o755)
            self.entry.unlink(missing_ok=True)
            self.folder.rmdir()
        self.folder.unlink(missing_ok=True)

    def settings(self) -> Settings:
        """The settings window of an application with one tunnel."""
        return Settings(self.start(stored.tunnel("One")))

    def preference(self) -> object:
        """What the preference file holds about the switch."""
        return self.preferences.read().get("launchAtLogin")

    def assert_switch(self, settings: Settings, on: bool) -> None:
        """The switch comes to stand so, and so does the preference."""
        wait_until(lambda: checked(settings.find(SWITCH, "check box")) == on, f"the switch is {'on' if on else 'off'}")
        wait_until(lambda: self.preference() is on, f"the preference is {on}")

    def write_entry(self) -> None:
        """Has the switch write the entry, and ends the application."""
        settings = self.settings()
        settings.press(SWITCH, "check box")
        self.assert_switch(settings, True)
        self.assertEqual(settings.app.quit(), 0)

    def start_by_entry(self) -> App:
        """Starts the application as the desktop does at login."""
        return self.start_as_is(command=words_of(self.entry))


class Switch(AtLogin):
    """The switch and its entry."""

    def test_on_writes_a_valid_entry_and_off_removes_it(self) -> None:
        settings = self.settings()
        self.assertFalse(checked(settings.find(SWITCH, "check box")))
        settings.press(SWITCH, "check box")
        self.assert_switch(settings, True)
        done = subprocess.run(["desktop-file-validate", self.entry], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        words = words_of(self.entry)
        self.assertEqual((Path(words[0]).resolve(), words[1:]), (program().resolve(), ["--hidden"]))
        settings.press(SWITCH, "check box")
        self.assert_switch(settings, False)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_switch_is_on_after_a_restart(self) -> None:
        self.write_entry()
        settings = Settings(self.start_as_is())
        self.assert_switch(settings, True)
        self.assertTrue(self.entry.exists())

    def test_switch_goes_back_where_no_entry_can_be_made(self) -> None:
        settings = self.settings()
        self.folder.write_text("in the way")
        for _ in range(2):
            settings.press(SWITCH, "check box")
            self.assert_switch(settings, False)
        self.assertEqual(self.folder.read_text(), "in the way")
        self.folder.unlink()
        self.folder.mkdir(mode=0o555)
        settings.press(SWITCH, "check box")
        self.assert_switch(settings, False)
        self.assertFalse(settings.app.all(role="dialog"))

    def test_switch_goes_back_where_the_entry_cannot_be_removed(self) -> None:
        settings = self.settings()
        settings.press(SWITCH, "check box")
        self.assert_switch(settings, True)
        self.folder.chmod(0o555)
        settings.press(SWITCH, "check box")
        self.assert_switch(settings, True)
        self.assertTrue(self.entry.exists())


class Hidden(AtLogin):
    """The start that the entry makes."""

    def setUp(self) -> None:
        super().setUp()
        self.write_entry()

    def host(self) -> NotifierHost:
        """A place for the icon; it goes with the case."""
        host = NotifierHost(self.session, self.desktop)
        self.addCleanup(host.stop)
        return host

    def assert_no_window(self, app: App, seconds: float) -> None:
        """Nothing of the application shows for that long."""
        self.assertFalse(wait_for(app._windows, seconds))
        self.assertTrue(app.running())

    def test_icon_alone_shows_and_works(self) -> None:
        host = self.host()
        app = self.start_by_entry()
        host.item()
        self.assert_no_window(app, 1.5)
        self.assertEqual(list(host.menu()), MENU)
        host.activate()
        app.find("Fernwick Menu", role=None)
        self.desktop.xdotool("key", "Escape")
        host.choose("Open Main Window")
        wait_until(app.window, "the main window opens")
        self.assertEqual(app.rows(), ["One"])
        self.assertNotIn(NO_TRAY, app.stderr())

    def test_second_plain_start_brings_the_window_up(self) -> None:
        host = self.host()
        app = self.start_by_entry()
        host.item()
        self.assert_no_window(app, 0.5)
        second = subprocess.run([program()], env=self.session.environment, timeout=10, capture_output=True)
        self.assertEqual(second.returncode, 0, second.stderr)
        wait_until(app.window, "the main window shows")
        self.assertEqual(app.rows(), ["One"])
        self.assertEqual(self.session.processes("Fernwick"), [app.pid])

    def test_second_start_by_the_entry_disturbs_nobody(self) -> None:
        host = self.host()
        app = self.start_by_entry()
        host.item()
        second = subprocess.run([program(), "--hidden"], env=self.session.environment, timeout=10,
                                capture_output=True)
        self.assertEqual((second.returncode, second.stderr), (0, b""))
        self.assert_no_window(app, 1)
        self.assertEqual(self.session.processes("Fernwick"), [app.pid])

    def test_settings_open_from_the_icon_without_the_main_window(self) -> None:
        host = self.host()
        app = self.start_by_entry()
        host.choose("Preferences...")
        wait_until(lambda: app.window(TITLE), "the settings open")
        self.assertTrue(checked(app.find(SWITCH, "check box")))
        self.assertFalse(app.window())

    def test_desktops_own_launcher_starts_it_hidden(self) -> None:
        host = self.host()
        done = subprocess.run(["gio", "launch", self.entry], env=self.session.environment, timeout=20,
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.assertEqual(done.returncode, 0)
        [pid] = wait_until(lambda: self.session.processes("Fernwick"), "the application runs")
        host.item()
        visible = ("search", "--onlyvisible", "--pid", pid)
        self.assertFalse(wait_for(lambda: self.desktop.xdotool(*visible), 1.0))
        os.kill(pid, signal.SIGTERM)
        wait_until(lambda: not self.session.processes("Fernwick"), "the application ends")

    def test_window_opens_after_a_while_where_there_is_no_tray(self) -> None:
        begun = time.monotonic()
        app = self.start_by_entry()
        wait_until(app.window, "the main window opens", PATIENCE + 8)
        self.assertGreater(time.monotonic() - begun, PATIENCE)
        self.assertEqual(app.stderr().count(NO_TRAY), 1)
        self.assertEqual(app.rows(), ["One"])

    def test_tray_that_comes_late_keeps_the_window_away(self) -> None:
        app = self.start_by_entry()
        wait_until(lambda: NO_TRAY in app.stderr(), "standard error says that there is no tray")
        host = self.host()
        host.item()
        self.assert_no_window(app, PATIENCE + 1)
        host.choose("Open Main Window")
        wait_until(app.window, "the main window opens")


if __name__ == "__main__":
    main()
