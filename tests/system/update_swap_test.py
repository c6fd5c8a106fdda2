"""The update's last step on Linux, with a real archive, script and pkexec: what is swapped, and who starts it.

A small program stands in for the application: it installs the archive by the application's own code, and ends when it is
told to. /tmp with the script's log is this run's own, and so are all processes, since the script waits for any process
called Fernwick. Needs root, since pkexec is a program that becomes root.
"""

from __future__ import annotations

import os
import subprocess
import unittest
import zipfile
from pathlib import Path

from harness import namespace, wait_until
from polkit_case import ANNA, BOB, GRANT_PKEXEC, IDS, RULES, PolkitCase

PROGRAM = os.environ["FERNWICK_UPDATING_PROGRAM"]
LOG = Path("/tmp/fernwick_update.log")
ODD = "`T` a \"b\" $(touch /tmp/broken) `c` 'd' \\\n e"
# Tells who it is, in a file that appears whole, and stays as an application does.
NEW = """#!/bin/sh
left=closed; [ -e /proc/$$/fd/3 ] && left=open
{ id -u; id -g; ps -o sid= -p $$; pwd; grep SigIgn /proc/self/status; echo $left; env -0; } > "%s.part"
mv "%s.part" "%s"
exec sleep 1000
"""


class UpdateSwapTest(PolkitCase):
    """Each case installs an update of its own."""

    @classmethod
    def prepare(cls) -> None:
        """Gives /tmp and the rules to this run."""
        subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=1777", "tmpfs", "/tmp"], check=True)
        RULES.mkdir(parents=True, exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=755", "tmpfs", str(RULES)], check=True)
        (RULES / "10-test.rules").write_text(GRANT_PKEXEC)

    def setUp(self) -> None:
        """Begins with an old application in a folder of the test's, and no log."""
        LOG.unlink(missing_ok=True)
        self.place = self.session.root / self.id().rpartition(".")[2]
        self.told = self.place / "told"
        self.place.mkdir(mode=0o755)
        self.told.mkdir()
        self.told.chmod(0o777)
        self.new = NEW.replace("%s", str(self.told / "new"))
        self.apps = self.place / "Apps"
        self.target = self.apps / "Fernwick.app"
        self.target.mkdir(parents=True)
        (self.target / "Fernwick").write_text("old")
        (self.target / "only in the old one").touch()
        self.temporary = self.place / "temporary"
        self.temporary.mkdir()

    def give(self, user: str, *paths: Path) -> None:
        """Makes the paths, and what is in them, a user's own."""
        for path in (item for top in paths for item in (top, *top.rglob("*"))):
            os.chown(path, IDS[user], IDS[user])

    def archive(self) -> Path:
        """A zip file with the new application."""
        path = self.temporary / "Fernwick.zip"
        with zipfile.ZipFile(path, "w") as made:
            made.writestr("Fernwick.app/Fernwick", self.new)
            made.writestr("Fernwick.app/Info.plist", "<plist/>")
        return path

    def install(self, user: str, archive: Path, target: Path, *, umask: int = 0o022,
                **variables: str) -> subprocess.Popen[str]:
        """The application, which installs the archive over itself."""
        environment = {"PATH": "/usr/bin:/bin", "HOME": str(self.session.root / str(IDS[user])),
                       "TMPDIR": str(self.temporary)} | variables
        return subprocess.Popen([*self.become(user), PROGRAM, str(self.temporary), str(archive), str(target)],
                                env=environment, cwd="/", umask=umask, text=True, stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE)

    def swap(self, application: subprocess.Popen[str]) -> tuple[list[str], dict[str, str]]:
        """Lets the application end, and returns what the new one tells: its lines, and its environment."""
        self.assertEqual(application.stdout.readline(), "started\n")
        wait_until(lambda: LOG.exists() and "App still running, waiting..." in LOG.read_text(), "the script waits")
        self.assertEqual((self.target / "Fernwick").read_text(), "old")
        application.communicate("\n", timeout=10)
        wait_until((self.told / "new").exists, "the new application starts", 30.0)
        wait_until(lambda: "Update finished!" in LOG.read_text(), "the script ends", 30.0)
        *lines, rest = (self.told / "new").read_text().split("\n", 6)
        return lines, dict(entry.split("=", 1) for entry in rest.split("\0") if entry)

    def test_script_outlives_the_application_and_starts_the_new_one(self) -> None:
        """The person's own application, in a folder: swapped whole, and started apart from the script."""
        self.give(ANNA, self.apps, self.temporary)
        lines, environment = self.swap(self.install(ANNA, self.archive(), self.target, FERNWICK_ODD=ODD))
        self.assertEqual(lines[:2], [str(IDS[ANNA])] * 2)
        self.assertEqual(lines[3], "/")
        self.assertEqual(int(lines[4].split()[1], 16) & 0b111, 0, "HUP, INT and QUIT are heard")
        sessions = subprocess.run(["ps", "-eo", "pid=,sid=,args="], capture_output=True, text=True).stdout.splitlines()
        self.assertIn([lines[2].strip()] * 2 + ["sleep", "1000"], [line.split() for line in sessions])
        self.assertEqual(environment["FERNWICK_ODD"], ODD)
        self.assertEqual(sorted(item.name for item in self.target.iterdir()), ["Fernwick", "Info.plist"])
        self.assertEqual((self.target / "Fernwick").read_text(), self.new)

    def test_administrator_swaps_and_the_person_starts(self) -> None:
        """Root's application: the script runs as root, the new program as the person with the old one's variables."""
        self.give(ANNA, self.temporary)
        lines, environment = self.swap(self.install(ANNA, self.archive(), self.target, FERNWICK_ODD=ODD, DISPLAY=":77",
                                                    XAUTHORITY="/x y/auth", DBUS_SESSION_BUS_ADDRESS="unix:path=/b"))
        self.assertEqual(lines[:2], [str(IDS[ANNA])] * 2)
        self.assertEqual(lines[5], "closed", "the descriptor of the variables")
        expected = {"FERNWICK_ODD": ODD, "DISPLAY": ":77", "XAUTHORITY": "/x y/auth", "TMPDIR": str(self.temporary),
                    "DBUS_SESSION_BUS_ADDRESS": "unix:path=/b", "HOME": str(self.session.root / str(IDS[ANNA]))}
        self.assertEqual({name: environment.get(name) for name in expected}, expected)
        self.assertEqual([name for name in environment if name.startswith(("PKEXEC", "SUDO"))], [])
        for item in (self.target, *self.target.iterdir()):
            self.assertEqual((item.stat().st_uid, item.stat().st_gid), (0, 0), item)
        self.assertFalse(Path("/tmp/broken").exists())

    def test_root_follows_nobodys_link_and_keeps_nothing_for_itself(self) -> None:
        """Somebody's link where the log goes, and a mask that keeps the person's files from everybody."""
        self.give(ANNA, self.temporary)
        victim = self.place / "victim"
        victim.write_text("precious")
        LOG.symlink_to(victim)
        os.lchown(LOG, IDS[BOB], IDS[BOB])
        lines, _ = self.swap(self.install(ANNA, self.archive(), self.target, umask=0o077))
        self.assertEqual(lines[:2], [str(IDS[ANNA])] * 2)
        self.assertEqual(victim.read_text(), "precious")
        self.assertEqual((LOG.lstat().st_mode & 0o170000, LOG.lstat().st_uid), (0o100000, 0))
        for item in (self.target, self.target / "Fernwick"):
            self.assertEqual(item.stat().st_mode & 0o7777, 0o755, item)
        self.assertEqual((self.target / "Info.plist").stat().st_mode & 0o044, 0o044)

    def test_refused_rights_change_nothing(self) -> None:
        """Who may not is told so, and keeps the old application."""
        self.give(BOB, self.temporary)
        application = self.install(BOB, self.archive(), self.target)
        said, _ = application.communicate("\n", timeout=30)
        self.assertTrue(said.startswith("Requires permission to update application: Error"), said)
        self.assertEqual((self.target / "Fernwick").read_text(), "old")
        self.assertFalse(LOG.exists())

    def test_single_file_is_made_executable(self) -> None:
        """An application that is one file is replaced by the file that came, which nobody could execute."""
        self.target = self.apps / "Fernwick.AppImage"
        self.target.write_text("old")
        came = self.temporary / "Fernwick-4.0.AppImage"
        came.write_text(self.new)
        came.chmod(0o600)
        self.give(ANNA, self.apps, self.temporary)
        application = self.install(ANNA, came, self.target)
        self.assertEqual(application.stdout.readline(), "started\n")
        application.communicate("\n", timeout=10)
        wait_until((self.told / "new").exists, "the new application starts", 30.0)
        self.assertEqual(self.target.stat().st_mode & 0o7777, 0o755)

    def test_program_that_cannot_run_is_tried_three_times(self) -> None:
        """The log says so, and the script ends."""
        self.new = "#!/no/such/interpreter\n"
        self.give(ANNA, self.apps, self.temporary)
        application = self.install(ANNA, self.archive(), self.target)
        self.assertEqual(application.stdout.readline(), "started\n")
        application.communicate("\n", timeout=10)
        wait_until(lambda: LOG.exists() and "Update finished!" in LOG.read_text(), "the script ends", 40.0)
        attempts = [line for line in LOG.read_text().splitlines() if line.startswith("Open attempt")]
        self.assertEqual(attempts, [f"Open attempt {number} failed, retrying in 2s..." for number in (1, 2, 3)])


if __name__ == "__main__":
    namespace.enter()
    unittest.main(verbosity=2, warnings="ignore")
