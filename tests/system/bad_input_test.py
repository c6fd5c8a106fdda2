"""What a person, a disk or a machine can do to the application: it starts, keeps what was there, and says why not."""

from __future__ import annotations

import json
import os
import plistlib
from pathlib import Path

from harness import App, SystemTest, main, stored, wait_until
from lab.screen import text_of

SAMPLE = "My First Tunnel"


class Texts(SystemTest):
    """Strange texts in fields and in the catalogue come back as they went in."""

    def test_stored_texts_survive_a_start(self) -> None:
        odd = [stored.tunnel("", host="", user=""), stored.tunnel("x" * 10_000, localPort="eighty", sshPort="-1"),
               stored.tunnel("שלום עולם", user="مستخدم"),
               stored.tunnel("👩‍👩‍👧‍👦 🏳️‍🌈 e\u0301", notes="line\nline\ttab"),
               stored.tunnel("\u202eright to left override", keepAliveInterval=2**63 - 1),
               stored.tunnel("zero\u0000byte \u0001\u001b[31m", remoteHost="\u2028")]
        app = self.start(*odd)
        wait_until(lambda: len(app.all(role="list item")) == len(odd), "all rows show")
        self.assertEqual(self.preferences.tunnels(), odd)
        self.assertEqual(app.quit(), 0)
        self.assertEqual(self.preferences.tunnels(), odd)

    def test_typed_texts_are_stored_as_typed(self) -> None:
        app = self.start()
        texts = ["n" * 10_000, "عربي עברית", "👩‍👩‍👧‍👦🇩🇪", "  blanks  ", "\"quotes\" \\ 'and' $(words) `x` %n", "a, b, c"]
        for count, text in enumerate(texts, 1):
            with self.subTest(text=text[:20]):
                app.create(name=text, host=text, user=text, port=text)
                wait_until(lambda count=count: len(self.preferences.tunnels()) == count, "the tunnel is stored")
                last = self.preferences.tunnels()[-1]
                self.assertEqual([last[key] for key in ("name", "host", "user", "localPort")], [text] * 4)

    def test_control_characters_in_a_field_are_stored_as_shown(self) -> None:
        app = self.start()
        app.press("Add new tunnel")
        for field, text in (("Tunnel Name", "a\u0001b\u001bc\u007fd\ne"), ("Host / IP", "h\u2028h"), ("Username", "u\tu")):
            app.type(field, text)
        shown = [text_of(app.find(field, "text")) for field in ("Tunnel Name", "Host / IP", "Username")]
        app.press("Create Tunnel")
        wait_until(self.preferences.tunnels, "the tunnel is stored")
        self.assertEqual([self.preferences.tunnels()[0][key] for key in ("name", "host", "user")], shown)
        self.assertTrue(app.running())


