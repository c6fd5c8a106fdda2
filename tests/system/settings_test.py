"""The settings window through accessibility: tags and general preferences, and what the file holds of them."""

from __future__ import annotations

from harness import SystemTest, main, stored, wait_until
from lab.app import App
from lab.screen import checked, text_of
from lab.settings import Settings

DEFAULTS = ["Production", "Staging", "Development", "Database", "Personal"]
SWITCHES = {"Show status counts in menu bar": ("showStatusInMenuBar", True),
            "Reconnect tunnels on launch": ("connectOnLaunch", False)}
OPTIONS = ["Dock icon", "Menu bar icon", "Both"]


class Window(SystemTest):
    """What all cases share."""

    def open(self, tab: str = "General", **catalogue: list[stored.Record]) -> Settings:
        """The settings of an application with no tunnels, on one of their tabs."""
        settings = Settings(self.start(**catalogue))
        settings.turn_to(tab)
        return settings

    def reopened(self, app: App, tab: str) -> Settings:
        """The settings of the application after a restart."""
        self.assertEqual(app.quit(), 0)
        settings = Settings(self.start_as_is())
        settings.turn_to(tab)
        return settings

    def assert_stored(self, **values: object) -> None:
        """The preference file comes to hold these values."""
        wait_until(lambda: values.items() <= self.preferences.read().items(), f"the file holds {values}")


class Tags(Window):
    """The list of tags and the row for a new one."""

    def tags(self) -> list[stored.Record]:
        """The tags in the preference file."""
        return self.preferences.records(stored.TAGS)

    def assert_tags(self, settings: Settings, *names: str) -> None:
        """The list and the file come to hold these tags, and the line above counts them."""
        wait_until(lambda: [tag["name"] for tag in self.tags()] == list(names), f"the file holds {names}")
        wait_until(lambda: self.rows(settings) == list(names), f"the list shows {names}")
        plural = "" if len(names) == 1 else "s"
        settings.find(f"{len(names)} tag{plural} — select a tag to edit or delete")

    def rows(self, settings: Settings) -> list[str]:
        """The names in the list, from the top down."""
        rows = settings.find("Tags", "list")
        return [rows.get_child_at_index(index).get_name() for index in range(rows.get_child_count())]

    def add(self, settings: Settings, name: str) -> None:
        """Types a name for a new tag and presses Add."""
        settings.type("New tag name", name)
        settings.press("Add")

    def test_added_tag_is_trimmed_and_a_second_of_its_name_is_refused(self) -> None:
        first = stored.tag("First", "#FF0000")
        settings = self.open("Tags", tags=[first])
        self.assert_tags(settings, "First")
        self.add(settings, "  Work ")
        self.assert_tags(settings, "First", "Work")
        self.assertEqual(text_of(settings.find("New tag name", "text")), "")
        before = self.tags()
        self.assertEqual((before[0], before[1]["colorHex"]), (first, "#0A84FF"))
        for refused in ("Work", " Work", " \t ", ""):
            self.add(settings, refused)
            self.assertEqual(text_of(settings.find("New tag name", "text")), refused)
        self.add(settings, "work")
        self.assert_tags(settings, "First", "Work", "work")
        self.assertEqual(self.tags()[:2], before)
        self.assertFalse(settings.app.all(role="dialog"))
        self.assert_tags(self.reopened(settings.app, "Tags"), "First", "Work", "work")

    def test_colour_is_chosen_in_the_panel(self) -> None:
        settings = self.open("Tags")
        well = settings.find("New tag color", "push button")
        self.assertEqual(well.get_description(), "#0A84FF")
        settings.press("New tag color")
        panel = settings.sheet("New tag color")
        settings.app.find("HTML:", "text", panel).get_component_iface().grab_focus()
        settings.keys("ctrl+a")
        self.desktop.xdotool("type", "#ff0000")
        settings.app.press("OK", under=panel)
        wait_until(lambda: well.get_description() == "#FF0000", "the well shows the colour")
        self.add(settings, "Red")
        self.assert_tags(settings, "Red")
        self.assertEqual(self.tags()[0]["colorHex"], "#FF0000")
        wait_until(lambda: well.get_description() == "#0A84FF", "the well is blue again")

    def test_edited_tag_keeps_its_id_and_its_tunnels(self) -> None:
        one, two, three = stored.tag("One"), stored.tag("Two", "#FF0000"), stored.tag("Three")
        settings = Settings(self.start(stored.tunnel("Tagged", tagIDs=[two["id"]]), tags=[one, two, three]))
        settings.turn_to("Tags")
        self.edit(settings, "Two", "   ")  # the sheet stays
        sheet = settings.sheet("Edit Tag")
        settings.app.type("Tag name", " Second ", sheet)
        settings.app.press("Save", under=sheet)
        settings.app.gone("Edit Tag", "dialog")
        self.assert_tags(settings, "One", "Second", "Three")
        self.assertEqual(self.tags(), [one, two | {"name": "Second"}, three])
        self.assertEqual(self.preferences.tunnels()[0]["tagIDs"], [two["id"]])
        self.assertTrue(settings.app.has("Second", "check box") or "Second" in settings.app.texts())

    def edit(self, settings: Settings, tag: str, name: str) -> None:
        """Opens the sheet of a tag, types a name and presses Save."""
        settings.app.click(settings.find(tag, "list item"))
        settings.press("Edit tag")
        sheet = settings.sheet("Edit Tag")
        settings.app.type("Tag name", name, sheet)
        settings.app.press("Save", under=sheet)

    def test_cancelled_edit_changes_nothing(self) -> None:
        tag = stored.tag("Only")
        settings = self.open("Tags", tags=[tag])
        settings.app.click(settings.find("Only", "list item"))
        settings.press("Edit tag")
        sheet = settings.sheet("Edit Tag")
        settings.app.type("Tag name", "Other", sheet)
        settings.app.press("Cancel", under=sheet)
        settings.app.gone("Edit Tag", "dialog")
        self.assert_tags(settings, "Only")
        self.assertEqual(self.tags(), [tag])

    def test_deleted_tag_is_gone_and_its_tunnels_keep_the_id(self) -> None:
        one, two = stored.tag("One"), stored.tag("Two")
        settings = Settings(self.start(stored.tunnel("Tagged", tagIDs=[one["id"]]), tags=[one, two]))
        settings.turn_to("Tags")
        self.assertFalse(settings.has("Delete tag"))
        for name, left in (("One", ["Two"]), ("Two", [])):
            settings.app.click(settings.find(name, "list item"))
            settings.press("Delete tag")
            self.assert_tags(settings, *left)
            self.assertFalse(settings.has("Delete tag"))
        self.assertEqual(self.preferences.tunnels()[0]["tagIDs"], [one["id"]])
        self.assert_tags(self.reopened(settings.app, "Tags"))

    def test_first_start_offers_five(self) -> None:
        settings = Settings(self.start_as_is())
        settings.turn_to("Tags")
        self.assert_tags(settings, *DEFAULTS)


