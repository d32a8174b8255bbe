"""Writes captures (pcap, raw IPv4) of UDP datagrams and TCP segments, in the order of the calls, and damages them."""

from __future__ import annotations

import pathlib
import random
import struct
from typing import BinaryIO

LINKTYPE_RAW = 101
CLIENT, SERVER = bytes([192, 0, 2, 1]), bytes([192, 0, 2, 2])


class Capture:
    def __init__(self, file: BinaryIO) -> None:
        self.file = file
        self.packets = 0
        self.sequence: dict[tuple[int, int], int] = {}
        file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, LINKTYPE_RAW))

    def _packet(self, protocol: int, from_client: bool, payload: bytes, captured: int | None) -> None:
        source, target = (CLIENT, SERVER) if from_client else (SERVER, CLIENT)
        head = struct.pack(">BBHHHBBH", 0x45, 0, 20 + len(payload), 1, 0, 64, protocol, 0) + source + target
        whole = head + payload
        kept = whole if captured is None else whole[: len(whole) - len(payload) + captured]
        self.packets += 1  # one a millisecond
        self.file.write(struct.pack("<IIII", self.packets // 1000, self.packets % 1000 * 1000, len(kept), len(whole)))
        self.file.write(kept)

    def datagram(self, ports: tuple[int, int], from_client: bool, payload: bytes, captured: int | None = None) -> None:
        """`ports` are the client's and the server's; `captured` bytes of the payload are kept."""
        pair = ports if from_client else ports[::-1]
        kept = None if captured is None else 8 + captured
        self._packet(17, from_client, struct.pack(">HHHH", *pair, 8 + len(payload), 0) + payload, kept)

    def segment(
        self, ports: tuple[int, int], from_client: bool, payload: bytes, captured: int | None = None
    ) -> None:
        pair = ports if from_client else ports[::-1]
        sequence = self.sequence.get(pair, 1)
        acknowledged = self.sequence.get(pair[::-1], 1)
        head = struct.pack(">HHIIBBHHH", *pair, sequence, acknowledged, 5 << 4, 0x18, 65535, 0, 0)
        self._packet(6, from_client, head + payload, None if captured is None else 20 + captured)
        self.sequence[pair] = sequence + len(payload) & 0xFFFFFFFF


def call(xid: int, program: int, version: int, procedure: int, argument: bytes) -> bytes:
    return struct.pack(">10I", xid, 0, 2, program, version, procedure, 0, 0, 0, 0) + argument


def reply(xid: int, result: bytes) -> bytes:
    return struct.pack(">6I", xid, 1, 0, 0, 0, 0) + result


def record(message: bytes, cuts: list[int]) -> bytes:
    """The message as a record whose fragments end at the cuts."""
    out, begin = b"", 0
    for end in [*cuts, len(message)]:
        last = 0x80000000 if end == len(message) else 0
        out += struct.pack(">I", last | end - begin) + message[begin:end]
        begin = end
    return out


def damage(path: pathlib.Path, chance: random.Random) -> None:
    """Changes bytes after the headers of UDP and TCP in many packets, and cuts some packets."""
    data = path.read_bytes()
    out, at = [data[:24]], 24
    while at < len(data):
        seconds, parts, kept, size = struct.unpack_from("<IIII", data, at)
        packet = bytearray(data[at + 16 : at + 16 + kept])
        at += 16 + kept
        head = 40 if packet[9] == 6 else 28
        if kept > head:
            for _ in range(chance.choice([0, 0, 1, 3, 20])):
                end = min(kept, head + 44) if chance.random() < 0.5 else kept  # often in the envelope
                packet[chance.randrange(head, end)] = chance.choice([0, 1, 128, 255, chance.randrange(256)])
            if chance.random() < 0.1:
                del packet[chance.randrange(head, kept) :]
        out += [struct.pack("<IIII", seconds, parts, len(packet), size), bytes(packet)]
    path.write_bytes(b"".join(out))
