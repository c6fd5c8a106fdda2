"""An update of an application that lies where only an administrator may write, against real polkit and pkexec.

The session is a person's, who is not root: the system's bus, polkitd and the account come first, by root and in
namespaces of the run's own; then the test goes on as that person. Needs root, since pkexec is a program that becomes
root.
"""

from __future__ import annotations

import ctypes
import os
import subprocess
import sys
import unittest
from pathlib import Path

from harness import namespace, stored, wait_until
from lab.app import App
from lab.settings import Settings
from update_case import FAILED, NEW, OLD, SWAP_LOG, UpdateTest, fingerprint, make_bundle
from update_server import body, zipped

AGENT = Path(__file__).with_name("refusing_agent.py")
ACCOUNT, NUMBER = "anna", 42001
RULES = Path("/etc/polkit-1/rules.d")
PLACE = Path("/run/applications")  # root's
REPOSITORY = Path("/run/repository")  # a way to these tests that is open to everybody
READY = "FERNWICK_POLKIT_IS_UP"
GRANT = "polkit.addRule(function(action, subject) { return polkit.Result.%s; });"
# Nothing that the person starts has powers of its own; what is set-user-ID may still get them.
POWERLESS = ["setpriv", "--inh-caps=-all", "--ambient-caps=-all", "--"]


class Administrator(UpdateTest):
    """The old version lies in a folder of root; the person is asked, which here means a rule."""

    def setUp(self) -> None:
        """The new version on the server, and the old one in root's folder."""
        super().setUp()
        self.session.environment.pop("DBUS_SYSTEM_BUS_ADDRESS", None)  # the one in /run is the run's own
        self.bundle = PLACE / "Fernwick.app"
        make_bundle(self.news, NEW)
        self.server.pages["/files/Fernwick.zip"] = body(zipped(self.news))
        self.before = fingerprint(self.bundle)
        self.preferences.seed(**{stored.TUNNELS: [], stored.KEYS: [], stored.TAGS: []})

    def rule(self, result: str) -> None:
        """From now on polkit answers so to everything."""
        (RULES / "10-test.rules").write_text(GRANT % result)
        wanted = {"YES": 0, "NO": 1}.get(result, 2)  # pkcheck(1)

        def answers() -> bool:
            asked = subprocess.run(["pkcheck", "--action-id", "org.freedesktop.policykit.exec", "--process",
                                    str(os.getpid())], capture_output=True)
            return asked.returncode == wanted
        wait_until(answers, f"polkit answers {result}")

    def begin_at_settings(self) -> App:
        """Starts the old version as the person, and announces the new one."""
        app = self.begin(powers=POWERLESS)
        self.assertFalse(_has_powers(app.pid))
        self.checked_silently()
        Settings(app)
        self.server.announce(NEW)
        return app

    def refused(self, app: App, message: str) -> None:
        """The update fails in these words, and the old version stays."""
        self.ask(app)
        self.accept(app)
        self.told(app, f"Requires permission to update application: {message}", FAILED, 20.0)
        self.assertTrue(app.running())
        self.assertEqual(fingerprint(self.bundle), self.before)
        self.assertFalse(SWAP_LOG.exists())

    def test_refusals_keep_the_old_version_and_a_grant_brings_the_new_one(self) -> None:
        self.rule("NO")
        app = self.begin_at_settings()
        self.refused(app, "...")
        self.rule("AUTH_ADMIN")
        words = self.session.root / "agent"
        with words.open("wb") as stderr:
            self.session.start(["/usr/bin/python3", "-B", AGENT, app.pid], stderr=stderr)
        wait_until(lambda: "ready" in words.read_text(), "the agent is registered")
        self.refused(app, "User canceled")
        self.rule("YES")
        self.ask(app)
        self.accept(app)
        follower = self.successor(app)
        self.assertEqual(fingerprint(self.bundle), fingerprint(self.news))
        self.assertEqual(self.bundle.stat().st_uid, 0)
        self.assert_runs_as_the_person(follower.pid)
        self.assert_version(follower, NEW)
        self.assertEqual(follower.quit(), 0)

    def assert_runs_as_the_person(self, pid: int) -> None:
        """The new version has the person's ids and session, and no powers."""
        status = Path(f"/proc/{pid}/status").read_text()
        for kind in ("Uid", "Gid"):
            self.assertIn(f"\n{kind}:" + f"\t{NUMBER}" * 4 + "\n", status)
        self.assertFalse(_has_powers(pid))
        variables = Path(f"/proc/{pid}/environ").read_bytes().split(b"\0")
        for name in ("HOME", "DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"):
            self.assertIn(f"{name}={self.session.environment[name]}".encode(), variables)


