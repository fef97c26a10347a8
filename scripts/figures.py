#!/usr/bin/env python3
"""Writes the generated part of docs/figures.md and this version's line of bench/results/history.txt.

    scripts/figures.py RESULT [WINE...]     RESULT: what pq_bench wrote with repetitions
                                            WINE: what runs programs of the Windows build
"""
import json
import os
import pathlib
import platform
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
DOCUMENT = ROOT / "docs/figures.md"
HISTORY = ROOT / "bench/results/history.txt"
BEGIN, END = "<!-- begin of what scripts/figures.sh writes -->", "<!-- end -->"
RUNS = 25  # of a program
LONG_RUNS = 5
ROWS = 100_000
SAMPLE = "samples/two-socket-server"

COLLECTORS = [
    ("SEL", "Sel", 1000, 100000), ("SDR", "Sdr", 1000, 100000),
    ("sensors (ten cells a line)", "Sensors", 1000, 100000),
    ("LSI summary", "LsiSummary", 1000, 100000), ("LSI event log", "EventLog", 1000, 100000),
    ("firmware term log", "TermLog", 1000, 100000),
    ("drive lists (twelve cells a line)", "DriveLists", 1000, 100000),
    ("drive details", "DriveDetails", 1000, 100000), ("SAS2 log", "Sas2Log", 1000, 100000),
    ("Intel devices", "IntelDevices", 1000, 100000),
    ("RAID logs, whole collection", "RaidLogs", 1000, 100000),
    ("connections (five cells a line)", "Connections", 100, 100000),
    ("ARP (three cells a line)", "Arp", 50, 500),
]
FORMATS = ["table", "json", "ndjson", "csv", "html", "sqlite", "prometheus"]
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def read_benches(path):
    """The fastest repetition of each, by name."""
    best = {}
    for bench in json.loads(path.read_text())["benchmarks"]:
        if bench.get("error_occurred"):
            sys.exit(f"{bench['name']}: {bench['error_message']}")
        if bench["run_type"] != "iteration":
            continue
        name = bench["run_name"].removeprefix("BM_")
        if name not in best or bench["cpu_time"] < best[name]["cpu_time"]:
            best[name] = bench
    return best


def run(arguments, runs):
    """The least processor seconds of a program that works, and the most KiB that it had at once."""
    least, most = float("inf"), 0
    for _ in range(runs):
        process = subprocess.Popen(arguments, cwd=ROOT, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode not in (0, 1):  # 1: a sample has something that was not collected
            sys.exit(f"{arguments} ended with {process.returncode}")
        least = min(least, usage.ru_utime + usage.ru_stime)
        most = max(most, usage.ru_maxrss)
    return least, most


def measure_waiting(arguments, runs):
    """The least seconds from start to end: of a program under Wine others do a part of the work."""
    least = float("inf")
    for _ in range(runs):
        before = time.monotonic()
        subprocess.run(arguments, cwd=ROOT, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        least = min(least, time.monotonic() - before)
    return least


def write_table(heads, rows):
    lines = ["| " + " | ".join(heads) + " |", "|---" * len(heads) + "|"]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows]) + "\n"


def name_processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.partition(":")[2].strip()
    return platform.machine()