class General(Window):
    """The five preferences."""

    def test_every_value_is_stored_and_there_after_a_restart(self) -> None:
        settings = self.open()
        self.assertTrue(checked(settings.find("Menu bar icon", "radio button")))
        for option in OPTIONS:
            settings.press(option, "radio button")
            self.assert_stored(showAsOption=option)
        for label, (key, on) in SWITCHES.items():
            self.assertEqual(checked(settings.find(label, "check box")), on)
            settings.press(label, "check box")
            self.assert_stored(**{key: not on})
        settings.type("Default SSH Port", "2222")
        self.assert_stored(defaultSSHPort="2222")
        settings = self.reopened(settings.app, "General")
        self.assertEqual([checked(settings.find(option, "radio button")) for option in OPTIONS], [False, False, True])
        for label, (_, on) in SWITCHES.items():
            self.assertEqual(checked(settings.find(label, "check box")), not on)
        self.assertEqual(text_of(settings.find("Default SSH Port", "text")), "2222")

    def test_values_of_other_types_show_as_the_defaults(self) -> None:
        self.preferences.seed(**{stored.TUNNELS: []})
        held = self.preferences.read() | {"showAsOption": 7, "launchAtLogin": "yes", "defaultSSHPort": 2222,
                                          "showStatusInMenuBar": b"no"}
        self.preferences.write(held)
        settings = Settings(self.start_as_is())
        self.assertTrue(checked(settings.find("Menu bar icon", "radio button")))
        self.assertFalse(checked(settings.find("Launch at login", "check box")))
        self.assertTrue(checked(settings.find("Show status counts in menu bar", "check box")))
        self.assertEqual(text_of(settings.find("Default SSH Port", "text")), "22")
        self.assertEqual({key: self.preferences.read()[key] for key in held if key != stored.TUNNELS},
                         {key: held[key] for key in held if key != stored.TUNNELS})

    def test_default_port_changes_nothing_for_a_new_tunnel(self) -> None:
        settings = self.open()
        settings.type("Default SSH Port", "2222")
        self.assert_stored(defaultSSHPort="2222")
        app = settings.app
        app.press("Add new tunnel")
        sheet = app.find("New Tunnel", "dialog")
        entries = [text_of(entry) for entry in app.all(role="text", under=sheet)]
        self.assertTrue(entries)
        self.assertNotIn("2222", [*entries, *app.texts(sheet)])
        app.press("Cancel", under=sheet)
        app.gone("New Tunnel", "dialog")
        app.create(name="New", host="h", user="u")
        app.select("New")
        self.assertEqual(text_of(app.find("SSH Port", "text")), "22")
        wait_until(self.preferences.tunnels, "the tunnel is stored")
        self.assertEqual(self.preferences.tunnels()[0]["sshPort"], "22")

    def test_window_is_one_and_comes_back(self) -> None:
        settings = self.open()
        settings.app.keys("ctrl+comma")
        wait_until(lambda: self.desktop.xdotool("getactivewindow") == settings.window(), "it comes to the front")
        self.assertEqual(len(settings.app.all("Settings", "frame")), 1)
        settings.turn_to("Tags")
        settings.close()
        again = Settings(settings.app)
        again.find("Appearance")


if __name__ == "__main__":
    main()
