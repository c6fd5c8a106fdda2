"""The web site behind the ssh server, to be run as a program: site.py ADDRESS PORT.

It answers only to its own name, which only the server's side can resolve.
"""

from __future__ import annotations

import sys
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

NAME = "inside.fernwick.test"
GREETING = "Hello from the far side of the tunnel."


class Handler(BaseHTTPRequestHandler):
    """A greeting at `/`, and `/bytes/N` for N bytes."""

    def do_GET(self) -> None:
        """Answers one request."""
        if self.headers.get("Host", "").partition(":")[0] != NAME:
            self.send_error(421, "This site is known under another name")
            return
        wanted = self.path.removeprefix("/bytes/")
        body = b"x" * int(wanted) if wanted.isdigit() else GREETING.encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/plain; charset=utf-8")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_: object) -> None:
        """Keeps quiet: the caller sees the answer."""


if __name__ == "__main__":
    ThreadingHTTPServer((sys.argv[1], int(sys.argv[2])), Handler).serve_forever()
