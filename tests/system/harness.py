"""What the system tests share: one desktop per test class, and nothing left behind when it closes."""

from __future__ import annotations

import os
import subprocess
import sys
import unittest
from pathlib import Path
from typing import Any

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "script/demo"))

from lab import namespace  # noqa: E402
from lab import preferences as stored  # noqa: E402
from lab.app import App, program  # noqa: E402
from lab.desktop import Desktop  # noqa: E402
from lab.preferences import Preferences, Record  # noqa: E402
from lab.session import Session  # noqa: E402
from lab.sshlab import SshLab  # noqa: E402
from lab.waiting import wait_until  # noqa: E402

ALONE = "FERNWICK_OWN_NETWORK"  # holds the id of the process that has one
PICTURES = os.environ.get("FERNWICK_TEST_PICTURES")


class SystemTest(unittest.TestCase):
    """A session with a desktop for all cases of the file; each case starts and ends the application itself."""

    session: Session
    desktop: Desktop

    @classmethod
    def setUpClass(cls) -> None:
        """Starts what all cases share; libatspi keeps to one desktop for the life of the process."""
        if not hasattr(SystemTest, "session"):
            SystemTest.session = Session()
            unittest.addModuleCleanup(SystemTest.session.close)
            SystemTest.desktop = Desktop(SystemTest.session)

    def setUp(self) -> None:
        """Begins with no preferences and no application."""
        self.preferences = Preferences(self.session.config)
        for leftover in self.session.config.glob(f"{stored.DOMAIN}*"):
            leftover.unlink()

    def start(self, *tunnels: Record, keys: list[Record] | None = None, tags: list[Record] | None = None) -> App:
        """Starts the application with this catalogue; it ends with the case."""
        self.preferences.seed(**{stored.TUNNELS: list(tunnels), stored.KEYS: keys or [], stored.TAGS: tags or []})
        return self.start_as_is()

    def start_as_is(self, **options: Any) -> App:
        """Starts the application on whatever lies in its folders; it ends with the case."""
        app = App(self.session, self.desktop, **options)
        self.addCleanup(self.end, app)
        return app

    def end(self, app: App) -> None:
        """Keeps a picture of a failed case if that is asked for, and makes sure that nothing outlives the window."""
        if self._failed():
            print(f"--- standard error of the application in {self.id()}:\n{app.stderr()[-2000:]}", file=sys.stderr)
            if PICTURES and app.running():
                self.desktop.screenshot(Path(PICTURES).absolute() / f"{self.id()}.png")
        app.quit()
        self.no_child_left()

    def said(self, app: App, begin: str, deadline: float = 10.0) -> None:
        """Waits for a line of the log that begins so."""
        wait_until(lambda: any(line.startswith(begin) for line in app.log()), f"the log says {begin!r}", deadline)

    def no_child_left(self) -> None:
        """Waits until no ssh of this run is alive."""
        wait_until(lambda: not self.session.processes("ssh"), "the ssh children end")

    def _failed(self) -> bool:
        """Whether this case has failed so far."""
        result = getattr(self._outcome, "result", None)
        found = getattr(result, "failures", []) + getattr(result, "errors", [])
        return any(case is self for case, _ in found)


class SshTest(SystemTest):
    """The same with a private ssh server, a key that it knows, and an agent that holds the key."""

    lab: SshLab
    key: Record

    @classmethod
    def setUpClass(cls) -> None:
        """Starts what all cases share."""
        super().setUpClass()
        cls.lab = SshLab(cls.session)
        cls.lab.start_agent()
        cls.key = stored.key(cls.lab.key)

    def tunnel(self, name: str, **fields: object) -> Record:
        """A tunnel to the private server, with its key unless `fields` says otherwise."""
        return stored.tunnel(name, **{"sshPort": str(self.lab.server.port), "user": self.lab.user,
                                      "identityKeyID": self.key["id"], **fields})

    def connect(self, app: App, name: str) -> None:
        """Selects a tunnel, presses Connect and waits until the window says that it is connected."""
        app.select(name)
        app.press("Connect")
        app.find("Connected")


def own_network() -> None:
    """Starts the running program again in a network namespace with nothing but loopback; returns at once inside it."""
    if os.environ.get(ALONE) != str(os.getpid()):
        os.environ[ALONE] = str(os.getpid())
        command = [*namespace.unshare_command()[:-1], "--net", "--"]
        os.execvp(command[0], [*command, sys.executable, *sys.orig_argv[1:]])
    if not namespace.inside():
        subprocess.run(["ip", "link", "set", "lo", "up"], check=True)


def main(*, own_processes: bool = False) -> None:
    """Runs the cases of the calling file inside a namespace of their own."""
    namespace.enter(own_processes=own_processes)
    if not program().exists():
        sys.exit(f"{program()} is not built")
    unittest.main(verbosity=2, warnings="ignore")
