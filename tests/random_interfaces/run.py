#!/usr/bin/env python3
"""Proves on random interface files that what `quorvaxdrc check` accepts compiles and codes right.

    run.py --compiler build/bin/quorvaxdrc --files 40 --seed 1 --peer

For every library of generate.py, after the names that the compiler refuses are replaced:
- the headers compile before and after those of C++ and POSIX, without a warning, and declare what the files say;
- the units compile, and code each type as wire.py does: valid and damaged messages, with and without a trace, into a
  buffer that is too small; the trace is XML with the expected elements; a release pass releases everything;
- with --peer, rpcgen accepts the output of `quorvaxdrc plain`, and its routines give the same bytes.

A finding has its seed, a folder, and the command that repeats it. Names that the compiler accepts but that do not
compile are listed as suspects and replaced, so that the rest of the library is tried too.
"""

import argparse
import multiprocessing
import pathlib
import shlex
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True  # which would be among the sources

import generate
from trial import SOURCE, Trial, prepare


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    build = SOURCE / "build"
    add = parser.add_argument
    add("--compiler", default=build / "bin/quorvaxdrc", help="quorvaxdrc")
    add("--include", action="append", help="folders of headers that generated code includes")
    add("--library", action="append", help="libraries to link, in this order")
    add("--flags", type=shlex.split, default=[], help="more flags of the C++ compilers")
    add("--compilers", type=lambda text: text.split(","), default=["g++", "clang++-14"])
    add("--files", type=int, default=40, help="how many at least")
    add("--seed", type=int, default=1, help="of the first library")
    add("--names", type=lambda text: text.split(","), default=generate.CLASSES,
        help=f"classes of strange names, of {','.join(generate.CLASSES)}; may be empty")
    add("--peer", action="store_true", help="compare with rpcgen and libtirpc")
    add("--valgrind", type=int, metavar="N", help="run every Nth library's program under valgrind")
    add("--jobs", type=int, default=1)
    add("--work", type=pathlib.Path, help="folder for libraries with findings (default: a new one)")
    given = parser.parse_args()
    given.include = given.include or [SOURCE / each for each in ("include", "runtime", "platform", "build/api/include")]
    given.library = given.library or [build / "lib" / each for each in
                                      ("libquorvaruntime.a", "libQUORVAPIXDR.so", "libquorvaplatform.so")]
    given.work = (given.work or pathlib.Path(tempfile.mkdtemp(prefix="random_interfaces."))).resolve()
    given.work.mkdir(parents=True, exist_ok=True)
    return given


def tried(seedAndGiven):
    """Runs a trial in another process. Returns its results as texts and numbers."""
    sys.setrecursionlimit(20000)
    trial = Trial(*seedAndGiven)
    trial.run()
    return {"seed": trial.seed, "files": len(trial.library.modules), "accepted": trial.accepted,
            "refusal": trial.refusal, "refused": trial.refused, "messages": trial.messages, "folder": trial.folder,
            "findings": [str(each) for each in trial.findings], "suspects": trial.suspects}


def main():
    given = arguments()
    prepare(given)
    files = accepted = refused = messages = faulty = 0
    suspects = {}
    with multiprocessing.Pool(given.jobs) as pool:
        for made in pool.imap(tried, ((seed, given) for seed in range(given.seed, given.seed + given.files))):
            seed = made["seed"]
            files += made["files"]
            accepted += made["files"] * made["accepted"]
            refused += made["refused"]
            messages += made["messages"]
            if not made["accepted"]:
                print(f"seed {seed}: refused: {made['refusal']}")
            for finding in made["findings"]:
                print(f"seed {seed}: {finding}")
            for suspect, sentence in made["suspects"].items():
                suspects.setdefault(suspect, (seed, sentence))
            if made["findings"] or made["suspects"]:
                faulty += 1
                print(f"seed {seed}: {len(made['findings'])} findings, {len(made['suspects'])} suspects: "
                      f"{made['folder']}; again: {shlex.join(sys.argv)} --files 1 --seed {seed}")
            sys.stdout.flush()
            if files >= given.files:
                pool.terminate()
                break
    for suspect, (seed, sentence) in sorted(suspects.items()):
        print(f"accepted, but suspect: {suspect} (seed {seed}): {sentence[:200]}")
    print(f"{files} files, {accepted} accepted after {refused} names were replaced, {messages} messages, "
          f"{faulty} libraries with findings, {len(suspects)} suspects")
    if not faulty:
        shutil.rmtree(given.work)
    sys.exit(1 if faulty or accepted < 0.8 * files else 0)


if __name__ == "__main__":
    main()
