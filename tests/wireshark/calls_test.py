"""Compares what tshark shows of calls and replies of every outcome with calls.txt: calls_test.py COMPILER SOURCE_DIR"""

from __future__ import annotations

import difflib
import functools
import pathlib
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "captures"))
import packets
from packets import CLIENT, SERVER, Connection, datagram, denied, frames, pcap, record, reply

STATION = 0x20000C01  # of tests/golden/locker.x
UDP, TCP = [((CLIENT[0], port), (SERVER[0], port + 10000)) for port in (40000, 40001)]
call = functools.partial(packets.call, program=STATION)


def calls() -> bytes:
    """The capture."""
    unit = struct.Struct(">I").pack
    datagrams = [
        call(1), reply(1),
        call(2, 0, unit(7)), reply(2, unit(7)),
        call(3, 1, unit(12)), call(3, 1, unit(12)), reply(3), reply(3),
        call(4, 0x7FFFFFFF, version=2), reply(4, struct.pack(">iI3sx", -1, 3, b"jam")),
        call(5, 1, version=9), reply(5, struct.pack(">2I", 1, 2), status=2),
        call(6, 9, unit(12)), reply(6, status=3),
        call(7), reply(7, status=1),
        call(8, 1), reply(8, status=4),
        call(9), reply(9, status=77),
        call(10), denied(10, 0, 2, 2),
        call(11), denied(11, 1, 5),
        call(12), denied(12, 7),
        call(13)[:-4] + unit(401), reply(14),  # the verifier is too long; no such call
        call(15, 1, program=STATION + 1), reply(15),  # of another program
    ]
    pair = record(call(16)) + record(call(17, 1, unit(3)), [8, 30])
    cut = record(call(22, 1, unit(3)), [41])
    connection = Connection(*TCP)
    segments = [connection.segment(from_client, stream) for from_client, stream in [
        (True, pair[:50]),
        (True, pair[50:]),
        (False, record(reply(17, unit(3)), [24]) + record(reply(16, status=5))),
        (True, record(call(18, 1, unit(9), program=STATION + 1))),
        (True, b"no record of a call"),
        (True, unit(0x80000000) + record(call(19))),
        (True, unit(0x80020000) + call(20)),
        (True, record(call(21))),
        (True, cut),
        (True, cut),
    ]]
    made = frames([datagram(message, *UDP) for message in datagrams] + segments)
    for i, captured in ((-2, 47), (-1, 34)):  # within the second mark, and within the first fragment
        made[i] = made[i][:captured - len(cut)], len(made[i])
    return pcap(made, step=1_000_000)


def main() -> int:
    compiler, source = sys.argv[1], pathlib.Path(sys.argv[2])
    expected = source / "tests/wireshark/calls.txt"
    fields = ["frame.number", "_ws.col.Protocol", "_ws.col.Info", "quorva.rpc.request_in", "quorva.rpc.response_in"]
    fields += ["quorva.rpc.repeats", "quorva.rpc.time", "quorva.rpc.data", "_ws.expert.message"]
    with tempfile.TemporaryDirectory() as folder:
        script, path = pathlib.Path(folder, "quorva.lua"), pathlib.Path(folder, "calls.pcap")
        golden = source / "tests/golden"
        subprocess.run([compiler, "wireshark", "--out", script, "-I", golden, golden / "locker.x"], check=True)
        path.write_bytes(calls())
        command = ["tshark", "-2", "-X", f"lua_script:{script}", "-r", str(path), "-T", "fields", "-E", "separator=|"]
        for field in fields:
            command += ["-e", field]
        run = subprocess.run(command, capture_output=True, text=True, timeout=600, check=True)
    lines = run.stdout.splitlines()
    if sys.argv[3:] == ["update"]:
        expected.write_text(run.stdout)
    different = list(difflib.unified_diff(expected.read_text().splitlines(), lines, "calls.txt", "tshark", lineterm=""))
    print("\n".join(different) or f"{len(lines)} packets")
    return 1 if different or "Lua" in run.stdout + run.stderr else 0


sys.exit(main())
