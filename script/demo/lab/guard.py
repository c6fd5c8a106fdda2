"""Cleans up after a run whose own program was killed: guard MARK FOLDER, ended by the end of its standard input."""

from __future__ import annotations

import contextlib
import os
import shutil
import signal
import sys

from lab.session import marked

if __name__ == "__main__":
    sys.stdin.read()
    for pid in marked(sys.argv[1]):
        with contextlib.suppress(ProcessLookupError):
            os.kill(pid, signal.SIGKILL)
    shutil.rmtree(sys.argv[2], ignore_errors=True)
