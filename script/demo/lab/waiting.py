"""Waiting for something to become true, with a deadline and a sentence about what was waited for."""

from __future__ import annotations

import time
from collections.abc import Callable
from typing import TypeVar

T = TypeVar("T")


class Timeout(AssertionError):
    """The deadline passed; the text says what did not happen."""


def wait_until(condition: Callable[[], T], what: str, deadline: float = 10.0, pause: float = 0.02) -> T:
    """Asks `condition` again and again until its answer is true, and returns that answer."""
    answer = wait_for(condition, deadline, pause)
    if not answer:
        raise Timeout(f"{what}: not within {deadline:g} s")
    return answer


def wait_for(condition: Callable[[], T], deadline: float, pause: float = 0.02) -> T:
    """The same for something that need not become true; returns the last answer."""
    end = time.monotonic() + deadline
    while True:
        answer = condition()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(pause)
