"""What the tests of the updater share: an application in a folder of its own, a server, and the successor.

They run among process ids of their own: the script that swaps the application waits for every process of its name.
"""

from __future__ import annotations

import hashlib
import os
import plistlib
import shutil
import signal
import subprocess
from collections.abc import Callable
from pathlib import Path
from typing import Any, TypeVar

from harness import PICTURES, SshTest, SystemTest, stored, wait_until
from lab import site
from lab.app import App, program
from lab.desktop import Desktop
from lab.preferences import Preferences
from lab.screen import Widget, showing
from lab.session import Session, alive
from lab.settings import Settings
from lab.waiting import wait_for
from lab.wire import fetch, free_port
from update_server import UpdateServer

OLD, NEW = "1.2.3", "4.5.6"
TITLE, FAILED, DOWNLOADING = "Application Update", "Update Error", "Downloading update..."
ARCHIVE = "/files/Fernwick.zip"
NO_APP = "Valid app (.app) not found in the selected file."
QUESTION = "\n\nWould you like to download and install it now?"
SWAP_LOG = Path("/tmp/fernwick_update.log")
SWAP_TIME = 30.0  # seconds; the script itself waits for four
T = TypeVar("T")


def make_bundle(folder: Path, version: str) -> Path:
    """The built application as a folder of that version, as it is packaged; the folder's path."""
    folder.mkdir(parents=True)
    for file in (program(), *program().parent.glob("libfernwick_*.so")):
        shutil.copy2(file, folder)
    plist = plistlib.loads((program().parent / "Info.plist").read_bytes())
    plist["CFBundleShortVersionString"] = version
    (folder / "Info.plist").write_bytes(plistlib.dumps(plist))
    return folder


def fingerprint(item: Path) -> dict[str, str]:
    """What a folder or a file holds, by relative path."""
    files = [item] if item.is_file() else [file for file in sorted(item.rglob("*")) if file.is_file()]
    return {str(file.relative_to(item)): hashlib.sha256(file.read_bytes()).hexdigest() for file in files}


def tops(app: App, title: str | None = None) -> list[Widget]:
    """The windows, alerts and sheets on the screen, or those with that title."""
    found = [app.root.get_child_at_index(index) for index in range(app.root.get_child_count())]
    return [each for each in found if each is not None and stands(each) and title in (None, _ask(each.get_name))]


def dialogs(app: App, title: str | None = None) -> list[Widget]:
    """The alerts and sheets on the screen, or those with that title."""
    return [each for each in tops(app, title) if _ask(each.get_role_name) == "dialog"]


def stands(window: Widget) -> bool:
    """Whether a window is on the screen; one that is gone is not."""
    return bool(_ask(lambda: showing(window)))


def _ask(question: Callable[[], T]) -> T | None:
    """The answer of a widget, which may be gone meanwhile."""
    from gi.repository import GLib

    try:
        return question()
    except GLib.Error:
        return None


class Adopted:
    """A process that came to us when its parent ended, with the face of a child of ours."""

    def __init__(self, pid: int) -> None:
        """Takes its id."""
        self.pid = pid
        self.returncode: int | None = None

    def poll(self) -> int | None:
        """The exit status once it ended."""
        if self.returncode is None:
            found, status = os.waitpid(self.pid, os.WNOHANG)
            self.returncode = os.waitstatus_to_exitcode(status) if found else None
        return self.returncode

    def wait(self, timeout: float) -> int:
        """Waits for the end."""
        if not wait_for(lambda: self.poll() is not None, timeout):
            raise subprocess.TimeoutExpired(str(self.pid), timeout)
        assert self.returncode is not None
        return self.returncode

    def send_signal(self, which: signal.Signals) -> None:
        """Sends a signal."""
        os.kill(self.pid, which)


class Successor(App):
    """An application that started by itself."""

    def __init__(self, session: Session, desktop: Desktop, pid: int) -> None:
        """Takes it over; it must have been orphaned."""
        self.session, self.desktop, self.pid = session, desktop, pid
        self.preferences = Preferences(session.config)
        self.stderr_path = Path(os.devnull)
        self.process = Adopted(pid)  # type: ignore[assignment]


