"""The home of the predecessor, Larkmere, is moved in at the first start, whatever kills the application over it."""

from __future__ import annotations

import json
import os
import plistlib
import random
import shutil
from collections.abc import Callable
from pathlib import Path
from typing import Any

from harness import SystemTest, main, stored, wait_until
from lab.app import App
from lab.keyboard import Keyboard
from lab.screen import act, text_of
from lab.settings import Settings
from rules_case import WINDOW, spoken

DONE = "fernwick.migrationFromLarkmereDone_v2"
STARTING = "[Migration] Starting migration from Larkmere (quenby.Larkmere)..."
NO_FOLDER = "[Migration] No old Application Support folder found."
COMPLETED = "[Migration] ✅ Migration completed successfully!"
FULL = "[Migration] ⚠ AppSupport error: No space left on device"
DATA_KEYS = [stored.TUNNELS, "savedTunnelsData", stored.KEYS, stored.TAGS]
RENAMED = {"com.larkmere.proxies": stored.PROXIES, "com.larkmere.rules": stored.RULES}
SETTINGS = {"launchAtLogin": False, "connectOnLaunch": True, "showAsOption": "Both", "showStatusInMenuBar": False,
            "defaultSSHPort": "2222", "clashEnabled": False, "mihomoPermissionGranted": True, "syncWithiCloud": False,
            "enableAutoBackup": True, "backupIntervalHrs": 12, "backupPath": "/nowhere/backups", "maxBackupCount": 7,
            "lastBackupTS": 1_700_000_000.5, "lastSyncTS": 1_700_000_001.5}
MOVED = [*(f"✅ Copied: {key}" for key in DATA_KEYS), *(f"✅ Copied: {old} → {new}" for old, new in RENAMED.items()),
         *(f"✅ Setting: {key}" for key in SETTINGS)]
LONG_AGO = 1_500_000_000.25  # in seconds since 1970, and exact as a double

Tree = dict[str, tuple[Any, ...]]


def lists() -> dict[str, bytes]:
    """A catalogue in which every list has something, under the predecessor's keys."""
    proxy = {"id": stored.fresh_id(), "name": "Old proxy", "address": "127.0.0.1", "port": 1080, "proto": "SOCKS5",
             "authentication": {"enabled": True, "username": "u", "password": "p"}, "useTargetHostname": False}
    records = {stored.TUNNELS: [stored.tunnel("Máy chủ 🏠", notes="Ghi chú"), stored.tunnel("Second")],
               "savedTunnelsData": [], stored.KEYS: [stored.key(Path("/nowhere/id_old"))],
               stored.TAGS: [stored.tag("Old tag", "#FF0000")], "com.larkmere.proxies": [proxy],
               "com.larkmere.rules": [stored.rule("Old rule", "Direct", targetHosts=["a.example", "b.example"])]}
    return {key: json.dumps(value).encode() for key, value in records.items()}


def tree(folder: Path, names: list[str] | None = None) -> Tree:
    """What stands below a folder, or below those names in it: kind, permissions, time of change, and content."""
    tops = [folder / name for name in names] if names is not None else [folder]
    found: Tree = {}
    for path in [below for top in tops for below in [top, *top.rglob("*")]]:
        status = path.lstat()
        content = os.readlink(path) if path.is_symlink() else path.read_bytes() if path.is_file() else b""
        found[str(path.relative_to(folder))] = (status.st_mode, status.st_mtime_ns, content)
    return found


