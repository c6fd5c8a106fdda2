#!/usr/bin/python3
"""Shows Fernwick at work on any machine, with or without a display, and leaves nothing behind.

A private ssh server with throw-away keys and a web site behind it, which only the server's side knows by name; a
catalogue of four tunnels in a home folder of its own; the application's real window, driven as a person would.
"""

from __future__ import annotations

import argparse
import signal
import socket
import subprocess
import sys
import time
from collections.abc import Iterator
from contextlib import closing, contextmanager
from pathlib import Path

from lab import namespace, site
from lab import preferences as stored
from lab.app import REPOSITORY, App, program
from lab.desktop import Desktop
from lab.preferences import Preferences
from lab.session import Session
from lab.sshlab import SshLab
from lab.waiting import wait_until
from lab.wire import fetch, free_port, listens

SHOWN = "Intranet"
DEFAULT_PICTURE = REPOSITORY / "build/demo/fernwick-demo.png"


@contextmanager
def step(what: str) -> Iterator[list[str]]:
    """Prints what was done and how long it took; the body may put a remark into the list it is given."""
    remarks: list[str] = []
    start = time.monotonic()
    yield remarks
    print(f"  {what:<52} {(time.monotonic() - start) * 1000:>6.0f} ms  {' '.join(remarks)}".rstrip(), flush=True)


def write_catalogue(session: Session, lab: SshLab) -> int:
    """One tunnel of each type, all on free ports; returns the local port of the one that is shown."""
    key = stored.key(lab.key)
    tags = [stored.tag("Production", "#FF453A"), stored.tag("Staging", "#FF9F0A"), stored.tag("Personal", "#BF5AF2")]
    port = free_port()

    def tunnel(name: str, kind: str, tag: int, local_port: int, **fields: object) -> stored.Record:
        return stored.tunnel(name, tunnelType=kind, host="127.0.0.1", sshPort=str(lab.server.port), user=lab.user,
                             identityKeyID=key["id"], tagIDs=[tags[tag]["id"]], localPort=str(local_port),
                             reconnectOnFailure=True, **fields)

    catalogue = [
        tunnel(SHOWN, stored.LOCAL, 0, port, remoteHost=site.NAME, remotePort=str(lab.site_port),
               notes="A web site that only the server can reach."),
        tunnel("Show my work", stored.REMOTE, 1, free_port(), remotePort=str(free_port()),
               notes="A port on the server that leads to this machine."),
        tunnel("Browse from the server", stored.SOCKS5, 1, free_port()),
        tunnel("Everything else", stored.DYNAMIC, 2, free_port(), compression=True),
    ]
    Preferences(session.config).seed(**{stored.TUNNELS: catalogue, stored.KEYS: [key], stored.TAGS: tags})
    return port


def unknown_here() -> str:
    """Proof that the site's name means nothing on this side."""
    try:
        return f"but {site.NAME} resolves here, to {socket.gethostbyname(site.NAME)}"
    except OSError:
        return f"{site.NAME} is unknown on this side"


def show(session: Session, picture: Path) -> App:
    """The whole job, from nothing to bytes through a tunnel that was connected by a click."""
    with step("Started a private ssh server and a site behind it") as remarks:
        lab = SshLab(session)
        remarks.append(unknown_here())
    with step("Started a session bus, and a display if there was none") as remarks:
        desktop = Desktop(session, use_own_display=True)
        remarks.append(f"display {session.environment['DISPLAY']}")
    port = write_catalogue(session, lab)
    with step("Started Fernwick, with four tunnels in its sidebar") as remarks:
        app = App(session, desktop)
        wait_until(lambda: len(app.rows()) == 4, "the sidebar lists four tunnels")
        remarks.append(f"process {app.pid}")
    with step(f'Selected "{SHOWN}"'):
        app.select(SHOWN)
    with step("Pressed Connect, and the window says Connected"):
        app.press("Connect")
        app.find("Connected")
    with step("Fetched the page through the tunnel") as remarks:
        wait_until(lambda: listens(port), f"port {port} is forwarded")  # the window counts on time alone
        page = fetch(port, site.NAME).decode()
        remarks.append(f'"{page}"')
        if page != site.GREETING:
            raise AssertionError(f"the page reads {page!r}")
    with step("Saved a picture of the window") as remarks:
        remarks.append(str(desktop.screenshot(picture, app.window())))
    print(f"\n  Try it: curl -H 'Host: {site.NAME}' http://127.0.0.1:{port}/", flush=True)
    return app


def end(session: Session, app: App) -> None:
    """Quits the application as logging out would, and makes sure that no ssh child outlives it."""
    with step("Quit Fernwick, and no ssh child is left"):
        app.quit()
        wait_until(lambda: not session.processes("ssh"), "the ssh children end")


def parse() -> argparse.Namespace:
    """The command line."""
    parser = argparse.ArgumentParser(prog="script/run --demo", description=__doc__)
    parser.add_argument("--once", action="store_true", help="end as soon as the page came through")
    parser.add_argument("--picture", type=Path, default=DEFAULT_PICTURE, help="where the picture goes")
    return parser.parse_args()


def main() -> int:
    """Runs the demo; 0 when everything worked."""
    options = parse()
    signal.signal(signal.SIGINT, signal.default_int_handler)  # a shell starts background jobs without it
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("the demo was asked to end"))
    try:
        namespace.enter()
        if not program().exists():
            raise FileNotFoundError(f"{program()} is not built: run script/build")
        print("Fernwick demo", flush=True)
        with closing(Session()) as session:
            app = show(session, options.picture.absolute())
            if not options.once:
                print("  Fernwick stays up until Ctrl-C, or until it is quit.", flush=True)
                watch(app)
            end(session, app)
    except KeyboardInterrupt:
        print("\n  Interrupted; everything was ended.", flush=True)
    except (AssertionError, OSError, RuntimeError, subprocess.SubprocessError) as error:
        print(f"The demo failed: {error}", file=sys.stderr)
        return 1
    return 0


def watch(app: App) -> None:
    """Waits for Ctrl-C or for the application's end."""
    try:
        while app.running():
            time.sleep(0.2)
    except KeyboardInterrupt:
        print(flush=True)


if __name__ == "__main__":
    sys.exit(main())
