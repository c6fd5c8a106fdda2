"""A private mount namespace for the whole run, in which the account's home folder is another one.

ssh and sshd take the home folder from the account database and not from HOME, and they read and write ~/.ssh there.
So the run gets an /etc/passwd of its own, bound over the real one, whose entry for this account names a folder of the
run. Outside the namespace nothing changes, and when its last process ends it is gone.
"""

from __future__ import annotations

import os
import pwd
import shutil
import subprocess
import sys
from pathlib import Path

# The command that runs its arguments in one more mount namespace, inside the run's own, where we may mount already.
NESTED = ["unshare", "--mount", "--propagation", "private", "--"]
_INSIDE = "FERNWICK_LAB_NAMESPACE"
# Further words for unshare: process ids of the run's own too, and all of its processes end with the first one.
_OWN_PROCESSES = ["--pid", "--fork", "--mount-proc", "--kill-child"]


class NoNamespace(RuntimeError):
    """This machine does not let the account make a mount namespace."""


def unshare_command() -> list[str]:
    """The command that runs its arguments in a new mount namespace, as root or as a plain user.

    A plain user keeps the own user id (sshd would otherwise take itself for root) and gets the capability to mount.
    """
    if os.geteuid() == 0:
        return ["unshare", "--mount", "--propagation", "private", "--"]
    return ["unshare", "--user", "--map-current-user", "--keep-caps", "--mount", "--propagation", "private", "--"]


def inside() -> bool:
    """Whether this program was started again by `enter`."""
    return os.environ.get(_INSIDE) == str(os.getpid())


def enter(*, own_processes: bool = False) -> None:
    """Starts the running Python program again inside a namespace; returns at once when it already is inside.

    With `own_processes` it sees no process but its own and has process id 1, and its /tmp is its own too.
    """
    if inside():
        return
    command = unshare_command()
    if own_processes:
        command = [*command[:-1], *_OWN_PROCESSES, "--"]
    if shutil.which("unshare") is None or subprocess.run([*command, "true"], capture_output=True).returncode != 0:
        raise NoNamespace("no private mount namespace: run as root, or allow user namespaces to this account")
    # unshare keeps the process id, so the mark cannot be mistaken by a program started from inside.
    environment = os.environ | {_INSIDE: "1" if own_processes else str(os.getpid())}
    words = [sys.executable, *sys.orig_argv[1:]]
    if own_processes and not str(Path(__file__).resolve()).startswith("/tmp/"):
        words = ["sh", "-c", 'mount -t tmpfs -o mode=1777 tmpfs /tmp && exec "$@"', "sh", *words]
    sys.stdout.flush()
    os.execvpe(command[0], [*command, *words], environment)


def stay_inside(pid: int) -> None:
    """Marks a process that is about to run a Python program as one that is inside already."""
    os.environ[_INSIDE] = str(pid)


def bind(source: Path, target: Path) -> None:
    """Shows `source` in the place of `target`; both exist."""
    # without new privileges: mount is set-user-ID, and would see a plain user and not the capabilities that we have
    subprocess.run(["setpriv", "--no-new-privs", "--", "mount", "--bind", str(source), str(target)], check=True)


def move_home(home: Path, scratch: Path) -> None:
    """Makes `home` the home folder of this account, for every program started from now on in the namespace."""
    account = pwd.getpwuid(os.getuid())
    own = f"{account.pw_name}:x:{account.pw_uid}:{account.pw_gid}:{account.pw_gecos}:{home}:/bin/sh\n"
    others = [line for line in Path("/etc/passwd").read_text().splitlines(keepends=True)
              if not line.startswith(account.pw_name + ":")]
    passwd = scratch / "passwd"
    passwd.write_text(own + "".join(others))
    passwd.chmod(0o644)
    bind(passwd, Path("/etc/passwd"))
    if Path("/run/nscd").is_dir():  # a name cache outside the namespace would answer with the real home
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", "/run/nscd"], check=True)
    if pwd.getpwuid(os.getuid()).pw_dir != str(home):
        raise NoNamespace(f"the home folder of {account.pw_name} cannot be replaced; nothing is started")
