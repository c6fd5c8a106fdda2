"""A program made for GNOME that fetches a page as the desktop's proxy settings tell, run as a program: webclient.py URL

Prints the body; ends with 1 and the reason when there is none.
"""

from __future__ import annotations

import sys

import gi

gi.require_version("Soup", "3.0")
from gi.repository import GLib, Soup  # noqa: E402

PATIENCE = 10  # seconds


def fetch(url: str) -> str:
    """The page at the address."""
    message = Soup.Message.new("GET", url)
    body = Soup.Session(timeout=PATIENCE).send_and_read(message, None)
    if message.get_status() != Soup.Status.OK:
        raise RuntimeError(f"status {int(message.get_status())}")
    return bytes(body.get_data()).decode()


if __name__ == "__main__":
    try:
        print(fetch(sys.argv[1]))
    except (GLib.Error, RuntimeError) as failure:
        sys.exit(str(failure))
