"""Disks that are full and folders that are closed: exports, backups and pushes say why, and nothing is lost."""

from __future__ import annotations

from pathlib import Path
from typing import Any

from harness import main, stored, wait_until
from lab.app import App
from travel_case import Computer, TravelTest, catalogue, windows

FULL, DENIED = "No space left on device", "Permission denied"


class Failures(TravelTest):
    """One computer and a place that takes nothing, in which an older file lies."""

    def setUp(self) -> None:
        """A home with a catalogue; nothing has started."""
        super().setUp()
        self.office = Computer(self, "office")
        self.disk = self.place / "disk"
        self.disk.mkdir()
        self.old = self.disk / "Fernwick_old.backup"

    def on_full_disk(self, **settings: Any) -> App:
        """The application, to which the place is a disk that is full."""
        self.office.seed(catalogue("Office"), **settings)
        app = self.office.start_at_sync(mounts=[
            f"mount -t tmpfs -o size=64k,mode=755 tmpfs {self.disk}", f"printf old > {self.old}",
            f"{{ head -c 1000000 /dev/zero > {self.disk}/filler 2> {self.place}/why; true; }}"])
        self.inside = Path(f"/proc/{app.pid}/root")
        self.assertIn(FULL, (self.place / "why").read_text())
        return self.note(app)

    def on_closed_folder(self, **settings: Any) -> App:
        """The application, to which the place is closed."""
        self.office.seed(catalogue("Office"), **settings)
        self.old.write_bytes(b"old")
        (self.disk / "filler").touch()
        self.disk.chmod(0o555)
        self.addCleanup(self.disk.chmod, 0o755)
        self.inside = Path("/")
        return self.note(self.office.start_at_sync())

    def note(self, app: App) -> App:
        """Notes what the catalogue is."""
        self.mine = self.office.blobs()
        return app

    def assert_as_before(self) -> None:
        """The place holds what it held, with nothing half written beside it, and so does the preference file."""
        place = self.inside / str(self.disk).lstrip("/")
        self.assertEqual(sorted(file.name for file in place.iterdir()), [self.old.name, "filler"])
        self.assertEqual((place / self.old.name).read_bytes(), b"old")
        self.office.keeps(self.mine, "what the office has")

    def export(self, app: App, name: str, why: str, replace: bool = False) -> None:
        """Exports to a file in the place and reads why that failed."""
        self.choose(app, "Export Tunnels...", "Save", self.disk / name)
        if replace:
            app.press("Yes")
        self.told(app, "Export Failed", why)
        self.assert_as_before()

    def test_export_to_a_full_disk(self) -> None:
        app = self.on_full_disk()
        self.export(app, "new.backup", FULL)
        self.export(app, self.old.name, FULL, replace=True)

    def test_export_to_a_closed_folder(self) -> None:
        app = self.on_closed_folder()
        self.export(app, "new.backup", DENIED)
        self.export(app, self.old.name, DENIED, replace=True)

    def test_backup_to_a_full_disk(self) -> None:
        app = self.on_full_disk(backupPath=str(self.disk), maxBackupCount=1)
        self.assert_no_backup(app, f"Write failed: {FULL}")
        self.shows(app, "1 backup")

    def test_backup_to_a_closed_folder(self) -> None:
        app = self.on_closed_folder(backupPath=str(self.disk), maxBackupCount=1)
        self.assert_no_backup(app, f"Write failed: {DENIED}")
        self.shows(app, "1 backup")

    def test_backup_folder_that_cannot_be_made(self) -> None:
        app = self.on_closed_folder(backupPath=str(self.disk / "a/b"))
        self.assert_no_backup(app, f"Cannot create backup folder: {DENIED}")

    def test_file_in_the_place_of_the_backup_folder(self) -> None:
        app = self.on_closed_folder(backupPath=str(self.old / "a"))
        self.assert_no_backup(app, "Cannot create backup folder: Not a directory")

    def assert_no_backup(self, app: App, why: str) -> None:
        """A backup fails for that reason, and counts for none."""
        self.press(app, "Backup Now")
        self.told(app, "Backup Failed", why)
        self.assert_as_before()
        self.assertNotIn("lastBackupTS", self.office.preferences.read())

    def test_automatic_backup_that_fails_is_silent(self) -> None:
        app = self.on_full_disk(backupPath=str(self.disk), enableAutoBackup=True)
        self.shows(app, "1 backup")
        self.assert_as_before()
        self.assertFalse(windows(app, "Backup Failed"))
        self.assertNotIn("lastBackupTS", self.office.preferences.read())

    def test_push_to_a_full_disk(self) -> None:
        self.office.cloud.symlink_to(self.disk)
        app = self.on_full_disk(syncWithiCloud=True)
        self.press(app, "Push Now")
        self.told(app, "Push failed", "Check iCloud availability.")
        self.shows(app, "Error: Sync failed")
        self.assert_as_before()
        self.assertTrue(app.running())

    def test_imports_onto_a_full_disk_keep_the_old_catalogue(self) -> None:
        """The list in memory is the new one; the file stays whole, and the failure is told."""
        self.office.seed(catalogue("Office"))
        file = self.place / "big.json"
        file.write_bytes(b"[" + b" " * 200_000 + b"]")
        saved, path = self.place / "saved", self.office.preferences.path
        app = self.start_as_is(environment=self.office.environment, mounts=[
            f"cp {path} {saved}", f"mount -t tmpfs -o size=64k,mode=755 tmpfs {self.office.config}",
            f"cp {saved} {path}"])
        wait_until(app.window, "the window shows")
        self.open_sync(app)
        self.choose(app, "Import Tunnels...", "Import Tunnels", file)
        self.told(app, "Import Done", "Tunnels restored successfully")
        wait_until(lambda: str(path) in app.stderr(), "the failure is told")
        inside = stored.Preferences(Path(f"/proc/{app.pid}/root{self.office.config}"))
        self.assertEqual([record["name"] for record in inside.tunnels()], ["Office"])


if __name__ == "__main__":
    main()
