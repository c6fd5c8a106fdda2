"""The proxy script as the application serves it, and as it ought to be for plain hosts and ports."""

from __future__ import annotations

import urllib.request
from collections.abc import Iterable, Mapping

from lab.preferences import Record

ADDRESS = "http://127.0.0.1:9876/proxy.pac"
DIRECT = 'function FindProxyForURL(url, host) { return "DIRECT"; }'


def served() -> str:
    """The script, or the empty text while nobody serves it."""
    try:
        with urllib.request.build_opener(urllib.request.ProxyHandler({})).open(ADDRESS, timeout=5) as answer:
            return str(answer.read().decode())
    except OSError:
        return ""


def expected(rules: Iterable[Record], proxies: Iterable[Record], ports: Mapping[str, str]) -> str:
    """The script for these records while the tunnels with the ids in `ports` run on those local ports."""
    known = {proxy["id"]: _proxy(proxy) for proxy in reversed([*proxies])}
    statements = ["function FindProxyForURL(url, host) {\n"]
    for rule in rules:
        answer = _answer(rule, known, ports) if rule["isEnabled"] else ""
        if answer:
            condition = "\n    || ".join([*map(_host, rule["targetHosts"]), *map(_port, rule["targetPorts"])])
            when = f"if ({condition}) {{ return \"{answer}\"; }}" if condition else f'return "{answer}";'
            statements.append(f"  // Rule: {rule['name']}\n  {when}\n")
    return "\n".join([*statements, '  return "DIRECT";', "}"])


def _proxy(proxy: Record) -> str:
    keyword = "PROXY" if proxy["proto"] == "HTTPS" else "SOCKS5"
    return f"{keyword} {proxy['address']}:{proxy['port']}; DIRECT"


def _answer(rule: Record, proxies: Mapping[str, str], ports: Mapping[str, str]) -> str:
    if rule["action"] == "Proxy":
        return proxies.get(rule.get("proxyID", ""), "")
    if rule["action"] == "Tunnel":
        port = ports.get(rule.get("tunnelID", ""))
        return f"SOCKS5 127.0.0.1:{port}; DIRECT" if port else ""
    return "PROXY 0.0.0.0:0" if rule["action"] == "Block" else "DIRECT"


def _host(host: str) -> str:
    if host.startswith("*."):
        return f'(dnsDomainIs(host, ".{host[2:]}") || host === "{host[2:]}")'
    return f'(host === "{host}")'


def _port(port: str) -> str:
    return rf"(url.match(/:{port}([\/\?]|$)/) !== null)"
