"""Private ssh servers with throw-away keys, an agent, and a web site that only their side knows by name."""

from __future__ import annotations

import contextlib
import os
import pwd
import shlex
import signal
import subprocess
import sys
from collections.abc import Sequence
from dataclasses import dataclass
from pathlib import Path

from lab import namespace, site
from lab.session import Session, descendants, stop
from lab.waiting import wait_until
from lab.wire import free_port, listens_in

JUMP = "fernwick-jump"
_SITE_ADDRESS = "127.83.72.1"


@dataclass
class Server:
    """One sshd on the loopback address; stop it, kill it, start it again on the same port."""

    session: Session
    folder: Path
    port: int
    authorized: Path
    host_key: Path
    process: subprocess.Popen[bytes] | None = None
    inside: Sequence[str] = ()  # the command by way of which it runs, in another network namespace perhaps
    address: str = "127.0.0.1"
    settings: str = ""  # further lines of its configuration

    def start(self) -> None:
        """Starts the server and waits until it accepts connections."""
        config = self.folder / "sshd_config"
        config.write_text(
            f"Port {self.port}\nAddressFamily inet\nListenAddress {self.address}\nHostKey {self.host_key}\n"
            f"PidFile {self.folder}/pid\nAuthorizedKeysFile {self.authorized}\n"
            "StrictModes no\nUsePAM no\nPasswordAuthentication yes\nKbdInteractiveAuthentication no\n"
            "PermitRootLogin yes\nUseDNS no\nLogLevel VERBOSE\nPrintMotd no\n"
            f"MaxStartups 300:30:300\n{self.settings}")
        inside = self.folder / "inside.sh"
        inside.write_text(_inside_script(self.folder, config))
        begun = len(self.log())
        with open(self.folder / "log", "ab") as log:
            self.process = self.session.start([*self.inside, *namespace.NESTED, "sh", inside], stderr=log)
        wait_until(lambda: "Server listening" in self.log()[begun:] or self.process.poll() is not None,
                   "the ssh server listens or ends")
        if self.process.poll() is not None:
            raise ChildProcessError(f"the ssh server ended with {self.process.returncode}: {self.log()[-400:]}")

    def set_password_hash(self, user: str, hashed: str) -> None:
        """Writes the account's entry of the shadow file that the server sees; "*" lets nobody in by password."""
        (self.folder / "shadow").write_text(f"{user}:{hashed}:19000:0:99999:7:::\n")

    def stop(self) -> None:
        """Ends the listening server; logins that are under way go on."""
        if self.process is not None:
            stop(self.process)

    def kill(self) -> None:
        """Ends the server and every login on it at once, as a crash of the machine would."""
        assert self.process is not None
        for pid in [*descendants(self.process.pid), self.process.pid]:
            with contextlib.suppress(ProcessLookupError):  # a login may end by itself meanwhile
                os.kill(pid, signal.SIGKILL)
        self.process.wait(5)

    def log(self) -> str:
        """What the server wrote so far."""
        log = self.folder / "log"
        return log.read_text(errors="replace") if log.exists() else ""