class Migration(SystemTest):
    """A home in which the predecessor was used."""

    def setUp(self) -> None:
        """Begins with neither application's files."""
        super().setUp()
        self.data = self.session.home / ".local/share"
        self.here, self.there = self.data / "Fernwick", self.data / "Larkmere"
        for folder in (self.here, self.there):
            shutil.rmtree(folder, ignore_errors=True)
        self.domain = self.session.config / "quenby.Larkmere.plist"
        self.domain.unlink(missing_ok=True)

    def old_defaults(self, binary: bool = True, **more: Any) -> dict[str, Any]:
        """Writes the predecessor's domain, which only its owner may read, and long ago."""
        values = lists() | SETTINGS | more
        kind = plistlib.FMT_BINARY if binary else plistlib.FMT_XML
        self.domain.write_bytes(plistlib.dumps(values, fmt=kind))
        self.domain.chmod(0o400)
        os.utime(self.domain, (LONG_AGO, LONG_AGO))
        return values

    def old_folder(self, files: dict[str, bytes]) -> None:
        """Writes the predecessor's support folder: files, a link, and a folder that nobody may write to."""
        for name, content in files.items():
            path = self.there / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
            path.chmod(0o640)
        (self.there / "sealed").mkdir(parents=True)
        (self.there / "sealed/.hidden").write_bytes(b"hidden")
        (self.there / "link").symlink_to("sealed/.hidden")
        (self.there / "sealed").chmod(0o500)
        self.addCleanup(self.unseal)
        for path in sorted(self.there.rglob("*"), reverse=True):
            os.utime(path, (LONG_AGO, LONG_AGO), follow_symlinks=False)

    def unseal(self) -> None:
        """Lets the folders be removed."""
        for folder in self.data.glob("*/sealed"):
            folder.chmod(0o700)

    def old_state(self) -> tuple[Tree, Tree]:
        """All that is the predecessor's."""
        return tree(self.domain), tree(self.there) if self.there.exists() else {}

    def lines(self, app: App) -> list[str]:
        """What the application has printed about the migration."""
        return [line for line in app.stdout().split("\n") if line.startswith("[Migration]")]

    def opened(self, **options: Any) -> App:
        """The application, with its window on the screen."""
        app = self.start_as_is(**options)
        wait_until(app.window, "the window shows")
        return app

    def assert_moved(self, values: dict[str, Any]) -> None:
        """The preference file comes to hold what the predecessor's domain does, and the mark."""
        def wrong() -> list[str]:
            mine = self.preferences.read()
            blobs = [key for key in DATA_KEYS if json.loads(mine.get(key, b"0")) != json.loads(values[key])]
            renamed = [new for old, new in RENAMED.items() if mine.get(new) != values[old]]
            others = [key for key, value in SETTINGS.items() if mine.get(key) != value]
            return [*blobs, *renamed, *others, *([] if mine.get(DONE) is True else [DONE])]
        wait_until(lambda: not wrong(), f"the preference file holds everything, but {wrong()}", 5.0)

    def assert_folder_moved(self) -> None:
        """Our support folder holds what the predecessor's does, and nothing half made."""
        names = [path.name for path in self.there.iterdir()]
        self.assertEqual(tree(self.here, names), tree(self.there, names))
        self.assertEqual([path for path in self.here.iterdir() if ".tmp-" in path.name], [])


