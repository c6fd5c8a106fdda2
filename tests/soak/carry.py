"""Fetches through tunnels, to be run as a program that ends soon: the application ends the clients of its ports.

Reads a list of [name, port of the site behind a SOCKS proxy or 0, local port]; writes, by name, why nothing came.
"""

from __future__ import annotations

import json
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "script/demo"))

from lab import site  # noqa: E402
from lab.wire import fetch, socks_connect  # noqa: E402

_SIZE = 20_000


def complaint(way: tuple[str, int, int]) -> tuple[str, str]:
    """The name of a tunnel, and what went wrong with it; empty when the bytes came through."""
    name, behind_proxy, port = way
    try:
        through = socks_connect(port, site.NAME, behind_proxy) if behind_proxy else None
        body = fetch(port, site.NAME, f"/bytes/{_SIZE}", through=through)
    except (OSError, ValueError) as error:
        return name, f"{type(error).__name__}: {error}"
    return name, "" if body == site.some_bytes(_SIZE) else f"{len(body)} other bytes"


if __name__ == "__main__":
    with ThreadPoolExecutor(10) as pool:
        found = dict(pool.map(complaint, json.load(sys.stdin)))
    json.dump({name: why for name, why in found.items() if why}, sys.stdout)
