"""Known hosts in the settings, against a real server that is given another host key."""

from __future__ import annotations

import re
from pathlib import Path

from forward_case import ForwardTest
from harness import main, wait_until
from lab.app import App
from lab.screen import text_of
from lab.settings import Settings

OTHERS = """# by hand, ế 🏠
example.com ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAAIPvkPPqL1S4Ih1cGm3hUfNUmBAGTFjFhW1nHVLCbH1rF
"""
MISSING = "# File not found or empty\n"


class KnownHosts(ForwardTest):
    """The file of host keys in the window's editor."""

    def setUp(self) -> None:
        super().setUp()
        self.file = self.session.home / ".ssh/known_hosts"
        self.file.unlink(missing_ok=True)

    def give_host_key(self, key: Path) -> None:
        """Starts the server anew with this host key."""
        self.lab.server.stop()
        self.lab.server.host_key = key
        self.lab.server.start()

    def open(self, app: App) -> Settings:
        """The tab of the file."""
        settings = Settings(app)
        settings.turn_to("Known Hosts")
        return settings

    def assert_shows(self, settings: Settings, text: str) -> None:
        """The editor comes to hold exactly this text."""
        wait_until(lambda: text_of(settings.find("Known Hosts", "text")) == text, "the editor shows the file")

    def remove_line(self, settings: Settings, number: int) -> None:
        """Deletes a line in the editor with the keyboard."""
        settings.find("Known Hosts", "text").get_component_iface().grab_focus()
        settings.keys("ctrl+Home", *["Down"] * (number - 1), "shift+Down", "Delete")

    def save(self, settings: Settings) -> None:
        """Saves, and waits until it is said and until that is gone again."""
        settings.press("Save")
        settings.find("Saved successfully")
        wait_until(lambda: not settings.has("Saved successfully"), "what is said goes")

    def test_server_with_a_new_key_is_let_in_again_when_its_line_is_gone(self) -> None:
        self.file.write_text(OTHERS)
        record = self.forward("Reinstalled")
        app = self.start(record, keys=[self.key])
        app.select("Reinstalled")
        self.assert_carries(app, record)
        self.stop(app)
        before = self.file.read_text()
        self.assertTrue(before.startswith(OTHERS))
        self.addCleanup(self.give_host_key, self.lab.host_key)
        self.give_host_key(self.lab.make_key("host_reinstalled"))
        self.assert_refused(app, "Host key verification failed.")
        self.said(app, f"Offending ED25519 key in {self.file}:")
        [offending] = {int(found[1]) for line in app.log() if (found := re.search(r"known_hosts:(\d+)$", line.strip()))}
        self.assertEqual(self.file.read_text(), before)

        settings = self.open(app)
        self.assert_shows(settings, before)
        self.remove_line(settings, offending)
        self.save(settings)
        self.assertEqual(self.file.read_text(), OTHERS)
        self.assert_carries(app, record)
        after = self.file.read_text()
        self.assertTrue(after.startswith(OTHERS) and after not in (OTHERS, before))
        settings.press("Reload")
        self.assert_shows(settings, after)

    def test_reload_without_a_file_shows_a_line_that_save_writes(self) -> None:
        settings = self.open(self.start(self.tunnel("One")))
        self.assert_shows(settings, MISSING)
        settings.press("Reload")
        self.assert_shows(settings, MISSING)
        self.assertFalse(self.file.exists())
        self.save(settings)
        self.assertEqual(self.file.read_text(), MISSING)
        self.assertEqual(self.file.stat().st_mode & 0o777, 0o600)

    def test_what_others_write_shows_when_the_tab_is_opened_again(self) -> None:
        settings = self.open(self.start(self.tunnel("One")))
        self.assert_shows(settings, MISSING)
        self.file.write_text(OTHERS)
        settings.turn_to("General")
        settings.turn_to("Known Hosts")
        self.assert_shows(settings, OTHERS)


if __name__ == "__main__":
    main()
