#!/usr/bin/env python3
"""Prints the tables of a benchmark run, as Markdown: tables.py BUILD_FOLDER LOAD_TIME MEASUREMENTS...

MEASUREMENTS are the JSON files of the benchmark programs, LOAD_TIME the microseconds to load the library, BUILD_FOLDER
the build tree of the programs. A time is the median of the repetitions, in processor time of the thread. The last table
repeats the ratios of the others.
"""

import json
import platform
import re
import statistics
import subprocess
import sys
from datetime import date

MESSAGES = "TLBS"
SETS = {"library": "library", "own": "own module", "generic": "own module, the contract alone"}
WORKS = {"encode": ("Encode", "tirpc"), "decode": ("Decode and release", "tirpc"),
         "trace-encode": ("Encode with trace", "naive"), "trace-decode": ("Decode with trace, and release", "naive")}
PEERS = {"tirpc": "libtirpc", "naive": "naive trace"}


def first_line(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=True).stdout.split("\n")[0]
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def cached(folder, name):
    with open(f"{folder}/CMakeCache.txt", encoding="utf-8") as cache:
        found = re.search(rf"^{name}:[A-Z]+=(.*)$", cache.read(), re.MULTILINE)
    return found.group(1) if found else ""


def facts(folder, context):
    with open("/proc/cpuinfo", encoding="utf-8") as cpuinfo:
        model = re.search(r"^model name\s*: (.*)$", cpuinfo.read(), re.MULTILINE)
    kind = cached(folder, "CMAKE_BUILD_TYPE")
    flags = (cached(folder, "CMAKE_CXX_FLAGS") + " " + cached(folder, f"CMAKE_CXX_FLAGS_{kind.upper()}")).strip()
    print(f"- processor: {model.group(1) if model else platform.machine()}, {context['num_cpus']} to use")
    print(f"- compiler: {first_line(cached(folder, 'CMAKE_CXX_COMPILER'), '--version')}, {flags}")
    print(f"- system: {platform.system()} {platform.release()}")
    print(f"- date: {date.today().isoformat()}")
    print(f"- load when the run began: {context.get('load_avg', [0])[0]:.1f}")


def table(heads, rows):
    widths = [max(len(row[i]) for row in [heads, *rows]) for i in range(len(heads))]
    line = lambda row: "| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |"
    print(line(heads))
    print("|" + "|".join("-" * (width + 2) for width in widths) + "|")
    for row in rows:
        print(line(row))


def nanoseconds(time):
    return "-" if time is None else f"{time:,.0f} ns" if time >= 100 else f"{time:.1f} ns"


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    folder, load_time, *files = sys.argv[1:]
    contents = [open(file, encoding="utf-8").read() for file in files]
    runs = [json.loads(content) for content in contents if content]  # a program without a matching case writes nothing
    if not runs:
        sys.exit("tables: no measurements")
    samples = {}
    for one in (one for run in runs for one in run["benchmarks"]):
        if one["run_type"] == "iteration":
            samples.setdefault(one["run_name"], []).append(one["cpu_time"])
    times = {name: statistics.median(all_times) for name, all_times in samples.items()}

    def ratio(name, peer):
        """The codec's time divided by the limit's; for another peer, its time divided by the codec's."""
        codec, other = (times.get(f"{name}/{who}") for who in ("codec", peer))
        if not codec or not other:
            return "-"
        return f"{codec / other if peer == 'limit' else other / codec:.2f}"

    def row(name):
        cells = [nanoseconds(times[f"{name}/codec"])]
        for peer in ("limit", WORKS[name.split("/")[1]][1]):
            cells += [nanoseconds(times.get(f"{name}/{peer}")), ratio(name, peer)]
        return cells

    print("## Measured\n")
    facts(folder, runs[0]["context"])
    print(f"- loading the library: {load_time} microseconds")
    summary = []
    for work, (title, peer) in WORKS.items():
        rows = []
        for kind, what in SETS.items():
            names = [f"{kind}/{work}/{message}" for message in MESSAGES if f"{kind}/{work}/{message}/codec" in times]
            rows += [[f"{name[-1]}, {what}", *row(name)] for name in names]
            for other in ("limit", peer):
                ratios = [ratio(f"{kind}/{work}/{message}", other) for message in MESSAGES]
                if any(found != "-" for found in ratios):
                    between = "codec to limit" if other == "limit" else f"{PEERS[peer]} to codec"
                    summary.append([title, what, between, *ratios])
        if rows:
            print(f"\n### {title}\n")
            table(["", "codec", "limit", "codec to limit", PEERS[peer], f"{PEERS[peer]} to codec"], rows)
    print("\n### The ratios\n")
    table(["", "", "", *MESSAGES], summary)


main()
