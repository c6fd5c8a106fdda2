#!/usr/bin/env python3
"""Runs the benchmarks of the release build and prints their figures, each beside its baseline and its promise.

bench.py [--check]: with --check a shorter run, and exit status 1 when a promise is broken three times in a row (other
work on the machine breaks one now and then).
"""

import json
import os
import pathlib
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build" / "release"
FRAME = 16.0  # milliseconds
OPENING = 150.0  # milliseconds in which a window that was asked for is painted
POPOVER = 50.0  # the same for the popover of the menu bar
LINEAR = 1.6  # how far the cost of an element may spread over sizes from 100 to 100,000
TRIES = 3  # of a part whose promise is broken, in a check


class Report:
    """Lines of figures, and whether each promise was kept."""

    def __init__(self) -> None:
        self.broken: list[str] = []

    def line(self, what: str, value: float, unit: str, limit: float, at_least: bool = False) -> None:
        """Prints one figure with its promise, and remembers a broken one."""
        kept = value >= limit if at_least else value <= limit
        word = "at least" if at_least else "at most"
        print(f"  {'ok ' if kept else 'BAD'}  {what:<62} {value:>10.2f} {unit:<3} ({word} {limit:g})")
        if not kept:
            self.broken.append(what)


def google(name: str, check: bool, *arguments: str, pick=statistics.median,
           variables: dict[str, str] | None = None) -> dict[str, float]:
    """The real time of each case of a Google Benchmark program, in milliseconds: of five runs of each case, in random
    order, what `pick` makes of them. `variables` are added to its environment."""
    command = [BUILD / "benchmarks" / f"fernwick_{name}_benchmark", "--benchmark_format=json", *arguments]
    command += [f"--benchmark_min_time={0.05 if check else 0.2}", "--benchmark_repetitions=5"]
    command.append("--benchmark_enable_random_interleaving=true")
    environment = os.environ | (variables or {})
    output = json.loads(subprocess.run(command, check=True, capture_output=True, text=True, env=environment).stdout)
    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0}
    times: dict[str, list[float]] = {}
    for row in output["benchmarks"]:
        if row.get("run_type", "iteration") == "iteration":
            case = row["run_name"].removesuffix("/manual_time")
            times.setdefault(case, []).append(row["real_time"] * scale[row["time_unit"]])
    return {case: pick(runs) for case, runs in times.items()}


def spread(times: dict[str, float], name: str, sizes: int = 4) -> float:
    """How much more an element costs at the dearest size than at the cheapest."""
    costs = [ms / int(case.split("/")[1]) for case, ms in times.items() if case.startswith(f"{name}/")]
    if len(costs) != sizes:
        raise SystemExit(f"{name} was measured at {len(costs)} sizes, not {sizes}")
    return max(costs) / min(costs)


def coding(report: Report, check: bool) -> None:
    """JSON in both directions, against the libraries' bare figures, and at four sizes. The least of the runs counts:
    other work on the machine only ever adds."""
    print("Coding a catalogue of 10,000 tunnels")
    cases = "(Records/|(RapidJson|Nlohmann)/10000$)" if check else "-Fresh"
    own = google("coding", check, f"--benchmark_filter={cases}", pick=min)
    fresh = google("coding", check, "--benchmark_filter=OnFreshMemory", pick=min)
    at = {case.split("/")[0]: ms for case, ms in own.items() if case.endswith("/10000")}
    report.line("encode: speed against RapidJSON's writer", at["encodeRapidJson"] / at["encodeRecords"], "x", 1, True)
    report.line("encode: speed against nlohmann's dump", at["encodeNlohmann"] / at["encodeRecords"], "x", 4, True)
    report.line("decode: speed against nlohmann's bare parse", at["decodeNlohmann"] / at["decodeRecords"], "x", 5, True)
    print("Cost of a tunnel among 100, 1,000, 10,000 and 100,000: the dearest against the cheapest")
    report.line("encode", spread(own, "encodeRecords"), "x", LINEAR)
    report.line("encode, on fresh memory", spread(fresh, "encodeOnFreshMemory"), "x", LINEAR)
    report.line("decode", spread(own, "decodeRecords"), "x", LINEAR)
    ratio = fresh["encodeOnFreshMemory/100000"] / fresh["copyOnFreshMemory/100000"]
    report.line("encode 100,000 on fresh memory against copying the document", ratio, "x", 2.5)


