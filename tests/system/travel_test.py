"""Catalogues that leave by an export or a backup and come back, byte for byte; files of a sister application."""

from __future__ import annotations

import base64
import json
import os
import time
from pathlib import Path

from harness import main, stored, wait_until
from lab.app import App
from lab.screen import Widget, act
from lab.waiting import wait_for
from travel_case import LISTS, SAMPLE, Computer, TravelTest, catalogue, windows

EXPORTED = "Exported 2 tunnels, 1 proxies, 1 rules"
UNKNOWN_FORMAT = ("Import Failed", "Unrecognised backup format")
RESTORED = "Restore successful"
DELETE = "Delete this backup?"
INVALID = "File không hợp lệ hoặc không đúng định dạng .fernwick"


def encoded(**lists: bytes) -> bytes:
    """A file with these lists."""
    return json.dumps({name: base64.b64encode(blob).decode() for name, blob in lists.items()}).encode()


class Travel(TravelTest):
    """One computer, whose catalogue is all that matters."""

    def setUp(self) -> None:
        """A home with a catalogue; nothing has started."""
        super().setUp()
        self.office = Computer(self, "office")
        self.office.seed(catalogue("Office", "Lab"))

    def file(self, name: str, content: bytes) -> Path:
        """A file to import."""
        path = self.place / name
        path.write_bytes(content)
        return path

    def bring(self, app: App, file: Path, answer: tuple[str, str]) -> None:
        """Imports the file and reads the alert."""
        self.choose(app, "Import Tunnels...", "Import Tunnels", file)
        self.told(app, *answer)

    def take_out(self, app: App, file: Path) -> None:
        """Exports to the file and reads the alert."""
        self.choose(app, "Export Tunnels...", "Save", file)
        self.told(app, "Export Done", EXPORTED)


