"""The fifty tunnels of the soak, and the proof that bytes come through each."""

from __future__ import annotations

import json
import subprocess
import sys
from collections.abc import Sequence
from pathlib import Path

from lab import preferences as stored
from lab import site
from lab.keyring import TUNNEL_PASSWORD, Keyring
from lab.network import FAR, FAR_ADDRESS, NEAR
from lab.preferences import Record
from lab.session import Session
from lab.sshlab import JUMP, SshLab, start_site

COUNT = 50
# below the ports that the kernel gives to clients, so that nobody else comes upon them
_FIRST_LOCAL, _FIRST_REMOTE = 20001, 21001
_PASSWORD = "the soak's own password"
_TYPES = [stored.LOCAL] * 20 + [stored.REMOTE] * 10 + [stored.SOCKS5] * 10 + [stored.DYNAMIC] * 10
_CARRY = Path(__file__).with_name("carry.py")


class Fleet:
    """The catalogue, by the tunnels' names, with what its tunnels need on both sides of the cable."""

    def __init__(self, session: Session, lab: SshLab, keyring: Keyring) -> None:
        self.lab = lab
        self.key = stored.key(lab.key)
        self.tunnels = {record["name"]: record for record in map(self._record, range(COUNT))}
        lab.set_password(_PASSWORD)
        for record in self.having(authMethod="Password"):
            keyring.store(TUNNEL_PASSWORD, record["id"], _PASSWORD)
        # It keeps more rights than the application, which clears these ports and therefore must not see who holds them.
        first, *more = [int(record["localPort"]) for record in self.having(tunnelType=stored.REMOTE)]
        start_site(session, first, more=more, inside=NEAR)

    def _record(self, number: int) -> Record:
        """Of five tunnels one logs in by the agent, one by password, and one with the key by way of the jump host."""
        way = number % 5
        login = {3: {"authMethod": "SSH Agent"}, 4: {"authMethod": "Password"}}
        kind = _TYPES[number]
        far_port = _FIRST_REMOTE + number if kind == stored.REMOTE else self.lab.site_port
        return stored.tunnel(
            f"T{number + 1:02}", host=FAR_ADDRESS, sshPort=str(self.lab.server.port), user=self.lab.user,
            tunnelType=kind, localPort=str(_FIRST_LOCAL + number), remotePort=str(far_port),
            remoteHost=site.NAME, jumpHost=JUMP if way == 1 else "", keepAliveInterval=1,
            reconnectOnFailure=number % 10 != 7, **login.get(way, {"identityKeyID": self.key["id"]}))

    def having(self, **fields: str) -> list[Record]:
        """The tunnels with these values."""
        return [record for record in self.tunnels.values() if fields.items() <= record.items()]

    def by_port(self) -> dict[str, str]:
        """The name of the tunnel with each local port."""
        return {record["localPort"]: name for name, record in self.tunnels.items()}

    def processes(self) -> int:
        """How many ssh processes there are when all are up: a jump host makes a second one."""
        return COUNT + sum(1 for record in self.tunnels.values() if record["jumpHost"])

    def silent(self) -> dict[str, str]:
        """The tunnels that carry nothing at this moment, with the reason."""
        near, far = [], []
        for name, record in self.tunnels.items():
            if record["tunnelType"] == stored.REMOTE:
                far.append([name, 0, int(record["remotePort"])])
            elif record["tunnelType"] == stored.LOCAL:
                near.append([name, 0, int(record["localPort"])])
            else:
                near.append([name, self.lab.site_port, int(record["localPort"])])
        return _carry(NEAR, near) | _carry(FAR, far)


def _carry(inside: Sequence[str], ways: list[list[object]]) -> dict[str, str]:
    done = subprocess.run([*inside, sys.executable, "-B", _CARRY], input=json.dumps(ways), text=True, timeout=120,
                          stdout=subprocess.PIPE, check=True)
    return dict(json.loads(done.stdout))
