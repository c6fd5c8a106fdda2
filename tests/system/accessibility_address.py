"""Tells the programs on one more session bus where the accessibility bus is, so that several buses share one.

Takes its address as the only argument and runs until it is ended. The interface is the one of at-spi2-core's
at-spi-bus-launcher(1), org.a11y.Bus.
"""

from __future__ import annotations

import sys
from typing import Any

from gi.repository import Gio, GLib

INTERFACES = Gio.DBusNodeInfo.new_for_xml("""<node>
  <interface name="org.a11y.Bus"><method name="GetAddress"><arg type="s" direction="out"/></method></interface>
  <interface name="org.a11y.Status">
    <property name="IsEnabled" type="b" access="read"/><property name="ScreenReaderEnabled" type="b" access="read"/>
  </interface></node>""").interfaces


def serve(bus: Gio.DBusConnection, _name: str) -> None:
    """Answers on the bus."""
    def call(*arguments: Any) -> None:
        arguments[6].return_value(GLib.Variant("(s)", (sys.argv[1],)))

    for interface in INTERFACES:
        bus.register_object("/org/a11y/bus", interface, call, lambda *_: GLib.Variant("b", True), None)


if __name__ == "__main__":
    Gio.bus_own_name(Gio.BusType.SESSION, "org.a11y.Bus", Gio.BusNameOwnerFlags.NONE, serve, None, None)
    GLib.MainLoop().run()
