"""The settings window by keyboard alone: Tab comes by every control and leads out again, and all can be worked."""

from __future__ import annotations

from harness import SystemTest, main, stored, wait_until
from lab.keyboard import Keyboard
from lab.screen import Widget, called, checked, controls, enabled, focusable, text_of
from lab.settings import TABS, TITLE, Settings

# What Tab comes by, with a row chosen in each list.
ORDER = {
    "General": ["Menu bar icon", "Show status counts in menu bar", "Launch at login", "Reconnect tunnels on launch",
                "Default SSH Port", "Check Update"],
    "Identity": ["Identity Keys", "Import", "Remove", "Reveal in Finder", "Set Passphrase"],
    "Known Hosts": ["Reload", "Save", "Known Hosts"],
    "Tags": ["Tags", "Edit tag", "Delete tag", "New tag color", "New tag name", "Add"],
    "Sync": ["Sync with iCloud", "Check iCloud status", "Push Now", "Pull Now", "Enable automatic backups",
             "Backup every", "Change...", "Keep last", "Backup Now", "0 backups", "Export Tunnels...",
             "Import Tunnels...", "Import .fernwick..."],
}
LISTS = {"Identity": "Identity Keys", "Tags": "Tags"}
SHEETS = {"Identity": ("Set Passphrase", "Passphrase", ["Passphrase", "Show passphrase", "Cancel", "Save to Keychain"]),
          "Tags": ("Edit tag", "Edit Tag", ["Tag color", "Tag name", "Cancel", "Save"])}
# Tab leads to the chosen one or to the whole, and arrow keys to the others.
BY_ARROWS = ("radio button", "page tab", "list item", "table cell", "layered pane")


class ByKeyboard(SystemTest):
    """Nobody touches the mouse."""

    def setUp(self) -> None:
        super().setUp()
        self.desktop.xdotool("mousemove", 0, 799)

    def open(self) -> tuple[Settings, Keyboard]:
        """The settings of an application with a key and a tag."""
        app = self.start(keys=[stored.key(self.session.root / "no-such-key")], tags=[stored.tag("One")])
        return Settings(app), Keyboard(app)

    def turn_to(self, settings: Settings, keyboard: Keyboard, tab: str) -> None:
        """Opens a tab with the keyboard, and chooses the only row of its list."""
        before = settings.find(role=TABS).get_name()
        keyboard.reach(before, TABS)
        way = list(ORDER).index(tab) - list(ORDER).index(before)
        for _ in range(abs(way)):
            keyboard.press("Right" if way > 0 else "Left")
        settings.find(tab, TABS)
        if tab in LISTS:
            keyboard.press("Tab")
            keyboard.at(LISTS[tab])
            keyboard.press("Down")
            keyboard.reach(tab, TABS)

    def names(self, chain: list[str]) -> list[str]:
        """What the stops are called."""
        return [stop.partition(" (")[0] for stop in chain]

    def assert_none_left_out(self, window: Widget, reached: list[str]) -> None:
        """Whatever can have the keyboard has a name and is among these."""
        for node in controls(window):
            if focusable(node) and enabled(node) and node.get_role_name() not in BY_ARROWS:
                self.assertIn(called(node), reached, node.get_role_name())

    def test_tab_comes_by_every_control_of_every_tab_and_leads_out_again(self) -> None:
        settings, keyboard = self.open()
        for tab, order in ORDER.items():
            with self.subTest(tab=tab):
                self.turn_to(settings, keyboard, tab)
                self.assertEqual(self.names(keyboard.round()), [*order, tab])
                self.assert_none_left_out(settings.frame, [*order, tab])
                for name in [tab, *reversed(order)]:
                    keyboard.press("shift+Tab")
                    keyboard.at(name)

    def test_sheets_keep_the_keyboard_until_escape(self) -> None:
        settings, keyboard = self.open()
        for tab, (button, title, order) in SHEETS.items():
            with self.subTest(sheet=title):
                self.turn_to(settings, keyboard, tab)
                keyboard.reach(button)
                keyboard.press("space")
                sheet = keyboard.window(title)
                chain = self.names(keyboard.round())
                self.assertEqual(sorted(chain), sorted(order))
                self.assert_none_left_out(sheet, order)
                keyboard.press("Escape")
                keyboard.window(TITLE)
                keyboard.at(button)

    def test_tag_is_added_edited_and_deleted(self) -> None:
        settings, keyboard = self.open()
        self.turn_to(settings, keyboard, "Tags")
        keyboard.reach("New tag name")
        keyboard.write("Two")
        keyboard.press("Return")
        self.assert_tags("One", "Two")
        keyboard.reach("Tags", "list")
        keyboard.press("End", "Return")
        keyboard.window("Edit Tag")
        keyboard.at("Tag name")
        keyboard.write("Second")  # in the place of the name, which is chosen
        keyboard.press("Return")
        self.assert_tags("One", "Second")
        keyboard.window(TITLE)
        keyboard.at("Tags")
        keyboard.press("Home", "Delete")
        self.assert_tags("Second")
        keyboard.at("Tags")

    def assert_tags(self, *names: str) -> None:
        """The file comes to hold these tags."""
        wait_until(lambda: [tag["name"] for tag in self.preferences.records(stored.TAGS)] == list(names),
                   f"the file holds {names}")

    def test_key_is_removed_and_the_keyboard_stays(self) -> None:
        settings, keyboard = self.open()
        self.turn_to(settings, keyboard, "Identity")
        keyboard.reach("Remove")
        keyboard.press("space")
        wait_until(lambda: not self.preferences.records(stored.KEYS), "the key is gone")
        keyboard.at("Identity Keys")
        settings.find("No key selected")

    def test_choices_and_switches(self) -> None:
        settings, keyboard = self.open()
        keyboard.reach("Menu bar icon")
        for key, option in (("Right", "Both"), ("Left", "Menu bar icon"), ("Left", "Dock icon")):
            keyboard.press(key)
            keyboard.at(option)
            wait_until(lambda option=option: self.preferences.read().get("showAsOption") == option, "it is stored")
        keyboard.reach("General", TABS)
        keyboard.press("Tab")
        keyboard.at("Dock icon")
        keyboard.press("Tab", "space")
        wait_until(lambda: self.preferences.read().get("showStatusInMenuBar") is False, "the switch is stored")
        self.assertFalse(checked(keyboard.at("Show status counts in menu bar")))

    def test_tabs_are_turned_from_anywhere_and_the_window_closes(self) -> None:
        settings, keyboard = self.open()
        keyboard.reach("Default SSH Port")
        for tab in [*list(ORDER)[1:], "General"]:
            keyboard.press("ctrl+Next")
            settings.find(tab, TABS)
            keyboard.at(tab)
        keyboard.press("ctrl+Prior")
        settings.find("Sync", TABS)
        settings.close()
        keyboard.window("Fernwick")

    def test_tab_leaves_the_editor_of_known_hosts_as_it_is(self) -> None:
        settings, keyboard = self.open()
        self.turn_to(settings, keyboard, "Known Hosts")
        editor = keyboard.reach("Known Hosts", "text")
        before = text_of(editor)
        keyboard.press("Tab")
        wait_until(lambda: keyboard.focus().get_role_name() == TABS, "the keyboard is at the tabs")
        self.assertEqual(text_of(editor), before)


if __name__ == "__main__":
    main()
