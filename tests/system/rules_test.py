"""Proxies, rules and the popover through keyboard and accessibility: after each step the window, the preference file
and the proxy script agree.

All of it runs in a network of its own, since the address of the script is the same in every run.
"""

from __future__ import annotations

import time

from harness import SystemTest, main, own_network, stored, wait_until
from lab import pac
from lab.app import App
from lab.keyboard import Keyboard, describe
from lab.screen import Widget, act, called, controls, enabled, focusable, selected, walk
from lab.tray import NotifierHost
from lab.wire import free_port

WINDOW = "Proxies & Rules"
NO_NAME_NEEDED = ("panel", "filler")
PROTOCOLS = {"SOCKS5": "SOCKS Version 5", "SOCKS4": "SOCKS Version 4", "HTTPS": "HTTPS"}


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
        return app.find(f"Search {tab.lower()}...", "text")

    def _reach_tabs(self, open_tab: str) -> None:
        """Goes to the tabs, which are called what the open one is called."""
        self.keyboard.reach(f"{open_tab}, {len(self.proxies() if open_tab == 'Proxies' else self.rules())}")

    def rows(self, app: App, tab: str) -> list[str]:
        """The rows of a list of the window, from the top down."""
        lists = app.all(tab, "list")
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
        wanted = [spoken(rule) for rule in self.rules()]
        wait_until(lambda: self.rows(app, "Rules") == wanted, f"the window shows {wanted}, not {self.rows(app, 'Rules')}")
        on = sum(rule["isEnabled"] for rule in self.rules())
        app.find(f"{on}/{len(names)} active", deadline=2.0)
        app.find(f"Rules, {len(names)}", "page tab", deadline=2.0)


def spoken(rule: stored.Record) -> str:
    """What the row of a rule reads."""
    hosts = [host for host in rule["targetHosts"] if host]
    summary = hosts[0] if hosts else "Any host"
    summary += f" +{len(hosts) - 1} more" if len(hosts) > 1 else ""
    return f"{rule['name']}, {summary}, {rule['action']}, {'on' if rule['isEnabled'] else 'off'}"


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

    def _make_rule(self, name: str, hosts: str, ports: str, action: str, more: object = None) -> None:
        """Makes a rule by the shortcut; its target is the first proxy or tunnel."""
        keyboard = self.keyboard
        keyboard.press("ctrl+n")
        keyboard.window("New Rule")
        keyboard.at("Name:")
        keyboard.write(name)
        if callable(more):
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
        row = app.all(role="list item", under=app.find("Rules", "list"))[at]
        wait_until(lambda: selected(row), f"{name!r} is selected")

    def _toggle(self, app: App, ports: dict[str, str]) -> None:
        for name in ("Ads", "Inside", "Ads", "Inside"):
            self._to_rule(app, name)
            was = self.rules()
            self.keyboard.press("space")
            wait_until(lambda was=was: self.rules() != was, f"{name!r} is toggled in the file")
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
        self.keyboard.press("space", "space")
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
        self.keyboard.press("space", "space")
        self.assert_rules_agree(app, "Ads", "Documents")
        self.assert_served(ports)
        for left in ("Documents", "Ads"):
            self._to_rule(app, left)
            self.keyboard.press("Delete")
        app.find("No Rules")
        self.assertEqual(self.rules(), [])


class Popover(RulesTest):
    """The popover of the icon, opened as a host of the session bus does."""

    def setUp(self) -> None:
        """Two tunnels with a rule each."""
        super().setUp()
        self.host = NotifierHost(self.session, self.desktop)
        self.addCleanup(self.host.stop)
        self.tunnels = [stored.tunnel(name, tunnelType=stored.SOCKS5, localPort=str(free_port()))
                        for name in ("One", "Two")]
        rules = [stored.rule(f"By {each['name']}", "Tunnel", targetHosts=[f"{each['name'].lower()}.example"],
                             tunnelID=each["id"]) for each in self.tunnels]
        self.app = self.begin(*self.tunnels, **{stored.RULES: rules})
        self.desktop.xdotool("mousemove", 640, 10)

    def opened(self) -> Widget:
        """Opens the popover."""
        self.host.activate()
        return self.app.find("Fernwick Menu")

    def assert_agree(self, popover: Widget, summary: str, *running: stored.Record) -> None:
        """Popover, sidebar, children and script say that these tunnels run."""
        self.app.find(summary, under=popover)
        names = [tunnel["name"] for tunnel in running]
        states = {each["name"]: "Connected" if each["name"] in names else "Idle" for each in self.tunnels}
        wait_until(lambda: self.app.states() == states, f"the sidebar shows {states}")
        wait_until(lambda: len(self.app.children("sleep")) == len(running), "the children are as many")
        if running:
            self.assert_served(self.running(*running))
        else:
            wait_until(lambda: pac.served() == pac.DIRECT, "the script sends everything direct")

    def test_connect_all_and_disconnect_all(self) -> None:
        popover = self.opened()
        self.assert_agree(popover, "No active tunnels")
        self.app.press("Connect All", under=popover)
        self.assert_agree(popover, "All tunnels connected", *self.tunnels)
        self.app.press("Disconnect All", under=popover)
        self.assert_agree(popover, "No active tunnels")

    def test_one_tunnel_is_started_by_hovering_its_row(self) -> None:
        popover = self.opened()
        self.assertFalse(self.app.has("Connect Two", "push button"))
        row = next(node for node in walk(popover) if node.get_name().startswith("Two, "))
        box = row.get_component_iface().get_extents(0)
        self.desktop.xdotool("mousemove", box.x + 60, box.y + box.height // 2)
        self.app.click(self.app.find("Connect Two", "push button", under=popover))
        self.assert_agree(popover, "1/2 connected", self.tunnels[1])

    def test_each_window_opens_and_the_popover_goes(self) -> None:
        app = self.app
        app.press("Proxies & Rules...", under=self.opened())
        app.gone("Fernwick Menu")
        self.keyboard.window(WINDOW)
        wait_until(lambda: self._hide(app), "the main window hides")
        app.press("Open Main Window", under=self.opened())
        app.gone("Fernwick Menu")
        self.keyboard.window("Fernwick")
        app.press("Proxies & Rules...", under=self.opened())
        self.keyboard.window(WINDOW)
        frames = [node.get_name() for node in app.all(role="frame")]
        self.assertEqual(sorted(frames), ["Fernwick", WINDOW])

    def _hide(self, app: App) -> bool:
        if app.window():
            self.desktop.xdotool("windowactivate", "--sync", app.window(), "key", "alt+F4")
        return not app.window()

    def test_quit_leaves_file_and_no_script(self) -> None:
        popover = self.opened()
        self.app.press("Connect All", under=popover)
        self.assert_agree(popover, "All tunnels connected", *self.tunnels)
        rules = self.rules()
        self.app.click(self.app.find("Quit Fernwick", "push button", under=popover))
        self.assertEqual(self.app.ended(), 0)
        self.assertEqual((pac.served(), self.rules()), ("", rules))
        self.no_child_left()


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
        self.assert_all_reached(sheet, "Name:", "Enabled", "Add Application or IP", "Remove firefox", "Remove 10.0.0.1",
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