class Files(SystemTest):
    """Broken and unwritable preferences."""

    def assert_starts_with(self, app: App, *names: str) -> None:
        """The window comes up with these tunnels."""
        wait_until(lambda: app.rows() == list(names), f"the sidebar shows {names}")

    def copies(self, content: bytes) -> list[Path]:
        """Where the bytes still are in the configuration folder."""
        return [path for path in self.session.config.glob(f"{stored.DOMAIN}*") if path.read_bytes() == content]

    def test_one_broken_record_gives_the_sample(self) -> None:
        for name, broken in (("missing key", {"jumpHost": None}), ("unknown type", {"tunnelType": "socks5"}),
                             ("wrong type", {"keepAliveInterval": "60"}), ("bad id", {"id": "1"})):
            with self.subTest(name):
                record = {key: value for key, value in (stored.tunnel("Bad") | broken).items() if value is not None}
                app = self.start(stored.tunnel("Good"), record)
                self.assert_starts_with(app, SAMPLE)
                wait_until(lambda: [t["name"] for t in self.preferences.tunnels()] == [SAMPLE], "the sample is stored")
                app.quit()

    def test_empty_list_stays_empty(self) -> None:
        app = self.start()
        app.find("No tunnels yet", role=None)
        self.assertEqual(self.preferences.tunnels(), [])

    def test_other_keys_are_kept(self) -> None:
        self.preferences.path.write_bytes(plistlib.dumps({"other": [1, {"a": b"\0"}], stored.TUNNELS: b"[]"}))
        app = self.start_as_is()
        app.create(host="h", user="u")
        wait_until(lambda: len(self.preferences.tunnels()) == 1, "the tunnel is stored")
        self.assertEqual(self.preferences.read()["other"], [1, {"a": b"\0"}])

    def sample_is_stored(self) -> bool:
        """Whether the file is there again and holds the sample of a first start."""
        path = self.preferences.path
        return path.exists() and [tunnel["name"] for tunnel in self.preferences.tunnels()] == [SAMPLE]

    def test_unreadable_files_are_set_aside(self) -> None:
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Old")]})
        whole = self.preferences.path.read_bytes()
        for name, content in (("truncated", whole[:len(whole) // 2]), ("garbage", os.urandom(4096)), ("text", b"hello"),
                              ("binary, truncated", plistlib.dumps({"a": 1}, fmt=plistlib.FMT_BINARY)[:-3])):
            with self.subTest(name):
                self.preferences.path.write_bytes(content)
                app = self.start_as_is()
                self.assert_starts_with(app, SAMPLE)
                wait_until(self.sample_is_stored, "the sample is stored")
                self.assertTrue(all(".unreadable-" in path.name for path in self.copies(content)))
                self.assertEqual(len(self.copies(content)), 1)
                self.assertIn(str(self.preferences.path), app.stderr())
                app.quit()

    def test_file_without_permission_is_set_aside(self) -> None:
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Secret")]})
        content = self.preferences.path.read_bytes()
        self.preferences.path.chmod(0)
        app = self.start_as_is()
        self.assert_starts_with(app, SAMPLE)
        wait_until(self.sample_is_stored, "the sample is stored")
        self.assertEqual(len(self.copies(content)), 1)
        self.assertIn(str(self.preferences.path), app.stderr())

    def test_read_only_folder_is_told_and_left_alone(self) -> None:
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Kept")]})
        content = self.preferences.path.read_bytes()
        self.session.config.chmod(0o555)
        self.addCleanup(self.session.config.chmod, 0o755)
        app = self.start_as_is()
        self.assert_starts_with(app, "Kept")
        app.create(name="New", host="h", user="u")
        self.assert_starts_with(app, "Kept", "New")
        wait_until(lambda: str(self.preferences.path) in app.stderr(), "the failure is told")
        self.assertEqual(app.quit(), 0)
        self.assertEqual(self.preferences.path.read_bytes(), content)

    def test_full_disk_keeps_the_old_file(self) -> None:
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Kept", notes="x" * 8000)]})
        path, saved = self.preferences.path, self.session.root / "saved"
        app = self.start_as_is(mounts=[f"cp {path} {saved}",
                                       f"mount -t tmpfs -o size=28k,mode=755 tmpfs {self.session.config}",
                                       f"cp {saved} {path}"])
        self.assert_starts_with(app, "Kept")
        app.choose(app.row("Kept"), "Duplicate")
        self.assert_starts_with(app, "Kept", "Kept Copy")
        wait_until(lambda: str(path) in app.stderr(), "the failure is told")
        inside = plistlib.loads(Path(f"/proc/{app.pid}/root{path}").read_bytes())
        self.assertEqual([record["name"] for record in json.loads(inside[stored.TUNNELS])], ["Kept"])
        self.assertTrue(app.running())


class Machines(SystemTest):
    """Without a bus, a display or a home."""

    def started(self, **changes: str | None) -> App:
        """The application in the session's environment with these changes; None takes a variable out."""
        changed = self.session.environment | changes
        environment = {name: value for name, value in changed.items() if value is not None}
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Here")]})
        return self.start_as_is(environment=environment)

    def assert_window(self, app: App) -> None:
        """The window comes up without the buses."""
        wait_until(app.window, "the window shows")

    def test_no_session_bus(self) -> None:
        for address in (None, f"unix:path={self.session.run}/nothing-there", "nonsense"):
            with self.subTest(address=address):
                app = self.started(DBUS_SESSION_BUS_ADDRESS=address)
                self.assert_window(app)
                self.assertEqual(app.quit(), 0)

    def test_no_display_is_told(self) -> None:
        for display in (None, "", ":9876"):
            with self.subTest(display=display):
                app = self.started(DISPLAY=display)
                self.assertEqual(app.ended(10), 1, app.stderr())
                self.assertIn("display", app.stderr())

    def test_missing_home_variable(self) -> None:
        app = self.started(HOME=None, XDG_CONFIG_HOME=None, XDG_DATA_HOME=None, XDG_CACHE_HOME=None)
        wait_until(lambda: app.rows() == ["Here"], "the catalogue of the account's home shows")

    def test_read_only_home(self) -> None:
        home = self.session.root / "locked"
        home.mkdir(exist_ok=True)
        home.chmod(0o555)
        app = self.started(HOME=str(home), XDG_CONFIG_HOME=None, XDG_DATA_HOME=None, XDG_CACHE_HOME=None)
        wait_until(lambda: app.rows() == [SAMPLE], "the sample shows")
        wait_until(lambda: str(home) in app.stderr(), "the failure is told")
        self.assertEqual(app.quit(), 0)
        self.assertEqual(list(home.iterdir()), [])

    def test_home_that_does_not_exist(self) -> None:
        home = self.session.root / "not/there/yet"
        app = self.started(HOME=str(home), XDG_CONFIG_HOME=None, XDG_DATA_HOME=None)
        wait_until(lambda: app.rows() == [SAMPLE], "the sample shows")
        wait_until((home / ".config" / f"{stored.DOMAIN}.plist").exists, "the file is made")


if __name__ == "__main__":
    main()
