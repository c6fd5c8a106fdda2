"""The main window through accessibility; after each step the preference file holds what the window showed."""

from __future__ import annotations

import signal
import subprocess

from harness import SystemTest, main, stored, wait_until
from lab.app import App, program
from lab.screen import act, enabled

BUS_NAME, BUS_PATH = "com.fernwick.Fernwick", "/com/fernwick/Fernwick"


class Sidebar(SystemTest):
    """Creating, finding, copying and deleting tunnels."""

    def names(self) -> list[str]:
        """The names in the preference file, in order."""
        return [record["name"] for record in self.preferences.tunnels()]

    def assert_shows(self, app: App, *names: str) -> None:
        """The sidebar lists these tunnels, from the top down."""
        wait_until(lambda: app.rows() == list(names), f"the sidebar shows {names}, not {app.rows()}")

    def assert_stored(self, *names: str) -> None:
        """The preference file holds these tunnels, in this order."""
        wait_until(lambda: self.names() == list(names), f"the file holds {names}, not {self.names()}")

    def test_first_start_shows_and_stores_the_sample(self) -> None:
        app = self.start_as_is()
        self.assert_shows(app, "My First Tunnel")
        self.assert_stored("My First Tunnel")
        self.assertEqual(len(self.preferences.records(stored.TAGS)), 5)

    def test_created_tunnel_is_selected_and_stored(self) -> None:
        app = self.start(stored.tunnel("First"))
        app.create(name="Häuser 🏠", host="example.com", user="ubuntu", port="8080")
        self.assert_shows(app, "First", "Häuser 🏠")
        self.assert_stored("First", "Häuser 🏠")
        app.find("Connect")
        created = self.preferences.tunnels()[1]
        expected = stored.tunnel("Häuser 🏠", id=created["id"], host="example.com", user="ubuntu", localPort="8080",
                                 createdAt=created["createdAt"], reconnectOnFailure=True)
        self.assertEqual(created, expected)
        self.assertAlmostEqual(created["createdAt"], stored.now(), delta=30)

    def test_only_host_and_user_are_needed(self) -> None:
        app = self.start()
        app.press("Create New Tunnel")
        create = app.find("Create Tunnel", "push button")
        self.assertFalse(enabled(create))
        app.type("Host / IP", "h")
        self.assertFalse(enabled(create))
        app.type("Username", "u")
        app.press("Create Tunnel")
        self.assert_shows(app, "New Tunnel")
        self.assert_stored("New Tunnel")
        self.assertEqual(self.preferences.tunnels()[0]["localPort"], "")

    def test_cancelled_sheet_changes_nothing(self) -> None:
        app = self.start(stored.tunnel("Only"))
        app.press("Add new tunnel")
        app.type("Host / IP", "h")
        app.type("Username", "u")
        app.press("Cancel")
        app.gone("Create Tunnel")
        self.assert_shows(app, "Only")
        self.assert_stored("Only")

    def test_search_looks_at_name_host_and_user_only(self) -> None:
        app = self.start(stored.tunnel("Alpha", host="one.example", user="Ubuntu", notes="needle"),
                         stored.tunnel("Beta", host="two.example", user="root", localPort="4711"))
        for text, names in (("ALPHA", ["Alpha"]), ("two.", ["Beta"]), ("ubuntu", ["Alpha"]),
                            ("example", ["Alpha", "Beta"]), ("needle", []), ("4711", []), (" ", [])):
            with self.subTest(text=text):
                app.type("Search tunnels...", text)
                self.assert_shows(app, *names)
                self.assertEqual(app.has("No results"), not names)
        app.type("Search tunnels...", "")
        self.assert_shows(app, "Alpha", "Beta")
        self.assert_stored("Alpha", "Beta")

    def test_tag_chips_filter_and_toggle(self) -> None:
        red, blue, idle = stored.tag("Red", "#FF0000"), stored.tag("Blue"), stored.tag("Unused", "zz")
        app = self.start(stored.tunnel("A", tagIDs=[red["id"]]), stored.tunnel("B", tagIDs=[blue["id"], red["id"]]),
                         stored.tunnel("C"), tags=[red, blue, idle])
        everything = ["A", "B", "C"]
        for chip, names in (("Blue", ["B"]), ("Red", ["A", "B"]), ("Red", everything), ("Unused", []),
                            ("All", everything)):
            with self.subTest(chip=chip, names=names):
                app.press(chip, role=None)
                self.assert_shows(app, *names)
                self.assertEqual(app.has("No tunnels yet"), not names)
        self.assert_stored("A", "B", "C")

    def test_duplicate_goes_to_the_end_with_a_new_id(self) -> None:
        app = self.start(stored.tunnel("Prod", lastConnectedAt=5.0, createdAt=4.0), stored.tunnel("Other"))
        app.choose(app.row("Prod"), "Duplicate")
        self.assert_shows(app, "Prod", "Other", "Prod Copy")
        app.choose(app.row("Prod"), "Duplicate")
        self.assert_shows(app, "Prod", "Other", "Prod Copy", "Prod Copy")
        self.assert_stored("Prod", "Other", "Prod Copy", "Prod Copy")
        first, _, copy, again = self.preferences.tunnels()
        self.assertEqual(len({first["id"], copy["id"], again["id"]}), 3)
        self.assertEqual(copy | {"id": first["id"], "name": "Prod"}, first)

    def test_delete_asks_first(self) -> None:
        app = self.start(stored.tunnel("Keep"), stored.tunnel("Lose"))
        app.select("Lose")
        app.choose(app.row("Lose"), "Delete")
        app.find('Are you sure you want to delete "Lose"? This action cannot be undone.', role=None)
        app.press("Cancel")
        app.gone("Delete Tunnel", role=None)
        self.assert_stored("Keep", "Lose")
        app.choose(app.row("Lose"), "Delete")
        app.press("Delete")
        self.assert_shows(app, "Keep")
        self.assert_stored("Keep")
        app.find("No Tunnel Selected", role=None)

    def test_start_and_stop_from_the_row(self) -> None:
        sleeper = self.session.root / "sleeping-ssh"
        sleeper.write_text("#!/bin/sh\nexec sleep 600\n")
        sleeper.chmod(0o755)
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Row")]})
        app = self.start_as_is(stand_in=sleeper)
        app.select("Row")
        app.choose(app.row("Row"), "Start Tunnel")
        app.find("Connected", role=None)
        self.assertEqual(len(app.children("sleep")), 1)
        app.choose(app.row("Row"), "Stop Tunnel")
        app.find("Idle", role=None)
        wait_until(lambda: not app.children("sleep"), "the child ends")