def routing(report: Report, check: bool) -> None:
    """The engine's configuration and the PAC script, against appending their lines. The least of the runs counts, as
    for the coding."""
    print("The engine's configuration and the PAC script for 1,000 tunnels, 1,000 proxies and 10,000 rules of 10 hosts")
    times = google("routing", check, pick=min)
    ratio = times["clashConfig/1000"] / times["appendLines/1000"]
    report.line("configuration: time against appending its finished lines", ratio, "x", 3)
    ratio = times["pac/1000"] / times["appendPacLines/1000"]
    report.line("PAC script: time against appending its finished lines", ratio, "x", 3)
    print("Cost of a rule at a tenth of that size, at that size and at ten times it, dearest against cheapest, beside")
    print("the same for appending, which is what larger memory costs")
    appending = spread(times, "appendLines", 3)
    report.line("configuration", spread(times, "clashConfig", 3) / appending, "x", 1)
    report.line("configuration, all names the same", spread(times, "clashConfigOfOneName", 3) / appending, "x", 1)
    report.line("PAC script", spread(times, "pac", 3) / spread(times, "appendPacLines", 3), "x", 1)


def portability(report: Report, check: bool) -> None:
    """The catalogue on its way to a file and back. The least of the runs counts, as for the coding."""
    print("A file of 10,000 tunnels, 1,000 proxies and 10,000 rules of 10 hosts, on the main thread")
    times = google("portability", check, pick=min)
    report.line("export", times["exportAll"], "ms", 100)
    report.line("backup", times["runBackup"], "ms", 100)
    report.line("restore, proxies and rules in memory included", times["restoreBackup"], "ms", 150)


def migration(report: Report, check: bool) -> None:
    """What the move from the predecessor costs each start, and the first one."""
    print("The move from the predecessor, at the start")
    # Files in memory, where there is such a place: what a disk takes for the same can be ten times more or less.
    memory = pathlib.Path("/dev/shm")
    times = google("migration", check, pick=min, variables={"TMPDIR": str(memory)} if memory.is_dir() else {})
    report.line("done before, 10,000 tunnels stored", times["migrationDone"], "ms", 1)
    report.line("made: 10,000 tunnels and 10,000 files", times["migrate/10000"], "ms", 2000)
    report.line("cost of a file among 1,000 and 10,000, dearest against cheapest",
                spread({case: ms for case, ms in times.items() if not case.endswith("/100")}, "migrate", 2), "x", 2)


def pac(report: Report, check: bool) -> None:
    """The PAC server and nginx under the same load, in turn."""
    print("PAC server, 64 clients at once, a connection for each request")
    program = BUILD / "benchmarks" / "fernwick_pac_server"
    command = ["/usr/bin/python3", "-B", ROOT / "script" / "bench_pac.py", program, "6" if check else "12", "2"]
    figures = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
    print(f"       requests per second: {figures['ours']:.0f}; nginx, one worker, the same body: {figures['nginx']:.0f}")
    # The load generator is at its end before either server is, so a check leaves room for its noise.
    report.line("requests per second against nginx", figures["ratio"], "x", 0.9 if check else 1, True)


def filtering(report: Report, check: bool) -> None:
    """One keystroke of the search."""
    print("Filtering 10,000 tunnels, one keystroke")
    for name, ms in sorted(google("filter", check).items()):
        report.line(name, ms, "ms", FRAME)


def screens(report: Report, check: bool) -> None:
    """What the windows do with 10,000 tunnels, with 10,000 rules, and with 20,000 known hosts."""
    print("The sidebar with 10,000 tunnels, the window of rules with 10,000 rules, settings with 20,000 known hosts;")
    print("the popover of the menu bar, made and painted, with 200 tunnels")
    for name, ms in sorted(google("screens", check).items()):
        limit = POPOVER if name == "openPopover" else OPENING if name.startswith("open") else FRAME
        report.line(name, ms, "ms", limit)


def runtime(report: Report, _check: bool) -> None:
    """The application under load, with real children."""
    print("Under load, with the window open")
    program = BUILD / "benchmarks" / "fernwick_runtime_benchmark"
    figures = json.loads(subprocess.run([program], check=True, capture_output=True, text=True).stdout)
    report.line("200 tunnels at once: all connected after", figures["connectAll"]["seconds"], "s", 2.0)
    report.line("200 tunnels at once: longest turn", figures["connectAll"]["longestTurn"], "ms", 50)
    report.line("100,000 lines of a child: longest turn", figures["flood"]["longestTurn"], "ms", 50)
    report.line("100,000 lines of a child: lines kept", figures["flood"]["lines"], "", 500)
    report.line("100,000 lines of a child: memory grown", figures["flood"]["grownKibibytes"] / 1024, "MiB", 12)
    report.line("a keystroke among 10,000 tunnels: median", figures["keystroke"]["median"], "ms", FRAME)
    stuck = figures["stuckDisk"]
    report.line("20 keystrokes, the disk stuck: longest", stuck["longest"], "ms", FRAME)
    report.line("20 keystrokes, the disk stuck: memory grown", stuck["grownKibibytes"] / 1024, "MiB", 16)
    report.line("20 keystrokes, the disk stuck: writes once it works", stuck["writes"], "", 2)
    report.line("20 keystrokes, the disk stuck: last state stored", float(stuck["complete"]), "", 1, True)


