"""Gives pcapng files of many kinds, whole and damaged, to a program: pcapng_files.py PROGRAM INTERFACE

The program is called as `decode --from pcap - --json --interface INTERFACE`.
"""

from __future__ import annotations

import itertools
import random
import struct
import subprocess
import sys

import packets

FRAMES = packets.frames(packets.datagram(message) for message in (
    packets.call(1, 1, packets.opaque(b"Anna")), packets.reply(1, bytes(8)), packets.call(2, 7, b"1234")))
SECTION, INTERFACE, OLD_PACKET, SIMPLE_PACKET, NAMES, PACKET = 0x0A0D0D0A, 1, 2, 3, 4, 6


def block(order: str, kind: int, body: bytes) -> bytes:
    body += bytes(-len(body) % 4)
    return struct.pack(order + "2I", kind, 12 + len(body)) + body + struct.pack(order + "I", 12 + len(body))


def option(order: str, code: int, contents: bytes) -> bytes:
    return struct.pack(order + "2H", code, len(contents)) + contents + bytes(-len(contents) % 4)


def file_of(order: str, kind: int, clock: tuple[int, bytes], number: int) -> bytes:
    """`clock` is an option of the interfaces, by its code; `number` chooses the rest."""
    interfaces, sections, kept = 1 + number % 2, 1 + number % 3 // 2, 60 if number % 5 == 1 else 2000
    described = struct.pack(order + "2HI", 1, 0, kept) + option(order, *clock) + option(order, 0, b"")
    file = b""
    for _ in range(sections):
        file += block(order, SECTION, struct.pack(order + "I2Hq", 0x1A2B3C4D, 1, 0, -1)) + block(order, NAMES, b"")
        file += block(order, INTERFACE, described) * interfaces
        for i, frame in enumerate(FRAMES):
            time = struct.pack(order + "2I", i, 4_000_000_000 + 77 * i)
            size = struct.pack(order + "2I", len(frame), len(frame) + 2 * (i % 2))
            head = {PACKET: struct.pack(order + "I", i % interfaces) + time + size,
                    OLD_PACKET: struct.pack(order + "2H", i % interfaces, 0) + time + size,
                    SIMPLE_PACKET: size[:4]}[kind]
            file += block(order, kind, head + frame)
    return file


def files() -> list[bytes]:
    chance = random.Random(5)
    clocks = [(9, bytes([units])) for units in (0, 3, 9, 12, 19, 20, 0x80, 0x9E, 0xBF, 0xC0)]
    clocks += [(14, struct.pack("<q", seconds)) for seconds in (0, -5, 2**62)] + [(9, b"12"), (2, b"eth0"), (0, b"x")]
    kinds = itertools.cycle((PACKET, OLD_PACKET, SIMPLE_PACKET, PACKET))
    made = [file_of(order, kind, clock, i)
            for order in "<>" for i, (clock, kind) in enumerate(zip(clocks, kinds))]
    whole = made[3]
    made += [whole[:size] for size in range(12, len(whole), 7)]
    for _ in range(120):
        damaged = bytearray(chance.choice(made[:20]))
        for _ in range(chance.choice((1, 1, 3))):
            damaged[chance.randrange(12, len(damaged))] = chance.choice((0, 1, 4, 127, 128, 255))
        made.append(bytes(damaged))
    return made


for each in files():
    command = [sys.argv[1], "decode", "--from", "pcap", "-", "--json", "--interface", sys.argv[2]]
    subprocess.run(command, input=each, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
