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
    end = time.monotonic() + deadline
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise Timeout(f"{what}: not within {deadline:g} s")
        time.sleep(pause)