class Files(Travel):
    """Exports and imports by the panels."""

    def test_export_comes_back_byte_for_byte_in_a_fresh_home(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        out = self.place / "out.backup"
        self.take_out(app, out)
        written = {name: base64.b64decode(text, validate=True) for name, text in json.loads(out.read_bytes()).items()}
        self.assertEqual(written, {name: mine[key] for name, key in LISTS.items()})
        self.assertEqual(out.stat().st_mode & 0o777, 0o600)  # there may be a password in it
        self.office.keeps(mine, "what the office has")
        house = Computer(self, "house")
        there = house.start_at_sync()
        self.assertEqual(there.rows(), [SAMPLE])
        self.bring(there, out, ("Import Done", RESTORED))
        house.holds(mine)
        self.assertEqual(there.rows(), [SAMPLE])  # as loaded when it started
        self.assertEqual(there.quit(), 0)
        again = house.start()
        wait_until(lambda: again.rows() == ["Office", "Lab"], "the next start shows what was imported")
        house.holds(mine)

    def test_suggested_name_and_the_home_folder(self) -> None:
        app = self.office.start_at_sync()
        panel = self.panel(app, "Export Tunnels...", "Save")
        name = wait_until(lambda: [node for node in app.all(role="text", under=panel)], "the panel has a field")[0]
        text = name.get_text_iface()
        self.assertRegex(text.get_text(0, text.get_character_count()),
                         r"^Fernwick_Export_\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\.backup$")
        self.desktop.xdotool("key", "Return")
        self.told(app, "Export Done", EXPORTED)
        [written] = self.office.home.glob("Fernwick_Export_*")
        self.assertEqual(set(json.loads(written.read_bytes())), set(LISTS))

    def test_export_replaces_an_older_file_when_asked_to(self) -> None:
        app = self.office.start_at_sync()
        old = self.file("old.backup", b"old")
        self.choose(app, "Export Tunnels...", "Save", old)
        app.press("No")  # of the question, which is titled as the panel is
        self.assertEqual(old.read_bytes(), b"old")
        wait_until(lambda: self.escaped(app, "Save"), "the panel closes")
        self.told(app, "Export Failed", "Cancelled")
        self.choose(app, "Export Tunnels...", "Save", old)
        app.press("Yes")
        self.told(app, "Export Done", EXPORTED)
        self.assertEqual(set(json.loads(old.read_bytes())), set(LISTS))

    def escaped(self, app: App, title: str) -> bool:
        """Closes the panel by a key, unless its question is still there to take it."""
        self.desktop.xdotool("windowactivate", "--sync", app.window(title), "key", "Escape")
        return wait_for(lambda: not windows(app, title), 1.0)

    def test_older_list_of_tunnels(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        bare = json.dumps([stored.tunnel("Ngày xưa")], indent=4).encode()
        self.bring(app, self.file("old.json", bare), ("Import Done", "Tunnels restored successfully"))
        self.office.keeps(mine | {stored.TUNNELS: bare}, "what the office has")
        self.bring(app, self.file("empty.json", b"[]"), ("Import Done", "Tunnels restored successfully"))
        self.office.keeps(mine | {stored.TUNNELS: b"[]"}, "what the office has")

    def test_malformed_files_lose_nothing(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        whole = encoded(tunnels=b"[]", proxies=b"[]")
        for name, content in (("empty", b""), ("object", b"{}"), ("numbers", b"[1, 2]"), ("garbage", os.urandom(5000)),
                              ("truncated", whole[:-9]), ("no base64", b'{"tunnels": "!!", "proxies": 7}'),
                              ("not base64", b'{"tunnels": "!!"}')):
            with self.subTest(name):
                self.bring(app, self.file("bad.backup", content), UNKNOWN_FORMAT)
                self.office.holds(mine)
        unreadable = self.file("closed.backup", whole)
        unreadable.chmod(0)
        self.bring(app, unreadable, ("Import Failed", "Cannot read file"))
        self.office.keeps(mine, "what the office has")

    def test_files_with_some_lists_leave_the_others(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        future = b'{"of a version": "yet to come"}'
        self.bring(app, self.file("p.backup", encoded(proxies=future)), ("Import Done", RESTORED))
        self.office.holds(mine | {stored.PROXIES: future})
        rules = json.dumps([stored.rule("Từ xa", "Direct")], indent=2).encode()
        self.bring(app, self.file("r.backup", encoded(rules=rules)), UNKNOWN_FORMAT)
        self.office.keeps(mine | {stored.PROXIES: future, stored.RULES: rules}, "what the office has")

    def test_cancelled_panels_change_nothing(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        for button, panel, answer in (("Import Tunnels...", "Import Tunnels", ("Import Failed", "Cancelled")),
                                      ("Export Tunnels...", "Save", ("Export Failed", "Cancelled")),
                                      ("Import .fernwick...", "Import from Fernwick SSH",
                                       ("Import Failed", "Import cancelled"))):
            with self.subTest(button):
                self.panel(app, button, panel)
                self.desktop.xdotool("key", "Escape")
                self.told(app, *answer)
        self.office.keeps(mine, "what the office has")


class SisterApplication(Travel):
    """Files of connection profiles."""

    def profiles(self, *names: str) -> Path:
        """A file with a profile of each name, which is well-formed."""
        profiles = [{"uuid": stored.fresh_id(), "name": name, "address": f"{name.lower()}.example", "port": 2222,
                     "user": "u", "forwardings": [{"uuid": "x", "type": "local", "bindPort": 8080, "hostPort": 80}]}
                    for name in names]
        return self.file("profiles.fernwick", json.dumps({"profiles": profiles}).encode())

    def bring_profiles(self, app: App, file: Path) -> None:
        """Chooses the file."""
        self.choose(app, "Import .fernwick...", "Import from Fernwick SSH", file)

    def test_tunnels_are_shown_at_once_and_never_twice(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        file = self.profiles("Nhà", "Biển")
        for _ in range(2):
            self.bring_profiles(app, file)
            self.window(app, "Import Successful")
            wait_until(lambda: app.rows() == ["Office", "Lab", "Nhà", "Biển"], "the main window lists them", 2.0)
            self.told(app, "Import Successful", "Imported 2 tunnels from Fernwick SSH.")
        tunnels = self.office.preferences.tunnels()
        self.assertEqual(tunnels[:2], json.loads(mine[stored.TUNNELS]))
        self.assertEqual([(each["name"], each["host"], each["sshPort"], each["localPort"], each["remoteHost"],
                           each["authMethod"], each["notes"]) for each in tunnels[2:]],
                         [(name, f"{name.lower()}.example", "2222", "8080", "localhost", "Password",
                           "Imported from Fernwick SSH · key: none") for name in ("Nhà", "Biển")])
        self.office.holds(mine | {stored.TUNNELS: self.office.blobs()[stored.TUNNELS]})
        self.bring_profiles(app, self.profiles("Núi"))
        self.told(app, "Import Successful", "Imported 1 tunnel from Fernwick SSH.")
        wait_until(lambda: app.rows()[4:] == ["Núi"], "the main window lists it")

    def test_file_of_another_kind_loses_nothing(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        for content in (b"", b'{"profiles": [{"name": "no address"}]}', encoded(tunnels=b"[]")):
            with self.subTest(content=content):
                self.bring_profiles(app, self.file("bad.fernwick", content))
                self.told(app, "Import Failed", INVALID)
        closed = self.file("closed.fernwick", b"{}")
        closed.chmod(0)
        self.bring_profiles(app, closed)
        self.told(app, "Import Failed", "Parse error: Permission denied")
        self.office.keeps(mine, "what the office has")
        self.assertEqual(app.rows(), ["Office", "Lab"])


class Backups(Travel):
    """Backups by hand and by themselves, and the list of them."""

    def names(self) -> list[str]:
        """The files in the folder of backups."""
        return sorted(file.name for file in self.office.backups.glob("[!.]*"))  # half-written ones are hidden

    def back_up(self, app: App) -> str:
        """Makes a backup, reads the alert and gives its name."""
        before = self.names()
        self.press(app, "Backup Now")
        made = wait_until(lambda: [name for name in self.names() if name not in before], "there is a new backup")
        self.told(app, "Backup Complete", made[0])
        self.assertRegex(made[0], r"^Fernwick_\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d\.backup$")
        return str(made[0])

    def unfold(self, app: App, count: str) -> None:
        """Opens the list, which says how many there are."""
        act(self.shows(app, count))

    def asked(self, app: App, name: str) -> Widget:
        """Wants to delete a backup; the question."""
        self.press(app, f"Delete {name}")
        return self.window(app, DELETE)

    def test_backup_is_restored_and_deleted(self) -> None:
        app = self.office.start_at_sync()
        mine = self.office.blobs()
        self.shows(app, "0 backups")
        name = self.back_up(app)
        self.unfold(app, "1 backup")
        self.bring(app, self.file("empty.json", b"[]"), ("Import Done", "Tunnels restored successfully"))
        self.office.holds(mine | {stored.TUNNELS: b"[]"})
        self.press(app, f"Restore {name}")
        self.told(app, "Restored", RESTORED)
        self.office.keeps(mine, "what the office has")
        app.press("Cancel", under=self.asked(app, name))
        self.closed(app, DELETE)
        self.assertEqual(self.names(), [name])
        app.press("Delete", under=self.asked(app, name))
        self.shows(app, "0 backups")
        self.assertEqual(self.names(), [])

    def test_oldest_backups_give_way_and_other_files_do_not(self) -> None:
        self.office.seed(self.office.blobs(), maxBackupCount=3)
        self.office.backups.mkdir(parents=True)
        for age in range(5):
            file = self.office.backups / f"Fernwick_{age}.backup"
            file.write_bytes(b"old")
            os.utime(file, (time.time() - 3600 * (age + 1),) * 2)
        (self.office.backups / "mine.txt").touch()
        app = self.office.start_at_sync()
        self.shows(app, "5 backups")
        name = self.back_up(app)
        self.shows(app, "3 backups")
        self.assertEqual(self.names(), sorted(["Fernwick_0.backup", "Fernwick_1.backup", name, "mine.txt"]))
        self.unfold(app, "3 backups")
        self.press(app, "Restore Fernwick_0.backup")
        self.told(app, "Restore Failed", "Unrecognised backup format")

    def test_automatic_backup_waits_for_the_page(self) -> None:
        self.office.seed(self.office.blobs(), enableAutoBackup=True)
        app = self.office.start()
        act(self.open_settings(app).get_parent().get_child_at_index(3))
        self.shows(app, "New tag name", "text")
        self.stays(lambda: not self.office.backups.exists(), "no backup is made")
        act(self.shows(app, "Sync", "page tab"))
        [name] = wait_until(self.names, "the page makes one")
        held = self.office.blobs()
        self.assertEqual((self.office.backups / name).read_bytes(),
                         encoded(**{each: held[key] for each, key in LISTS.items()}).replace(b" ", b""))
        kept = wait_until(lambda: self.office.preferences.read().get("lastBackupTS"), "its time is kept")
        self.assertAlmostEqual(kept, time.time(), delta=30)
        self.assertFalse(windows(app, "Backup Complete"))
        app.quit()
        again = self.office.start_at_sync()
        self.shows(again, "1 backup")
        self.stays(lambda: self.names() == [name], "a start soon after makes no other")

    def test_turning_backups_on_makes_one_in_the_chosen_folder(self) -> None:
        app = self.office.start_at_sync()
        place = self.place / "chosen"
        place.mkdir()
        self.choose(app, "Change...", "Choose folder for automatic backups", place)
        wait_until(lambda: self.office.preferences.read().get("backupPath") == str(place), "the folder is kept")
        self.turn(app, "Enable automatic backups")
        wait_until(lambda: len(list(place.glob("Fernwick_*.backup"))) == 1, "a backup is made at once")
        wait_until(lambda: self.office.preferences.read().get("enableAutoBackup") is True, "the switch is kept")
        self.assertEqual(self.names(), [])


if __name__ == "__main__":
    main()
