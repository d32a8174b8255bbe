"""Compares what tshark shows of calls and replies of every outcome with calls.txt: calls_test.py COMPILER SOURCE_DIR"""

from __future__ import annotations

import difflib
import pathlib
import struct
import subprocess
import sys
import tempfile

import capture

STATION = 0x20000C01  # of tests/golden/locker.x
UDP, TCP = (40000, 50000), (40001, 50001)


def rejected(xid: int, *units: int) -> bytes:
    return struct.pack(f">{3 + len(units)}I", xid, 1, 1, *units)


def accepted(xid: int, *units: int) -> bytes:
    return struct.pack(f">{5 + len(units)}I", xid, 1, 0, 0, 0, *units)


def write(path: pathlib.Path) -> None:
    unit = struct.Struct(">I").pack
    with open(path, "wb") as file:
        out = capture.Capture(file)

        def exchange(*messages: bytes) -> None:
            for message in messages:
                out.datagram(UDP, message[4:8] == bytes(4), message)  # calls are the client's

        def call(xid: int, version: int = 1, procedure: int = 0, argument: bytes = b"") -> bytes:
            return capture.call(xid, STATION, version, procedure, argument)

        exchange(call(1), capture.reply(1, b""))
        exchange(call(2, 1, 0, unit(7)), capture.reply(2, unit(7)))
        exchange(call(3, 1, 1, unit(12)), call(3, 1, 1, unit(12)), capture.reply(3, b""), capture.reply(3, b""))
        exchange(call(4, 2, 0x7FFFFFFF), capture.reply(4, struct.pack(">iI3sx", -1, 3, b"jam")))
        exchange(call(5, 9, 1), accepted(5, 2, 1, 2))
        exchange(call(6, 1, 9, unit(12)), accepted(6, 3))
        exchange(call(7), accepted(7, 1))
        exchange(call(8, 1, 1), accepted(8, 4))
        exchange(call(9), accepted(9, 77))
        exchange(call(10), rejected(10, 0, 2, 2))
        exchange(call(11), rejected(11, 1, 5))
        exchange(call(12), rejected(12, 7))
        exchange(call(13)[:-4] + unit(401), capture.reply(14, b""))  # the verifier is too long; no such call
        exchange(capture.call(15, STATION + 1, 1, 1, b""), capture.reply(15, b""))  # of another program

        calls = capture.record(call(16), []) + capture.record(call(17, 1, 1, unit(3)), [8, 30])
        out.segment(TCP, True, calls[:50])
        out.segment(TCP, True, calls[50:])
        out.segment(TCP, False, capture.record(capture.reply(17, unit(3)), [24]) + capture.record(accepted(16, 5), []))
        out.segment(TCP, True, capture.record(capture.call(18, STATION + 1, 1, 1, unit(9)), []))
        out.segment(TCP, True, b"no record of a call")
        out.segment(TCP, True, unit(0x80000000) + capture.record(call(19), []))
        out.segment(TCP, True, unit(0x80020000) + call(20))
        out.segment(TCP, True, capture.record(call(21), []))
        for captured in (47, 34):  # within the second mark, and within the first fragment
            out.segment(TCP, True, capture.record(call(22, 1, 1, unit(3)), [41]), captured)


def main() -> int:
    compiler, source = sys.argv[1], pathlib.Path(sys.argv[2])
    expected = source / "tests/wireshark/calls.txt"
    fields = ["frame.number", "_ws.col.Protocol", "_ws.col.Info", "quorva.rpc.request_in", "quorva.rpc.response_in"]
    fields += ["quorva.rpc.repeats", "quorva.rpc.time", "quorva.rpc.data", "_ws.expert.message"]
    with tempfile.TemporaryDirectory() as folder:
        script, path = pathlib.Path(folder, "quorva.lua"), pathlib.Path(folder, "calls.pcap")
        golden = source / "tests/golden"
        subprocess.run([compiler, "wireshark", "--out", script, "-I", golden, golden / "locker.x"], check=True)
        write(path)
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
