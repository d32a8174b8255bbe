#!/usr/bin/env python3
"""Writes a capture for the transcripts to standard output: write.py NAME."""

import pathlib
import struct
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "captures"))
from packets import *

TICKET = struct.pack(">I", 7) + opaque(b"Anna")


def connection():
    """A connection that creates, finds and deletes a ticket; the records are cut into two segments."""
    peers = Connection()
    segments = peers.handshake()
    for from_client, message in ((True, call(1, 1, opaque(b"Anna"))), (False, reply(1, TICKET)),
                                 (True, call(2, 2, TICKET)), (False, reply(2, TICKET)),
                                 (True, call(3, 3, TICKET)), (False, reply(3))):
        segments += peers.segments(from_client, record(message), 30)
    return segments + peers.close()


def lost():
    segments = connection()
    return segments[:8] + segments[9:]


CAPTURES = {
    "connection": connection,
    "lost": lost,
    "wrong": lambda: map(datagram, (
        call(1, 2, TICKET + bytes(4)), reply(1, TICKET[:10]), call(2, 2, TICKET, version=2),
        reply(2, struct.pack(">2I", 1, 1), status=2), call(3, 3, bytes(8), program=100005), reply(9, TICKET),
        call(4, 3, TICKET), denied(4, 1, 5), call(4, 3, TICKET))),
}

sys.stdout.buffer.write(pcap(frames(CAPTURES[sys.argv[1]]())))
