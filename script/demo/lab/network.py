"""Two machines on one: this side in a network namespace of its own, and a far side behind a default route."""

from __future__ import annotations

import subprocess
from pathlib import Path

_NEAR, _FAR = "fernwick-near", "fernwick-far"
FAR_ADDRESS = "10.84.0.1"
_GATEWAY = "10.83.0.2"
_NAMES = Path("/run/netns")  # where ip keeps the names of network namespaces

NEAR = ["ip", "netns", "exec", _NEAR]  # the command that runs its arguments on this side
FAR = ["ip", "netns", "exec", _FAR]


class Network:
    """A cable between the two, and the route over it; all of it is gone after `close`."""

    def __init__(self) -> None:
        _keep_names_private()
        self.close()  # of a cable laid before
        for name in (_NEAR, _FAR):
            _ip("netns", "add", name)
            _ip("-n", name, "link", "set", "lo", "up")
        _ip("-n", _NEAR, "link", "add", "v0", "type", "veth", "peer", "name", "v1", "netns", _FAR)
        _ip("-n", _NEAR, "address", "add", "10.83.0.1/24", "dev", "v0")
        _ip("-n", _FAR, "address", "add", f"{_GATEWAY}/24", "dev", "v1")
        _ip("-n", _FAR, "address", "add", f"{FAR_ADDRESS}/32", "dev", "lo")
        _ip("-n", _NEAR, "link", "set", "v0", "up")
        _ip("-n", _FAR, "link", "set", "v1", "up")
        self.give_route()

    def give_route(self) -> None:
        """This side reaches the far one."""
        _ip("-n", _NEAR, "route", "add", "default", "via", _GATEWAY)

    def take_route(self) -> None:
        """This side reaches nobody."""
        _ip("-n", _NEAR, "route", "delete", "default")

    def close(self) -> None:
        """Takes both sides away."""
        for name in (_NEAR, _FAR):
            subprocess.run(["ip", "netns", "delete", name], capture_output=True)


def _keep_names_private() -> None:
    """Hides the names from other runs on this machine, which use the same ones; they go with the mount namespace."""
    _NAMES.mkdir(exist_ok=True)
    if not _NAMES.is_mount():
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", _NAMES], check=True)


def _ip(*words: str) -> None:
    subprocess.run(["ip", *words], check=True)
