"""A polkit authentication agent whose person closes every prompt at once.

refusing_agent.py PID: serves the process with that id, which belongs to the same user, until it is killed. It writes
"ready" to standard error once polkit knows it.
"""

from __future__ import annotations

import sys
from pathlib import Path

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

AGENT = "org.freedesktop.PolicyKit1.AuthenticationAgent"
AUTHORITY = "org.freedesktop.PolicyKit1"


class Refuser(dbus.service.Object):
    """The agent; its operations and their arguments are polkit's."""

    @dbus.service.method(AGENT, in_signature="sssa{ss}sa(sa{sv})")
    def BeginAuthentication(self, action, message, icon, details, cookie, identities):  # noqa: N802
        """Answers as an agent does whose dialog was dismissed."""
        raise dbus.DBusException("dismissed", name="org.freedesktop.PolicyKit1.Error.Cancelled")

    @dbus.service.method(AGENT, in_signature="s")
    def CancelAuthentication(self, cookie):  # noqa: N802
        """There is never a dialog left to close."""


def main(pid: int) -> None:
    """Registers the agent and serves."""
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    refuser = Refuser(bus, "/agent")
    start = int(Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[19])
    subject = ("unix-process", {"pid": dbus.UInt32(pid), "start-time": dbus.UInt64(start)})
    authority = dbus.Interface(bus.get_object(AUTHORITY, "/org/freedesktop/PolicyKit1/Authority"),
                               f"{AUTHORITY}.Authority")
    authority.RegisterAuthenticationAgent(subject, "en_US.UTF-8", "/agent")
    print("ready", file=sys.stderr, flush=True)
    GLib.MainLoop().run()
    refuser.remove_from_connection()


if __name__ == "__main__":
    main(int(sys.argv[1]))
