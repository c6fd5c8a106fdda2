"""The engine's installation on Linux, against real polkit and pkexec: who may do what, before and after it.

A system bus, polkitd, /etc/systemd/system, /etc/polkit-1/rules.d and /run are this run's own, in its mount namespace;
systemctl is a recorder. Needs root, since pkexec is a program that becomes root.
"""

from __future__ import annotations

import os
import shutil
import stat
import subprocess
import sys
import unittest
from pathlib import Path

from harness import namespace, wait_until
from polkit_case import (ANNA, BOB, GRANT_PKEXEC, IDS, OUR_ACTION, OUR_PROGRAM, PACKAGING, RULES, SYSTEMS_ACTION,
                         PolkitCase)

PROGRAM = os.environ["FERNWICK_SERVICE_PROGRAM"]
AGENT = Path(__file__).with_name("refusing_agent.py")
UNIT = "com.fernwick.mihomo.service"
UNIT_FILE = Path("/etc/systemd/system") / UNIT
MANAGE_UNITS = "org.freedesktop.systemd1.manage-units"
NOT_AUTHORIZED, DISMISSED = 127, 126


class AdministratorTest(PolkitCase):
    """One bus and one polkitd for all cases; the rules and units are each case's own."""

    @classmethod
    def prepare(cls) -> None:
        """Gives systemd's folders to this run."""
        Path("/run/systemd/system").mkdir(parents=True)
        cls.record_systemctl()
        RULES.mkdir(parents=True, exist_ok=True)
        cls.empty_folders()

    @classmethod
    def record_systemctl(cls) -> None:
        """Puts a recorder in the place of systemctl."""
        cls.calls = cls.session.root / "systemctl-calls"
        cls.calls.touch()
        cls.calls.chmod(0o666)
        recorder = cls.session.root / "systemctl"
        recorder.write_text(f'#!/bin/sh\necho "$(id -u) $*" >> {cls.calls}\n')
        recorder.chmod(0o755)
        namespace.bind(recorder, Path("/usr/bin/systemctl"))

    @classmethod
    def empty_folders(cls) -> None:
        """Gives both folders of the installation to this run, with nothing in them."""
        for folder in (UNIT_FILE.parent, RULES):
            subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", str(folder)], check=True)

    def setUp(self) -> None:
        """Begins with nothing installed; one rule stands for the person who would type the password."""
        for leftover in (*UNIT_FILE.parent.iterdir(), *RULES.iterdir()):
            leftover.unlink()
        (RULES / "10-test.rules").write_text(GRANT_PKEXEC)
        self.calls.write_text("")
        wait_until(lambda: self.administrator(ANNA, "true") == "done", "the rule is read")

    def service(self, user: str, *words: str) -> str:
        """What the application's part says, run as one of the accounts."""
        done = self.run_as(user, [PROGRAM, *words])
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.removesuffix("\n")

    def administrator(self, user: str, line: str) -> str:
        """The outcome of a line that one of the accounts wants to be run as root."""
        return self.service(user, "administrator", line)

    def may(self, user: str, verb: str, unit: str = UNIT) -> bool:
        """Whether polkit lets an account do this to a unit, asked as systemd asks it."""
        with subprocess.Popen([*self.become(user), "sleep", "60"]) as actor:
            try:
                wait_until(lambda: os.stat(f"/proc/{actor.pid}").st_uid == IDS[user], "the actor is that user")
                asked = subprocess.run(["pkcheck", "--action-id", MANAGE_UNITS, "--process", str(actor.pid),
                                        "--detail", "unit", unit, "--detail", "verb", verb], capture_output=True)
                return asked.returncode == 0
            finally:
                actor.kill()

    def install(self, user: str) -> str:
        """Prepares and installs as the application does; the outcome."""
        self.temporary, line = self.service(user, "prepare", "/usr/bin/true", "/tmp/a b", "/tmp/a b/c").split("\n", 1)
        return self.administrator(user, line)

    def test_installing_user_may_and_nobody_else(self) -> None:
        """The rule opens four verbs of one unit for one user."""
        self.assertFalse(self.may(ANNA, "restart"))
        self.assertEqual(self.install(ANNA), "done")
        wait_until(lambda: self.may(ANNA, "restart"), "the rule is read")
        for verb in ("start", "stop", "kill"):
            self.assertTrue(self.may(ANNA, verb), verb)
        for verb in ("reload", "set-property", "clean", "freeze", "", "Restart"):
            self.assertFalse(self.may(ANNA, verb), verb)
        for unit in ("ssh.service", "x" + UNIT, UNIT + "x", ""):
            self.assertFalse(self.may(ANNA, "restart", unit), unit)
        self.assertFalse(self.may(BOB, "restart"))

    def test_installation_leaves_two_files_of_root(self) -> None:
        """What is installed is whole, readable, and nothing else; systemd is told."""
        self.assertEqual(self.service(ANNA, "check", "/usr/bin/true"), "1 ")
        self.assertEqual(self.install(ANNA), "done")
        self.assertEqual(self.calls.read_text(), "0 daemon-reload\n")
        self.assertEqual([file.name for file in UNIT_FILE.parent.iterdir()], [UNIT])
        rule = RULES / "50-com.fernwick.mihomo.rules"
        self.assertEqual(sorted(file.name for file in RULES.iterdir()), ["10-test.rules", rule.name])
        for file in (UNIT_FILE, rule):
            found = file.stat()
            self.assertEqual((found.st_uid, found.st_gid, stat.S_IMODE(found.st_mode)), (0, 0, 0o644), file)
        self.assertEqual(UNIT_FILE.read_bytes(), Path(self.temporary).read_bytes())
        self.assertEqual(self.service(ANNA, "check", "/usr/bin/true"), "0 ")
        verified = subprocess.run(["systemd-analyze", "verify", str(UNIT_FILE)], capture_output=True, text=True)
        self.assertEqual((verified.returncode, verified.stderr), (0, ""))

    def test_another_user_installs_anew(self) -> None:
        """For another user the service is not ready, and after that user's installation only that one may."""
        self.assertEqual(self.install(ANNA), "done")
        (RULES / "10-test.rules").write_text(GRANT_PKEXEC.replace('"bob"', '"nobody"'))
        wait_until(lambda: self.administrator(BOB, "true") == "done", "the rule is read")
        self.assertEqual(self.service(BOB, "check", "/usr/bin/true"), f"5 /usr/bin/true ({ANNA})")
        self.assertEqual(self.install(BOB), "done")
        self.assertEqual(self.service(BOB, "check", "/usr/bin/true"), "0 ")
        wait_until(lambda: self.may(BOB, "restart"), "the rule is read")
        self.assertFalse(self.may(ANNA, "restart"))

    def test_staged_file_that_is_gone_changes_no_unit(self) -> None:
        """A failed copy leaves the unit that there is, and says why."""
        self.assertEqual(self.install(ANNA), "done")
        before = UNIT_FILE.read_bytes()
        _, line = self.service(ANNA, "prepare", "/usr/bin/false", "/f", "/c").split("\n", 1)
        Path(self.temporary).unlink()
        self.assertRegex(self.administrator(ANNA, line), "^refused: cp: cannot stat .*No such file or directory")
        self.assertEqual(UNIT_FILE.read_bytes(), before)
        self.assertEqual(self.calls.read_text(), "0 daemon-reload\n")

    def test_start_and_stop_ask_systemd_as_the_user(self) -> None:
        """Neither goes through pkexec."""
        self.service(ANNA, "restart", "/usr/bin/true", "/f", "/c")
        self.service(ANNA, "terminate")
        self.assertEqual(self.calls.read_text().splitlines(),
                         [f"{IDS[ANNA]} --no-ask-password restart {UNIT}",
                          f"{IDS[ANNA]} --no-ask-password kill -s SIGTERM {UNIT}"])

    def test_granted_line_runs_as_root(self) -> None:
        """A rule grants pkexec, and the line's own failure comes back in its words."""
        self.assertEqual(self.administrator(ANNA, f'id -u > "{self.session.root}/who" && echo "x  y"'), "done")
        self.assertEqual((self.session.root / "who").read_text(), "0\n")
        self.assertEqual(self.administrator(ANNA, "echo went wrong >&2; false"), "refused: went wrong")
        self.assertEqual(self.administrator(ANNA, "false"), "refused: ")

    def test_package_has_an_action_of_its_own(self) -> None:
        """With the package's program polkit is asked for that action, and for it alone."""
        line = f"id -u > {self.session.root}/whom"
        shutil.copy(PACKAGING / OUR_PROGRAM.name, OUR_PROGRAM)
        self.addCleanup(OUR_PROGRAM.unlink)
        self.assertTrue(self.administrator(ANNA, line).startswith("refused: "))  # the system's action is granted only
        (RULES / "10-test.rules").write_text(GRANT_PKEXEC.replace(SYSTEMS_ACTION, OUR_ACTION))
        wait_until(lambda: self.administrator(ANNA, line) == "done", "the rule is read")
        self.assertEqual((self.session.root / "whom").read_text(), "0\n")
        self.assertEqual(self.administrator(ANNA, "echo went wrong >&2; false"), "refused: went wrong")
        shell = self.run_as(ANNA, ["/usr/bin/pkexec", "/bin/sh", "-c", line])
        self.assertEqual(shell.returncode, NOT_AUTHORIZED)
        shown = subprocess.run(["pkaction", "--verbose", "--action-id", OUR_ACTION], capture_output=True, text=True)
        for who in ("any", "inactive", "active"):
            self.assertRegex(shown.stdout, rf"implicit {who}: +auth_admin\n")

    def test_end_of_the_application_waits_for_no_granted_line(self) -> None:
        """A line that root runs already cannot be killed by the user, and goes on."""
        begun, let_go = self.session.root / "begun", self.session.root / "let-go"
        line = f"echo $$ > {begun}; until [ -e {let_go} ]; do sleep 0.1; done"
        try:
            said = self.service(ANNA, "abandon", line, str(begun))
            self.assertTrue(Path("/proc", begun.read_text().strip()).exists())
        finally:
            let_go.touch()
        self.assertTrue(said.startswith("refused: /usr/bin/pkexec: "), said)
        wait_until(lambda: not Path("/proc", begun.read_text().strip(), "exe").exists(), "the line ends")

    def test_nobody_to_ask_is_no_authorization(self) -> None:
        """Without an agent a user whom no rule lets through is refused, and nothing runs."""
        done = self.run_as(BOB, ["/usr/bin/pkexec", "/bin/sh", "-c", f"touch {self.session.root}/ran"])
        self.assertEqual(done.returncode, NOT_AUTHORIZED)
        self.assertTrue(self.administrator(BOB, f"touch {self.session.root}/ran").startswith("refused: Error"))
        self.assertFalse((self.session.root / "ran").exists())

    def test_dismissed_prompt_is_canceled(self) -> None:
        """The agent's person closes the prompt: pkexec's 126 becomes the words that mean it."""
        # With exec the service program takes the shell's process id, for which the agent is registered; its pkexec is
        # a child of it as the shell's was.
        script = 'read -r go; /usr/bin/pkexec /bin/true; echo $?; exec "$0" administrator true'
        words = self.session.root / "agent"
        # the repository may lie where only root can read
        agent, program = (shutil.copy(file, self.session.root) for file in (AGENT, PROGRAM))
        with subprocess.Popen([*self.become(BOB), "sh", "-c", script, program], env={}, text=True, start_new_session=True,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as actor:
            wait_until(lambda: os.stat(f"/proc/{actor.pid}").st_uid == IDS[BOB], "the actor is that user")
            with words.open("wb") as stderr:
                self.session.start([*self.become(BOB), sys.executable, "-B", agent, str(actor.pid)], stderr=stderr)
            wait_until(lambda: "ready" in words.read_text(), "the agent is registered")
            output, error = actor.communicate("go\n", timeout=60)
        self.assertEqual(output, f"{DISMISSED}\nrefused: User canceled\n", error)

    def test_kind_of_service_follows_systemd(self) -> None:
        """Root without systemd runs the engine itself; everybody else leaves it to systemd."""
        self.assertEqual(self.service(ANNA, "kind"), "systemd")
        self.assertEqual(subprocess.run([PROGRAM, "kind"], capture_output=True, text=True).stdout, "systemd\n")
        Path("/run/systemd/system").rename("/run/systemd/away")
        try:
            self.assertEqual(self.service(ANNA, "kind"), "systemd")
            self.assertEqual(subprocess.run([PROGRAM, "kind"], capture_output=True, text=True).stdout, "detached\n")
            self.assertEqual(self.install(ANNA), "refused: systemd does not run on this machine")
            self.assertFalse(UNIT_FILE.exists())
        finally:
            Path("/run/systemd/away").rename("/run/systemd/system")


if __name__ == "__main__":
    namespace.enter()
    unittest.main(verbosity=2, warnings="ignore")
