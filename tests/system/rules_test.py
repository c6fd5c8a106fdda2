"""Proxies and rules made, changed and deleted by keyboard alone: after each step the window, the preference file and
the proxy script agree."""

from __future__ import annotations

from collections.abc import Callable

from harness import main, own_network, stored, wait_until
from lab import pac
from lab.app import App
from lab.screen import selected
from lab.wire import free_port
from rules_case import WINDOW, RulesTest, spoken


class ByKeyboard(RulesTest):
    """From an empty window to proxies and rules and back, without the mouse."""

    def test_proxy_and_rules_from_nothing(self) -> None:
        office = stored.tunnel("Office", tunnelType=stored.SOCKS5, localPort=str(free_port()))
        app = self.begin(office)
        self._start_tunnel(app)
        self._open(app)
        self._make_proxy(app)
        self._make_rules(app)
        ports = self.running(office)
        self.assert_served(ports)
        self._toggle(app, ports)
        self._reorder(app, ports)
        self._search(app)
        self._edit(app, ports)
        self._delete(app, ports)

    def _start_tunnel(self, app: App) -> None:
        self.keyboard.window("Fernwick")
        app.keys()
        self.keyboard.reach("Tunnels")
        self.keyboard.press("Home", "Menu", "Down", "Return")
        wait_until(lambda: app.states() == {"Office": "Connected"}, "the tunnel runs")

    def _open(self, app: App) -> None:
        keyboard = self.keyboard
        keyboard.reach(WINDOW)
        keyboard.press("space")
        keyboard.window(WINDOW)
        for text in ("No Proxies", "Click + to add a proxy", "0 proxys", "Changes apply immediately"):
            app.find(text)
        self.assertEqual(self.preferences.read().get(stored.PROXIES), None)

    def _make_proxy(self, app: App) -> None:
        keyboard = self.keyboard
        keyboard.reach("Add proxy")
        keyboard.press("space")
        keyboard.at("Name")
        keyboard.write("Way out")
        keyboard.reach("Address")
        keyboard.press("ctrl+a")
        keyboard.write("proxy.example")
        keyboard.window("Proxy – proxy.example")
        keyboard.reach("Port")
        keyboard.press("ctrl+a")
        keyboard.write("8a0b8-0")
        keyboard.reach("SOCKS5")
        keyboard.press("Down", "Down")
        keyboard.at("HTTPS")
        keyboard.reach("Enable")
        keyboard.press("space")
        keyboard.reach("Username")
        keyboard.write("me")
        keyboard.reach("Password")
        keyboard.write("top;secret")
        keyboard.press("Return")
        keyboard.window(WINDOW)
        app.find("1 proxy")
        app.find("Proxies, 1", "page tab")
        wait_until(lambda: self.rows(app, "Proxies") == ["Way out, proxy.example:8080, HTTPS"], "the window shows it")
        [proxy] = self.proxies()
        wanted = {"name": "Way out", "address": "proxy.example", "port": 8080, "proto": "HTTPS",
                  "authentication": {"enabled": True, "username": "me", "password": "top;secret"},
                  "useTargetHostname": False}
        self.assertEqual(proxy | wanted, proxy)
        self.assertNotIn("top;secret", app.texts())

    def _make_rules(self, app: App) -> None:
        self.turn_to(app, "Rules")
        for text in ("No Rules", "Click + to add a routing rule", "0/0 active"):
            app.find(text)
        self._make_rule("Site", "docs.example; *.corp.example", "443; 8443", "Proxy", self._add_entries)
        self.assert_rules_agree(app, "Site")
        [rule] = self.rules()
        wanted = {"applications": ["firefox", "10.8.0.0/16"], "targetHosts": ["docs.example", "*.corp.example"],
                  "targetPorts": ["443", "8443"], "action": "Proxy", "proxyID": self.proxies()[0]["id"],
                  "isEnabled": True}
        self.assertEqual(rule | wanted, rule)
        self.assert_served({})
        self._make_rule("Ads", "ads.example", "", "Block")
        self.assert_rules_agree(app, "Site", "Ads")
        self.assert_served({})
        self._make_rule("Inside", "inside.example", "80", "Tunnel")
        self.assert_rules_agree(app, "Site", "Ads", "Inside")
        self.assertEqual(self.rules()[2]["tunnelID"], self.preferences.tunnel("Office")["id"])

    def _make_rule(self, name: str, hosts: str, ports: str, action: str,
                   more: Callable[[], None] | None = None) -> None:
        """Makes a rule by the shortcut; its target is the first proxy or tunnel."""
        keyboard = self.keyboard
        keyboard.press("ctrl+n")
        keyboard.window("New Rule")
        keyboard.at("Name")
        keyboard.write(name)
        if more:
            more()
        keyboard.reach("Target Hosts")
        keyboard.write(hosts)
        keyboard.reach("Target Ports")
        keyboard.write(ports)
        keyboard.reach("Action:")
        keyboard.press("Home", *["Down"] * ["Direct", "Proxy", "Block", "Tunnel"].index(action))
        if action != "Block":
            keyboard.reach(f"{action}:")
            keyboard.press("Down")
        keyboard.reach("Save")
        keyboard.press("space")
        keyboard.window(WINDOW)

    def _add_entries(self) -> None:
        """Adds a program and, after an address that is none, a network."""
        keyboard, screen = self.keyboard, self.keyboard.screen
        screen.find("Any application / IP")
        keyboard.reach("Add Application or IP")
        keyboard.press("space")
        keyboard.at("Application")
        keyboard.write("firefox")
        keyboard.press("Return")
        screen.find("Remove firefox", "push button")
        keyboard.at("Add Application or IP")
        keyboard.press("Return")
        keyboard.at("Application")
        keyboard.reach("Application", "radio button", "shift+Tab")
        keyboard.press("Right")
        keyboard.at("IP / Range")
        keyboard.reach("IP address")
        keyboard.write("10.8.0")
        keyboard.press("Return")
        screen.find("Invalid IP address")
        self.assertFalse(screen.has("Remove 10.8.0"))
        keyboard.reach("Single IP")
        keyboard.press("Right", "Right")
        keyboard.at("CIDR")
        keyboard.reach("CIDR", "text")
        keyboard.write("10.8.0.0/16")
        keyboard.press("Return")
        screen.find("Remove 10.8.0.0/16", "push button")
        keyboard.at("Add Application or IP")

    def _to_rule(self, app: App, name: str) -> None:
        """Goes to the list and down to the rule."""
        self.keyboard.reach("Rules")
        at = [rule["name"] for rule in self.rules()].index(name)
        self.keyboard.press("Home", *["Down"] * at)
        row = app.find("Rules", "list", under=self.keyboard.window(WINDOW)).get_child_at_index(at)
        wait_until(lambda: selected(row), f"{name!r} is selected")

    def _switch(self, name: str) -> None:
        """Switches the chosen rule, which has that name."""
        def on() -> bool:
            return any(rule["isEnabled"] for rule in self.rules() if rule["name"] == name)
        before = on()
        self.keyboard.press("space")
        wait_until(lambda: on() != before, f"{name!r} is switched in the file")

    def _toggle(self, app: App, ports: dict[str, str]) -> None:
        for name in ("Ads", "Inside", "Ads", "Inside"):
            self._to_rule(app, name)
            self._switch(name)
            self.assert_rules_agree(app, "Site", "Ads", "Inside")
            self.assert_served(ports)
            on = next(rule["isEnabled"] for rule in self.rules() if rule["name"] == name)
            wait_until(lambda on=on: app.has("DISABLED") != on, "the panel says whether it is off")

    def _reorder(self, app: App, ports: dict[str, str]) -> None:
        before = pac.served()
        self._to_rule(app, "Site")
        self.keyboard.press("alt+Down")
        self.assert_rules_agree(app, "Ads", "Site", "Inside")
        self.keyboard.press("alt+Down")
        self.assert_rules_agree(app, "Ads", "Inside", "Site")
        # moving alone does not build the script anew; the next change of a rule does
        self.assertEqual(pac.served(), before)
        self._switch("Site")
        self._switch("Site")
        self.assert_rules_agree(app, "Ads", "Inside", "Site")
        self.assert_served(ports)

    def _search(self, app: App) -> None:
        keyboard = self.keyboard
        file = self.preferences.path.read_bytes()
        keyboard.press("ctrl+f")
        keyboard.at("Search rules...")
        for text, found in (("INSIDE", ["Inside"]), ("corp", ["Site"]), ("example", ["Ads", "Inside", "Site"]),
                            ("443", [])):
            keyboard.press("ctrl+a")
            keyboard.write(text)
            wanted = [spoken(rule) for rule in self.rules() if rule["name"] in found]
            wait_until(lambda wanted=wanted: self.rows(app, "Rules") == wanted, f"{text!r} finds {wanted}")
            self.assertEqual(app.has("No Results"), not found)
            app.find("3/3 active")
        keyboard.press("Escape")
        keyboard.press("ctrl+a", "BackSpace")
        self.assert_rules_agree(app, "Ads", "Inside", "Site")
        self.assertEqual(self.preferences.path.read_bytes(), file)

    def _edit(self, app: App, ports: dict[str, str]) -> None:
        keyboard = self.keyboard
        self._to_rule(app, "Site")
        keyboard.press("Return")
        keyboard.window("Edit Rule")
        keyboard.write("Documents")
        keyboard.reach("Remove firefox")
        keyboard.press("Delete")
        keyboard.at("Remove 10.8.0.0/16")
        keyboard.reach("Target Ports")
        keyboard.press("ctrl+a", "BackSpace", "Return")
        keyboard.window(WINDOW)
        self.assert_rules_agree(app, "Ads", "Inside", "Documents")
        rule = self.rules()[2]
        self.assertEqual((rule["applications"], rule["targetPorts"]), (["10.8.0.0/16"], []))
        self.assert_served(ports)
        for text in ("Applications (1)", "Target Hosts (2)", "Target Ports (0)", "via Way out"):
            app.find(text)

    def _delete(self, app: App, ports: dict[str, str]) -> None:
        before = pac.served()
        self._to_rule(app, "Inside")
        self.keyboard.press("Delete")
        self.assert_rules_agree(app, "Ads", "Documents")
        self.assertEqual(pac.served(), before)  # as with moving
        self.turn_to(app, "Proxies")
        self.keyboard.reach("Proxies")
        self.keyboard.press("Home", "Delete")
        app.find("0 proxys")
        app.find("No Proxies")
        self.assertEqual(self.proxies(), [])
        self.turn_to(app, "Rules")
        self.assertNotIn("proxyID", self.rules()[1])
        self._to_rule(app, "Ads")
        self._switch("Ads")
        self._switch("Ads")
        self.assert_rules_agree(app, "Ads", "Documents")
        self.assert_served(ports)
        for left in ("Documents", "Ads"):
            self._to_rule(app, left)
            self.keyboard.press("Delete")
        app.find("No Rules")
        self.assertEqual(self.rules(), [])


if __name__ == "__main__":
    own_network()
    main()
