"""What the tests of proxies and rules share: a window, a preference file and a proxy script that must agree.

They run in a network of their own, since the address of the script is the same in every run.
"""

from __future__ import annotations

from harness import SystemTest, stored, wait_until
from lab import pac
from lab.app import App
from lab.keyboard import Keyboard
from lab.screen import Widget, act

WINDOW = "Proxies & Rules"


class RulesTest(SystemTest):
    """What the cases share."""

    def setUp(self) -> None:
        """A stand-in for ssh that does nothing but live."""
        super().setUp()
        self.sleeper = self.session.root / "sleeping-ssh"
        self.sleeper.write_text("#!/bin/sh\nexec sleep 600\n")
        self.sleeper.chmod(0o755)

    def begin(self, *tunnels: stored.Record, **lists: list[stored.Record]) -> App:
        """Starts the application on these tunnels and lists."""
        self.preferences.seed(**{stored.TUNNELS: list(tunnels), **lists})
        app = self.start_as_is(stand_in=self.sleeper)
        self.keyboard = Keyboard(app)
        wait_until(lambda: pac.served() == pac.DIRECT, "the script is served")
        wait_until(app.window, "the main window shows")
        return app

    def open_rules(self, app: App) -> Widget:
        """Opens the window by its button."""
        act(app.find(WINDOW, "push button"))
        return self.keyboard.window(WINDOW)

    def turn_to(self, app: App, tab: str) -> Widget:
        """Turns to the other tab of the window with the keyboard; the search of that tab."""
        self._reach_tabs("Rules" if tab == "Proxies" else "Proxies")
        self.keyboard.press("Left" if tab == "Proxies" else "Right")
        return app.find(f"Search {tab.lower()}...", "text", under=self.keyboard.window(WINDOW))

    def _reach_tabs(self, open_tab: str) -> None:
        """Goes to the tabs, which are called what the open one is called."""
        self.keyboard.reach(f"{open_tab}, {len(self.proxies() if open_tab == 'Proxies' else self.rules())}")

    def rows(self, app: App, tab: str) -> list[str]:
        """The rows of a list of the window, from the top down."""
        lists = app.all(tab, "list", under=self.keyboard.window(WINDOW))
        return [node.get_name() for node in app.all(role="list item", under=lists[0])] if lists else []

    def running(self, *tunnels: stored.Record) -> dict[str, str]:
        """What the script may lead to while these tunnels run."""
        return {tunnel["id"]: tunnel["localPort"] for tunnel in tunnels}

    def assert_served(self, ports: dict[str, str], what: str = "the script follows the file") -> None:
        """The script comes to be that of the preference file."""
        wait_until(lambda: pac.served() == pac.expected(self.rules(), self.proxies(), ports),
                   f"{what}: {pac.served()}", 5.0)

    def rules(self) -> list[stored.Record]:
        """The rules in the preference file."""
        return self.preferences.records(stored.RULES)

    def proxies(self) -> list[stored.Record]:
        """The proxies in the preference file."""
        return self.preferences.records(stored.PROXIES)

    def assert_rules_agree(self, app: App, *names: str) -> None:
        """The file holds these rules in this order, and the window shows them as the file has them, and counts them."""
        wait_until(lambda: [rule["name"] for rule in self.rules()] == list(names), f"the file holds {names}")
        wait_until(lambda: self.rows(app, "Rules") == [spoken(rule) for rule in self.rules()],
                   f"the window, which shows {self.rows(app, 'Rules')}, agrees with the file")
        on = sum(rule["isEnabled"] for rule in self.rules())
        window = self.keyboard.window(WINDOW)
        app.find(f"{on}/{len(names)} active", under=window)
        app.find(f"Rules, {len(names)}", "page tab", under=window)


def spoken(rule: stored.Record) -> str:
    """What the row of a rule reads."""
    hosts = [host for host in rule["targetHosts"] if host]
    summary = hosts[0] if hosts else "Any host"
    summary += f" +{len(hosts) - 1} more" if len(hosts) > 1 else ""
    return f"{rule['name']}, {summary}, {rule['action']}, {'on' if rule['isEnabled'] else 'off'}"