def _has_powers(pid: int) -> bool:
    """Whether a process has any capability (capabilities(7))."""
    status = Path(f"/proc/{pid}/status").read_text()
    return any(line.startswith("CapEff:") and int(line.split()[1], 16) != 0 for line in status.splitlines())


def prepare() -> None:
    """As root: an account, the system's bus, polkitd, and the old version in a folder of root's."""
    accounts = Path("/tmp/passwd")
    accounts.write_text(Path("/etc/passwd").read_text() + f"{ACCOUNT}:x:{NUMBER}:{NUMBER}::/tmp:/bin/sh\n")
    namespace.bind(accounts, Path("/etc/passwd"))
    groups = Path("/tmp/group")
    groups.write_text(Path("/etc/group").read_text() + f"{ACCOUNT}:x:{NUMBER}:\n")
    namespace.bind(groups, Path("/etc/group"))
    RULES.mkdir(parents=True, exist_ok=True)
    for folder, mode in (("/run", "755"), (str(RULES), "755")):
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"mode={mode}", "tmpfs", folder], check=True)
    os.chown(RULES, NUMBER, NUMBER)  # the cases write the rules
    Path("/run/dbus").mkdir()
    os.environ.pop("DBUS_SYSTEM_BUS_ADDRESS", None)
    subprocess.Popen(["/usr/bin/dbus-daemon", "--system", "--nofork", "--nopidfile"], stderr=subprocess.DEVNULL)
    wait_until(Path("/run/dbus/system_bus_socket").exists, "the bus is up")
    subprocess.Popen(["/usr/lib/polkit-1/polkitd", "--no-debug"], stderr=subprocess.DEVNULL)
    wait_until(lambda: subprocess.run(["pkaction"], capture_output=True).returncode == 0, "polkitd is up")
    make_bundle(PLACE / "Fernwick.app", OLD)
    # the person may be let into neither the folder of these tests nor that of the program
    folder = PLACE.with_name("program")
    make_bundle(folder, OLD)
    os.environ["FERNWICK_PROGRAM"] = str(folder / "Fernwick")
    os.environ.pop("FERNWICK_TEST_PICTURES", None)
    REPOSITORY.mkdir()
    namespace.bind(Path(__file__).resolve().parents[2], REPOSITORY)


def become_the_person() -> None:
    """Takes the person's ids, and keeps the power to mount, also in the programs to come (capabilities(7))."""
    keep_capabilities, ambient, raise_one, version, sys_admin = 8, 47, 2, 0x20080522, 21
    libc = ctypes.CDLL(None, use_errno=True)
    header = (ctypes.c_uint32 * 2)(version, 0)
    sets = (ctypes.c_uint32 * 6)()  # effective, permitted and inheritable, twice 32
    libc.prctl(keep_capabilities, 1, 0, 0, 0)
    os.setgroups([])
    os.setresgid(NUMBER, NUMBER, NUMBER)
    os.setresuid(NUMBER, NUMBER, NUMBER)
    libc.capget(header, sets)
    sets[:] = [sets[1]] * 3 + [sets[4]] * 3
    if libc.capset(header, sets) != 0 or libc.prctl(ambient, raise_one, sys_admin, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "the power to mount cannot be kept")


def go_on_as_the_person() -> int:
    """Runs the cases in a child that is the person; its exit status."""
    child = os.fork()
    if child == 0:
        namespace.stay_inside(os.getpid())
        os.environ |= {READY: "1", "USER": ACCOUNT, "LOGNAME": ACCOUNT}
        become_the_person()
        os.chdir(REPOSITORY)
        os.execv(sys.executable, [sys.executable, "-B", f"tests/system/{Path(__file__).name}", *sys.argv[1:]])
    while True:  # whatever is orphaned comes to the first process
        ended, status = os.wait()
        if ended == child:
            return os.waitstatus_to_exitcode(status)


if __name__ == "__main__":
    if READY not in os.environ:
        if os.geteuid() != 0:
            sys.exit("this test needs root")
        namespace.enter(own_processes=True)
        prepare()
        sys.exit(go_on_as_the_person())
    unittest.main(verbosity=2, warnings="ignore")
