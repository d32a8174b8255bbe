#!/usr/bin/env python3
"""Reads written captures with the inspector: capture_test.py INSPECTOR [PROPERTY...]

Every way to put the same messages into packets gives the same messages; what is missing is told; hostile captures end
soon, and in little memory.
"""

import json
import pathlib
import random
import resource
import struct
import subprocess
import sys

here = pathlib.Path(__file__).parent
sys.path.insert(0, str(here.parents[1] / "captures"))
from packets import *

inspector = sys.argv[1]
interface = here / "spooler.x"
sanitized = "asan" in inspector or "fuzz" in inspector
failures = 0


def check(holds, what):
    global failures
    if not holds:
        failures += 1
        print(f"not so: {what}")


def run(capture, *options, seconds=20):
    """Lists a capture. Returns the objects, the status and the errors."""
    def limits():
        if not sanitized:
            resource.setrlimit(resource.RLIMIT_AS, (600 << 20, 600 << 20))
    done = subprocess.run([inspector, "decode", "--from", "pcap", "-", "--json", "--interface", interface, *options],
                          input=capture, capture_output=True, timeout=seconds, preexec_fn=limits)
    return [json.loads(line) for line in done.stdout.splitlines()], done.returncode, done.stderr.decode()


def meaning(objects):
    """What does not depend on the packets."""
    return [{key: each[key] for key in each if key not in ("time", "date", "packets", "packet", "elapsed")}
            for each in objects]


TICKET = struct.pack(">I", 7) + opaque(b"Anna")
EXCHANGE = [(True, call(1, 1, opaque(b"Anna"))), (False, reply(1, TICKET)),
            (True, call(2, 3, TICKET, flavor=1, credential=bytes(20))), (False, reply(2)),
            (True, call(3, 2, TICKET)), (False, reply(3, TICKET, verifier=b"12345"))]


def conversation(cut=None, fragment=None):
    """The exchange as segments; each record in pieces of `cut` bytes."""
    connection = Connection()
    segments = connection.handshake()
    for from_client, message in EXCHANGE:
        stream = record(message, range(fragment, len(message), fragment) if fragment else ())
        segments += connection.segments(from_client, stream, cut or len(stream))
    return segments + connection.close()


def expected():
    return meaning(run(pcap(frames(conversation())))[0])


def same(what, packets, **options):
    objects, status, errors = run(pcap(packets, **options))
    check(meaning(objects) == EXPECTED and status == 0 and not errors,
          f"{what} gives the same messages: {status} {errors} {meaning(objects)}")


# ---- The same messages -----------------------------------------------------------------------------------------------

def property_values():
    check([each.get("value") for each in EXPECTED] ==
          ["Anna", {"number": 7, "owner": "Anna"}, {"number": 7, "owner": "Anna"}, None, {"number": 7, "owner": "Anna"},
           {"number": 7, "owner": "Anna"}], f"the values are read: {EXPECTED}")
    check([each.get("call") for each in EXPECTED] == [None, 1, None, 3, None, 5], "replies name their calls")
    check([each["name"] for each in EXPECTED] == [f"SPOOLER.FIRST.{name}" for name in
          ("CREATE", "CREATE", "DELETE", "DELETE", "FIND", "FIND")], "the procedures are named")


def property_cuts():
    for cut in (1, 2, 3, 5, 7, 11, 13, 16, 40, 64):
        same(f"segments of {cut} bytes", frames(conversation(cut)))
    for fragment in (1, 4, 7, 12, 50):
        same(f"fragments of {fragment} bytes", frames(conversation(fragment=fragment)))
        same(f"fragments of {fragment} bytes in segments of 3", frames(conversation(3, fragment)))


def property_one_segment():
    """All calls in one segment, then all replies in one."""
    sides = [b"".join(record(message) for client, message in EXCHANGE if client is side) for side in (True, False)]
    for size in (1, 9, 1000):
        connection = Connection()
        segments = connection.handshake()
        for from_client, stream in zip((True, False), sides):
            segments += connection.segments(from_client, stream, size)
        objects, status, _ = run(pcap(frames(segments + connection.close())))
        check(status == 0 and sorted(each["xid"] for each in objects) == [1, 1, 2, 2, 3, 3] and
              [each.get("value") for each in objects if each["kind"] == "reply"] ==
              [{"number": 7, "owner": "Anna"}, None, {"number": 7, "owner": "Anna"}],
              f"several records in segments of {size} bytes are read")


