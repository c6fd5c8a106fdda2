"""Fifty tunnels, a real server, the real application in its window, and trouble for half an hour.

ssh children are killed, servers crash, the route goes and comes, the machine sleeps and wakes, a hand stops, connects
and edits; all of it at random from a seed. Then everything is given back, and every tunnel has to carry bytes again,
with no process, descriptor, thread, timer or memory left over. Needs root, for network namespaces.
"""

from __future__ import annotations

import argparse
import os
import secrets
import signal
import sys
import time
from collections import Counter
from contextlib import closing
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "script/demo"))

import census  # noqa: E402
from audit import Audit  # noqa: E402
from fleet import COUNT, Fleet  # noqa: E402
from hand import Hand, Hang  # noqa: E402
from lab import namespace  # noqa: E402
from lab import preferences as stored  # noqa: E402
from lab.app import App, program  # noqa: E402
from lab.desktop import Desktop  # noqa: E402
from lab.keyring import Keyring  # noqa: E402
from lab.network import FAR, FAR_ADDRESS, NEAR, Network  # noqa: E402
from lab.power import Logind  # noqa: E402
from lab.preferences import Preferences  # noqa: E402
from lab.session import Session  # noqa: E402
from lab.sshlab import SshLab  # noqa: E402
from lab.waiting import wait_for  # noqa: E402
from trouble import Trouble  # noqa: E402

# The servers let go of a client that has gone, or its remote forwards would stay taken.
_SERVER_SETTINGS = "ClientAliveInterval 2\nClientAliveCountMax 2\n"
_SETTLE, _STEADY, _ROUNDS = 120.0, 8.0, 8
_GIVEN_UP = "✗ Đã thử 5 lần"
_REST, _WATCH = 40.0, 10.0  # askpass scripts live for 30 seconds, idle threads for 5
MORE_DESCRIPTORS, WAKE_UPS, MORE_MEGABYTES = 4, 8, 8.0
# What the first tunnel brings to stay: the thread that watches children, the bus connection to the keyring.
STAYING_THREADS = 2


