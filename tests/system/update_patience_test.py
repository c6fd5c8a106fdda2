"""A server that says nothing: the check and the download are given up after a minute, and nothing stands still."""

from __future__ import annotations

import threading

from harness import main, stored, wait_until
from lab.settings import Settings
from update_case import DOWNLOADING, NEW, OLD, UpdateTest
from update_server import silence, silence_within

MINUTE, SLACK = 60.0, 20.0


class Patience(UpdateTest):
    """One application that waits for two answers at the same time."""

    def test_silence_is_given_up_after_a_minute(self) -> None:
        """The download stalls in its middle and the check never begins to answer."""
        self.make_both()
        self.preferences.seed(**{stored.TUNNELS: [], stored.KEYS: [], stored.TAGS: []})
        over = threading.Event()
        self.addCleanup(over.set)
        app = self.begin()
        self.checked_silently()
        settings = Settings(app)
        asked = len(self.server.asked)
        self.server.pages["/api/update"] = silence(over)
        self.ask(app)
        wait_until(lambda: len(self.server.asked) > asked, "the check is asked")
        self.server.announce(NEW)
        self.server.pages["/files/Fernwick.zip"] = silence_within(b"PK" * 50_000, over)
        self.ask(app)
        self.accept(app)
        self.alert(app, DOWNLOADING)
        self.told(app, "Network error: ...", deadline=MINUTE + SLACK)
        self.told(app, "Download failed: ...", deadline=SLACK)
        self.gone(app, DOWNLOADING)
        self.server.announce(OLD)
        settings.close()
        self.assert_version(app, OLD)


if __name__ == "__main__":
    main(own_processes=True)
