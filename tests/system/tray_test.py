"""The icon in the desktop's tray, its popover and its menu; and a desktop without any tray."""

from __future__ import annotations

from harness import SystemTest, main, stored, wait_until
from lab.app import App
from lab.screen import Widget, walk
from lab.settings import TITLE as SETTINGS
from lab.tray import NotifierHost, XTray
from lab.waiting import wait_for

NO_TRAY = "this desktop has no tray"
FOOTER = ["Proxies & Rules...", "Open Main Window", "Preferences...", "Quit Fernwick"]


class Tray(SystemTest):
    """What all kinds of tray have in common."""

    def start_idle(self, *names: str) -> App:
        """Starts the application on tunnels whose ssh does nothing but live."""
        sleeper = self.session.root / "sleeping-ssh"
        sleeper.write_text("#!/bin/sh\nexec sleep 600\n")
        sleeper.chmod(0o755)
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel(name, host="example.com", localPort="8080")
                                                  for name in names]})
        app = self.start_as_is(stand_in=sleeper)
        wait_until(app.window, "the main window shows")
        return app

    def popover(self, app: App) -> Widget:
        """The popover on the screen, or nothing."""
        found = app.all("Fernwick Menu")
        return found[0] if found else None

    def opened(self, app: App) -> Widget:
        """Waits for the popover."""
        return wait_until(lambda: self.popover(app), "the popover opens", 5.0)

    def closed(self, app: App) -> None:
        """Waits until there is none."""
        wait_until(lambda: not self.popover(app), "the popover closes", 5.0)

    def press_in(self, app: App, popover: Widget, name: str) -> None:
        """Presses a button of the popover with the mouse."""
        app.click(app.find(name, "push button", under=popover))


class XEmbed(Tray):
    """A tray of the X server."""

    def setUp(self) -> None:
        super().setUp()
        self.tray = XTray(self.session, self.desktop)
        self.addCleanup(self.tray.stop)
        wait_until(lambda: self.desktop.xdotool("search", "--class", "trayer"), "the tray is up")

    def test_click_opens_and_click_closes(self) -> None:
        app = self.start_idle("One", "Two")
        self.tray.click()
        popover = self.opened(app)
        texts = app.texts(popover)
        for text in ("No active tunnels", "Fernwick  ·  by Orla Venn", "Connect All", "Disconnect All", *FOOTER):
            self.assertIn(text, texts)
        rows = [node.get_name() for node in walk(popover) if node.get_role_name() == "list item"]
        self.assertEqual(rows, ["One, Idle, example.com-8080", "Two, Idle, example.com-8080"])
        self.assertEqual([text for text in texts if text in FOOTER], FOOTER)
        self.tray.click()
        self.closed(app)
        self.assertNotIn(NO_TRAY, app.stderr())

    def test_popover_is_beside_the_icon_and_inside_the_screen(self) -> None:
        app = self.start_idle("One")
        self.tray.click()
        box = self.opened(app).get_component_iface().get_extents(0)
        self.assertEqual(box.width, 292)
        self.assertGreaterEqual(box.y, XTray.HEIGHT)
        self.assertLess(box.y, XTray.HEIGHT + 12)
        self.assertLessEqual(box.x + box.width, 1280)
        self.assertGreater(box.x + box.width, 1200)

    def test_tunnel_is_started_and_stopped_from_its_row(self) -> None:
        app = self.start_idle("One", "Two")
        self.tray.click()
        popover = self.opened(app)
        row = next(node for node in walk(popover) if node.get_name().startswith("Two, "))
        box = row.get_component_iface().get_extents(0)
        self.desktop.xdotool("mousemove", box.x + 60, box.y + 20)
        self.press_in(app, popover, "Connect Two")
        app.find("1/2 connected", under=popover)
        wait_until(lambda: len(app.children("sleep")) == 1, "its child runs")
        self.press_in(app, popover, "Disconnect Two")
        app.find("No active tunnels", under=popover)
        wait_until(lambda: not app.children("sleep"), "its child ends")

    def test_keyboard_alone(self) -> None:
        app = self.start_idle("One", "Two")
        self.tray.click()
        self.opened(app)
        self.desktop.xdotool("mousemove", 100, 700)
        self.desktop.xdotool("key", "Down", "Down", "Return")
        app.find("1/2 connected")
        self.assertEqual(app.states()["One"], "Idle")
        self.desktop.xdotool("key", "Escape")
        self.closed(app)

    def test_it_closes_when_another_window_takes_the_keyboard(self) -> None:
        app = self.start_idle("One")
        self.tray.click()
        self.opened(app)
        self.desktop.xdotool("windowactivate", "--sync", app.window())
        self.closed(app)

    def test_open_main_window_brings_it_back(self) -> None:
        app = self.start_idle("One")
        app.row("One")
        wait_until(lambda: self._hide(app), "the main window hides")
        self.tray.click()
        self.press_in(app, self.opened(app), "Open Main Window")
        self.closed(app)
        wait_until(app.window, "the main window is back")

    def _hide(self, app: App) -> bool:
        if app.window():
            self.desktop.xdotool("windowactivate", "--sync", app.window(), "key", "alt+F4")
        return not app.window()

    def test_preferences_open_the_settings(self) -> None:
        app = self.start_idle("One")
        self.tray.click()
        self.press_in(app, self.opened(app), "Preferences...")
        self.closed(app)
        wait_until(lambda: app.window(SETTINGS), "the settings open")

    def test_right_click_offers_the_menu_and_quit_ends(self) -> None:
        app = self.start_idle("One")
        before = app._windows()
        self.tray.click(3)
        wait_until(lambda: app._windows() - before, "the menu opens")
        self.desktop.xdotool("key", "Up", "Return")  # the last entry
        self.assertEqual(app.ended(), 0)
        wait_until(lambda: not self.tray.has_icon(), "the icon is gone")

    def test_quit_in_the_popover_ends_everything(self) -> None:
        app = self.start_idle("One")
        self.tray.click()
        popover = self.opened(app)
        self.press_in(app, popover, "Connect All")
        wait_until(lambda: len(app.children("sleep")) == 1, "the child runs")
        self.press_in(app, popover, "Quit Fernwick")
        self.assertEqual(app.ended(), 0)
        self.no_child_left()