def property_order():
    """Segments of one record come in any order, and twice."""
    chance = random.Random(1)
    for _ in range(20):
        connection = Connection(first=(2**32 - 100, 2**32 - 20))
        segments = connection.handshake()
        for from_client, message in EXCHANGE:
            pieces = connection.segments(from_client, record(message), 9)
            # They acknowledge nothing.
            pieces = [piece[:3] + (piece[3][:8] + bytes(4) + piece[3][12:],) for piece in pieces]
            shuffled = pieces + chance.choices(pieces, k=4)
            chance.shuffle(shuffled)
            segments += shuffled
        same("another order with retransmissions", frames(segments + connection.close()))


def property_overlaps():
    connection = Connection()
    segments = connection.handshake()
    for from_client, message in EXCHANGE:
        stream = record(message)
        start = connection.next[from_client]
        for i in range(0, len(stream), 10):
            connection.next[from_client] = start + max(0, i - 7)
            segments.append(connection.segment(from_client, stream[max(0, i - 7):i + 10]))
    same("overlapping segments", frames(segments))


def property_links():
    segments = conversation()
    packets = [packet for segment in segments for packet in ip(segment)]
    for name, (link, header) in LINKS.items():
        same(f"link type {name}", [header(packet) for packet in packets], link=link)
    same("virtual networks", frames(segments, (0x88A8, 0x8100)))
    same("padding after short packets", [ethernet(packet).ljust(60, b"\xff") for packet in packets])
    same("fragments of IP", [ethernet(piece) for i, segment in enumerate(segments)
                             for piece in reversed(ip(segment, i, 24))])
    same("big-endian", frames(segments), order=">")
    same("nanoseconds", frames(segments), nanoseconds=True)
    for order in "<>":
        objects, status, _ = run(pcapng(frames(segments), order))
        check(meaning(objects) == EXPECTED and status == 0, f"pcapng {order} gives the same messages")


def without(objects, *keys):
    return [{key: each[key] for key in each if key not in keys} for each in objects]


def property_transports():
    """UDP over IPv4 and IPv6 has the same messages."""
    for client, server in ((CLIENT, SERVER), (("fe80::1", 700), ("fe80::2", 2049))):
        datagrams = [datagram(message, client, server) for _, message in EXCHANGE]
        ways = {"whole": {}}
        ways["fragments"] = {"fragment": 16}
        if ":" in client[0]:
            ways["options"] = {"extension": 60, "extensions": bytes(16)[:1] + b"\x01" + bytes(14)}
        for way, options in ways.items():
            packets = [ethernet(packet) for i, each in enumerate(datagrams) for packet in ip(each, i, **options)]
            objects, status, errors = run(pcap(packets))
            check(without(meaning(objects), "from", "to", "transport") ==
                  without(EXPECTED, "from", "to", "transport") and status == 0 and not errors,
                  f"UDP, {client[0]}, {way}: {status} {errors} {objects}")


# ---- What is missing, and what is wrong ------------------------------------------------------------------------------

def property_losses():
    """A lost segment costs the messages in it and is told, with its size; the others are read."""
    segments = conversation(10)
    for lost in (i for i, segment in enumerate(segments) if len(segment[3]) > 20):
        objects, status, _ = run(pcap(frames(segments[:lost] + segments[lost + 1:])))
        told = json.dumps(objects)
        known = [each for each in meaning(objects) if each.get("value") and "cut" not in each]
        check(status == 3 and f"{len(segments[lost][3]) - 20} bytes" in told,
              f"the loss of segment {lost} is told: {told}")
        check(len(known) >= 3 and all(any(each["value"] == other.get("value") and each["xid"] == other["xid"]
                                          for other in EXPECTED) for each in known),
              f"without segment {lost} the others are read: {told}")


def property_cut_packets():
    """A capture of the first bytes of each packet."""
    for kept in range(0, 140):
        objects, status, _ = run(pcap(frames(conversation()), kept=kept))
        check(status == 3 or (status == 1 and not objects) or meaning(objects) == EXPECTED,
              f"{kept} bytes of each packet: {status}")
        whole = [each for each in meaning(objects) if "xid" in each and "cut" not in each and each["size"] > 0]
        check(all(any(each["size"] == other["size"] and each["xid"] == other["xid"] for other in EXPECTED)
                  for each in whole), f"{kept} bytes of each packet: nothing is read wrongly: {whole}")
    frame = frames([datagram(call(1, 2, TICKET))])[0]
    objects, status, _ = run(pcap([frame], kept=len(frame) - 3))
    check(status == 3 and objects[0]["cut"] and objects[0]["value"] == {"number": 7}, f"a cut datagram: {objects}")


