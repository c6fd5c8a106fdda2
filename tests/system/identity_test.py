"""Key files and their passphrases in the settings, with a real keyring, at a real server."""

from __future__ import annotations

from pathlib import Path

from forward_case import ForwardTest
from harness import main, stored, wait_until
from lab.app import App
from lab.keyboard import Keyboard
from lab.keyring import KEY_PASSPHRASE, Keyring
from lab.screen import enabled, text_of
from lab.settings import IMPORT_TITLE, Settings
from lab.waiting import wait_for

PEM = ("-t", "ecdsa", "-m", "PEM")
NONE_SELECTED = "No key selected"


class Identity(ForwardTest):
    """Key files and their passphrases."""

    keyring: Keyring

    @classmethod
    def setUpClass(cls) -> None:
        """Adds a keyring to what all cases share."""
        super().setUpClass()
        cls.keyring = Keyring(cls.session, cls.desktop)
        cls.addClassCleanup(cls.keyring.stop)

    def open(self, *tunnels: stored.Record) -> Settings:
        """The tab of the keys, of which there is none."""
        settings = Settings(self.start(*tunnels))
        settings.turn_to("Identity")
        settings.find(NONE_SELECTED)
        return settings

    def key_file(self, name: str, passphrase: str, kind: tuple[str, ...] = PEM) -> Path:
        """A key that opens the server."""
        path = self.lab.make_key(name, passphrase, kind)
        self.lab.authorize(path)
        return path

    def keys(self) -> list[stored.Record]:
        """The keys in the preference file."""
        return self.preferences.records(stored.KEYS)

    def kept(self, key: stored.Record) -> str | None:
        """The passphrase in the keyring."""
        return self.keyring.lookup(KEY_PASSPHRASE, key["id"])

    def give_passphrase(self, settings: Settings, passphrase: str) -> None:
        """Fills the sheet and saves."""
        sheet = settings.sheet("Passphrase")
        settings.app.type("Passphrase", passphrase, sheet)
        settings.app.press("Save to Keychain", under=sheet)
        settings.app.gone("Passphrase", "dialog")

    def choose_key(self, app: App) -> None:
        """Takes the first key for the selected tunnel, with the keyboard."""
        keyboard = Keyboard(app)
        keyboard.reach("Identity Key", "combo box")
        keyboard.press("Home", "Down")
        wait_until(lambda: self.preferences.tunnels()[0].get("identityKeyID") == self.keys()[0]["id"],
                   "the tunnel has the key")

    def test_import_of_an_encrypted_key_asks_for_the_passphrase_that_logs_in(self) -> None:
        secret = "  of the key, ế $1 "
        path = self.key_file("id_ecdsa", secret)
        self.assertIn("Proc-Type: 4,ENCRYPTED", path.read_text())
        record = self.forward("By the imported key", identityKeyID=None)
        del record["identityKeyID"]
        settings = self.open(record)
        app = settings.app
        settings.import_files(path)
        sheet = settings.sheet("Passphrase")
        app.press("Save to Keychain", under=sheet)
        app.find("Passphrase cannot be empty", under=sheet)
        [key] = self.keys()
        self.assertEqual((key["name"], key["path"], key["comment"]), (path.name, str(path), ""))
        self.assertAlmostEqual(key["addedAt"], stored.now(), delta=30)
        self.assertIsNone(self.kept(key))
        self.give_passphrase(settings, secret)
        settings.find("Passphrase saved")
        self.assertEqual(self.kept(key), secret)
        self.assertEqual(self.keyring.label(KEY_PASSPHRASE, key["id"]), f"Fernwick: passphrase of {path.name}")

        app.select(record["name"])
        self.choose_key(app)
        self.assert_carries(app, record)
        self.assertIn("🔑 Dùng passphrase từ Keychain cho key", app.log())
        self.stop(app)
        self.assertNotIn(secret.encode(), self.preferences.path.read_bytes())

        settings.press("Remove")
        settings.find(NONE_SELECTED)
        wait_until(lambda: not self.keys(), "the key is gone")
        self.assertIsNone(self.kept(key))
        self.assertEqual(self.preferences.tunnels()[0]["identityKeyID"], key["id"])
        self.assertFalse(enabled(settings.find("Remove", "push button")))
        self.assertTrue(path.exists())

    def test_passphrase_is_set_by_hand_changed_and_removed(self) -> None:
        path = self.key_file("id_by_hand", "second", ("-t", "ed25519"))
        key = stored.key(path)
        record = self.forward("By hand", identityKeyID=key["id"])
        app = self.start(record, keys=[key])
        app.select("By hand")
        settings = Settings(app)
        settings.turn_to("Identity")
        self.assertFalse(settings.has("encrypted"))
        app.click(settings.find(path.name, "table cell"))
        settings.press("Set Passphrase")
        self.give_passphrase(settings, "first")
        self.assertEqual(self.kept(key), "first")
        settings.press("Change Passphrase")
        app.find("Passphrase stored in Keychain", under=settings.sheet("Passphrase"))
        self.give_passphrase(settings, "second")
        self.assertEqual(self.kept(key), "second")
        self.assert_carries(app, record)
        self.stop(app)
        settings.press("Remove Passphrase")
        settings.find("No passphrase")
        self.assertIsNone(self.kept(key))
        self.assert_refused(app, f"{self.lab.user}@127.0.0.1: Permission denied")

    def test_known_path_adds_nothing_and_asks_nothing(self) -> None:
        plain, first, last = (self.key_file("plain", "", ("-t", "ed25519")), self.key_file("first_ecdsa", "secret"),
                              self.key_file("last_ecdsa", "secret"))
        settings = self.open()
        app = settings.app
        settings.import_files(plain, first, last)
        sheet = settings.sheet("Passphrase")
        app.find("last_ecdsa", under=sheet)
        app.press("Cancel", under=sheet)
        app.gone("Passphrase", "dialog")
        settings.find("No passphrase")
        wait_until(lambda: len(self.keys()) == 3, "the keys are stored")
        before = self.keys()
        settings.import_files(last)
        settings.find(NONE_SELECTED)
        self.assertFalse(wait_for(lambda: app.all("Passphrase", "dialog"), 1.0))
        self.assertEqual(self.keys(), before)
        self.assertEqual([self.kept(key) for key in before], [None] * 3)

    def test_cancelled_panel_does_nothing(self) -> None:
        settings = self.open()
        settings.press("Import")
        panel = wait_until(lambda: settings.app.window(IMPORT_TITLE), "the panel opens")
        self.desktop.xdotool("windowactivate", "--sync", panel, "key", "Escape")
        wait_until(lambda: not settings.app.window(IMPORT_TITLE), "the panel closes")
        settings.find(NONE_SELECTED)
        self.assertEqual(self.keys(), [])

    def test_typed_passphrase_is_masked_until_the_eye_is_pressed(self) -> None:
        settings = self.open()
        settings.import_files(self.key_file("masked_ecdsa", "secret"))
        sheet = settings.sheet("Passphrase")
        settings.app.type("Passphrase", "typed", sheet)
        self.assertNotIn("typed", text_of(settings.app.find("Passphrase", "password text", sheet)))
        settings.app.press("Show passphrase", under=sheet)
        self.assertEqual(text_of(settings.app.find("Passphrase", "text", sheet)), "typed")
        settings.app.press("Hide passphrase", under=sheet)
        settings.app.find("Passphrase", "password text", sheet)

    def test_locked_keyring_keeps_nothing_and_holds_nobody_up(self) -> None:
        settings = self.open()
        self.keyring.lock()
        self.addCleanup(self.restart_keyring)
        settings.import_files(self.key_file("lost_ecdsa", "secret"))
        self.give_passphrase(settings, "secret")
        settings.find("No passphrase")
        self.assertEqual([key["name"] for key in self.keys()], ["lost_ecdsa"])
        self.assertIn("keyring is locked", settings.app.stderr())
        settings.press("Remove")
        settings.find(NONE_SELECTED)
        self.assertFalse(settings.app.all(role="dialog"))

    def restart_keyring(self) -> None:
        """Gives the later cases an unlocked keyring again."""
        self.keyring.stop()
        self.keyring.start()


if __name__ == "__main__":
    main()
