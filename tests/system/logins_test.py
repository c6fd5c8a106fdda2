"""Every way to log in that needs a secret: from a real keyring, through a script, into a real server."""

from __future__ import annotations

import base64
import time
from pathlib import Path

from harness import SshTest, main, stored, wait_until
from lab import site
from lab.app import App
from lab.keyring import KEY_PASSPHRASE, TUNNEL_PASSWORD, Keyring
from lab.wire import fetch, free_port, listens

SECRETS = {
    "quotes": """it's "quoted" \\ `id`""",
    "dollars": "$HOME $(id) ${PATH} %s",
    "blanks": "  two  blanks  ",
    "Vietnamese": "mật khẩu của tôi ườ",
    "two hundred characters": "0123456789" * 20,
}
NO_PASSWORD = "⚠ Password auth nhưng password trống"


class Logins(SshTest):
    """A tunnel per case; the secret lies in the keyring before the application asks for it."""

    keyring: Keyring

    @classmethod
    def setUpClass(cls) -> None:
        """Adds a keyring to what all cases share."""
        super().setUpClass()
        cls.keyring = Keyring(cls.session, cls.desktop)

    def setUp(self) -> None:
        """Begins without the scripts of the cases before."""
        super().setUp()
        for script in self.scripts():
            script.unlink()

    def record(self, name: str, **fields: object) -> stored.Record:
        """A forward to the site behind the server."""
        return self.tunnel(name, localPort=str(free_port()), remoteHost=site.NAME,
                           remotePort=str(self.lab.site_port), **fields)

    def by_password(self, name: str, secret: str | None) -> stored.Record:
        """A tunnel that logs in by password; a secret of None is not stored."""
        record = self.record(name, authMethod="Password", identityKeyID=None)
        del record["identityKeyID"]
        if secret is not None:
            self.keyring.store(TUNNEL_PASSWORD, record["id"], secret)
        return record

    def by_key(self, name: str, passphrase: str, kept: str | None) -> tuple[stored.Record, stored.Record]:
        """A tunnel with an encrypted key of its own, and the key; `kept` is what the keyring holds for it."""
        path = self.lab.make_key(name.replace(" ", "_"), passphrase)
        self.lab.authorize(path)
        key = stored.key(path)
        if kept is not None:
            self.keyring.store(KEY_PASSPHRASE, key["id"], kept)
        return self.record(name, identityKeyID=key["id"]), key

    def pressed(self, record: stored.Record, *keys: stored.Record) -> App:
        """The application after Connect was pressed on its one tunnel."""
        app = self.start(record, keys=list(keys))
        app.select(record["name"])
        app.press("Connect")
        return app

    def assert_carries(self, app: App, record: stored.Record) -> None:
        """Bytes flow."""
        wait_until(lambda: listens(int(record["localPort"])), "the forward is up")
        app.find("Connected")
        self.assertEqual(fetch(int(record["localPort"]), site.NAME).decode(), site.GREETING)

    def assert_nowhere(self, app: App, secret: str) -> None:
        """The secret is in no log line, argument, variable of a child, standard error or preference file."""
        for line in [*app.log(), app.stderr()]:
            self.assertNotIn(secret, line)
        encoded = base64.b64encode(secret.encode())
        for pid in app.children():
            for name in ("cmdline", "environ"):
                held = Path(f"/proc/{pid}/{name}").read_bytes()
                self.assertNotIn(secret.encode(), held)
                self.assertNotIn(encoded, held)
        self.assertNotIn(secret.encode(), self.preferences.path.read_bytes())

    def assert_refused(self, app: App, complaint: str) -> None:
        """ssh gave up, and the log has its own words."""
        app.find("Disconnected", deadline=20)
        log = app.log()
        self.assertTrue(any(complaint in line for line in log), log)

    def scripts(self) -> list[Path]:
        """The askpass scripts that lie in the temporary folder."""
        return sorted(Path(self.session.environment["TMPDIR"]).glob("lm_askpass_*"))

    def test_password_logs_in_whatever_is_in_it(self) -> None:
        for name, secret in SECRETS.items():
            with self.subTest(name):
                self.lab.set_password(secret)
                record = self.by_password(f"Password with {name}", secret)
                app = self.pressed(record)
                self.assert_carries(app, record)
                self.assertIn("🔑 Dùng password auth", app.log())
                self.assert_nowhere(app, secret)
                self.end(app)

    def test_encrypted_key_logs_in_whatever_is_in_its_passphrase(self) -> None:
        for name, secret in SECRETS.items():
            with self.subTest(name):
                record, key = self.by_key(f"Key with {name}", secret, secret)
                app = self.pressed(record, key)
                self.assert_carries(app, record)
                self.assertIn("🔑 Dùng passphrase từ Keychain cho key", app.log())
                self.assert_nowhere(app, secret)
                self.end(app)

    def test_wrong_password_is_refused(self) -> None:
        self.lab.set_password("right")
        self.assert_refused(self.pressed(self.by_password("Wrong password", "wrong")), "Permission denied")

    def test_missing_password_is_warned_of_and_refused(self) -> None:
        self.lab.set_password("right")
        app = self.pressed(self.by_password("No password", None))
        self.assert_refused(app, "Permission denied")
        self.assertIn(NO_PASSWORD, app.log())
        self.assertEqual(self.scripts(), [])

    def test_encrypted_key_without_its_passphrase_is_refused(self) -> None:
        record, key = self.by_key("Key unknown", "secret of the key", None)
        self.assert_refused(self.pressed(record, key), "Permission denied")
        self.assertEqual(self.scripts(), [])

    def test_encrypted_key_with_a_wrong_passphrase_is_refused(self) -> None:
        record, key = self.by_key("Key mistaken", "secret of the key", "something else")
        self.assert_refused(self.pressed(record, key), "Permission denied")

    def test_missing_key_file_is_told_by_ssh(self) -> None:
        key = stored.key(self.lab.folder / "no-such-key")
        app = self.pressed(self.record("Key gone", identityKeyID=key["id"]), key)
        self.assert_refused(app, "not accessible: No such file or directory")

    def test_key_that_others_may_read_is_refused_by_ssh(self) -> None:
        path = self.lab.make_key("open_to_all")
        self.lab.authorize(path)
        path.chmod(0o644)
        key = stored.key(path)
        app = self.pressed(self.record("Key open to all", identityKeyID=key["id"]), key)
        self.assert_refused(app, "UNPROTECTED PRIVATE KEY FILE!")

    def test_locked_keyring_counts_as_an_empty_one_and_holds_nobody_up(self) -> None:
        self.lab.set_password("right")
        record = self.by_password("Locked", "right")
        self.keyring.lock()
        self.addCleanup(self.restart_keyring)
        begun = time.monotonic()
        app = self.pressed(record)
        wait_until(lambda: NO_PASSWORD in app.log(), "the missing password is warned of", 5)
        self.assertLess(time.monotonic() - begun, 4)
        self.assertEqual(app.stderr().count("keyring is locked"), 1, app.stderr())
        app.find("Disconnected", deadline=20)

    def restart_keyring(self) -> None:
        """Gives the later cases an unlocked keyring again."""
        self.keyring.stop()
        self.keyring.start()

    def test_script_is_its_owners_alone_and_gone_after_thirty_seconds(self) -> None:
        secret = "a secret of this very case"
        self.lab.set_password(secret)
        record = self.by_password("Short life", None)
        app = self.start(record)
        app.select("Short life")
        app.type("SSH Password", secret)
        app.press("Connect")
        wait_until(self.scripts, "the script lies there")
        made = time.monotonic()
        script = self.scripts()[0]
        self.assertEqual(script.stat().st_mode & 0o777, 0o700)
        text = base64.b64encode(secret.encode()).decode()
        self.assertEqual(script.read_text(), f"#!/bin/sh\nprintf '%s' \"$(echo '{text}' | base64 --decode)\"\n")
        self.assert_carries(app, record)
        wait_until(lambda: not self.scripts(), "the script is gone", 40)
        self.assertGreater(time.monotonic() - made, 28)
        self.assert_nowhere_on_disk(secret)

    def assert_nowhere_on_disk(self, secret: str) -> None:
        """No file of the home folder or of the temporary one holds the secret, in clear or encoded."""
        for folder in (self.session.home, Path(self.session.environment["TMPDIR"])):
            for path in (entry for entry in folder.rglob("*") if entry.is_file()):
                held = path.read_bytes()
                self.assertNotIn(secret.encode(), held, path)
                self.assertNotIn(base64.b64encode(secret.encode()), held, path)

    def test_password_typed_in_the_window_goes_to_the_keyring_alone(self) -> None:
        secret = "gõ vào cửa sổ $1"
        record = self.by_password("Typed", None)
        app = self.start(record)
        app.select("Typed")
        app.type("SSH Password", secret)
        wait_until(lambda: self.keyring.lookup(TUNNEL_PASSWORD, record["id"]) == secret, "the keyring has it")
        self.assertEqual(self.keyring.label(TUNNEL_PASSWORD, record["id"]), "Fernwick: password of Typed")
        self.assert_nowhere_on_disk(secret)
        self.lab.set_password(secret)
        app.press("Connect")
        self.assert_carries(app, record)
        app.turn_to("Configuration")
        app.type("SSH Password", "")
        wait_until(lambda: self.keyring.lookup(TUNNEL_PASSWORD, record["id"]) is None, "the keyring forgot it")


if __name__ == "__main__":
    main()
