"""All that can go wrong with an update: the old version says so and goes on with its tunnels."""

from __future__ import annotations

import json
from pathlib import Path

from harness import main, wait_until
from lab.app import App
from lab.screen import text_of
from lab.settings import Settings
from update_case import ARCHIVE, NEW, NO_APP, QUESTION, SWAP_LOG, TITLE, Tunnelled, dialogs, fingerprint
from update_server import body, zip_of, zipped


class Failure(Tunnelled):
    """Whatever the server does, the old version goes on with its tunnels."""

    def assert_as_before(self, app: App) -> None:
        """Nothing was installed, and nothing waits for the end of the application."""
        self.assert_tunnel(app)
        self.assertEqual(fingerprint(self.bundle), self.before)
        self.assertFalse(SWAP_LOG.exists())
        self.assertFalse(dialogs(app))

    def fails(self, app: App, message: str, *, download: bool = False) -> None:
        """A check, or the download after it, fails in these words."""
        self.ask(app)
        if download:
            self.accept(app)
        self.told(app, message)
        self.assert_as_before(app)

    def begin_with_settings(self, **options: object) -> App:
        """Starts the old version with its tunnel and its settings open."""
        app = self.begin_connected(**options)
        self.before = fingerprint(self.bundle)
        self.checked_silently()
        Settings(app)
        return app

    def test_checks_that_fail(self) -> None:
        app = self.begin_with_settings()
        invalid = "Invalid JSON from Update Server."
        url = json.dumps(self.server.address + ARCHIVE)
        for said in ("[]", "null", "{}", '"text"', '{"version": 3, "download_url": %s}' % url, '{"version": "3"}',
                     '{"version": null, "download_url": %s}' % url, '{"version": "3", "download_url": ["a"]}',
                     '{"version": "3", "download_url": ""}', '{"version": "3", "download_url": "http://a b/"}'):
            with self.subTest(said=said):
                self.server.say(said.encode())
                self.fails(app, invalid)
        for garbage in (b"", b"<html>", b"\xff\xfe\x00", b"{", b"[" * 2_000_000, b"PK\x03\x04" * 1000):
            with self.subTest(garbage=garbage[:8]):
                self.server.say(garbage)
                self.fails(app, "Update check error: ...")
        self.server.pages["/api/update"] = body(b"{", promised=100)
        self.fails(app, "Network error: ...")
        self.server.close()
        self.fails(app, "Network error: Connection refused")
        wait_until(lambda: app.has("Network error: Connection refused"), "the settings tell it too")

    def test_silent_check_says_nothing_of_its_failure(self) -> None:
        self.server.say(b"garbage")
        app = self.begin_connected()
        self.checked_silently()
        self.quiet(app)
        self.assert_tunnel(app)

    def test_downloads_that_fail(self) -> None:
        app = self.begin_with_settings()
        self.server.announce(NEW)
        whole = zipped(self.news)
        outside = self.place / "outside"
        outside.mkdir()
        climbing = zip_of(("../escaped", b"x"), ("a/../../escaped", b"x"), (f"{outside}/absolute", b"x"),
                          ("link", str(outside).encode(), True), ("link/through", b"x"),
                          ("up", b"..", True), ("up/escaped", b"x"))
        for name, answer, message in (
                ("half", body(whole[:len(whole) // 2], promised=len(whole)), "Download failed: ..."),
                ("garbage", body(b"no archive " * 1000), NO_APP), ("empty", body(b""), NO_APP),
                ("cut", body(whole[:20]), NO_APP), ("missing", body(b"<html>", status=404), NO_APP),
                ("another", body(zip_of(("Other.APP/x", b"x"), ("Fernwick/x", b"x"))), NO_APP),
                ("deeper", body(zipped(self.news, "Fernwick-4.5.6")), NO_APP),
                ("climbing", body(climbing), NO_APP)):
            with self.subTest(name):
                self.server.pages[ARCHIVE] = answer
                self.fails(app, message, download=True)
        self.assertEqual(list(outside.iterdir()), [])
        temporary = Path(self.session.environment["TMPDIR"])
        self.assertFalse(list(self.session.root.rglob("escaped")))
        self.assertFalse([path for path in temporary.iterdir() if not path.name.startswith(("Fernwick", "fernwick"))])

    def test_hostile_texts_are_plain_text_and_can_be_left(self) -> None:
        """Megabytes, markup and control characters in the version and in the notes."""
        app = self.begin_with_settings()
        self.server.announce("<h1>9</h1>\u0000\u001b[31m\u202e", notes="<a href='http://127.0.0.1'>here</a> &lt;")
        self.ask(app)
        alert = self.alert(app, TITLE)
        shown = f"New version <h1>9</h1> \N{SPACE}[31m is available.\n\n<a href='http://127.0.0.1'>here</a> &lt;{QUESTION}"
        self.assertIn(shown, app.texts(alert))
        app.press("Later", under=alert)
        self.gone(app, TITLE)
        self.server.announce("9" * 1_000_000, notes="<b>line</b>\n" * 300_000 + "w" * 4_000_000)
        self.ask(app)
        alert = self.alert(app, TITLE, 20.0)
        text = text_of(app.find(TITLE, "text", alert))
        self.assertTrue(text.startswith("New version 9999"), text[:40])
        box = app.desktop.xdotool("getwindowgeometry", "--shell", app.window(TITLE))
        size = dict(line.split("=") for line in box.splitlines())
        self.assertLessEqual((int(size["WIDTH"]), int(size["HEIGHT"])), (600, 450))
        app.press("Later", under=alert)
        self.gone(app, TITLE)
        self.assert_as_before(app)

    def test_full_disks(self) -> None:
        """The download does not fit; the archive fits, and what is in it does not."""
        small = self.place / "small"
        small.mkdir()
        app = self.begin_with_settings(variables={"TMPDIR": str(small)}, mounts=[
            f"mount -t tmpfs -o size=2m,mode=755 tmpfs {small}"])
        self.server.announce(NEW)
        inside = Path(f"/proc/{app.pid}/root{small}")
        self.server.pages[ARCHIVE] = body(zipped(self.news))
        self.fails(app, "Download failed: ...", download=True)
        self.assertFalse([each for each in inside.iterdir() if each.is_file()], "half an archive was left")
        self.server.pages[ARCHIVE] = body(zip_of(("Fernwick.app/Fernwick", bytes(20_000_000)), packed=True))
        self.fails(app, "Update Error: No space left on device", download=True)


if __name__ == "__main__":
    main(own_processes=True)
