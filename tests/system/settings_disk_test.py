"""Disks that are full and folders that nobody may write to, below the settings window."""

from __future__ import annotations

import json
import plistlib
from pathlib import Path

from harness import SystemTest, main, stored, wait_until
from lab.app import App
from lab.screen import checked, text_of
from lab.settings import Settings

KNOWN = "example.com ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAAIPvkPPqL1S4Ih1cGm3hUfNUmBAGTFjFhW1nHVLCbH1rF\n" * 40
FULL = "No space left on device"
DENIED = "Permission denied"


def full_disk(folder: Path, file: Path, saved: Path, size: str) -> list[str]:
    """Shell commands that put a small disk in a folder's place, with the file in it and no room for another byte."""
    return [f"mount -t tmpfs -o size={size},mode=700 tmpfs {folder}", f"cp -p {saved} {file}",
            f"{{ dd if=/dev/zero of={folder}/filler bs=1024 2>/dev/null || true; }}"]


class Disk(SystemTest):
    """The application on a disk of its own."""

    def inside(self, app: App, path: Path) -> Path:
        """The path as the application sees it."""
        return Path(f"/proc/{app.pid}/root{path}")

    def make_room(self, app: App, folder: Path) -> None:
        """Takes away what fills the disk."""
        self.inside(app, folder / "filler").unlink()

    def start_full(self, folder: Path, file: Path, size: str) -> App:
        """Starts the application with the folder on a disk that holds the file and is full."""
        saved = self.session.root / "saved"
        saved.write_bytes(file.read_bytes())
        return self.start_as_is(mounts=full_disk(folder, file, saved, size))


class KnownHosts(Disk):
    """The file of host keys."""

    def setUp(self) -> None:
        super().setUp()
        self.folder = self.session.home / ".ssh"
        self.file = self.folder / "known_hosts"
        self.file.write_text(KNOWN)
        self.addCleanup(self.file.unlink)
        self.preferences.seed(**{stored.TUNNELS: []})

    def edited(self, app: App) -> Settings:
        """The tab, in whose editor one line more stands."""
        settings = Settings(app)
        settings.turn_to("Known Hosts")
        editor = settings.find("Known Hosts", "text")
        wait_until(lambda: text_of(editor) == KNOWN, "the editor shows the file")
        editor.get_component_iface().grab_focus()
        settings.keys("ctrl+End", "x")
        wait_until(lambda: text_of(editor) == KNOWN + "x", "the editor takes the key")
        return settings

    def assert_refused(self, settings: Settings, reason: str) -> None:
        """Saving shows the reason; the file and what is in the editor stay."""
        settings.press("Save")
        settings.find(reason)
        self.assertEqual(self.inside(settings.app, self.file).read_text(), KNOWN)
        self.assertEqual(text_of(settings.find("Known Hosts", "text")), KNOWN + "x")
        wait_until(lambda: not settings.has(reason), "the reason goes")

    def assert_saved(self, settings: Settings) -> None:
        """Saving works, and leaves nothing beside the file."""
        settings.press("Save")
        settings.find("Saved successfully")
        self.assertEqual(self.inside(settings.app, self.file).read_text(), KNOWN + "x")
        left = {path.name for path in self.inside(settings.app, self.folder).iterdir()}
        self.assertLessEqual(left, {"known_hosts", "config"})

    def test_full_disk_is_told_and_the_file_stays(self) -> None:
        settings = self.edited(self.start_full(self.folder, self.file, "24k"))
        for _ in range(2):
            self.assert_refused(settings, FULL)
        self.make_room(settings.app, self.folder)
        self.assert_saved(settings)

    def test_folder_that_nobody_may_write_to_is_told_and_the_file_stays(self) -> None:
        self.folder.chmod(0o555)
        self.addCleanup(self.folder.chmod, 0o700)
        settings = self.edited(self.start_as_is())
        self.assert_refused(settings, DENIED)
        self.folder.chmod(0o700)
        self.assert_saved(settings)

    def test_folder_in_the_place_of_the_file_is_told(self) -> None:
        settings = self.edited(self.start_as_is())
        self.file.unlink()
        self.file.mkdir()
        settings.press("Save")
        settings.find("Is a directory")
        self.assertEqual(list(self.file.iterdir()), [])
        self.file.rmdir()
        self.assert_saved(settings)


class Preferences(Disk):
    """The preference file, under the tabs that write to it."""

    def setUp(self) -> None:
        super().setUp()
        self.tags = [stored.tag("First"), stored.tag("Second", "#FF0000")]
        self.preferences.seed(**{stored.TUNNELS: [stored.tunnel("Kept", notes="x" * 8000)], stored.TAGS: self.tags})
        self.before = self.preferences.path.read_bytes()

    def held(self, app: App) -> dict[str, object]:
        """What the file holds that the application sees."""
        return dict(plistlib.loads(self.inside(app, self.preferences.path).read_bytes()))

    def names(self, app: App) -> list[str]:
        """The tags in it."""
        return [tag["name"] for tag in json.loads(self.held(app)[stored.TAGS])]

    def change(self, app: App) -> Settings:
        """Throws a switch and deletes a tag; the window shows both."""
        settings = Settings(app)
        settings.press("Reconnect tunnels on launch", "check box")
        settings.turn_to("Tags")
        app.click(settings.find("First", "list item"))
        settings.press("Delete tag")
        settings.find("1 tag — select a tag to edit or delete")
        return settings

    def test_full_disk_is_told_on_standard_error_and_written_when_there_is_room(self) -> None:
        app = self.start_full(self.session.config, self.preferences.path, "28k")
        settings = self.change(app)
        wait_until(lambda: f"{self.preferences.path} cannot be written: {FULL}" in app.stderr(), "the failure is told")
        self.assertEqual(self.inside(app, self.preferences.path).read_bytes(), self.before)
        self.make_room(app, self.session.config)
        settings.type("New tag name", "Third")
        settings.press("Add")
        wait_until(lambda: self.names(app) == ["Second", "Third"], "the tags are in the file")
        self.assertIs(self.held(app)["connectOnLaunch"], True)
        left = [path.name for path in self.inside(app, self.session.config).iterdir()]
        self.assertEqual([name for name in left if stored.DOMAIN in name], [self.preferences.path.name])
        self.assertEqual(app.stderr().count("cannot be written"), 1)

    def test_read_only_folder_is_told_and_the_window_goes_on(self) -> None:
        self.session.config.chmod(0o555)
        self.addCleanup(self.session.config.chmod, 0o755)
        app = self.start_as_is()
        settings = self.change(app)
        wait_until(lambda: f"{self.preferences.path} is write-protected" in app.stderr(), "the failure is told")
        settings.turn_to("General")
        self.assertTrue(checked(settings.find("Reconnect tunnels on launch", "check box")))
        self.assertEqual(app.quit(), 0)
        self.assertEqual(self.preferences.path.read_bytes(), self.before)


if __name__ == "__main__":
    main()
