#!/usr/bin/env python3
"""Compares the envelopes that the inspector reads with those that tshark reads: tshark_test.py INSPECTOR TSHARK.

Another reader of ONC RPC: xid, direction, program, version, procedure and status of each message, in the same order.
"""

import json
import pathlib
import random
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "captures"))
from packets import *

inspector, tshark = sys.argv[1:3]
FIELDS = ["rpc.xid", "rpc.msgtyp", "rpc.program", "rpc.programversion", "rpc.procedure", "rpc.state_accept"]


def exchange(chance, count):
    """Calls and replies with random bodies, credentials and verifiers."""
    for xid in range(1, count + 1):
        body = chance.randbytes(4 * chance.randrange(60))
        yield True, call(xid, chance.randrange(9), body, PROGRAM, chance.randrange(5), 1, chance.randbytes(24))
        status = chance.choice((0, 0, 1, 3, 4, 5))
        yield False, reply(xid, body if status == 0 else b"", status, verifier=chance.randbytes(chance.randrange(9)))


def captures():
    for seed in range(12):
        chance = random.Random(seed)
        messages = list(exchange(chance, 20))
        yield pcap([ethernet(packet) for i, (_, message) in enumerate(messages)
                    for packet in ip(datagram(message), i + 1, chance.choice((None, 32)))])
        peers = Connection(first=(2**32 - 300, 2**32 - 20))
        segments = peers.handshake()
        for from_client, message in messages:
            segments += peers.segments(from_client, record(message), chance.choice((30, 100, 1000)))
        yield pcapng(frames(segments + peers.close(), (0x8100,)))


def by_tshark(file):
    command = [tshark, "-r", file, "-d", "tcp.port==2049,rpc", "-d", "udp.port==2049,rpc", "-o",
               "rpc.dissect_unknown_programs:TRUE", "-Y", "rpc && !(_ws.expert.group == Checksum)", "-T", "fields"]
    for protocol in ("ip", "tcp", "udp"):
        command += ["-o", f"{protocol}.check_checksum:TRUE"]
    for field in FIELDS:
        command += ["-e", field]
    lines = subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()
    # The fields of the call come twice in a reply.
    return [tuple(int(value.split(",")[0], 0) if value else None for value in line.split("\t")) for line in lines]


def by_inspector(file):
    names = ["SUCCESS", "PROG_UNAVAIL", "PROG_MISMATCH", "PROC_UNAVAIL", "GARBAGE_ARGS", "SYSTEM_ERR"]
    done = subprocess.run([inspector, "decode", file, "--json"], capture_output=True, text=True)
    for line in done.stdout.splitlines():
        each = json.loads(line)
        is_reply = each["kind"] == "reply"
        yield (each["xid"], int(is_reply), each["program"], each["version"], each["procedure"],
               names.index(each["status"]) if is_reply else None)


failures = count = 0
for contents in captures():
    with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(contents)
        file.flush()
        theirs, ours = by_tshark(file.name), list(by_inspector(file.name))
        count += len(ours)
        if theirs != ours:
            failures += 1
            print(f"they differ:\n  tshark    {theirs[:4]}\n  inspector {ours[:4]}")
print(f"{count} messages, {failures} captures differ")
sys.exit(failures != 0 or count == 0)
