#!/usr/bin/python3
"""Times the start of a program to its first painted window, and reads its resident memory a second later.

bench_start.py REPEATS PROGRAM...: starts the programs in turn under an X server of its own and prints, as JSON, for
each the median of the milliseconds and of the kibibytes. Meant for the release build; needs Xvfb and python3-xlib.
"""

import json
import os
import pathlib
import signal
import statistics
import subprocess
import sys
import tempfile
import time

from Xlib import X, display

PATIENCE = 20.0


def start_server() -> tuple[subprocess.Popen, str]:
    """An X server without a window manager, and the name of its display."""
    read, write = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24", "-nolisten", "tcp", "-noreset"],
        pass_fds=[write],
        stderr=subprocess.DEVNULL,
    )
    os.close(write)
    with os.fdopen(read) as pipe:
        return server, ":" + pipe.readline().strip()


def painted(window) -> bool:
    """Whether the window shows anything: a window that is mapped but not painted is black."""
    shape = window.get_geometry()
    if shape.width < 400:
        return False
    corner = window.get_image(shape.width // 2, shape.height - 8, 4, 4, X.ZPixmap, 0xFFFFFFFF).data
    return any(corner)


def wait_for_paint(screen: display.Display) -> None:
    """Returns when a large window has been painted."""
    root = screen.screen().root
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        for window in root.query_tree().children:
            try:
                if window.get_attributes().map_state == X.IsViewable and painted(window):
                    return
            except Exception:  # the window went away while it was looked at
                continue
        time.sleep(0.001)
    raise SystemExit("no painted window")


def measure(program: str, name: str, home: pathlib.Path) -> tuple[float, int]:
    """Milliseconds to the first painted window, and resident kibibytes a second after it."""
    environment = {
        **os.environ,
        "DISPLAY": name,
        "HOME": str(home),
        "XDG_CONFIG_HOME": str(home / "config"),
        "XDG_DATA_HOME": str(home / "data"),
        "XDG_RUNTIME_DIR": str(home / "run"),
        "QT_QPA_PLATFORM": "xcb",
        "FERNWICK_UPDATE_URL": "http://127.0.0.1:9",  # refuses
    }
    for variable in ("DBUS_SESSION_BUS_ADDRESS", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "WAYLAND_DISPLAY"):
        environment.pop(variable, None)
    screen = display.Display(name)
    began = time.monotonic()
    child = subprocess.Popen([program], env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        wait_for_paint(screen)
        took = (time.monotonic() - began) * 1000
        time.sleep(1)
        status = pathlib.Path(f"/proc/{child.pid}/status").read_text(encoding="ascii")
        resident = int(next(line for line in status.splitlines() if line.startswith("VmRSS")).split()[1])
        return took, resident
    finally:
        child.send_signal(signal.SIGTERM)
        child.wait()
        screen.close()


def main(repeats: int, programs: list[str]) -> None:
    """Measures the programs in turn, so that all meet the same weather."""
    results: dict[str, list[tuple[float, int]]] = {program: [] for program in programs}
    server, name = start_server()
    try:
        with tempfile.TemporaryDirectory() as folder:
            home = pathlib.Path(folder)
            (home / "run").mkdir(mode=0o700)
            for _ in range(repeats + 1):
                for program in programs:
                    results[program].append(measure(program, name, home))
    finally:
        server.terminate()
        server.wait()
    warm = {program: rows[1:] for program, rows in results.items()}  # the first start only fills the caches
    print(
        json.dumps(
            {
                pathlib.Path(program).name: {
                    "milliseconds": statistics.median(row[0] for row in rows),
                    "kibibytes": statistics.median(row[1] for row in rows),
                }
                for program, rows in warm.items()
            }
        )
    )


if __name__ == "__main__":
    main(int(sys.argv[1]), sys.argv[2:])