class Moving(Migration):
    """What comes along, and what does not."""

    def test_everything_is_there_at_the_first_start(self) -> None:
        values = self.old_defaults()
        self.old_folder({"config.yaml": b"mode: rule", "logs/a/one.log": b"1", ".dot": b""})
        before = self.old_state()
        app = self.opened()
        self.assertEqual(app.rows(), ["Máy chủ 🏠", "Second"])
        lines = self.lines(app)
        self.assertEqual(lines[:21], [STARTING, *(f"[Migration] {line}" for line in MOVED)])
        self.assertEqual(sorted(lines[21:-1]),
                         sorted(f"[Migration] ✅ AppSupport: {path.name}" for path in self.there.iterdir()))
        self.assertEqual(lines[-1], COMPLETED)
        self.assert_moved(values)
        self.assert_folder_moved()
        self.assert_shown(app)
        self.assertEqual(app.quit(), 0)
        again = self.opened()
        self.assertEqual(again.rows(), ["Máy chủ 🏠", "Second"])
        self.assertEqual(self.lines(again), [])
        self.assertNotIn("quenby", again.stderr())
        self.assertEqual(self.old_state(), before)

    def assert_shown(self, app: App) -> None:
        """The windows show the predecessor's keys, tags, settings, proxies and rules."""
        settings = Settings(app)
        settings.turn_to("Tags")
        settings.find("Old tag", "list item")
        settings.turn_to("Identity")
        settings.find("id_old")
        settings.turn_to("General")
        self.assertEqual(text_of(settings.find("Default SSH Port", "text")), "2222")
        settings.close()
        act(app.find(WINDOW, "push button"))
        window = Keyboard(app).window(WINDOW)
        app.find("Proxies, 1", "page tab", under=window)
        act(app.find("Rules, 1", "page tab", under=window))
        rule = self.preferences.records(stored.RULES)[0]
        app.find(spoken(rule), "list item", under=window)

    def test_what_is_here_already_stays(self) -> None:
        self.old_defaults(binary=False)
        self.old_folder({"config.yaml": b"old", "logs/one.log": b"1", "new": b"new"})
        before = self.old_state()
        mine = stored.tunnel("Mine")
        self.preferences.seed(**{stored.TUNNELS: [mine], stored.KEYS: []})
        self.preferences.write(self.preferences.read() | {"defaultSSHPort": "22"})
        (self.here / "logs").mkdir(parents=True)
        (self.here / "config.yaml").write_bytes(b"mine")
        app = self.opened()
        self.assertEqual(app.rows(), ["Mine"])
        self.assertEqual(self.lines(app)[1:4], ["[Migration] ✅ Copied: savedTunnelsData",
                                                "[Migration] ✅ Copied: savedSSHKeys",
                                                "[Migration] ✅ Copied: savedTunnelTags"])
        self.assertNotIn("[Migration] ✅ Setting: defaultSSHPort", self.lines(app))
        self.assertEqual((self.here / "config.yaml").read_bytes(), b"mine")
        self.assertEqual(list((self.here / "logs").iterdir()), [])
        self.assertEqual((self.here / "new").read_bytes(), b"new")
        self.assertEqual(self.preferences.read()["defaultSSHPort"], "22")
        self.assertEqual([key["name"] for key in self.preferences.records(stored.KEYS)], ["id_old"])
        self.assertEqual(self.old_state(), before)

    def test_no_predecessor_is_two_lines_once(self) -> None:
        skipped = [STARTING, "[Migration] Old domain has no meaningful data. Skipping."]
        app = self.opened()
        self.assertEqual(self.lines(app), skipped)
        self.assertEqual(app.quit(), 0)
        self.assertFalse(self.domain.exists() or self.there.exists())
        self.old_defaults()  # one that is used later is not picked up
        again = self.opened()
        self.assertEqual(self.lines(again), [])
        self.assertNotIn("Second", again.rows())

    def test_garbage_is_skipped_and_left_alone(self) -> None:
        self.domain.write_bytes(b"bplist00 and no more")
        os.utime(self.domain, (LONG_AGO, LONG_AGO))
        before = self.old_state()
        app = self.opened()
        self.assertEqual(self.lines(app), [STARTING, "[Migration] Cannot open old defaults domain. Skipping."])
        self.assertEqual(app.quit(), 0)
        self.assertEqual(self.old_state(), before)
        self.assertEqual(sorted(path.name for path in self.session.config.glob("*quenby*")), [self.domain.name])
        self.assertEqual(self.lines(self.opened()), [])

    def test_a_second_instance_moves_nothing(self) -> None:
        """Only who holds the place of the one application looks for the predecessor."""
        first = self.opened()
        held = self.preferences.read()
        self.preferences.write({key: value for key, value in held.items() if key != DONE})
        self.old_defaults()
        second = self.start_as_is()
        self.assertEqual(second.ended(), 0)
        self.assertEqual(self.lines(second), [])
        self.assertNotIn("defaultSSHPort", self.preferences.read())
        self.assertTrue(first.running())