def stream(*contents, cut=1000):
    """One direction with these bytes, without a handshake."""
    return frames(Connection().segments(True, b"".join(contents), cut))


def property_resynchronises():
    """After bytes that are no record, the next record is read."""
    good = record(call(9, 2, TICKET))
    chance = random.Random(2)
    garbages = [b"\x80\0\0\x30garbage!", b"\x7f\xff\xff\xff", b"GET / HTTP/1.1\r\n\r\n", bytes(101),
                b"\x80\0\0\x02ab", b"\x80\0\0\0", bytes(4) * 40 + b"\x80"] + [chance.randbytes(n) for n in range(1, 60)]
    for garbage in garbages:
        for cut in (1, 7, 1000):
            objects, status, _ = run(pcap(stream(good, garbage, good, good, cut=cut)))
            whole = [each for each in objects if each.get("value") == {"number": 7, "owner": "Anna"}]
            check(len(whole) == 3 and (status == 3 or not garbage), f"after {garbage} in segments of {cut}: {objects}")
            check(any("loss" in each or "cut" in each or "refused" in each for each in objects), f"{garbage} is told")
        objects, status, _ = run(pcap(stream(garbage, good)))
        check([each.get("xid") for each in objects if "xid" in each] == [9], f"a record after {garbage}: {objects}")


def property_statuses():
    """Exit statuses, and what a line tells."""
    def one(*messages, reading=()):
        return run(pcap(frames(map(datagram, messages))), *reading)
    cases = [
        (0, [call(1, 0), reply(1)], {"status": "SUCCESS"}),
        (0, [call(1, 2, TICKET), reply(1, status=1)], {"status": "PROG_UNAVAIL"}),
        (0, [call(1, 2, TICKET), reply(1, struct.pack(">2I", 1, 2), status=2)], {"status": "PROG_MISMATCH 1..2"}),
        (0, [call(1, 2, TICKET), denied(1, 1, 5)], {"status": "AUTH_TOOWEAK"}),
        (0, [call(1, 2, TICKET), denied(1, 0, 2, 2)], {"status": "RPC_MISMATCH 2..2"}),
        (0, [call(1, 2, TICKET)] * 2, {"repeats": 1}),
        (0, [call(1, 2, TICKET), reply(1, TICKET), reply(1, TICKET)], {"repeats": 2, "call": 1}),
        (0, [call(1, 2, TICKET), reply(1, TICKET), call(1, 3, TICKET), reply(1)], {"call": 3, "type": "void"}),
        (1, [call(1, 2, TICKET + bytes(4))], {"leftOver": {"offset": 12, "size": 4}}),
        (1, [call(1, 0, bytes(4))], {"leftOver": {"offset": 0, "size": 4}, "type": "void"}),
        (3, [call(1, 2, TICKET[:6])], {"refused": {"path": "/owner", "offset": 4,
                                                   "reason": "2 bytes left where a unit of 4 is needed"}}),
        (3, [call(1, 2, TICKET, program=100003)], {"unknown": "unknown program", "name": "100003.1.2"}),
        (3, [call(1, 2, TICKET, version=9)], {"unknown": "unknown version", "name": "SPOOLER.9.2"}),
        (3, [call(1, 77, TICKET)], {"unknown": "unknown procedure", "name": "SPOOLER.FIRST.77"}),
        (3, [call(1, 2, TICKET, flavor=6)], {"unknown": "RPCSEC_GSS may encrypt it"}),
        (3, [reply(1, TICKET)], {"unknown": "the call is not in the capture"}),
        (1, [call(1, 2, bytes(65400)), call(2, 2, TICKET)], {"number": 2}),
    ]
    for expected_status, messages, part in cases:
        objects, status, _ = one(*messages)
        check(status == expected_status and part.items() <= objects[-1].items(),
              f"status {status}, expected {expected_status} with {part}: {objects}")
    for options, count in ((["--only", "FIND"], 2), (["--only", "SPOOLER.1.2"], 2), (["--only", "3"], 1),
                           (["--only", "3", "--only", "FIND"], 3), (["--only", "7.FIND"], 0)):
        objects, status, _ = one(call(1, 2, TICKET), reply(1, TICKET), call(2, 3, TICKET), reading=options)
        check(len(objects) == count and status == (count == 0), f"{options}: {objects}")
    file = pcap(stream(record(call(9, 2, TICKET))))
    for size in range(len(file)):
        objects, status, errors = run(file[:size])
        check((status == 4 or (size == 24 and status == 1)) and bool(errors) == (status == 4),
              f"{size} bytes of the file: {status} {errors}")