class SshLab:
    """A server, a second one to jump over, a user key, an agent that holds it, and the site behind them."""

    def __init__(self, session: Session, *, inside: Sequence[str] = (), address: str = "127.0.0.1",
                 settings: str = "") -> None:
        """Starts all of it, by way of a command, on an address of that place and with further settings of sshd."""
        self.session = session
        self.settings = settings
        self.user = pwd.getpwuid(os.getuid()).pw_name
        self.folder = session.root / "ssh"
        self.folder.mkdir(mode=0o700)
        self.key = self.make_key("id_ed25519")
        self.host_key = self.make_key("host_ed25519")
        self.authorized = self.folder / "authorized_keys"
        self.authorized.write_text(self.key.with_suffix(".pub").read_text())
        self.site_port = free_port(_SITE_ADDRESS)
        start_site(session, self.site_port, _SITE_ADDRESS, inside=inside)
        self.server = self.add_server("server", inside=inside, address=address)
        self.jump = self.add_server("jump", inside=inside, address=address)
        self._write_user_config()

    def make_key(self, name: str, passphrase: str = "", kind: Sequence[str] = ("-t", "ed25519")) -> Path:
        """A fresh key pair, encrypted if there is a passphrase; the path of its private half."""
        path = self.folder / name
        subprocess.run(["ssh-keygen", "-q", *kind, "-N", passphrase, "-C", name, "-f", path], check=True)
        return path

    def authorize(self, key: Path) -> None:
        """Lets the owner of that private key in."""
        with open(self.authorized, "a") as keys:
            keys.write(key.with_suffix(".pub").read_text())

    def set_password(self, password: str) -> None:
        """Lets the account log in on the server with this password."""
        done = subprocess.run(["openssl", "passwd", "-6", "-stdin"], input=password, capture_output=True, text=True,
                              check=True)
        self.server.set_password_hash(self.user, done.stdout.strip())

    def start_agent(self) -> None:
        """Starts an ssh-agent that holds the user key; programs started from now on find it."""
        agent = self.session.run / "agent"
        # without new privileges: the program is setgid, and would not die with us
        self.session.start(["setpriv", "--no-new-privs", "--", "ssh-agent", "-D", "-a", agent])
        wait_until(agent.exists, "the ssh agent's socket appears")
        self.session.environment["SSH_AUTH_SOCK"] = str(agent)
        subprocess.run(["ssh-add", "-q", self.key], env=self.session.environment, check=True)

    def add_server(self, name: str, *, inside: Sequence[str] = (), address: str = "127.0.0.1") -> Server:
        """Starts one more server, which lets the same key in; by way of a command, on an address of that place."""
        folder = self.folder / name
        folder.mkdir(exist_ok=True)
        (folder / "hosts").write_text(f"127.0.0.1 localhost\n{_SITE_ADDRESS} {site.NAME}\n")
        server = Server(self.session, folder, free_port(), self.authorized, self.host_key, inside=inside,
                        address=address, settings=self.settings)
        server.set_password_hash(self.user, "*")
        server.start()
        return server

    def _write_user_config(self) -> None:
        """A jump host named on the command line takes its settings from the configuration file only."""
        (self.session.home / ".ssh/config").write_text(
            f"Host {JUMP}\n    HostName {self.jump.address}\n    Port {self.jump.port}\n    User {self.user}\n"
            f"    IdentityFile {self.key}\n    IdentityAgent none\n    StrictHostKeyChecking accept-new\n")


def start_site(session: Session, port: int, address: str = "127.0.0.1", *, more: Sequence[int] = (),
               inside: Sequence[str] = ()) -> subprocess.Popen[bytes]:
    """Starts a site on a port, and `more`, in a process of its own, by way of a command; waits until it answers.

    With POWERLESS for the command the application may look at the process; otherwise, when root runs the laboratory,
    it may not.
    """
    ports = [port, *more]
    child = session.start([*inside, sys.executable, site.__file__, address, *map(str, ports)])
    wait_until(lambda: all(listens_in(child.pid, each, address) for each in ports), f"the site answers on {ports}")
    return child


def _inside_script(folder: Path, config: Path) -> str:
    """What runs on the server's side: its own host names, and what sshd wants of a machine when it runs as root."""
    at = shlex.quote(str(folder))
    lines = ["set -e", f"mount --bind {at}/hosts /etc/hosts"]
    if os.geteuid() == 0:
        lines += ["mount -t tmpfs -o mode=755 tmpfs /run", "mkdir /run/sshd", f"chmod 600 {at}/shadow",
                  f"mount --bind {at}/shadow /etc/shadow"]
    return "\n".join([*lines, f"exec /usr/sbin/sshd -D -e -f {shlex.quote(str(config))}", ""])