class Trouble(Migration):
    """Kills and full disks."""

    def large_folder(self) -> None:
        """A support folder that takes a while: many files, and some large ones."""
        files = {f"many/{number // 100}/{number}": b"x" * 500 for number in range(1_000)}
        files |= {f"large-{number}": bytes([number]) * 3_000_000 for number in range(6)}
        self.old_folder(files)

    def kill_when(self, reached: Callable[[], bool], what: str) -> None:
        """Starts the application and kills it at that moment."""
        app = self.start_as_is()
        wait_until(lambda: reached() or not app.running(), what, pause=0.0005)
        app.process.kill()
        app.ended()

    def copied(self) -> int:
        """How many files of the large folder stand at the new place, or on their way there."""
        return sum(len(files) for _, _, files in os.walk(self.here))

    def test_killed_anywhere_it_ends_as_if_undisturbed(self) -> None:
        seed = random.randrange(1 << 30)
        chance = random.Random(seed)
        for number in range(3):
            with self.subTest(seed=seed, number=number):
                self.setUp()
                values = self.old_defaults()
                self.large_folder()
                before = self.old_state()
                total = len([path for path in self.there.rglob("*") if path.is_file()])
                for part in sorted(chance.random() for _ in range(2)):
                    self.kill_when(lambda part=part: self.copied() >= part * total, f"{part:.2f} of it is copied")
                    self.assertEqual(self.old_state(), before)
                app = self.opened()
                self.assertEqual(app.rows(), ["Máy chủ 🏠", "Second"])
                self.assert_moved(values)
                self.assert_folder_moved()
                self.assertEqual(self.old_state(), before)
                self.assertEqual(app.quit(), 0)
                self.unseal()

    def test_killed_before_the_copies_are_stored(self) -> None:
        values = self.old_defaults(savedTunnelsData=b"[" + b" " * 20_000_000 + b"]")  # which takes time to write
        for name in ("the preference file", "the first line"):
            self.preferences.path.unlink(missing_ok=True)
            app = self.start_as_is()
            wait_until(lambda app=app, name=name: self.preferences.path.exists() if "file" in name
                       else self.lines(app), name, pause=0.0005)
            app.process.kill()
            app.ended()
        self.assertEqual(self.opened().rows(), ["Máy chủ 🏠", "Second"])
        self.assert_moved(values)

    def test_full_disk_leaves_nothing_half_copied(self) -> None:
        values = self.old_defaults()
        (self.there / "large").mkdir(parents=True)
        (self.there / "large/a").write_bytes(b"small")
        (self.there / "large/b").write_bytes(b"x" * 500_000)
        self.here.mkdir(parents=True)
        before = self.old_state()
        app = self.opened(mounts=[f"mount -t tmpfs -o size=256k,mode=755 tmpfs {self.here}"])
        self.assertEqual(self.lines(app)[21:], [FULL, COMPLETED])
        inside = Path(f"/proc/{app.pid}/root{self.here}")
        self.assertEqual([path for path in inside.iterdir() if "large" in path.name], [])
        self.assertEqual(app.rows(), ["Máy chủ 🏠", "Second"])
        self.assert_moved(values)
        self.assertEqual(self.old_state(), before)

    def test_preferences_that_cannot_be_stored_are_moved_again(self) -> None:
        values = self.old_defaults(more=b"x" * 100_000)
        saved = self.session.root / "saved.plist"
        config = self.session.config
        app = self.opened(mounts=[
            f"cp {self.domain} {saved}", f"mount -t tmpfs -o size=128k,mode=755 tmpfs {config}",
            f"cp {saved} {self.domain}", f"{{ head -c 1000000 /dev/zero > {config}/filler 2> /dev/null; true; }}"])
        self.assertEqual(app.rows(), ["Máy chủ 🏠", "Second"])
        self.assertEqual(self.lines(app)[1:3], ["[Migration] ✅ Copied: savedTunnelsData_v2",
                                                "[Migration] ✅ Copied: savedTunnelsData"])
        self.assertEqual(self.lines(app)[-2:], [NO_FOLDER, COMPLETED])
        wait_until(lambda: "No space left on device" in app.stderr(), "the failure is told")
        self.assertEqual(app.quit(), 0)
        self.assertFalse(self.preferences.path.exists())
        again = self.opened()
        self.assertEqual(self.lines(again)[-1], COMPLETED)
        self.assert_moved(values)


if __name__ == "__main__":
    main()
