"""Tunnels that do not come up or do not stay up, on a real server: what the status and the log say."""

from __future__ import annotations

import time

from harness import SshTest, main, stored, wait_until
from lab import site
from lab.app import App
from lab.sshlab import start_site
from lab.wire import free_port, listens

REFUSED = "Process exited (code: 255) — Network error or host unreachable"


class Failures(SshTest):
    """Each case looks at the window alone: the status text and the log."""

    def failing(self, record: stored.Record, *keys: stored.Record) -> App:
        """The application after Connect was pressed on its one tunnel."""
        app = self.start(record, keys=list(keys))
        app.select(record["name"])
        app.press("Connect")
        return app

    def assert_refused(self, app: App, complaint: str) -> None:
        """The status falls to Disconnected; the log has ssh's own complaint and says how ssh ended."""
        app.find("Disconnected", deadline=8)
        log = app.log()
        self.assertIn(REFUSED, log)
        self.assertTrue(any(complaint in line for line in log), log)
        self.assertTrue(app.running())

    def test_wrong_key_is_refused(self) -> None:
        stranger = stored.key(self.lab.make_key("stranger"))
        app = self.failing(self.tunnel("Wrong key", identityKeyID=stranger["id"], localPort=str(free_port())), stranger)
        self.assert_refused(app, "Permission denied")

    def test_port_nobody_listens_on_is_refused(self) -> None:
        app = self.failing(self.tunnel("Nobody there", sshPort=str(free_port())), self.key)
        self.assert_refused(app, "Connection refused")

    def test_remote_port_that_is_taken_is_refused(self) -> None:
        taken = str(self.lab.jump.port)
        app = self.failing(self.tunnel("Taken", tunnelType=stored.REMOTE, localPort=str(free_port()),
                                       remotePort=taken), self.key)
        self.assert_refused(app, "remote port forwarding failed")

    def test_local_port_that_cannot_be_cleared_is_refused(self) -> None:
        port = free_port()
        holder = start_site(self.session, port)
        record = self.tunnel("Held", localPort=str(port))
        self.preferences.seed(**{stored.TUNNELS: [record], stored.KEYS: [self.key]})
        app = self.start_as_is(mounts=["mount --bind /dev/null \"$(command -v lsof)\""])  # which cannot run then
        app.select("Held")
        app.press("Connect")
        self.assert_refused(app, "Address already in use")
        self.assertIsNone(holder.poll())

    def test_unknown_host_is_refused(self) -> None:
        app = self.failing(self.tunnel("Unknown", host="no-such-host.invalid"), self.key)
        self.assert_refused(app, "Could not resolve hostname")

    def test_word_for_a_port_is_refused(self) -> None:
        app = self.failing(self.tunnel("Words", sshPort="twenty-two", localPort="eighty"), self.key)
        self.assert_refused(app, "Bad port 'twenty-two'")

    def test_empty_host_and_user_are_refused(self) -> None:
        app = self.failing(self.tunnel("Empty", host="", user=""), self.key)
        self.assert_refused(app, "usage: ssh")

    def test_killed_server_disconnects_the_tunnel(self) -> None:
        record = self.tunnel("Crash", localPort=str(free_port()), remoteHost=site.NAME)
        app = self.failing(record, self.key)
        app.find("Connected")
        self.lab.server.kill()
        self.addCleanup(self.lab.server.start)
        self.assert_refused(app, "closed by remote host")
        self.assertFalse(listens(int(record["localPort"])))

    def test_server_that_is_back_takes_the_tunnel_again(self) -> None:
        app = self.failing(self.tunnel("Again", localPort=str(free_port())), self.key)
        app.find("Connected")
        self.lab.server.kill()
        app.find("Disconnected", deadline=8)
        self.lab.server.start()
        app.press("Connect")
        app.find("Connected")

    def test_stop_within_the_first_second_leaves_no_child(self) -> None:
        app = self.failing(self.tunnel("Hasty", localPort=str(free_port())), self.key)
        wait_until(app.children, "the child is there")
        app.press("Stop")
        app.find("Idle")
        wait_until(lambda: not app.children(), "the child ends")
        time.sleep(1.6)  # the moment at which the launch would have counted as connected
        self.assertTrue(app.has("Idle"))
        log = app.log()
        self.assertTrue(any(line.startswith("■ Tunnel stopped (PID: ") for line in log), log)
        self.assertFalse(any(line.startswith("Process exited") for line in log), log)

    def test_program_that_cannot_be_started_is_told(self) -> None:
        broken = self.session.root / "broken-ssh"
        broken.write_text("not a program")
        self.preferences.seed(**{stored.TUNNELS: [self.tunnel("No ssh")]})
        app = self.start_as_is(stand_in=broken)
        app.select("No ssh")
        app.press("Connect")
        wait_until(lambda: [text for text in app.texts() if text.startswith("Error: ")], "the error shows")
        log = app.log()
        self.assertTrue(any(line.startswith("Failed to launch SSH: ") for line in log), log)


if __name__ == "__main__":
    main()