class Windows(SystemTest):
    """Hiding and coming back."""

    def hidden(self, app: App) -> None:
        """Closes the main window as its close button would and waits until it is gone."""
        wait_until(app.window, "the window shows")
        # the window takes on closing by hiding a moment after the start
        wait_until(lambda: self._close(app), "the window hides")
        self.assertTrue(app.running())

    def _close(self, app: App) -> bool:
        window = app.window()
        if window:
            self.desktop.xdotool("windowactivate", "--sync", window, "key", "alt+F4")
        return not app.window()

    def test_closing_hides_and_a_second_start_raises(self) -> None:
        app = self.start(stored.tunnel("Stays"))
        app.select("Stays")
        self.hidden(app)
        done = subprocess.run([program()], env=self.session.environment, timeout=10, capture_output=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        wait_until(app.window, "the window is back")
        self.assertTrue(app.running())
        self.assertEqual(app.rows(), ["Stays"])
        self.assertTrue(app.has("Connect"))

    def test_activation_on_the_bus_raises(self) -> None:
        app = self.start(stored.tunnel("Stays"))
        self.hidden(app)
        self.desktop.call(BUS_NAME, BUS_PATH, "org.freedesktop.Application.Activate", "{}")
        wait_until(app.window, "the window is back")

    def test_raising_again_and_again_keeps_one_window(self) -> None:
        app = self.start(stored.tunnel("One"))
        for _ in range(3):
            self.hidden(app)
            self.desktop.call(BUS_NAME, BUS_PATH, "org.freedesktop.Application.Activate", "{}")
            wait_until(app.window, "the window is back")
        frames = [node for node in app.all(role="frame") if node.get_name() == "Fernwick"]
        self.assertEqual(len(frames), 1)

    def test_hidden_application_quits_by_signal(self) -> None:
        app = self.start(stored.tunnel("Quiet"))
        self.hidden(app)
        self.assertEqual(app.quit(signal.SIGTERM), 0)

    def test_window_is_at_least_900_by_600(self) -> None:
        app = self.start(stored.tunnel("Small"))
        window = wait_until(app.window, "the window shows")
        self.desktop.xdotool("windowsize", "--sync", window, 400, 300)
        geometry = self.desktop.xdotool("getwindowgeometry", "--shell", window)
        size = dict(line.split("=") for line in geometry.splitlines())
        self.assertGreaterEqual((int(size["WIDTH"]), int(size["HEIGHT"])), (900, 600))

    def test_proxies_and_rules_button_can_be_pressed(self) -> None:
        app = self.start(stored.tunnel("Rules"))
        act(app.find("Proxies & Rules", "push button"))
        self.assertTrue(app.row("Rules"))


if __name__ == "__main__":
    main()
