"""The whole application as a screen reader meets it: Tab leads through every control of a window and comes round, each has
a name, a role and a state, and wherever the keyboard is can be seen."""

from __future__ import annotations

from harness import main, own_network, stored
from lab.app import App
from lab.keyboard import Sight, describe
from lab.screen import Widget, called, checked, controls, editable, enabled, focusable, focused, read_only, showing
from lab.tray import NotifierHost
from lab.wire import free_port
from rules_case import WINDOW, RulesTest

# Roles that say nothing; what has one of them is no control.
MEANINGLESS = ("unknown", "invalid", "filler")
TYPED = ("text", "password text")
# What holds controls; it may have the keyboard while none of them has it.
WHOLES = ("frame", "dialog", "panel", "layered pane")


class FocusChain(RulesTest):
    """Window by window."""

    def begin_with_records(self) -> App:
        """The application with a tunnel, a proxy and a rule."""
        proxy = {"id": stored.fresh_id(), "name": "Way out", "address": "proxy.example", "port": 8080, "proto": "SOCKS5",
                 "authentication": {"enabled": True, "username": "me", "password": "secret"},
                 "useTargetHostname": True}
        rule = stored.rule("Site", "Proxy", applications=["firefox", "10.0.0.1"], targetHosts=["docs.example"],
                           proxyID=proxy["id"])
        tag = stored.tag("Work")
        app = self.begin(stored.tunnel("Office", localPort=str(free_port()), tagIDs=[tag["id"]]),
                         **{stored.PROXIES: [proxy], stored.RULES: [rule], stored.TAGS: [tag]})
        self.away()
        return app

    def away(self) -> None:
        """Takes the pointer where nothing answers to it."""
        self.desktop.xdotool("mousemove", 0, 799)

    def assert_spoken(self, node: Widget) -> None:
        """A screen reader can say what has the keyboard, and that it has it."""
        what = describe(node)
        self.assertTrue(called(node), f"a stop without a name: {what}")
        self.assertNotIn(node.get_role_name(), MEANINGLESS, what)
        self.assertTrue(enabled(node) and showing(node) and focusable(node) and focused(node), what)
        if node.get_role_name() == "radio button":
            self.assertTrue(checked(node), f"not the chosen one of its group: {what}")
        self.assertEqual(editable(node) or read_only(node), node.get_role_name() in TYPED, what)

    def assert_all_reached(self, window: Widget, *wanted: str) -> None:
        """Tab comes by these widgets and by all that can have the keyboard, and shows where it is; so it does
        backwards."""
        sight = Sight(self.desktop)

        def arrive(node: Widget) -> None:
            self.assert_spoken(node)
            sight.arrive(node)

        chain = self.keyboard.round(arrive=arrive, leave=sight.leave)
        told = "\n  ".join(chain)
        self.assertEqual(len(chain), len(set(chain)), f"two are called the same:\n  {told}")
        self.assertEqual(sight.unseen, [], "the keyboard was there, and nothing showed it")
        for name in wanted:
            self.assertTrue(any(here.startswith(f"{name} (") for here in chain), f"{name!r} is not among\n  {told}")
        for node in controls(window):
            if focusable(node) and enabled(node) and describe(node) not in chain:
                # the arrow keys lead from the chosen one of several to the others
                self.assertIn(node.get_role_name(), ("radio button", "page tab", *WHOLES),
                              f"{describe(node)} is not reached by\n  {told}")
                self.assertTrue(called(node) or node.get_role_name() in WHOLES, describe(node))
        self.assertEqual(set(self.keyboard.round("shift+Tab")), set(chain))

    def open_tunnel(self) -> Widget:
        """Chooses the tunnel by keyboard; the main window."""
        self.begin_with_records()
        window = self.keyboard.window("Fernwick")
        self.keyboard.reach("Tunnels")
        self.keyboard.press("Down", "Home")
        self.keyboard.screen.find("Connect", "push button")
        return window

    def test_main_window_with_the_configuration(self) -> None:
        window = self.open_tunnel()
        self.assert_all_reached(window, "Proxies & Rules", "Add new tunnel", "Search tunnels...", "All", "Work", "Tunnels",
                                "Connect", "Configuration", "Tunnel Name", "Type", "Host / IP", "SSH Port", "Username",
                                "Auth Method", "Local Port", "Remote Host", "Remote Port", "Notes")

    def test_main_window_with_the_other_tabs(self) -> None:
        window = self.open_tunnel()
        self.keyboard.reach("Configuration", "radio button")
        for tab, wanted in (("Advanced", ["Keep-Alive (sec)", "Auto Reconnect", "Compression"]), ("Logs", ["Logs"])):
            self.keyboard.press("Right")
            self.keyboard.at(tab)
            self.assert_all_reached(window, tab, *wanted)
            self.keyboard.reach(tab, "radio button")

    def test_sheet_for_a_new_tunnel(self) -> None:
        self.begin_with_records()
        self.keyboard.window("Fernwick")
        self.keyboard.reach("Add new tunnel")
        self.keyboard.press("space")
        sheet = self.keyboard.window("New Tunnel")
        self.keyboard.reach("Host / IP")
        self.keyboard.write("h")
        self.keyboard.reach("Username")
        self.keyboard.write("u")
        self.assert_all_reached(sheet, "Tunnel Name", "Host / IP", "Username", "Cancel", "Create Tunnel")
        self.keyboard.press("Escape")
        self.keyboard.window("Fernwick")

    def test_rules_window(self) -> None:
        app = self.begin_with_records()
        window = self.open_rules(app)
        self.keyboard.reach("Proxies")
        self.keyboard.press("Home")
        app.find("Used by 1 Rule")
        self.assert_all_reached(window, "Proxies, 1", "Search proxies...", "Proxies", "Add proxy", "Remove selected proxy",
                                "Edit", "Details")
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

    def open_rule(self) -> tuple[App, Widget]:
        """Opens the editor on the rule."""
        app = self.begin_with_records()
        self.open_rules(app)
        self.turn_to(app, "Rules")
        self.keyboard.reach("Rules")
        self.keyboard.press("Home", "Return")
        return app, self.keyboard.window("Edit Rule")

    def test_rule_editor(self) -> None:
        _, sheet = self.open_rule()
        self.assert_all_reached(sheet, "Name", "Enabled", "Add Application or IP", "Remove firefox", "Remove 10.0.0.1",
                                "Target Hosts", "Target Ports", "Action:", "Proxy:", "Cancel", "Save")

    def test_popover_of_the_rule_editor(self) -> None:
        app, _ = self.open_rule()
        self.keyboard.reach("Add Application or IP")
        self.keyboard.press("space")
        self.keyboard.at("Application")
        popover = app.find("Add Entry")
        self.keyboard.write("x")
        self.assert_all_reached(popover, "Application", "Choose Application", "Cancel", "Add")
        self.keyboard.press("Escape")
        self.keyboard.at("Add Application or IP")
        self.assertFalse(app.all("Add Entry"))

    def test_popover_of_the_icon(self) -> None:
        host = NotifierHost(self.session, self.desktop)
        self.addCleanup(host.stop)
        self.begin_with_records()
        self.desktop.xdotool("mousemove", 640, 10)
        host.activate()
        popover = self.keyboard.window("Fernwick Menu")
        self.away()
        self.assert_all_reached(popover, "Connect All", "Disconnect All", "Tunnels", "Proxies & Rules...",
                                "Open Main Window", "Quit Fernwick")


if __name__ == "__main__":
    own_network()
    main()
