"""The whole application as a screen reader meets it: Tab leads through every control of a window and comes round, and
each has a name, a role and a state."""

from __future__ import annotations

import time

from harness import main, own_network, stored, wait_until
from lab.app import App
from lab.keyboard import describe
from lab.screen import Widget, act, called, controls, enabled, focusable
from lab.tray import NotifierHost
from lab.wire import free_port
from rules_case import WINDOW, RulesTest


class FocusChain(RulesTest):
    """Tab leads through every control of a window and comes round; each has a name and a role."""

    def begin_with_records(self) -> App:
        """The application with a tunnel, a proxy and a rule."""
        tunnel = stored.tunnel("Office", localPort=str(free_port()))
        proxy = {"id": stored.fresh_id(), "name": "Way out", "address": "proxy.example", "port": 8080, "proto": "SOCKS5",
                 "authentication": {"enabled": True, "username": "me", "password": "secret"},
                 "useTargetHostname": True}
        rule = stored.rule("Site", "Proxy", applications=["firefox", "10.0.0.1"], targetHosts=["docs.example"],
                           proxyID=proxy["id"])
        return self.begin(tunnel, **{stored.PROXIES: [proxy], stored.RULES: [rule]})

    def assert_all_reached(self, window: Widget, *wanted: str, under: Widget = None) -> None:
        """Tab comes by these widgets, and by all that can have the keyboard."""
        chain = self.keyboard.round()
        told = "\n  ".join(chain)
        self.assertEqual(len(chain), len(set(chain)), f"two are called the same:\n  {told}")
        for here in chain:
            self.assertFalse(here.startswith((" (", "(")) or not here, f"a stop without a name:\n  {told}")
            self.assertNotIn("(unknown)", here, told)
        for name in wanted:
            self.assertTrue(any(here.startswith(f"{name} (") for here in chain), f"{name!r} is not among\n  {told}")
        for node in controls(under or window):
            if focusable(node) and enabled(node) and describe(node) not in chain:
                self.assertIn(node.get_role_name(), ("radio button", "page tab", *NO_NAME_NEEDED),
                              f"{describe(node)} is not reached by\n  {told}")
                self.assertTrue(called(node) or node.get_role_name() in NO_NAME_NEEDED, describe(node))

    def test_rules_window(self) -> None:
        app = self.begin_with_records()
        window = self.open_rules(app)
        self.keyboard.reach("Proxies")
        self.keyboard.press("Home")
        app.find("Used by 1 Rule")
        self.assert_all_reached(window, "Proxies, 1", "Search proxies...", "Proxies", "Add proxy", "Remove selected proxy",
                                "Edit Proxy", "Details")
        self.turn_to(app, "Rules")
        self.keyboard.reach("Rules")
        self.keyboard.press("Home")
        app.find("Target Hosts (1)")
        self.assert_all_reached(window, "Rules, 1", "Search rules...", "Rules", "Add rule", "Remove selected rule", "Edit",
                                "Details")

    def test_proxy_editor(self) -> None:
        app = self.begin_with_records()
        self.open_rules(app)
        self.keyboard.reach("Proxies")
        self.keyboard.press("Home", "Return")
        sheet = self.keyboard.window("Proxy – proxy.example")
        self.assert_all_reached(sheet, "Name", "Address", "Port", "SOCKS5", "Enable", "Username", "Password", "Tunnel",
                                "Use target hostname in proxy request if available", "Cancel", "Save")
        self.keyboard.press("Escape")
        self.keyboard.window(WINDOW)

    def test_rule_editor_and_its_popover(self) -> None:
        app = self.begin_with_records()
        self.open_rules(app)
        self.turn_to(app, "Rules")
        self.keyboard.reach("Rules")
        self.keyboard.press("Home", "Return")
        sheet = self.keyboard.window("Edit Rule")
        self.assert_all_reached(sheet, "Name", "Enabled", "Add Application or IP", "Remove firefox", "Remove 10.0.0.1",
                                "Target Hosts", "Target Ports", "Action:", "Proxy:", "Cancel", "Save")
        self.keyboard.reach("Add Application or IP")
        self.keyboard.press("space")
        self.keyboard.at("Application")
        popover = app.find("Add Entry")
        self.keyboard.write("x")
        self.assertEqual(self.keyboard.round()[0:2], ["Choose Application (push button)", "Cancel (push button)"])
        self.keyboard.press("Escape")
        self.keyboard.at("Add Application or IP")
        self.assertFalse(app.all("Add Entry"), popover)

    def test_popover_of_the_icon(self) -> None:
        host = NotifierHost(self.session, self.desktop)
        self.addCleanup(host.stop)
        app = self.begin_with_records()
        self.desktop.xdotool("mousemove", 640, 10)
        host.activate()
        popover = self.keyboard.window("Fernwick Menu")
        self.desktop.xdotool("mousemove", 10, 700)
        self.assertTrue(app.has("Connect All"))
        self.assert_all_reached(popover, "Connect All", "Disconnect All", "Tunnels", "Proxies & Rules...",
                                "Open Main Window", "Quit Fernwick")


class ManyRules(RulesTest):
    """Ten thousand rules."""

    COUNT = 10_000
    PAUSE = 1.5  # seconds, the ways through accessibility included

    def timed(self, what: str, begun: float) -> None:
        """Holds the time since `begun` against the bound."""
        took = time.monotonic() - begun
        self.assertLess(took, self.PAUSE, f"{what} took {took:.2f} s")

    def test_window_opens_and_searches(self) -> None:
        rules = [stored.rule(f"Rule {number}", "Block", targetHosts=[f"host{number}.example"])
                 for number in range(self.COUNT)]
        app = self.begin(**{stored.RULES: rules})
        button = app.find(WINDOW, "push button")
        begun = time.monotonic()
        act(button)
        window = self.keyboard.window(WINDOW)
        self.timed("opening", begun)
        self._reach_tabs("Proxies")
        begun = time.monotonic()
        self.keyboard.press("Right")
        rows = self._shows(window, self.COUNT)
        self.timed("turning to the rules", begun)
        search = next(node for node in controls(window) if node.get_name() == "Search rules...")
        for text, found in (("host999", 11), ("Rule 1", 1111), ("", self.COUNT)):
            begun = time.monotonic()
            self.assertTrue(search.get_editable_text_iface().set_text_contents(text))
            wait_until(lambda found=found: rows.get_child_count() == found, f"{text!r} finds {found}")
            self.timed(f"the search for {text!r}", begun)
        self.assertIn(f"{self.COUNT}/{self.COUNT} active", [node.get_name() for node in controls(window)])

    def _shows(self, window: Widget, count: int) -> Widget:
        """Waits for the list of the rules with so many rows."""
        def look() -> list[Widget]:
            return [node for node in controls(window) if node.get_role_name() == "list" and node.get_name() == "Rules"
                    and node.get_child_count() == count]
        return wait_until(look, f"the list has {count} rows")[0]


if __name__ == "__main__":
    own_network()
    main()
