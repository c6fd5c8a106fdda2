"""The popover of the icon: what is pressed there shows in the window, among the children and in the proxy script."""

from __future__ import annotations

from harness import main, own_network, stored, wait_until
from lab import pac
from lab.app import App
from lab.screen import Widget, walk
from lab.tray import NotifierHost, XTray
from lab.wire import free_port
from rules_case import WINDOW, RulesTest


class Popover:
    """What the popover does on any desktop with a tray."""

    tunnels: list[stored.Record]
    app: App

    def click_icon(self) -> None:
        """What a person does to open the popover."""
        raise NotImplementedError

    def begin_two(self) -> None:
        """Starts the application on two tunnels with a rule each."""
        self.tunnels = [stored.tunnel(name, tunnelType=stored.SOCKS5, localPort=str(free_port()))
                        for name in ("One", "Two")]
        rules = [stored.rule(f"By {each['name']}", "Tunnel", targetHosts=[f"{each['name'].lower()}.example"],
                             tunnelID=each["id"]) for each in self.tunnels]
        self.app = self.begin(*self.tunnels, **{stored.RULES: rules})

    def opened(self) -> Widget:
        """Opens the popover."""
        self.click_icon()
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


class ByNotifier(Popover, RulesTest):
    """The icon in a host of StatusNotifierItems on the session bus."""

    def setUp(self) -> None:
        """The host, which is there before the application."""
        super().setUp()
        self.host = NotifierHost(self.session, self.desktop)
        self.addCleanup(self.host.stop)
        self.begin_two()

    def click_icon(self) -> None:
        """The host tells the item, and the pointer is where a panel would be."""
        self.desktop.xdotool("mousemove", 640, 10)
        self.host.activate()


class ByXEmbed(Popover, RulesTest):
    """The icon in a tray of the X server."""

    def setUp(self) -> None:
        """The tray, which is there before the application."""
        super().setUp()
        self.tray = XTray(self.session, self.desktop)
        self.addCleanup(self.tray.stop)
        self.begin_two()

    def click_icon(self) -> None:
        """A click on the icon itself."""
        self.tray.click()


if __name__ == "__main__":
    own_network()
    main()
