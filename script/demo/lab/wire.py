"""Ports, and bytes through them."""

from __future__ import annotations

import http.client
import socket
import sys
from pathlib import Path


def free_port(address: str = "127.0.0.1") -> int:
    """A port that nobody listens on at this moment."""
    with socket.socket() as probe:
        probe.bind((address, 0))
        port: int = probe.getsockname()[1]
        return port


def listens(port: int, address: str = "127.0.0.1") -> bool:
    """Whether a connection to the port is accepted."""
    with socket.socket() as probe:
        probe.settimeout(1.0)
        return probe.connect_ex((address, port)) == 0


def listens_in(pid: int, port: int, address: str) -> bool:
    """Whether somebody listens there in the network namespace of a process, without connecting (proc_net(5))."""
    at = int.from_bytes(socket.inet_aton(address), sys.byteorder)
    try:
        table = Path(f"/proc/{pid}/net/tcp").read_text()
    except OSError:
        return False
    return f" {at:08X}:{port:04X} 00000000:0000 0A " in table


def fetch(port: int, host: str, path: str = "/", *, through: socket.socket | None = None) -> bytes:
    """The page at `path` of the site called `host`, asked for on the local port or through a connected socket."""
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=10)
    if through is not None:
        connection.sock = through
    try:
        connection.request("GET", path, headers={"Host": host})
        answer = connection.getresponse()
        body = answer.read()
        if answer.status != 200:
            raise ConnectionError(f"the site answered {answer.status} {answer.reason}")
        return body
    finally:
        connection.close()


def socks_connect(proxy: int, host: str, port: int) -> socket.socket:
    """A connection to a host by its name through a SOCKS5 proxy on a local port (RFC 1928, no authentication)."""
    wire = socket.create_connection(("127.0.0.1", proxy), timeout=10)
    name = host.encode()
    wire.sendall(b"\x05\x01\x00" + b"\x05\x01\x00\x03" + bytes([len(name)]) + name + port.to_bytes(2, "big"))
    chosen, answer = _exactly(wire, 2), _exactly(wire, 10)
    if chosen != b"\x05\x00" or answer[1] != 0:
        wire.close()
        raise ConnectionError(f"the proxy refused {host}:{port} with code {answer[1]}")
    return wire


def _exactly(wire: socket.socket, count: int) -> bytes:
    data = b""
    while len(data) < count:
        piece = wire.recv(count - len(data))
        if not piece:
            raise ConnectionError("the proxy hung up")
        data += piece
    return data