class UpdateTest(SystemTest):
    """One server for each case, and a folder in which the application lies."""

    def setUp(self) -> None:
        """A server that has nothing newer, and the old version beside it."""
        super().setUp()
        SWAP_LOG.unlink(missing_ok=True)
        self.place = self.session.root / self.id().rpartition(".")[2][5:25]
        self.place.mkdir()
        self.server = UpdateServer()
        self.addCleanup(self.server.close)
        self.server.announce(OLD)
        self.bundle = self.place / "Fernwick.app"
        self.news = self.place / "new/Fernwick.app"

    def make_both(self) -> None:
        """The old version, with a file that only it has, and the new one."""
        make_bundle(self.bundle, OLD)
        (self.bundle / "share").mkdir()
        (self.bundle / "share/only-in-the-old-one").touch()
        make_bundle(self.news, NEW)

    def begin(self, item: Path | None = None, *, variables: dict[str, str] | None = None, **options: Any) -> App:
        """Starts the application as it lies in its folder, on whatever is in its home; waits for its window."""
        environment = self.session.environment | {"FERNWICK_UPDATE_URL": self.server.address} | (variables or {})
        command = [str(item or self.bundle / "Fernwick")]
        app = self.start_as_is(environment=environment, command=command, **options)
        wait_until(app.window, "the main window shows")
        return app

    def checked_silently(self) -> None:
        """Waits until the check of the start has been made."""
        wait_until(lambda: "/api/update" in self.server.asked, "the application asks by itself")

    # What the updater shows

    def alert(self, app: App, title: str, deadline: float = 8.0) -> Widget:
        """The alert with that title; waits for it."""
        return wait_until(lambda: dialogs(app, title), f"an alert {title!r} is on the screen", deadline)[0]

    def gone(self, app: App, title: str, deadline: float = 5.0) -> None:
        """Waits until there is none."""
        wait_until(lambda: not dialogs(app, title), f"the alert {title!r} leaves the screen", deadline)

    def told(self, app: App, message: str, title: str = FAILED, deadline: float = 8.0) -> None:
        """Waits for an alert, reads it and dismisses it."""
        alert = self.alert(app, title, deadline)
        said = app.texts(alert)
        self.assertTrue(any(each == message or message.endswith("...") and each.startswith(message[:-3])
                            for each in said), f"{title!r} says {said} and not {message!r}")
        app.press("OK", under=alert)
        wait_until(lambda: not stands(alert), f"the alert {title!r} leaves the screen", 5.0)

    def ask(self, app: App) -> None:
        """Presses the button of the settings, which are open."""
        app.press("Check Update", under=tops(app, "Settings")[0])

    def accept(self, app: App) -> None:
        """Answers the question with yes."""
        app.press("Update Now", under=self.alert(app, TITLE))
        self.gone(app, TITLE)

    def quiet(self, app: App, during: float = 1.0) -> None:
        """Nothing asks for attention, for a while."""
        self.assertFalse(wait_for(lambda: dialogs(app), during), "an alert came up")

    # What becomes of the application

    def successor(self, app: App, item: Path | None = None) -> Successor:
        """Waits for the end of the old process, and for the one that follows it."""
        self.assertEqual(app.ended(15.0), 0)
        self.no_child_left()
        path = str(item or self.bundle / "Fernwick")

        def look() -> list[int]:
            return [pid for pid in self.session.processes() if _runs(pid) == path]
        try:
            pid = wait_until(look, "the new version starts", SWAP_TIME)[0]
        except AssertionError as timeout:
            said = SWAP_LOG.read_text() if SWAP_LOG.exists() else "nothing"
            raise AssertionError(f"{timeout}; the script said: {said}") from None
        wait_until(lambda: "Update finished!" in SWAP_LOG.read_text(), "the script ends")
        follower = Successor(self.session, self.desktop, pid)
        self.addCleanup(self.end, follower)
        wait_until(follower.window, "the new version shows its window")
        return follower

    def assert_version(self, app: App, version: str) -> Settings:
        """The settings tell this version, and a check that there is no other."""
        settings = Settings(app)
        settings.find(f"Version {version}")
        latest = f"You are using the latest version ({version})."
        self.ask(app)
        alert = self.alert(app, TITLE)
        self.assertIn(latest, app.texts(alert))
        if PICTURES:
            self.desktop.screenshot(Path(PICTURES).absolute() / f"{self.id()}-latest.png")
        app.press("OK", under=alert)
        settings.find(latest)
        return settings


class Tunnelled(UpdateTest, SshTest):
    """The application with a tunnel that is up while the updater does its work."""

    def begin_connected(self, **options: object) -> App:
        """Starts the old version and connects its tunnel."""
        self.make_both()
        self.port = free_port()
        tunnel = self.tunnel("Kept", localPort=str(self.port), remotePort=str(self.lab.site_port), remoteHost=site.NAME)
        self.preferences.seed(**{stored.TUNNELS: [tunnel], stored.KEYS: [self.key], stored.TAGS: []})
        app = self.begin(**options)  # type: ignore[arg-type]
        self.connect(app, "Kept")
        self.assert_tunnel(app)
        return app

    def assert_tunnel(self, app: App) -> None:
        """The application runs, and bytes come through its tunnel."""
        self.assertTrue(app.running())
        self.assertEqual(fetch(self.port, site.NAME).decode(), site.GREETING)
        self.assertEqual(len(app.children()), 1)


def _runs(pid: int) -> str:
    """The path of the program that a living process runs."""
    try:
        return os.readlink(f"/proc/{pid}/exe") if alive(pid) else ""
    except OSError:
        return ""