def main():
    best = read_benches(pathlib.Path(sys.argv[1]))
    wine = sys.argv[2:]
    history = {}

    def seconds(name):
        return best[name]["cpu_time"] * SECONDS[best[name]["time_unit"]]

    def note(key, value, digits=1):
        history[key] = f"{value:.{digits}f}"
        return history[key]

    collectors = []
    for title, name, few, many in COLLECTORS:
        small, large = best[f"{name}/{few}"], best[f"{name}/{many}"]
        whole, log, own = (large[key] for key in ("xfgets", "log/fgets", "own/fgets"))
        collectors.append((title, f"{small['ns/line']:.0f}", note(f"{name}.ns", large["ns/line"], 0),
                           f"{large['ns/line'] / small['ns/line']:.2f}", note(f"{name}.fgets", whole),
                           f"{log:.1f}", f"{max(whole - log - own, 0):.1f}", note(f"{name}.own", own),
                           f"{large['heap/text']:.1f}"))

    program = "build/native/bin/pqhost"
    nothing, _ = run(["true"], RUNS)
    cold, coldMemory = run([program, "collect", "--replay", SAMPLE, "--format", "none"], RUNS)
    coldJson, jsonMemory = run([program, "collect", "--replay", SAMPLE, "--format", "json"], RUNS)
    recording = [
        ("`true`", note("true.ms", nothing * 1e3, 2) + " ms", ""),
        ("`pqhost collect --replay`, cold, no format", note("cold.ms", cold * 1e3) + " ms",
         note("cold.MiB", coldMemory / 1024) + " MiB"),
        ("the same as JSON", note("cold_json.ms", coldJson * 1e3) + " ms", f"{jsonMemory / 1024:.1f} MiB"),
        ("one more recording in a process, all modules", note("more.ms", seconds("CollectOneMore") * 1e3, 2)
         + " ms", ""),
    ]
    for name in sorted((n for n in best if n.startswith("CollectModule/")), key=lambda n: -seconds(n)):
        recording.append((f"of which `{name.partition('/')[2]}`, with the machine around it",
                          f"{seconds(name) * 1e3:.2f} ms", ""))
    recording += [
        ("parts", note("parts.ms", seconds("Sample/TwoSocketParts") * 1e3, 2) + " ms", ""),
        ("parts and verdict", note("verdict.ms", seconds("Sample/TwoSocketAll") * 1e3, 2) + " ms", ""),
        ("parts and verdict of the first machine of a process",
         f"{seconds('Sample/TwoSocketOnce') * 1e3:.2f} ms", ""),
        ("parts and verdict of a host bus adapter alone", f"{seconds('Sample/HbaAll') * 1e3:.2f} ms", ""),
        ("parts and verdict of 100,000 log entries, 24 MB",
         note("events.ms", seconds("ManyEvents/All/100000") * 1e3, 0) + " ms", ""),
        ("registering the five modules", f"{seconds('LoadLibrary') * 1e6:.0f} µs", ""),
    ]
    if wine:
        host, library = "build/windows/bin/pqhost.exe", "build/windows/bin/repository_pqmodule.dll"
        without = measure_waiting(wine + [host, "modules"], LONG_RUNS)
        loaded = measure_waiting(wine + [host, "modules", "--plugin", library], LONG_RUNS)
        recording.append(("loading the library under Wine (`modules` with `--plugin` and without, by the clock)",
                          note("load.ms", max(loaded - without, 0) * 1e3, 0)
                          + f" ms more than {without * 1e3:.0f}", ""))

    formats = []
    for name in FORMATS:
        arguments = ["build/native/bin/write_long_table", name]
        base, baseMemory = run(arguments + ["0"], RUNS)
        spent, memory = run(arguments + [str(ROWS)], LONG_RUNS)
        formats.append((name, note(f"{name}.ms", (spent - base) * 1e3, 0) + " ms",
                        note(f"{name}.MiB", (memory - baseMemory) / 1024, 0) + " MiB"))

    version = re.search(r'"([\d.]+)"', (ROOT / "host/text/version.h").read_text()).group(1)
    load = os.getloadavg()[1]
    text = "\n".join([
        BEGIN, "",
        f"Version {version}, one run on {os.cpu_count()} cores of {name_processor()}, {platform.system()}, on which other work ran",
        f"(load {load:.1f}): processor time, of several runs the least.", "",
        "### Collectors", "",
        write_table(("", "ns a line, few", "many lines", "ratio", "all / `fgets`", "logger", "repository",
                     "own", "peak memory / text"), collectors),
        "### A recording of a two-socket server", "",
        write_table(("", "processor time", "peak memory"), recording),
        f"### {ROWS:,} rows of three columns, a fifth as many of two, and a text of as many lines", "",
        write_table(("format", "processor time", "memory"), formats), END])
    before, _, rest = DOCUMENT.read_text().partition(BEGIN)
    DOCUMENT.write_text(before + text + rest.partition(END)[2])

    lines = HISTORY.read_text().splitlines() if HISTORY.exists() else [
        "# What a version cost, one line each: scripts/figures.sh; .ns a line, .fgets and .own in fgets passes."]
    lines = [line for line in lines if not line.startswith(version + " ")]
    HISTORY.parent.mkdir(exist_ok=True)
    HISTORY.write_text("\n".join(lines + [" ".join(
        [version] + [f"{key}={value}" for key, value in history.items()])]) + "\n")


if __name__ == "__main__":
    main()
