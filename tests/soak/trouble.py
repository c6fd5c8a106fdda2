"""Trouble at random: what happens to fifty tunnels over a bad day, and what gives back what was taken."""

from __future__ import annotations

import contextlib
import heapq
import os
import random
import signal
import time
from collections import Counter
from collections.abc import Callable

from fleet import Fleet
from hand import Hand
from lab.network import Network
from lab.power import Logind
from lab.sshlab import Server

_PAUSE = (0.5, 4.0)  # between two events, in seconds
_SHORT, _LONG = (1.0, 12.0), (30.0, 45.0)  # outages; the five retries of a tunnel take half a minute
_LONG_SHARE = 0.15


class Trouble:
    """Picks events from one seed; each outage is given back after a while, and may overlap with others."""

    def __init__(self, seed: int, fleet: Fleet, hand: Hand, network: Network, logind: Logind) -> None:
        self.random = random.Random(seed)
        self.fleet, self.hand, self.network, self.logind = fleet, hand, network, logind
        self.counts: Counter[str] = Counter()
        self.stopped: set[str] = set()  # by hand
        self.last = ""
        self._repairs: list[tuple[float, str, Callable[[], None]]] = []
        self._under_way: set[str] = set()
        lab = fleet.lab
        self._events: list[tuple[int, str, Callable[[], bool]]] = [
            (8, "ssh children killed (SIGKILL)", lambda: self._kill(signal.SIGKILL, 1)),
            (6, "ssh children killed (SIGTERM)", lambda: self._kill(signal.SIGTERM, 1)),
            (2, "ten ssh children killed at once", lambda: self._kill(signal.SIGKILL, 10)),
            (2, "server killed and restarted", lambda: self._crash("server", lab.server)),
            (2, "jump host killed and restarted", lambda: self._crash("jump", lab.jump)),
            (3, "route removed and given back", self._lose_route),
            (2, "sleep and wake", self._sleep),
            (2, "sleep, and wake without a route", self._sleep_and_move),
            (4, "notes of a tunnel edited", self._edit),
            (4, "tunnel stopped by hand", self._stop),
            (5, "tunnel connected by hand", self._connect),
            (3, "tunnel stopped and connected at once", self._restart),
        ]

    def step(self) -> None:
        """Gives back what is due, makes one more event, and waits a little."""
        self._repair(time.monotonic())
        weights = [weight for weight, _, _ in self._events]
        _, name, act = self.random.choices(self._events, weights)[0]
        if act():
            self.counts[name] += 1
            self.last = name
        self._wait(self.random.uniform(*_PAUSE))

    def give_back(self) -> None:
        """Ends all trouble."""
        self._repair(float("inf"))

    def _wait(self, seconds: float) -> None:
        end = time.monotonic() + seconds
        while (now := time.monotonic()) < end:
            self._repair(now)
            time.sleep(0.05)

    def _repair(self, due: float) -> None:
        while self._repairs and self._repairs[0][0] <= due:
            _, what, repair = heapq.heappop(self._repairs)
            repair()
            self._under_way.discard(what)

    def _outage(self, what: str, take: Callable[[], None], give: Callable[[], None]) -> bool:
        """Takes something away for a while, unless it is away already."""
        if what in self._under_way:
            return False
        self._under_way.add(what)
        take()
        span = _LONG if self.random.random() < _LONG_SHARE else _SHORT
        heapq.heappush(self._repairs, (time.monotonic() + self.random.uniform(*span), what, give))
        return True

    def _kill(self, number: signal.Signals, count: int) -> bool:
        victims = self.hand.app.children()
        for pid in self.random.sample(victims, min(count, len(victims))):
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, number)
        return bool(victims)

    def _crash(self, what: str, server: Server) -> bool:
        return self._outage(what, server.kill, server.start)

    def _lose_route(self) -> bool:
        return self._outage("route", self.network.take_route, self.network.give_route)

    def _sleep(self) -> bool:
        return self._outage("sleep", self.logind.prepare_for_sleep, self.logind.wake)

    def _sleep_and_move(self) -> bool:
        """The lid is closed in one place and opened in another, where the network takes a while."""
        if {"sleep", "route"} & self._under_way or not self._sleep():
            return False
        self.network.take_route()
        self._under_way.add("route")
        woken = next(due for due, what, _ in self._repairs if what == "sleep")
        heapq.heappush(self._repairs, (woken + self.random.uniform(*_SHORT), "route", self.network.give_route))
        return True

    def _any(self) -> str:
        return self.random.choice(list(self.fleet.tunnels))

    def _edit(self) -> bool:
        self.hand.note(self._any(), f"Edited for the {self.counts.total()}th time.")
        return True

    def _stop(self) -> bool:
        name = self._any()
        done = self.hand.toggle(name, "Stop")
        if done:
            self.stopped.add(name)
        return done

    def _connect(self) -> bool:
        """Of those that a hand stopped, or else any that is not active."""
        states = self.hand.states()
        resting = sorted(self.stopped) or [name for name, state in states.items() if not state.startswith("Connect")]
        if not resting:
            return False
        name = self.random.choice(resting)
        self.stopped.discard(name)
        return self.hand.toggle(name, "Connect")

    def _restart(self) -> bool:
        return self.hand.restart(self._any())
