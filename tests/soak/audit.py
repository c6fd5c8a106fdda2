"""Compares what the window says with the ssh processes that there are, and keeps what does not fit for long."""

from __future__ import annotations

import time
from collections import Counter
from dataclasses import dataclass

import census
from fleet import Fleet
from hand import Hand

_LONG = 8.0  # seconds; a retry waits five, a child counts as connected after one and a half
_SHOWN, _LINES = 12, 24

TWO = "more than one ssh child of one tunnel"
UNSEEN = "ssh child of a tunnel that is shown as not active"
ENDLESS = "one ssh child that is shown as connecting for long"
CHILDLESS = "shown as connected without an ssh child"


@dataclass
class Odd:
    """Something that does not fit, since when, and whether it was told already."""

    since: float
    told: bool = False


class Audit:
    """The sightings of the whole run; each is counted once, until it has passed."""

    def __init__(self, fleet: Fleet, hand: Hand) -> None:
        self.fleet, self.hand = fleet, hand
        self.counts: Counter[str] = Counter()
        self._odd: dict[tuple[str, str, int], Odd] = {}

    def look(self, after: str) -> None:
        """Looks once; `after` is what happened last."""
        states, now = self.hand.states(), time.monotonic()
        seen = set(self._sightings(states))
        self._odd = {key: self._odd.get(key, Odd(now)) for key in seen}
        for (what, name, _), odd in self._odd.items():
            if now - odd.since > _LONG and not odd.told:
                odd.told = True
                self.counts[what] += 1
                self._tell(f"{name} ({states[name]}, after \"{after}\"): {what}", name)

    def _sightings(self, states: dict[str, str]) -> list[tuple[str, str, int]]:
        children = census.children(self.hand.app.pid, self.fleet.by_port())
        found = []
        for name, state in states.items():
            own = children.get(name, [])
            first = own[0] if own else 0
            if len(own) > 1:
                found.append((TWO, name, 0))
            elif own and not state.startswith("Connect"):
                found.append((UNSEEN, name, 0))
            elif own and state == "Connecting...":
                found.append((ENDLESS, name, first))
            elif not own and state == "Connected":
                found.append((CHILDLESS, name, 0))
        return found

    def _tell(self, what: str, name: str) -> None:
        print(f"  seen: {what}", flush=True)
        if self.counts.total() <= _SHOWN:
            pids = census.children(self.hand.app.pid, self.fleet.by_port()).get(name, [])
            print(f"    its ssh children now: {pids}; its log:")
            for line in self.hand.log(name, _LINES):
                print(f"    | {line}", flush=True)
