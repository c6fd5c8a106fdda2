"""A country database that knows one network, in the MaxMind DB format 2.0, for an engine that insists on having one."""

from __future__ import annotations

from ipaddress import IPv6Network
from pathlib import Path

RECORD_BITS = 24
NOTHING = -1


def encoded(value: object) -> bytes:
    """A value of the data section: a control byte with type and size, then the payload."""
    if isinstance(value, str):
        return _sized(2, len(value.encode())) + value.encode()
    if isinstance(value, dict):
        return _sized(7, len(value)) + b"".join(encoded(key) + encoded(item) for key, item in value.items())
    if isinstance(value, list):
        return _sized(11, len(value)) + b"".join(encoded(item) for item in value)
    if isinstance(value, int):
        payload = value.to_bytes((value.bit_length() + 7) // 8, "big")
        return _sized(9 if value >= 1 << 32 else 6, len(payload)) + payload
    raise TypeError(value)


def _sized(kind: int, size: int) -> bytes:
    """The control byte; types beyond 7 stand in a byte of their own, sizes from 29 on likewise."""
    extended = kind > 7
    head = bytes([((0 if extended else kind) << 5) | min(size, 29)])
    return head + (bytes([kind - 7]) if extended else b"") + (bytes([size - 29]) if size >= 29 else b"")


def tree(network: IPv6Network) -> list[list[int]]:
    """The search tree's nodes, one for each bit of the prefix; the last one leads to the data."""
    bits = f"{int(network.network_address):0128b}"[: network.prefixlen]
    nodes = [[NOTHING, NOTHING] for _ in bits]
    for depth, bit in enumerate(bits):
        nodes[depth][int(bit)] = depth + 1
    return nodes


def write_country_database(path: Path, network: str = "::203.0.113.0/120", country: str = "VN") -> None:
    """Writes a database in which this network (IPv4 lies in ::/96) belongs to that country."""
    nodes = tree(IPv6Network(network))
    count = len(nodes)
    body = b""
    for pair in nodes:
        for target in pair:
            # `count` means that nothing is known; the data section begins 16 bytes behind the tree.
            number = count if target == NOTHING else (count + 16 if target == count else target)
            body += number.to_bytes(RECORD_BITS // 8, "big")
    data = encoded({"country": {"iso_code": country}})
    metadata = {"binary_format_major_version": 2, "binary_format_minor_version": 0, "build_epoch": 1_700_000_000,
                "database_type": "GeoLite2-Country", "description": {"en": "One network"}, "ip_version": 6,
                "languages": ["en"], "node_count": count, "record_size": RECORD_BITS}
    path.write_bytes(body + bytes(16) + data + b"\xab\xcd\xefMaxMind.com" + encoded(metadata))
