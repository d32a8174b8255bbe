#!/usr/bin/env python3
"""Counts the instructions of each measured pass of the codec and compares them with the committed counts.

usage: instructions.py PROGRAM INSIDE BASELINE [update]

PROGRAM runs under valgrind, which writes its counts at each boundary that PROGRAM marks. A count more than 5 % above
its baseline fails. One more than 5 % below it is reported, so that `update` can refresh the baseline. INSIDE is the
same program, but the separate module is built as a part of the library. The report also has the ratio of each count to
that of the hand-written code and, for the separate module, to that of the same pass in INSIDE.
"""

import glob
import os
import re
import subprocess
import sys
import tempfile

TOLERANCE = 0.05


def fail(sentence):
    sys.exit(f"instructions: {sentence}")


def instructions(program):
    """The instructions of one pass, by the name of the case."""
    with tempfile.TemporaryDirectory() as folder:
        # No environment, so that a locale or a preloaded library does not count; no AVX2, so that the C library uses
        # the same functions on all processors.
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out", "--dump-before=passBoundary",
             os.path.abspath(program)],
            env={"PATH": os.environ.get("PATH", ""), "LC_ALL": "C", "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX2"},
            capture_output=True, text=True)
        if done.returncode != 0:
            fail(f"valgrind ended with status {done.returncode}:\n{done.stdout}{done.stderr}")
        totals = []
        for number in range(1, len(glob.glob(f"{folder}/out.*")) + 1):
            with open(f"{folder}/out.{number}", encoding="utf-8", errors="replace") as dump:
                totals.append(int(re.search(r"^summary: (\d+)", dump.read(), re.MULTILINE).group(1)))
    head, *cases = done.stdout.split("\n")[:-1]
    passes = int(head.split()[0])
    # Each case has two boundaries. The count at the second one is that of its passes.
    if len(totals) < 2 * len(cases):
        fail(f"{len(totals)} counts for {len(cases)} cases")
    return {case: round(totals[2 * i + 1] / passes) for i, case in enumerate(cases)}


def main():
    if len(sys.argv) not in (4, 5) or sys.argv[4:] not in ([], ["update"]):
        sys.exit(__doc__)
    program, inside_program, baseline = sys.argv[1:4]
    all_counts = instructions(program)
    counts = {case: count for case, count in all_counts.items() if not case.endswith("/limit")}

    if sys.argv[4:]:
        with open(baseline, "w", encoding="ascii") as out:
            out.write("# Instructions of one pass over each measured message; instructions.py rewrites them.\n")
            out.writelines(f"{case} {count}\n" for case, count in counts.items())
        print(f"{baseline} rewritten")
        return

    with open(baseline, encoding="ascii") as lines:
        known = dict(line.split() for line in lines if not line.startswith("#"))
    if list(known) != list(counts):
        fail(f"{baseline} lists other cases; rewrite it with update")
    inside = instructions(inside_program)
    print(f"{'':24} {'baseline':>9} {'counted':>9} {'change':>7} {'to limit':>9} {'to inside':>9}")
    costlier = 0
    for case, count in counts.items():
        before = int(known[case])
        change = count / before - 1
        verdict = ""
        if change > TOLERANCE:
            verdict = "  costs more"
            costlier += 1
        elif change < -TOLERANCE:
            verdict = "  costs less: the baseline may be refreshed"
        to_limit = f"{count / all_counts[case + '/limit']:.2f}"
        to_inside = f"{count / inside[case]:.2f}" if case.startswith("own/") else ""
        print(f"{case:24} {before:9} {count:9} {change:+7.1%} {to_limit:>9} {to_inside:>9}{verdict}")
    print(f"{len(counts) - costlier} passed, {costlier} failed")
    sys.exit(1 if costlier else 0)


main()
