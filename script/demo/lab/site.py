"""The web site of the laboratory, to be run as a program: site.py ADDRESS PORT...

It answers only to its own name, which only the ssh server's side can resolve.
"""

from __future__ import annotations

import random
import sys
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

NAME = "inside.fernwick.test"
GREETING = "Hello from the far side of the tunnel."


def some_bytes(count: int) -> bytes:
    """Bytes that look random and are the same in every process."""
    return random.Random(count).randbytes(count)


class Handler(BaseHTTPRequestHandler):
    """A greeting at `/`, and `/bytes/N` for N bytes of `some_bytes`."""

    def do_GET(self) -> None:
        """Answers one request."""
        if self.headers.get("Host", "").partition(":")[0] != NAME:
            self.send_error(421, "This site is known under another name")
            return
        wanted = self.path.removeprefix("/bytes/")
        body = some_bytes(int(wanted)) if wanted.isdigit() else GREETING.encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/plain; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_: object) -> None:
        """Keeps quiet: the caller sees the answer."""


if __name__ == "__main__":
    for port in sys.argv[2:]:
        threading.Thread(target=ThreadingHTTPServer((sys.argv[1], int(port)), Handler).serve_forever).start()