class LateXEmbed(Tray):
    """A tray of the X server that comes after the application, and goes and comes again."""

    def test_it_gets_the_icon(self) -> None:
        app = self.start_idle("One")
        wait_until(lambda: NO_TRAY in app.stderr(), "standard error says that there is no tray")
        for _ in range(2):
            tray = XTray(self.session, self.desktop)
            self.addCleanup(tray.stop)
            tray.click()
            self.opened(app)
            self.desktop.xdotool("key", "Escape")
            self.closed(app)
            tray.stop()
        self.assertEqual(app.stderr().count(NO_TRAY), 1)


class Notifier(Tray):
    """A host of StatusNotifierItems."""

    def setUp(self) -> None:
        super().setUp()
        self.host = NotifierHost(self.session, self.desktop)
        self.addCleanup(self.host.stop)

    def test_icon_is_registered_with_its_sizes_and_its_tool_tip(self) -> None:
        app = self.start_idle("One")
        self.assertIn("No active tunnels", self.host.get("ToolTip"))
        pictures = self.host.get("IconPixmap")
        for side in (16, 22, 32):
            self.assertIn(f"({side}, {side}, ", pictures)
        app.select("One")
        app.press("Connect")
        wait_until(lambda: "All tunnels connected" in self.host.get("ToolTip"), "the tool tip follows")
        wait_until(lambda: self.host.get("IconPixmap") != pictures, "the icon follows")
        app.quit()
        wait_until(lambda: not self.host.items(), "the item is gone")

    def test_activation_opens_at_the_pointer_and_closes(self) -> None:
        app = self.start_idle("One")
        self.desktop.xdotool("mousemove", 640, 10)
        self.host.activate()
        box = self.opened(app).get_component_iface().get_extents(0)
        self.assertLess(abs(box.x + box.width // 2 - 640), 4)
        self.assertLess(box.y, 24)
        self.host.activate()
        self.closed(app)
        self.host.activate()
        self.opened(app)

    def test_signal_ends_with_the_popover_open(self) -> None:
        app = self.start_idle("One")
        self.host.activate()
        self.opened(app)
        self.assertEqual(app.quit(), 0)

    def test_menu_has_the_footer_and_quit_ends(self) -> None:
        app = self.start_idle("One")
        self.assertEqual(list(self.host.menu()), FOOTER)
        self.host.choose("Quit Fernwick")
        self.assertEqual(app.ended(), 0)


class LateNotifier(Tray):
    """A host that comes after the application."""

    def test_it_gets_the_icon(self) -> None:
        app = self.start_idle("One")
        wait_until(lambda: NO_TRAY in app.stderr(), "standard error says that there is no tray")
        host = NotifierHost(self.session, self.desktop)
        self.addCleanup(host.stop)
        host.activate()
        self.opened(app)
        host.stop()
        again = NotifierHost(self.session, self.desktop)
        self.addCleanup(again.stop)
        wait_until(again.items, "a new host gets the icon too")
        self.assertEqual(app.stderr().count(NO_TRAY), 1)


class NoTray(Tray):
    """A desktop without any."""

    def test_the_main_window_opens_and_standard_error_says_it_once(self) -> None:
        app = self.start_idle("One")
        app.row("One")
        wait_until(lambda: NO_TRAY in app.stderr(), "standard error says that there is no tray")
        wait_for(lambda: app.stderr().count(NO_TRAY) > 1, 1.0)
        self.assertEqual(app.stderr().count(NO_TRAY), 1)
        self.assertTrue(app.window())


if __name__ == "__main__":
    main()