class Soak:
    """One run."""

    def __init__(self, session: Session, options: argparse.Namespace) -> None:
        self.minutes, self.failed = options.minutes, False
        self.network = Network()
        desktop = Desktop(session)
        lab = SshLab(session, inside=FAR, address=FAR_ADDRESS, settings=_SERVER_SETTINGS)
        lab.start_agent()
        logind = Logind(session)
        self.fleet = Fleet(session, lab, Keyring(session, desktop))
        Preferences(session.config).seed(**{stored.TUNNELS: list(self.fleet.tunnels.values()),
                                            stored.KEYS: [self.fleet.key]})
        self.app = App(session, desktop, inside=NEAR)
        self.hand = Hand(self.app)
        self.audit = Audit(self.fleet, self.hand)
        self.trouble = Trouble(options.seed, self.fleet, self.hand, self.network, logind)

    def run(self) -> bool:
        """The whole run; whether every check held."""
        self.app.row("T01")
        before = self.at_rest("before the first tunnel")
        self.app.start_all()
        self.settle("at the start")
        up = self.measured("all tunnels up, at the start")
        halves = self.disturb()
        self.trouble.give_back()
        print("Everything is given back.", flush=True)
        self.hands()
        end = self.measured("all tunnels up, at the end")
        self.check_up(up, end, halves)
        self.stop_all()
        rest = self.at_rest("all tunnels stopped")
        self.check_rest(before, rest)
        self.report()
        return not self.failed

    def check(self, what: str, holds: bool, figure: object) -> None:
        """Prints one outcome and remembers a bad one."""
        self.failed = self.failed or not holds
        print(f"  {'ok  ' if holds else 'FAIL'} {what:<58} {figure}", flush=True)

    def measured(self, when: str) -> census.Measure:
        """A look at the application, printed."""
        found = census.measure(self.app.pid)
        print(f"  {when}: {found}", flush=True)
        return found

    def at_rest(self, when: str) -> tuple[census.Measure, tuple[int, int], dict[str, int]]:
        """Waits until everything temporary is over, then watches without touching."""
        time.sleep(_REST if when != "before the first tunnel" else _STEADY)
        waked = census.wake_ups(self.app.pid, _WATCH)
        found = self.measured(when)
        print(f"    woken in {_WATCH:g} s: main thread {waked[0]} times, all threads {waked[1]} times")
        return found, waked, census.descriptors(self.app.pid)

    def disturb(self) -> list[census.Measure]:
        """The trouble itself; looks at the application after a quarter and after half of the time."""
        began, looks = time.monotonic(), []
        length = self.minutes * 60
        print(f"Trouble for {self.minutes:g} minutes.", flush=True)
        audited = began
        while (gone := time.monotonic() - began) < length:
            self.trouble.step()
            if time.monotonic() - audited > 5:
                self.audit.look(self.trouble.last)
                audited = time.monotonic()
            for share, name in ((0.25, "a quarter"), (0.5, "half")):
                if len(looks) < share * 4 and gone >= share * length:
                    looks.append(self.measured(f"after {name} of the time"))
            if not self.app.running():
                raise Hang(f"the application ended with {self.app.process.returncode}")
        return looks

    def settled(self) -> bool:
        """Whether all tunnels are shown as connected, with one child each."""
        children = census.children(self.app.pid, self.fleet.by_port())
        return all(len(children.get(name, [])) == 1 for name in self.fleet.tunnels) and \
            set(self.hand.states().values()) == {"Connected"}

    def settle(self, when: str) -> bool:
        """Waits until all tunnels are up and stay up for a while."""
        end, since = time.monotonic() + _SETTLE, 0.0
        while time.monotonic() < end:
            if not self.settled():
                since = 0.0
            elif since == 0.0:
                since = time.monotonic()
            elif time.monotonic() - since > _STEADY:
                return True
            time.sleep(0.5)
        print(f"  not settled {when}: { {n: s for n, s in self.hand.states().items() if s != 'Connected'} }")
        return False

    def hands(self) -> None:
        """Waits for those that come back by themselves; presses Connect for the others, after Stop if need be."""
        ended, counts = time.monotonic(), Counter[str]()
        wait_for(lambda: self.settled() or "Connecting..." not in self.hand.states().values(), 90, 1.0)
        for _ in range(_ROUNDS):
            if wait_for(self.settled, 12.0, 0.5):
                break
            self.press(counts)
        print("What needed a hand to come back")
        for what, count in sorted(counts.items()):
            print(f"  {count:>5}  {what}")
        self.check("all tunnels are up and stay up", self.settle("at the end"),
                   f"{time.monotonic() - ended:.0f} s after the trouble")

    def press(self, counts: Counter[str]) -> None:
        """One round of a person who goes down the sidebar."""
        children = census.children(self.app.pid, self.fleet.by_port())
        for name, state in self.hand.states().items():
            own = children.get(name, [])
            if state == "Connected" and len(own) == 1:
                continue
            why = self.reason(name, state, own)
            done = self.hand.restart(name) if state.startswith("Connect") else self.hand.toggle(name, "Connect")
            counts[why] += done

    def reason(self, name: str, state: str, own: list[int]) -> str:
        """Why a tunnel is not up, by its status and the end of its log."""
        if state == "Idle":
            return "a hand had stopped it"
        if not self.fleet.tunnels[name]["reconnectOnFailure"]:
            return "it has no Auto Reconnect"
        log = self.hand.log(name, 40)
        ends = [line for line in log if line.startswith(("Process exited", _GIVEN_UP))]
        if not own and state.startswith("Error") and ends and ends[-1].startswith(_GIVEN_UP):
            return "it had given up after five retries"
        if not own and state == "Disconnected" and ends and ends[-1] == "Process exited (code: 0)":
            return "ssh had ended with status 0, which is not retried"
        print(f"  odd: {name} ({state}), ssh children {own}; its log:")
        print(*(f"    | {line}" for line in log[-24:]), sep="\n", flush=True)
        return f"its ssh child had no owner, or none was left ({state})"

    def check_up(self, before: census.Measure, end: census.Measure, halves: list[census.Measure]) -> None:
        """What has to be so while all tunnels are up."""
        silent = self.fleet.silent()
        self.check("tunnels that carry bytes", not silent, f"{COUNT - len(silent)} of {COUNT} {silent or ''}")
        count = len(self.app.children())
        self.check("ssh processes", count == self.fleet.processes(), f"{count} of {self.fleet.processes()}")
        self.check("descriptors", end.descriptors <= before.descriptors + MORE_DESCRIPTORS,
                   f"{before.descriptors} at the start, {end.descriptors} at the end")
        self.check("threads", end.threads <= before.threads,
                   f"{before.threads} at the start, {end.threads} at the end")
        resident = [*(look.resident for look in halves), end.resident]
        self.check("resident memory at a quarter, half and the end",
                   resident[-1] <= resident[0] + MORE_MEGABYTES, ", ".join(f"{each:.1f}" for each in resident) + " MB")

    def stop_all(self) -> None:
        """Stops all tunnels."""
        self.hand.stop_all()
        wait_for(lambda: not self.app.children(), 15.0)
        self.check("ssh processes after all were stopped", not self.app.children(), len(self.app.children()))

    def check_rest(self, before: tuple[census.Measure, tuple[int, int], dict[str, int]],
                   rest: tuple[census.Measure, tuple[int, int], dict[str, int]]) -> None:
        """What has to be so when nothing runs."""
        self.check("descriptors at rest", rest[0].descriptors <= before[0].descriptors + MORE_DESCRIPTORS,
                   f"{before[0].descriptors} before, {rest[0].descriptors} after")
        grown = Counter(rest[2]) - Counter(before[2])
        print(f"    more than before: {dict(grown)}")
        self.check("threads at rest", rest[0].threads <= before[0].threads + STAYING_THREADS,
                   f"{before[0].threads} before, {rest[0].threads} after; now {census.threads(self.app.pid)}")
        self.check(f"wake-ups of the main thread in {_WATCH:g} s", rest[1][0] <= WAKE_UPS,
                   f"{before[1][0]} before, {rest[1][0]} after")

    def report(self) -> None:
        """What happened, and what was seen on the way."""
        print("Events")
        for what, count in sorted(self.trouble.counts.items()):
            print(f"  {count:>5}  {what}")
        print("Seen for longer than eight seconds, on the way")
        for what, count in sorted(self.audit.counts.items()):
            print(f"  {count:>5}  {what}")
        print("Longest wait for the window: {:.1f} s, until {}".format(*self.hand.longest_wait))
        complaints = self.app.stderr().strip().splitlines()
        print(f"Standard error of the application: {len(complaints)} lines")
        for line in complaints[-20:]:
            print(f"  | {line}")


def main() -> int:
    """Runs the soak; 0 when every check held."""
    parser = argparse.ArgumentParser(prog="script/test --soak", description=__doc__)
    parser.add_argument("--minutes", type=float, default=30, help="how long trouble lasts")
    parser.add_argument("--seed", type=int, default=None, help="of the events; a fresh one unless given")
    options = parser.parse_args()
    if options.seed is None:
        options.seed = secrets.randbelow(1_000_000)
    if os.geteuid() != 0 or not program().exists():
        sys.exit("the soak needs root, for network namespaces, and a release build")
    namespace.enter()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("the soak was asked to end"))
    print(f"Soak: {COUNT} tunnels, seed {options.seed}, {os.cpu_count()} processors", flush=True)
    with closing(Session()) as session:
        try:
            soak = Soak(session, options)
            return 0 if soak.run() else 1
        except (AssertionError, OSError) as error:
            print(f"FAIL: {error}", file=sys.stderr, flush=True)
            return 1


if __name__ == "__main__":
    sys.exit(main())
