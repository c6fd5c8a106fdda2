"""Updates from a real server to a real restart, with a tunnel, driven through accessibility."""

from __future__ import annotations

import threading
from pathlib import Path

from harness import PICTURES, main, stored, wait_until
from lab.app import App
from lab.screen import Widget, enabled
from lab.settings import Settings
from update_case import (ARCHIVE, DOWNLOADING, NEW, NO_APP, OLD, QUESTION, TITLE, Tunnelled, dialogs, fingerprint,
                         make_bundle)
from update_server import after, body, zipped


class Success(Tunnelled):
    """The new version takes the place of the old one."""

    def test_update_ends_the_tunnels_and_starts_the_new_version(self) -> None:
        app = self.begin_connected()
        go = threading.Event()
        self.server.pages[ARCHIVE] = after(go, body(zipped(self.news)))
        self.server.announce("v" + NEW, notes="First.\n<b>Second.</b>", size=12, nested={"a": [1]})
        settings = Settings(app)
        self.ask(app)
        question = f"New version v{NEW} is available.\n\nFirst.\n<b>Second.</b>{QUESTION}"
        self.assertIn(question, app.texts(self.alert(app, TITLE)))
        settings.find(question)
        self.picture("prompt")
        self.accept(app)
        sheet = self.alert(app, DOWNLOADING)
        self.assert_progress(app, sheet)
        self.picture("progress")
        self.assert_tunnel(app)
        go.set()
        follower = self.successor(app)
        self.assertEqual(fingerprint(self.bundle), fingerprint(self.news))
        self.assert_version(follower, NEW)
        self.assertEqual(follower.rows(), ["Kept"])
        self.assertEqual(follower.quit(), 0)

    def assert_progress(self, app: App, sheet: Widget) -> None:
        """The sheet of the download has a bar, and one button that cannot be pressed."""
        self.assertIn("Please wait while downloading from Cloud...\nApp will automatically restart when finished.",
                      app.texts(sheet))
        buttons = app.all(role="push button", under=sheet)
        self.assertEqual([(each.get_name(), enabled(each)) for each in buttons], [("Downloading...", False)])
        self.assertEqual(len(app.all(role="progress bar", under=sheet)), 1)
        self.desktop.xdotool("key", "Escape")
        self.assertTrue(dialogs(app, DOWNLOADING))

    def picture(self, name: str) -> None:
        """Keeps a picture of the screen if that is asked for."""
        if PICTURES:
            self.desktop.screenshot(Path(PICTURES).absolute() / f"{self.id()}-{name}.png")

    def test_file_that_is_no_archive_takes_the_place_of_the_program(self) -> None:
        """The application is a single file here; the one that comes has another end."""
        folder = make_bundle(self.place / "plain", OLD)
        item = folder / "Fernwick"
        newer = item.read_bytes() + b"newer"
        self.server.pages["/files/Fernwick-4"] = body(newer)
        self.server.announce(NEW, "/files/Fernwick-4")
        self.preferences.seed(**{stored.TUNNELS: [], stored.KEYS: [], stored.TAGS: []})
        app = self.begin(item)
        self.alert(app, TITLE)  # the check of the start found it
        self.server.announce(OLD)
        self.accept(app)
        self.successor(app, item)
        self.assertEqual(item.read_bytes(), newer)
        self.assertEqual(sorted(file.name for file in folder.glob("libfernwick_*")),
                         ["libfernwick_http.so", "libfernwick_keyring.so"])

    def test_later_is_not_remembered_and_a_check_during_a_download_is_a_second_one(self) -> None:
        """The silent check asks, a check of the person asks again, and one more while the archive comes."""
        app = self.begin_connected()
        self.checked_silently()
        self.server.announce(NEW)
        go = threading.Event()
        self.addCleanup(go.set)
        self.server.pages[ARCHIVE] = after(go, body(b"", status=404))
        Settings(app)
        for way in ("Later", "Escape"):
            self.ask(app)
            alert = self.alert(app, TITLE)
            if way == "Later":
                app.press(way, under=alert)
            else:
                self.desktop.xdotool("windowactivate", "--sync", app.window(TITLE), "key", way)
            self.gone(app, TITLE)
        self.assertNotIn(ARCHIVE, self.server.asked)
        self.ask(app)
        self.accept(app)
        self.alert(app, DOWNLOADING)
        wait_until(lambda: ARCHIVE in self.server.asked, "the download begins")
        self.ask(app)
        app.press("Later", under=self.alert(app, TITLE))
        self.assertTrue(dialogs(app, DOWNLOADING))
        go.set()
        self.told(app, NO_APP)
        self.gone(app, DOWNLOADING)
        self.assert_tunnel(app)


if __name__ == "__main__":
    main(own_processes=True)
