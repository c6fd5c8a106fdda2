#!/usr/bin/python3 -B
"""Stands in for the proxy engine: takes its arguments, serves its API, and writes down what it was asked.

The folder of the configuration (-d) takes the record, one JSON text a line; the file `reload-status` in it, where there
is one, holds the status that a reload is answered with.
"""

from __future__ import annotations

import json
import os
import sys
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

FOLDER = Path(sys.argv[sys.argv.index("-d") + 1])
CONFIGURATION = Path(sys.argv[sys.argv.index("-f") + 1])


def record(what: str, **more: object) -> None:
    """Adds a line with the configuration as it is now."""
    line = {"what": what, "pid": os.getpid(), "configuration": CONFIGURATION.read_text(encoding="utf-8")} | more
    with open(FOLDER / "record", "a", encoding="utf-8") as file:
        file.write(json.dumps(line) + "\n")


class Api(BaseHTTPRequestHandler):
    """The two requests that the application makes."""

    def do_GET(self) -> None:
        """Says that the engine lives."""
        record(f"GET {self.path}")
        self.answer(200, b'{"version":"stand-in"}')

    def do_PUT(self) -> None:
        """Takes a new configuration."""
        body = self.rfile.read(int(self.headers["Content-Length"])).decode()
        record(f"PUT {self.path}", body=body, type=self.headers["Content-Type"])
        status = FOLDER / "reload-status"
        self.answer(int(status.read_text()) if status.exists() else 204, b"")

    def answer(self, status: int, body: bytes) -> None:
        """Sends a whole answer."""
        self.send_response(status)
        if status != 204:
            self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_: object) -> None:
        """Keeps quiet."""


if __name__ == "__main__":
    record("start", arguments=sys.argv[1:], user=os.geteuid(), descriptors=sorted(os.listdir("/proc/self/fd")))
    ThreadingHTTPServer(("127.0.0.1", 9090), Api).serve_forever()
