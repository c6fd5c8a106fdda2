#!/usr/bin/python3
"""Puts the same load on the PAC server and on nginx, in turn, and prints what each served as JSON.

bench_pac.py PROGRAM ROUNDS SECONDS: 64 clients, a connection for each request. nginx runs as one worker with the same
body, opened once and kept. The ratio is the median of the rounds' own, since the weather changes from round to round.
Needs wrk and nginx.
"""

from __future__ import annotations

import json
import re
import socket
import statistics
import subprocess
import sys
import tempfile
import time
from collections.abc import Iterator
from contextlib import ExitStack, contextmanager
from pathlib import Path

PATIENCE = 10.0
CLIENTS = 64

NGINX = """
daemon off;
user root;
worker_processes 1;
pid {folder}/nginx.pid;
error_log stderr error;
events {{ worker_connections 1024; }}
http {{
  access_log off;
  keepalive_timeout 0;
  sendfile on;
  open_file_cache max=16;
  types {{ application/x-ns-proxy-autoconfig pac; }}
  client_body_temp_path {folder}/body;
  proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi;
  uwsgi_temp_path {folder}/uwsgi;
  scgi_temp_path {folder}/scgi;
  server {{ listen {port}; root {folder}; }}
}}
"""


def script_of(rules: int) -> str:
    """A script as it is built for so many rules of a domain each."""
    lines = ["function FindProxyForURL(url, host) {", ""]
    for number in range(rules):
        name = f"site{number}.corp.example"
        lines += [f"  // Rule: Site {number}"]
        lines += [f'  if ((dnsDomainIs(host, ".{name}") || host === "{name}")) {{ return "SOCKS5 127.0.0.1:1080; DIRECT"; }}', ""]
    return "\n".join([*lines, '  return "DIRECT";', "}"])


def free_port() -> int:
    """A port that nothing listens on."""
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


@contextmanager
def running(command: list, port: int) -> Iterator[None]:
    """A server, from when it accepts until it is told to end."""
    server = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
    try:
        deadline = time.monotonic() + PATIENCE
        while socket.socket().connect_ex(("127.0.0.1", port)) != 0:
            if server.poll() is not None or time.monotonic() > deadline:
                raise SystemExit(f"{command[0]} does not serve")
            time.sleep(0.01)
        yield
    finally:
        server.terminate()
        server.wait()


def load(port: int, seconds: str) -> float:
    """Requests per second under load."""
    command = ["wrk", "-t1", f"-c{CLIENTS}", f"-d{seconds}s", "-H", "Connection: close"]
    said = subprocess.run(
        [*command, f"http://127.0.0.1:{port}/proxy.pac"], check=True, capture_output=True, text=True
    ).stdout
    if re.search(r"Socket errors|Non-2xx", said):
        print(said, file=sys.stderr)
    return float(re.search(r"Requests/sec:\s+([\d.]+)", said).group(1))


def main(program: str, rounds: int, seconds: str) -> int:
    """Measures both in turn, so that they meet the same weather, each first every other time."""
    rates: dict[str, list[float]] = {"ours": [], "nginx": []}
    with tempfile.TemporaryDirectory() as place, ExitStack() as servers:
        folder = Path(place)
        pac, configuration = folder / "proxy.pac", folder / "nginx.conf"
        pac.write_text(script_of(20), encoding="utf-8")
        ports = {"ours": free_port(), "nginx": free_port()}
        configuration.write_text(NGINX.format(folder=folder, port=ports["nginx"]), encoding="utf-8")
        servers.enter_context(running([program, str(ports["ours"]), pac], ports["ours"]))
        nginx = ["/usr/sbin/nginx", "-e", "stderr", "-p", folder, "-c", configuration]
        servers.enter_context(running(nginx, ports["nginx"]))
        for number in range(rounds):
            for name in sorted(rates, reverse=number % 2 == 0):
                rates[name].append(load(ports[name], seconds))
    figures = {name: statistics.median(each) for name, each in rates.items()}
    figures["ratio"] = statistics.median(ours / nginx for ours, nginx in zip(rates["ours"], rates["nginx"], strict=True))
    print(json.dumps(figures))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], int(sys.argv[2]), sys.argv[3]))
