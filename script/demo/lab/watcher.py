"""A program: a host of StatusNotifierItems, which owns the watcher's name on the session bus and remembers who came."""

from __future__ import annotations

NAME, PATH = "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher"

_DESCRIPTION = f"""<node><interface name="{NAME}">
<method name="RegisterStatusNotifierItem"><arg direction="in" type="s"/></method>
<signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
</interface><interface name="org.freedesktop.DBus.Properties">
<method name="Get"><arg direction="in" type="s"/><arg direction="in" type="s"/><arg direction="out" type="v"/></method>
</interface></node>"""


def serve() -> None:
    """Hosts items until it is ended."""
    import dbus
    import dbus.mainloop.glib
    import dbus.service
    from gi.repository import GLib

    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    items: list[str] = []

    class Watcher(dbus.service.Object):
        """org.kde.StatusNotifierWatcher, as far as items look at it."""

        @dbus.service.method(NAME, in_signature="s", sender_keyword="sender")
        def RegisterStatusNotifierItem(self, service: str, sender: str = "") -> None:
            """Remembers the item until its owner leaves the bus."""
            name = str(service) if not service.startswith("/") else sender
            items.append(name)
            bus.watch_name_owner(name, lambda owner: None if owner or name not in items else items.remove(name))
            self.StatusNotifierItemRegistered(name)

        @dbus.service.signal(NAME, signature="s")
        def StatusNotifierItemRegistered(self, service: str) -> None:
            """Tells of an item."""

        @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
        def Get(self, _interface: str, name: str) -> object:
            """A property."""
            return {"RegisteredStatusNotifierItems": dbus.Array(items, signature="s"),
                    "IsStatusNotifierHostRegistered": True, "ProtocolVersion": dbus.Int32(0)}[name]

        @dbus.service.method(dbus.INTROSPECTABLE_IFACE, out_signature="s")
        def Introspect(self) -> str:
            """What there is; a toolkit looks for the properties here before it asks for one."""
            return _DESCRIPTION

    Watcher(bus, PATH)
    kept = dbus.service.BusName(NAME, bus)  # with the name come the items
    GLib.MainLoop().run()
    del kept


if __name__ == "__main__":
    serve()
