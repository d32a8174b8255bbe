#!/usr/bin/env python3
"""Prints the tables of a benchmark run, as Markdown: tables.py MEASUREMENTS BUILD_FOLDER

MEASUREMENTS is what the benchmark wrote as JSON, BUILD_FOLDER the tree that it was built in. A time is the median of the
repetitions, in processor time of the thread.
"""

import json
import platform
import re
import statistics
import subprocess
import sys
from datetime import date

MESSAGES = {"T": "T, 12 attributes of a job, 500 bytes", "L": "L, 44 attributes, 996 bytes",
            "B": "B, 240 numbers, 964 bytes", "S": "S, two numbers and an empty list, 12 bytes"}
# What is wanted: at most so many times the limit's time, at least so many times faster than the slow peer.
TARGETS = {
    "encode": ("tirpc", {"T": (0.95, 9), "L": (1.15, 8.5), "B": (0.65, 14), "S": (1.5, 6)}),
    "decode": ("tirpc", {"T": (1.0, 6), "L": (1.10, 4), "B": (0.65, 16), "S": (1.3, 7)}),
    "trace-encode": ("naive", {"T": (1.5, 8), "L": (1.5, 8), "B": (1.5, 8), "S": (None, None)}),
    "trace-decode": ("naive", {"T": (1.5, None), "L": (1.5, None), "B": (1.5, None), "S": (1.5, None)}),
}
TITLES = {"encode": "Encode", "decode": "Decode and free", "trace-encode": "Encode with trace",
          "trace-decode": "Decode with trace, and free"}
PEERS = {"tirpc": "libtirpc", "naive": "naive trace", "protobuf": "protobuf", "flatbuffers": "FlatBuffers",
         "capnp": "Cap'n Proto", "lanes": "limit, two lanes"}


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
    load = context.get("load_avg", [0])[0]
    print(f"- load when the run began: {load:.1f}")


def table(heads, rows):
    widths = [max(len(str(row[i])) for row in [heads, *rows]) for i in range(len(heads))]
    line = lambda row: "| " + " | ".join(str(cell).ljust(width) for cell, width in zip(row, widths)) + " |"
    print(line(heads))
    print("|" + "|".join("-" * (width + 2) for width in widths) + "|")
    for row in rows:
        print(line(row))


def nanoseconds(time):
    return "-" if time is None else f"{time:,.0f} ns" if time >= 100 else f"{time:.1f} ns"


def judged(value, bound, at_most):
    """A ratio, and the bound that it keeps or misses."""
    if value is None:
        return "-"
    if bound is None:
        return f"{value:.2f}"
    kept = value <= bound if at_most else value >= bound
    return f"{value:.2f} ({'at most' if at_most else 'at least'} {bound:g}{'' if kept else ', missed'})"


def ratio(a, b):
    return a / b if a is not None and b is not None else None


def work_table(work, time):
    slow, targets = TARGETS[work]
    rows = []
    for message, (most, least) in targets.items():
        library, limit, peer = (time(f"{work}/{message}/{name}") for name in ("quorva", "limit", slow))
        if library is None:
            continue
        rows.append([message, nanoseconds(library), nanoseconds(limit), judged(ratio(library, limit), most, True),
                     nanoseconds(peer), judged(ratio(peer, library), least, False)])
    if not rows:
        return
    print(f"\n### {TITLES[work]}\n")
    limit = "trace limit" if work.startswith("trace") else "limit"
    table(["", "library", limit, "library to limit", PEERS[slow], f"times faster than {PEERS[slow]}"], rows)


def peer_table(work, time):
    names = ("protobuf", "flatbuffers", "capnp", "lanes")
    rows = [[message, nanoseconds(time(f"{work}/{message}/quorva")), *(nanoseconds(time(f"{work}/{message}/{name}")) for name in names)]
            for message in TARGETS[work][1] if time(f"{work}/{message}/quorva") is not None]
    if rows:
        print(f"\n### {TITLES[work]}: other formats, and the limit with two numbers a swap\n")
        table(["", "library", *(PEERS[name] for name in names)], rows)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as measurements:
        run = json.load(measurements)
    cases = {}
    for one in run["benchmarks"]:
        if one["run_type"] == "iteration":
            cases.setdefault(one["run_name"], []).append(one)

    def time(name):
        return statistics.median(one["cpu_time"] for one in cases[name]) if name in cases else None

    def counter(name, which):
        return cases[name][0][which]

    print("## Measured\n")
    facts(sys.argv[2], run["context"])
    print()
    print("\n".join(f"- {sentence}" for sentence in MESSAGES.values()))
    for work in TARGETS:
        work_table(work, time)
    for work in ("encode", "decode"):
        peer_table(work, time)

    rows = []
    for order in ("mixed", "repeated"):
        for peer in ("quorva", "tirpc"):
            name = f"{order}/recode/{peer}"
            if name in cases:
                rows.append([order, "library" if peer == "quorva" else PEERS[peer],
                             nanoseconds(time(name) / counter(name, "messages")), f"{time(name) / counter(name, 'bytes'):.2f} ns"])
    if rows:
        print("\n### A thousand messages of many types: decode, encode, free\n")
        table(["order", "", "a message", "a byte"], rows)

    rows = []
    for count in sorted({int(name.split("/")[-1]) for name in cases if name.startswith("fields/")}):
        both = [f"fields/{work}/AttributeSeq/{count}" for work in ("encode", "decode")]
        rows.append([f"{count}", *(f"{time(name) / count:.2f} ns" if name in cases else "-" for name in both)])
    if rows:
        print("\n### A number in an array of so many\n")
        table(["numbers", "encode", "decode and free"], rows)


main()
