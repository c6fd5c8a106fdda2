#!/usr/bin/python3
"""Runs the benchmark of real tunnels against a private ssh server with a site behind it, and prints its JSON.

bench_tunnels.py PROGRAM ROUNDS: nothing of it touches the user's own ~/.ssh, and nothing is left behind.
"""

from __future__ import annotations

import subprocess
import sys
from contextlib import closing
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent / "demo"))

from lab import namespace, site  # noqa: E402
from lab.session import POWERLESS, Session  # noqa: E402
from lab.sshlab import SshLab  # noqa: E402


def main(program: str, rounds: str) -> int:
    """Runs the program inside the laboratory; its exit status."""
    namespace.enter()
    with closing(Session()) as session:
        lab = SshLab(session)
        words = [str(lab.server.port), lab.user, str(lab.key), site.NAME, str(lab.site_port), rounds]
        environment = session.environment | {"QT_QPA_PLATFORM": "offscreen"}
        return subprocess.run([*POWERLESS, program, *words], env=environment, timeout=180).returncode


if __name__ == "__main__":
    sys.exit(main(str(Path(sys.argv[1]).absolute()), sys.argv[2]))