def changes(report: Report, _check: bool) -> None:
    """What two hundred tunnels cost that change their state again and again."""
    print("200 tunnels whose states change all the time, popover and main window open")
    program = BUILD / "benchmarks" / "fernwick_changes_benchmark"
    for argument, name, limit in (("", "processor time, all threads together", 5),
                                  ("routed", "the same with fifty rules routed", 7)):
        said = subprocess.run([program, argument], check=True, capture_output=True, text=True).stdout.splitlines()
        figures = json.loads(next(line for line in said if line.startswith("{")))  # the routing layer prints lines too
        report.line("changes in a second", figures["changesPerSecond"], "", 190, True)
        report.line(name, figures["percent"], "%", limit)


def tunnels(report: Report, check: bool) -> None:
    """What the application adds to ssh itself, with a private server."""
    print("Beside plain ssh, on a real server")
    program = BUILD / "benchmarks" / "fernwick_tunnel_benchmark"
    command = ["/usr/bin/python3", "-B", ROOT / "script" / "bench_tunnels.py", program, "7" if check else "15"]
    figures = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
    connect, idle, comeback = figures["connect"], figures["idle"], figures["comeback"]
    print(f"       until a forward accepts: {connect['plain']:.0f} ms by hand, {connect['ours']:.0f} ms", end=" ")
    print(f"through us; lsof alone takes {connect['lsof']:.0f} ms")
    report.line("connect: beyond plain ssh and lsof", connect["ours"] - connect["plain"] - connect["lsof"], "ms", 30)
    rate = figures["throughput"]
    report.line("bytes through a tunnel against plain ssh", rate["ours"] / rate["plain"], "x", 0.8, True)
    report.line("memory of an idle tunnel", idle["kibibytes"], "KiB", 100)
    report.line("wake-ups of 51 idle tunnels in five seconds", idle["wakeUps"], "", 5)
    print(f"       51 tunnels come back together within {comeback['milliseconds']:.0f} ms; the main thread is", end=" ")
    print(f"held for {comeback['longestTurn']:.0f} ms, {comeback['scansOnMain']:.0f} ms of them by lsof")
    report.line("the same without the port scans", comeback["longestTurn"] - comeback["scansOnMain"], "ms", 250)


def start(report: Report, _check: bool) -> None:
    """From the start to a painted window, against the barest window of the same kind."""
    print("Start to first painted window")
    programs = [BUILD / "benchmarks" / "fernwick_bare_window", BUILD / "Fernwick"]
    command = ["/usr/bin/python3", ROOT / "script" / "bench_start.py", "15", *programs]
    figures = json.loads(subprocess.run(command, check=True, capture_output=True, text=True).stdout)
    bare, ours = figures["fernwick_bare_window"], figures["Fernwick"]
    print(f"       bare {bare['milliseconds']:.0f} ms, {bare['kibibytes'] / 1024:.0f} MiB;", end=" ")
    print(f"Fernwick {ours['milliseconds']:.0f} ms, {ours['kibibytes'] / 1024:.0f} MiB")
    report.line("time against a bare window", ours["milliseconds"] / bare["milliseconds"], "x", 1.5)
    report.line("resident memory against a bare window", ours["kibibytes"] / bare["kibibytes"], "x", 1.5)


def main(check: bool) -> int:
    """Runs everything."""
    broken: list[str] = []
    parts = (coding, routing, portability, migration, pac, filtering, screens, runtime, changes, tunnels, start)
    for part in parts:
        for _ in range(TRIES if check else 1):
            report = Report()
            part(report, check)
            if not report.broken:
                break
        broken += report.broken
    print(f"promises broken: {', '.join(broken)}" if broken else "every promise kept")
    return 1 if check and broken else 0


if __name__ == "__main__":
    sys.exit(main("--check" in sys.argv[1:]))
