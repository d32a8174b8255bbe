"""Holds the dissector against the inspector: compare.py COMPILER SOURCE_DIR < LINES

Reads what the program `wireshark_messages` prints. Each message travels as the argument of a call and the result of its
reply, in datagrams or in records of several fragments and segments; some datagrams are cut. tshark has to show the
fields and findings that the inspector has. Then each capture is damaged in many places, which must not stop the script.
"""

from __future__ import annotations

import json
import math
import pathlib
import random
import re
import subprocess
import sys
import tempfile
from collections.abc import Iterator
from typing import Any

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "captures"))
from packets import CLIENT, SERVER, Connection, call, datagram, frames, pcap, record, reply

PROGRAM, VERSION = 0x20000101, 1
MOST_DIFFERENCES = 20
DEEPEST_SHOWN = 200
LONGEST_TEXT = 200  # bytes of a finding that are compared, because Wireshark cuts long texts
BATCH = 2000        # messages of one run of tshark

Pairs = list[tuple[str, Any]]
Message = dict[Any, Any]
Packet = tuple[bytes, int]  # what is captured, and the size of the whole


def interface_of(types: list[str], modules: list[str]) -> str:
    """An interface file with a procedure for each type, which takes and returns it."""
    lines = [f"import {module};" for module in modules] + ["program CARRIER {", "    version CARRIER_1 {"]
    lines += [f"        {name} carry{name}({name}) = {number};" for number, name in enumerate(types, 1)]
    return "\n".join([*lines, f"    }} = {VERSION};", f"}} = {PROGRAM};", ""])


def segments(peers: Connection, is_call: bool, stream: bytes, chance: random.Random) -> Iterator[Any]:
    """The bytes in segments. By its first call a connection is known, so the first segment is not any part of it."""
    size = chance.choice([1, 3, 4, 20, 28, 100]) if stream[:1] == b"\x80" and stream[3] % 4 == 0 else 28
    while stream:
        yield peers.segment(is_call, stream[:size])
        stream = stream[size:]
        size = chance.randrange(1, 1400)


def packets_of(messages: list[Message], numbers: dict[str, int], chance: random.Random) -> Iterator[Packet]:
    connections: dict[tuple[str, int], Connection] = {}
    for begin in range(0, len(messages), 8):
        client = (CLIENT[0], 40000 + begin % 64)
        streams = {True: b"", False: b""}  # calls, then replies
        for xid, message in enumerate(messages[begin : begin + 8], begin):
            body = bytes.fromhex(message["message"])
            for is_call, payload in (
                (True, call(xid, numbers[message["type"]], body, PROGRAM, VERSION)), (False, reply(xid, body))
            ):
                envelope = len(payload) - len(body)
                if xid % 2 == 0 and len(payload) < 65000:
                    lost = len(body) - chance.randrange(len(body) + 1) if xid % 8 == 0 else 0
                    message["is_cut", is_call] = lost > 0
                    [frame] = frames([datagram(payload, client, (SERVER[0], 50000))])
                    yield frame[: len(frame) - lost], len(frame)
                else:
                    places = range(envelope, len(payload))
                    cuts = sorted(chance.sample(places, min(chance.randrange(4), len(places))))
                    streams[is_call] += record(payload, cuts)
        peers = connections.setdefault(client, Connection(client, (SERVER[0], 50001)))
        for is_call, stream in streams.items():
            for frame in frames(segments(peers, is_call, stream, chance)):
                yield frame, len(frame)


def damaged(packets: list[Packet], chance: random.Random) -> Iterator[Packet]:
    """Changes bytes after the headers of UDP and TCP in many packets, and cuts some packets."""
    for captured, size in packets:
        packet = bytearray(captured)
        head, kept = 54 if packet[23] == 6 else 42, len(packet)
        if kept > head:
            for _ in range(chance.choice([0, 0, 1, 3, 20])):
                end = min(kept, head + 44) if chance.random() < 0.5 else kept  # often in the envelope
                packet[chance.randrange(head, end)] = chance.choice([0, 1, 128, 255, chance.randrange(256)])
            if chance.random() < 0.1:
                del packet[chance.randrange(head, kept) :]
        yield bytes(packet), size


def subtrees(pairs: Pairs, key: str) -> Iterator[Pairs]:
    for name, value in pairs:
        if name == key:
            yield value
        elif isinstance(value, list):
            yield from subtrees(value, key)


def flatten(pairs: Pairs, depth: int, fields: list[Any], findings: list[Any]) -> None:
    """Adds the fields with their depths, and the findings with their texts."""
    for name, value in pairs:
        if name == "_ws.expert":
            code = next(key for key, _ in value if key.startswith("quorva.finding."))
            findings.append([code.removeprefix("quorva.finding."), dict(value)["_ws.expert.message"][:LONGEST_TEXT]])
            continue
        if name.startswith("quorva.") and not name.endswith("_tree") and not name.startswith("quorva.rpc."):
            fields.append([depth, name, value if isinstance(value, str) else ""])
        if isinstance(value, list):
            flatten(value, depth + 1, fields, findings)


