"""A stand-in for the maker's update server, good or bad, in threads of this process; and archives for it."""

from __future__ import annotations

import contextlib
import io
import json
import stat
import threading
import zipfile
from collections.abc import Callable
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path
from typing import Any

Answer = Callable[[BaseHTTPRequestHandler], None]


def body(data: bytes, *, promised: int | None = None, status: int = 200) -> Answer:
    """Sends these bytes; with `promised` it tells of that many, and hangs up after those that there are."""
    def send(request: BaseHTTPRequestHandler) -> None:
        request.send_response(status)
        request.send_header("Content-Length", str(len(data) if promised is None else promised))
        request.end_headers()
        request.wfile.write(data)
        request.close_connection = True
    return send


def silence(until: threading.Event) -> Answer:
    """Says nothing until the event."""
    def wait(request: BaseHTTPRequestHandler) -> None:
        until.wait(120)
        request.close_connection = True
    return wait


def silence_within(data: bytes, until: threading.Event) -> Answer:
    """Sends the bytes as the first half of a body, and then nothing until the event."""
    def send(request: BaseHTTPRequestHandler) -> None:
        body(data, promised=2 * len(data))(request)
        request.wfile.flush()
        until.wait(120)
    return send


def after(event: threading.Event, answer: Answer) -> Answer:
    """Another answer, but not before the event."""
    def send(request: BaseHTTPRequestHandler) -> None:
        event.wait(60)
        answer(request)
    return send


class UpdateServer:
    """Serves the check at /api/update and whatever else is put into `pages`, on a port of the loopback address."""

    def __init__(self) -> None:
        """Starts to listen; until told otherwise there is nothing."""
        self.pages: dict[str, Answer] = {}
        self.asked: list[str] = []
        pages, asked = self.pages, self.asked

        class Handler(BaseHTTPRequestHandler):
            """Looks its answer up."""

            protocol_version = "HTTP/1.1"

            def do_GET(self) -> None:
                """Answers one request."""
                asked.append(self.path)
                with contextlib.suppress(ConnectionError):
                    pages.get(self.path, body(b"nothing here", status=404))(self)

            def log_message(self, format: str, *arguments: object) -> None:
                """Keeps the output of the tests to the tests."""

        self._server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.address = f"http://127.0.0.1:{self._server.server_address[1]}"
        threading.Thread(target=self._server.serve_forever, args=(0.05,), daemon=True).start()

    def announce(self, version: str, path: str = "/files/Fernwick.zip", **members: Any) -> None:
        """Answers checks with this version, to be had at that path; `members` go into the answer too."""
        said = {"version": version, "download_url": self.address + path, "notes": f"Notes of {version}."} | members
        self.say(json.dumps(said).encode())

    def say(self, data: bytes) -> None:
        """Answers checks with these bytes."""
        self.pages["/api/update"] = body(data)

    def close(self) -> None:
        """Refuses every connection from now on."""
        self._server.shutdown()
        self._server.server_close()


def zipped(folder: Path, inside: str = "") -> bytes:
    """An archive of a folder under its own name, in a folder of that name if one is given."""
    written = io.BytesIO()
    with zipfile.ZipFile(written, "w", zipfile.ZIP_STORED) as archive:
        for file in sorted(folder.rglob("*")):
            if file.is_file():
                archive.write(file, Path(inside, folder.name, file.relative_to(folder)))
    return written.getvalue()


def zip_of(*entries: tuple[str, bytes] | tuple[str, bytes, bool], packed: bool = False) -> bytes:
    """An archive of files by their names; with True as the third part the bytes are where a link leads."""
    written = io.BytesIO()
    with zipfile.ZipFile(written, "w", zipfile.ZIP_DEFLATED if packed else zipfile.ZIP_STORED) as archive:
        for name, data, *link in entries:
            entry = zipfile.ZipInfo(name)
            entry.compress_type = archive.compression
            entry.create_system = 3  # the permissions are those of Unix
            entry.external_attr = (stat.S_IFLNK | 0o777 if link else stat.S_IFREG | 0o755) << 16
            archive.writestr(entry, data)
    return written.getvalue()
