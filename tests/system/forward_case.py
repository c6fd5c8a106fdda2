"""What tests share that connect a forward by its button, stop it and connect it again."""

from __future__ import annotations

from harness import SshTest, stored
from lab import site
from lab.app import App
from lab.wire import fetch, free_port


class ForwardTest(SshTest):
    """Forwards to the site behind the private server."""

    def forward(self, name: str, **fields: object) -> stored.Record:
        """A forward to the site behind the server."""
        return self.tunnel(name, localPort=str(free_port()), remoteHost=site.NAME, remotePort=str(self.lab.site_port),
                           **fields)

    def assert_carries(self, app: App, record: stored.Record) -> None:
        """Connect is pressed, and bytes flow."""
        app.press("Connect")
        app.find("Connected")
        self.assertEqual(fetch(int(record["localPort"]), site.NAME).decode(), site.GREETING)

    def stop(self, app: App) -> None:
        """Stop is pressed, and the child ends."""
        app.press("Stop")
        app.find("Idle")
        self.no_child_left()

    def assert_refused(self, app: App, complaint: str) -> None:
        """Connect is pressed, and ssh gives up with these words."""
        app.press("Connect")
        app.find("Disconnected", deadline=20)
        self.said(app, complaint)
