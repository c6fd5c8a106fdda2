"""Real polkit and pkexec for a test: a system bus, polkitd and two accounts of the run's own. Needs root."""

from __future__ import annotations

import os
import pwd
import shutil
import subprocess
import unittest
from collections.abc import Sequence
from pathlib import Path

from harness import Session, namespace, wait_until

RULES = Path("/etc/polkit-1/rules.d")
# Both are accounts of this run only. The first one's name is one that would break out of a careless script.
ANNA, BOB = 'o\'ba"n\\a', "bob"
IDS = {ANNA: 42001, BOB: 42002}
# What the package installs, and where.
PACKAGING = Path(__file__).parents[2] / "packaging"
ACTIONS = Path("/usr/share/polkit-1/actions")
OUR_PROGRAM = Path("/usr/libexec/fernwick-administrator")
SYSTEMS_ACTION, OUR_ACTION = "org.freedesktop.policykit.exec", "com.fernwick.Fernwick.administrator"
GRANT_PKEXEC = f"""polkit.addRule(function(action, subject) {{
    if (action.id == "{SYSTEMS_ACTION}" && subject.user != "bob") {{ return polkit.Result.YES; }}
}});"""


class PolkitCase(unittest.TestCase):
    """One bus and one polkitd for all cases."""

    session: Session

    @classmethod
    def setUpClass(cls) -> None:
        """Makes the accounts and folders, and starts the bus and polkitd."""
        if os.geteuid() != 0:
            raise RuntimeError("this test needs root")
        if not namespace.inside():
            raise RuntimeError("this test mounts over the system's files, and only does so in a namespace of its own")
        cls.session = Session()
        cls.addClassCleanup(cls.session.close)
        cls.session.root.chmod(0o755)
        cls.make_accounts()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", "/run"], check=True)
        Path("/run/dbus").mkdir(parents=True)
        cls.install_action()
        cls.prepare()
        os.environ.pop("DBUS_SYSTEM_BUS_ADDRESS", None)
        cls.session.environment.pop("DBUS_SYSTEM_BUS_ADDRESS", None)
        cls.session.start(["/usr/bin/dbus-daemon", "--system", "--nofork", "--nopidfile"])
        wait_until(Path("/run/dbus/system_bus_socket").exists, "the bus is up")
        cls.session.start(["/usr/lib/polkit-1/polkitd", "--no-debug"])
        wait_until(lambda: subprocess.run(["pkaction"], capture_output=True).returncode == 0, "polkitd is up")

    @classmethod
    def prepare(cls) -> None:
        """What a test makes before polkitd starts."""

    @classmethod
    def make_accounts(cls) -> None:
        """Adds the two accounts, with homes."""
        lines = Path("/etc/passwd").read_text()
        for name, uid in IDS.items():
            home = cls.session.root / str(uid)
            home.mkdir(mode=0o700)
            os.chown(home, uid, uid)
            lines += f"{name}:x:{uid}:{uid}::{home}:/bin/sh\n"
        passwd = cls.session.root / "passwd-with-two"
        passwd.write_text(lines)
        passwd.chmod(0o644)
        namespace.bind(passwd, Path("/etc/passwd"))

    @classmethod
    def install_action(cls) -> None:
        """Puts the package's action beside the system's own, and takes its program away, should it be installed."""
        actions = cls.session.root / "actions"
        shutil.copytree(ACTIONS, actions)
        shutil.copy(PACKAGING / "com.fernwick.Fernwick.policy", actions)
        namespace.bind(actions, ACTIONS)
        libexec = cls.session.root / "libexec"
        libexec.mkdir()
        namespace.bind(libexec, OUR_PROGRAM.parent)

    @staticmethod
    def become(user: str) -> list[str]:
        """The command that runs its arguments as one of the accounts."""
        uid = str(IDS[user])
        return ["setpriv", "--reuid", uid, "--regid", uid, "--clear-groups", "--"]

    def run_as(self, user: str, command: Sequence[str]) -> subprocess.CompletedProcess[str]:
        """Runs a command as one of the accounts, without a terminal."""
        home = pwd.getpwnam(user).pw_dir
        return subprocess.run([*self.become(user), *command], env={"PATH": "/usr/bin:/bin", "HOME": home}, cwd="/",
                              text=True, timeout=60, stdin=subprocess.DEVNULL, capture_output=True,
                              start_new_session=True)