def property_hostile():
    """No crash, no unbounded memory, no unbounded time."""
    chance = random.Random(3)
    many = bytearray()
    syn = tcp(CLIENT, SERVER, 5, flags=SYN)
    frame = ethernet(ip(syn)[0])
    head = struct.pack("<4I", 0, 0, len(frame), len(frame))
    for i in range(1_000_000):
        many += head + frame[:26] + struct.pack(">I", i) + frame[30:]
    objects, status, _ = run(pcap([]) + many)
    check(not objects and status == 1, "a million connections")
    good = record(call(9, 2, TICKET))
    starts = bytearray()
    for i in range(20_000):
        begin = ethernet(ip(tcp((f"10.{i >> 8 & 255}.{i & 255}.1", 9), SERVER, 5, good[:12] + bytes(1000)))[0])
        starts += struct.pack("<4I", 0, 0, len(begin), len(begin)) + begin
        late = ethernet(ip(tcp((f"10.{i >> 8 & 255}.{i & 255}.2", 9), SERVER, 5 + i % 7 * 2000, good + bytes(8000)))[0])
        starts += struct.pack("<4I", 0, 0, len(late), len(late)) + late
    run(pcap([]) + starts)
    holes = Connection()
    ahead = []
    for i in range(20_000):
        holes.next[True] += 2 + i % 2
        ahead.append(holes.segment(True, b"x"))
    run(pcap(frames(ahead)))
    pieces = [ethernet(ip(udp(CLIENT, SERVER, bytes(1400)), i, 8)[1 + i % 170]) for i in range(20_000)]
    run(pcap(pieces))
    overlapping = ip(udp(CLIENT, SERVER, call(1, 2, TICKET)), 1, 16)
    bad = bytearray(overlapping[1])
    bad[-1] ^= 1
    objects, _, errors = run(pcap([ethernet(each) for each in (overlapping[1], bytes(bad), *overlapping)]))
    check(not objects and "contradict" in errors, "fragments that overlap with other bytes are not used")
    differing = Connection()
    early, late = differing.segment(True, flags=SYN), differing.segment(True, good[:20])
    parts = [tcp(CLIENT, SERVER, 1021, good[20:40]), tcp(CLIENT, SERVER, 1021, b"\xff" + good[21:40])]
    objects, status, _ = run(pcap(frames([early, *parts, late, tcp(CLIENT, SERVER, 1041, good[40:])])))
    check(status == 3 and "different bytes" in json.dumps(objects), f"segments that differ are told: {objects}")
    marks = b"\x80\0\0\x30" + call(1, 1)[:12]
    for contents in (marks * 5000, b"\x80" * 70_000, bytes(70_000), good[:16] + bytes(70_000), (good + b"\x80") * 900,
                     b"".join(struct.pack(">I", 1) + bytes(1) for _ in range(9000))):
        run(pcap(stream(contents, cut=1400)))
    claim = b"\x80\xff\xff\xff" + call(1, 2)  # 16 MiB, of which the capture has 4
    objects, status, _ = run(pcap(stream(claim, bytes(4 << 20), cut=60_000)))
    check(status == 3 and len(objects) == 1 and objects[0]["cut"], f"a long record: {str(objects)[:200]}")
    messages = [call(i, 2, TICKET) for i in range(70_000)] + [reply(i, TICKET) for i in (0, 69_999)]
    objects, status, _ = run(pcap(frames(map(datagram, messages))))
    check("call" not in objects[-2] and objects[-1]["call"] == 70_000, "the oldest of many calls is forgotten")
    whole = pcap(frames(conversation(30)) + [ethernet(each) for each in overlapping])
    for seed in range(150):
        damaged = bytearray(whole)
        for _ in range(chance.choice((1, 3, 30))):
            damaged[chance.randrange(24, len(damaged))] = chance.choice((0, 1, 127, 128, 255, chance.randrange(256)))
        _, status, errors = run(bytes(damaged))
        check(status in (0, 1, 3, 4), f"damage {seed}: {status} {errors}")
    for seed in range(60):
        _, status, errors = run(pcap([chance.randbytes(chance.randrange(200)) for _ in range(50)],
                                     link=chance.choice((0, 1, 101, 113, 276))))
        check(status in (0, 1, 3, 4), f"random packets {seed}: {status} {errors}")


PROPERTIES = [value for name, value in list(globals().items()) if name.startswith("property_")]
EXPECTED = expected()
for each in PROPERTIES:
    if len(sys.argv) < 3 or each.__name__.removeprefix("property_") in sys.argv[2:]:
        each()
print(f"{failures} failures")
sys.exit(failures != 0)
