"""The detail column through accessibility; after each step the preference file holds what the window showed."""

from __future__ import annotations

import subprocess
from pathlib import Path

from harness import SystemTest, main, stored, wait_until
from lab.app import App
from lab.screen import Widget, act, checked, text_of

AUTHENTICATIONS = ["Password", "Private Key", "SSH Agent"]
TYPES = [stored.LOCAL, stored.REMOTE, stored.SOCKS5, stored.DYNAMIC]


class Detail(SystemTest):
    """Editing a tunnel in place."""

    def record(self) -> stored.Record:
        """The first tunnel of the preference file."""
        return self.preferences.tunnels()[0]

    def assert_stored(self, **fields: object) -> None:
        """The file comes to hold these values."""
        wait_until(lambda: fields.items() <= {name: self.record().get(name) for name in fields}.items(),
                   f"the file holds {fields}, not { {name: self.record().get(name) for name in fields} }")

    def open(self, *keys: stored.Record, tags: list[stored.Record] | None = None, **fields: object) -> App:
        """The application with one tunnel, which is chosen."""
        app = self.start(stored.tunnel("Edited", **fields), keys=list(keys), tags=tags)
        app.select("Edited")
        return app

    def focus(self, widget: Widget) -> None:
        """Gives the keyboard to a widget."""
        widget.get_component_iface().grab_focus()

    def keys(self, widget: Widget, *chords: str) -> None:
        """Presses keys in a widget."""
        self.focus(widget)
        self.desktop.xdotool("key", "--delay", "20", *chords)

    def test_every_text_is_written_as_it_is_typed(self) -> None:
        app = self.open()
        for label, field in (("Tunnel Name", "name"), ("Host / IP", "host"), ("SSH Port", "sshPort"),
                             ("Username", "user"), ("Jump Host", "jumpHost"), ("Local Port", "localPort"),
                             ("Remote Host", "remoteHost"), ("Remote Port", "remotePort"), ("Notes", "notes")):
            with self.subTest(field=field):
                app.type(label, f"{field} ế 🏠")
                self.assert_stored(**{field: f"{field} ế 🏠"})
        self.assertEqual(app.rows(), ["name ế 🏠"])

    def test_keys_come_one_by_one_where_the_cursor_is(self) -> None:
        app = self.open()
        entry = app.find("Tunnel Name", "text")
        self.keys(entry, "Home", "a", "b", "Right", "c")
        self.assert_stored(name="abEcdited")
        self.assertEqual(text_of(entry), "abEcdited")

    def test_submitted_port_of_blanks_becomes_22(self) -> None:
        app = self.open()
        app.type("SSH Port", "  ")
        self.assert_stored(sshPort="  ")
        self.keys(app.find("SSH Port", "text"), "Return")
        self.assert_stored(sshPort="22")

    def test_types_and_authentications_are_chosen_by_keyboard(self) -> None:
        app = self.open(remoteHost="db", remotePort="5432")
        app.find_menu("Type")
        self.keys(app.find("Tunnel Name", "text"), "Tab", "Home")
        for at, kind in enumerate(TYPES):
            with self.subTest(kind=kind):
                if at > 0:
                    self.desktop.xdotool("key", "Down")
                self.assert_stored(tunnelType=kind, remoteHost="db", remotePort="5432")
                wait_until(lambda at=at: app.has("Remote Host", "text") == (at < 2), "the remote rows fit the type")
        app.find_menu("Auth Method")
        self.keys(app.find("Username", "text"), "Tab", "Home")
        for at, method in enumerate(AUTHENTICATIONS):
            with self.subTest(method=method):
                if at > 0:
                    self.desktop.xdotool("key", "Down")
                self.assert_stored(authMethod=method)
                wait_until(lambda at=at: app.has("SSH Password", "password text") == (at == 0), "the password's row")
                wait_until(lambda at=at: bool(app.menus("Identity Key")) == (at == 1), "the key's row")

    def test_choice_is_made_in_the_open_menu(self) -> None:
        app = self.open()
        self.keys(app.find("Tunnel Name", "text"), "Tab", "space")
        self.desktop.xdotool("key", "--delay", "50", "Down", "Down", "Return")
        self.assert_stored(tunnelType=stored.SOCKS5)

    def test_tags_are_put_on_and_taken_off(self) -> None:
        red, blue = stored.tag("Red", "#FF0000"), stored.tag("Blue")
        app = self.open(tags=[red, blue])

        def toggle(name: str) -> None:
            picker = next(node for node in app.all("Tags") if node.get_role_name() != "label")
            act(app.find(name, "check box", under=picker))

        toggle("Blue")
        self.assert_stored(tagIDs=[blue["id"]])
        toggle("Red")
        self.assert_stored(tagIDs=[blue["id"], red["id"]])
        toggle("Blue")
        self.assert_stored(tagIDs=[red["id"]])

    def test_slider_and_switches(self) -> None:
        app = self.open(keepAliveInterval=47)
        app.turn_to("Advanced")
        app.find("47s")
        slider = app.find("Keep-Alive (sec)", "slider")
        self.assertEqual(slider.get_value_iface().get_current_value(), 50)
        self.assert_stored(keepAliveInterval=47)
        self.keys(slider, "Right")
        self.assert_stored(keepAliveInterval=60)
        slider.get_value_iface().set_current_value(300)
        self.assert_stored(keepAliveInterval=300)
        app.find("300s")
        for label, field in (("Auto Reconnect", "reconnectOnFailure"), ("Compression", "compression")):
            with self.subTest(label=label):
                switch = app.find(label, "check box")
                self.assertFalse(checked(switch))
                act(switch)
                self.assert_stored(**{field: True})
                self.assertTrue(checked(switch))

    def test_preview_is_copied_to_the_clipboard(self) -> None:
        app = self.open(tunnelType=stored.SOCKS5, localPort="1080", user="user", host="host")
        app.turn_to("Advanced")
        command = "/usr/bin/ssh -N -p 22 -D 127.0.0.1:1080 user@host"
        self.assertEqual(text_of(app.find("SSH Command Preview", "text")), command)
        app.press("Copy")
        wait_until(lambda: self.clipboard() == command, "the command is on the clipboard")

    def clipboard(self) -> str:
        """The text on the clipboard."""
        done = subprocess.run(["xclip", "-selection", "clipboard", "-out"], env=self.session.environment,
                              capture_output=True, text=True, timeout=10)
        return done.stdout

    def test_chosen_key_file_becomes_a_key(self) -> None:
        app = self.open()
        file = self.session.root / "id_of_a_test"
        file.write_text("not looked at")
        app.find('No keys yet — click "Add Key" to import your private key file', role=None)
        self.choose_file(app, file)
        wait_until(lambda: self.preferences.records(stored.KEYS), "the key is in the file")
        [key] = self.preferences.records(stored.KEYS)
        self.assertEqual((key["name"], key["path"], key["comment"]), (file.name, str(file), ""))
        self.assertAlmostEqual(key["addedAt"], stored.now(), delta=30)
        self.assert_stored(identityKeyID=key["id"])
        app.press("Deselect key")
        self.assert_stored(identityKeyID=None)
        self.choose_file(app, file)
        self.assert_stored(identityKeyID=key["id"])
        self.assertEqual(self.preferences.records(stored.KEYS), [key])

    def choose_file(self, app: App, file: Path) -> None:
        """Chooses a file in the panel that "Add Key" opens, with the keyboard."""
        app.press("Add Key")
        title = "Select SSH Private Key"
        panel = wait_until(lambda: app.window(title), "the panel opens")
        self.desktop.xdotool("windowactivate", "--sync", panel, "type", "--delay", "5", str(file))
        self.desktop.xdotool("key", "Return")
        wait_until(lambda: not app.window(title), "the panel closes")

    def test_log_with_badge_auto_scroll_and_clear(self) -> None:
        talker = self.session.root / "talking-ssh"
        talker.write_text("#!/bin/sh\nseq -f 'line %.0f' 100 >&2\nsleep 1\nexit 255\n")
        talker.chmod(0o755)
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Talks")]})
        app = self.start_as_is(stand_in=talker)
        app.select("Talks")
        logs = app.find("Logs", "radio button")
        self.assertEqual(logs.get_description(), "")
        app.press("Connect")
        app.find("Disconnected", deadline=8)
        wait_until(lambda: logs.get_description() != "", "the badge shows")
        self.assertEqual(logs.get_description(), "1")  # how ssh ended
        app.turn_to("Logs")
        wait_until(lambda: "line 100" in app.log(), "the end of the log is on the screen")
        self.assertTrue(checked(app.find("Auto-scroll", "check box")))
        act(app.find("Auto-scroll", "check box"))
        app.press("Clear")
        app.find("0 entries")
        app.find("No logs yet. Connect to start seeing output.")
        wait_until(lambda: logs.get_description() == "", "the badge goes")
        app.turn_to("Configuration")
        app.turn_to("Logs")
        self.assertTrue(checked(app.find("Auto-scroll", "check box")))

    def test_tab_stays_open_for_another_tunnel(self) -> None:
        app = self.start(stored.tunnel("First"), stored.tunnel("Second", keepAliveInterval=200))
        app.select("First")
        app.turn_to("Advanced")
        app.select("Second")
        app.find("200s")


if __name__ == "__main__":
    main()
