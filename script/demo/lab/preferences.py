"""The application's preference file and the records of its catalogue, as they lie on disk."""

from __future__ import annotations

import json
import plistlib
import time
import uuid
from pathlib import Path
from typing import Any

DOMAIN = "com.fernwick.Fernwick"
TUNNELS = "savedTunnelsData_v2"
KEYS = "savedSSHKeys"
TAGS = "savedTunnelTags"
PROXIES = "com.fernwick.proxies"
RULES = "com.fernwick.rules"
LOCAL, REMOTE, SOCKS5, DYNAMIC = "Local Forward", "Remote Forward", "SOCKS5 Proxy", "Dynamic Forward"

Record = dict[str, Any]
_SECONDS_FROM_1970_TO_2001 = 978_307_200


def fresh_id() -> str:
    """A new identifier in the form that the catalogue uses."""
    return str(uuid.uuid4()).upper()


def now() -> float:
    """This moment in seconds since 2001."""
    return time.time() - _SECONDS_FROM_1970_TO_2001


def tunnel(name: str, **fields: Any) -> Record:
    """A tunnel with the values of a new one; `fields` replaces some of them."""
    record: Record = {
        "id": fresh_id(), "name": name, "host": "127.0.0.1", "sshPort": "22", "user": "nobody", "localPort": "",
        "remotePort": "", "remoteHost": "localhost", "tunnelType": LOCAL, "authMethod": "Private Key", "tagIDs": [],
        "notes": "", "keepAliveInterval": 60, "reconnectOnFailure": False, "compression": False, "jumpHost": "",
        "createdAt": now()}
    unknown = fields.keys() - record.keys() - {"identityKeyID", "lastConnectedAt"}
    assert not unknown, f"a tunnel has no {unknown}"
    return record | fields


def key(path: Path) -> Record:
    """The entry for a private key file."""
    return {"id": fresh_id(), "name": path.name, "path": str(path), "comment": "", "addedAt": now()}


def tag(name: str, color: str = "#0A84FF") -> Record:
    """A tag."""
    return {"id": fresh_id(), "name": name, "colorHex": color}


def rule(name: str, action: str, **fields: Any) -> Record:
    """A rule that is on; `fields` replaces some of its values."""
    return {"id": fresh_id(), "name": name, "isEnabled": True, "applications": [], "targetHosts": [],
            "targetPorts": [], "action": action} | fields


class Preferences:
    """The property-list file of one configuration folder."""

    def __init__(self, config: Path) -> None:
        self.path = config / f"{DOMAIN}.plist"

    def seed(self, **lists: list[Record]) -> None:
        """Writes the file anew with lists of records, each under its key."""
        self.write({name: json.dumps(records).encode() for name, records in lists.items()})

    def write(self, values: dict[str, Any]) -> None:
        """Writes the file anew with these values."""
        self.path.write_bytes(plistlib.dumps(values))

    def read(self) -> dict[str, Any]:
        """The whole file; empty when there is none."""
        return dict(plistlib.loads(self.path.read_bytes())) if self.path.exists() else {}

    def records(self, name: str) -> list[Record]:
        """The list of records under a key."""
        stored = self.read().get(name)
        return list(json.loads(stored)) if stored is not None else []

    def tunnels(self) -> list[Record]:
        """The catalogue."""
        return self.records(TUNNELS)

    def tunnel(self, name: str) -> Record:
        """The first tunnel of that name."""
        return next(record for record in self.tunnels() if record["name"] == name)