def is_same(shown: list[Any], expected: list[Any]) -> bool:
    depth, (field, value, *kind) = expected
    if shown[:2] != [min(depth, DEEPEST_SHOWN), field]:
        return False
    if kind == ["float"]:
        found, wanted = float(shown[2]), float(value)
        return math.isclose(found, wanted, rel_tol=1e-5, abs_tol=1e-44) or math.isnan(found) and math.isnan(wanted)
    if kind == ["string"]:
        text = bytes.fromhex(value).partition(b"\0")[0].decode("utf-8", "surrogateescape")
        return bool(shown[2] == re.sub("[\udc80-\udcff]", "\ufffd", text))
    return bool(shown[2] == value)


def differences(layer: Pairs, message: Message, is_call: bool) -> Iterator[str]:
    fields: list[Any] = []
    findings: list[Any] = []
    flatten(layer, 0, fields, findings)
    is_cut = message.get(("is_cut", is_call), False)
    expected, wanted = message["fields"], [[code, text[:LONGEST_TEXT]] for code, text in message["findings"]]
    if is_cut and findings and findings[-1][0] == "capture-cut":
        findings.pop()
        if not all(each in wanted for each in findings) or len(fields) > len(expected):
            yield f"findings {findings}, expected some of {wanted}"
        expected = expected[: len(fields)]
    elif sorted(findings) != sorted(wanted):
        yield f"findings {findings}, expected {wanted}"
    for shown, each in zip(fields, expected):
        if not is_same(shown, each):
            yield f"field {shown}, expected {each}"
            return
    if len(fields) != len(expected):
        yield f"{len(fields)} fields, expected {len(expected)}; the last one is {fields[-1:]}"


def dissected(script: pathlib.Path, path: pathlib.Path, *options: str) -> str:
    """What tshark prints of the capture. An error of the script ends the program."""
    command = ["tshark", "-X", f"lua_script:{script}", "-r", str(path), *options]
    run = subprocess.run(command, capture_output=True, timeout=600, check=True)
    text = run.stdout.decode("utf-8", "replace")
    if "Lua Error" in text or b"Lua" in run.stderr:
        place = text.find("Lua Error")
        sys.exit(f"{text[place : place + 300]} {run.stderr[:1000]!r}")
    return text


def layers_of(script: pathlib.Path, path: pathlib.Path) -> Iterator[Pairs]:
    """What tshark shows of each message in the capture."""
    for packet in json.loads(dissected(script, path, "-2", "-T", "json", "-J", "quorva"), object_pairs_hook=list):
        yield from subtrees(packet, "quorva")


def main() -> int:
    compiler, source = sys.argv[1], pathlib.Path(sys.argv[2])
    messages: list[Message] = [json.loads(line) for line in sys.stdin]
    types = list(dict.fromkeys(message["type"] for message in messages))
    numbers = {name: number for number, name in enumerate(types, 1)}
    golden = ["locker", "station", "colours", "corners", "bodies", "far_off/corner_9", "steps"]
    modules = [str(path.relative_to(source / "types"))[:-2] for path in sorted((source / "types").rglob("*.x"))]
    chance = random.Random(1)
    shown = different = 0
    with tempfile.TemporaryDirectory() as folder:
        script, file = pathlib.Path(folder, "quorva.lua"), pathlib.Path(folder, "carrier.x")
        file.write_text(interface_of(types, modules + golden))
        folders = ["-I", folder, "-I", str(source / "types"), "-I", str(source / "tests/golden")]
        subprocess.run([compiler, "wireshark", "--out", str(script), *folders, str(file)], check=True)
        for begin in range(0, len(messages), BATCH):
            batch = messages[begin : begin + BATCH]
            path = pathlib.Path(folder, "messages.pcap")
            packets = list(packets_of(batch, numbers, chance))
            path.write_bytes(pcap(packets))
            seen = set()
            for layer in layers_of(script, path):
                heads = dict(layer)
                if "quorva.rpc.xid" not in heads:
                    continue  # the number of messages tells
                xid, is_call = int(heads["quorva.rpc.xid"], 16), "quorva.rpc.request_in" not in heads
                seen.add((xid, is_call))
                for difference in differences(layer, batch[xid], is_call):
                    different += 1
                    if different <= MOST_DIFFERENCES:
                        kind = "call" if is_call else "reply"
                        print(f"{batch[xid]['type']} {kind} {batch[xid]['message'][:200]}: {difference[:600]}")
            shown += len(seen)
            path.write_bytes(pcap(damaged(packets, chance)))
            dissected(script, path, "-2", "-V", "-O", "quorva")
            if len(seen) != 2 * len(batch):
                different += 1
                print(f"{len(seen)} messages are shown, expected {2 * len(batch)}")
    print(f"{len(types)} types, {shown} messages shown, {different} differences")
    return 0 if shown > 0 and different == 0 else 1


sys.exit(main())
