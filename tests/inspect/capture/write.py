#!/usr/bin/env python3
"""Writes a capture for the transcripts to standard output: write.py NAME."""

import struct
import sys

from captures import *

TICKET = struct.pack(">I", 7) + opaque(b"Anna")


def connection():
    """A connection that creates, finds and deletes a ticket; the records are cut into two segments."""
    peers = Connection()
    segments = peers.handshake()
    for from_client, message in ((True, call(1, 1, opaque(b"Anna"))), (False, reply(1, TICKET)),
                                 (True, call(2, 2, TICKET)), (False, reply(2, TICKET)),
                                 (True, call(3, 3, TICKET)), (False, reply(3))):
        stream = record(message)
        segments += [peers.segment(from_client, stream[:30]), peers.segment(from_client, stream[30:])]
    return segments + peers.close()


def datagrams(*messages):
    return [udp(CLIENT, SERVER, each) if each[7] == 0 else udp(SERVER, CLIENT, each) for each in messages]


def lost():
    segments = connection()
    return segments[:8] + segments[9:]


CAPTURES = {
    "connection": connection,
    "lost": lost,
    "wrong": lambda: datagrams(
        call(1, 2, TICKET + bytes(4)), reply(1, TICKET[:10]), call(2, 2, TICKET, version=2),
        reply(2, struct.pack(">2I", 1, 1), status=2), call(3, 3, bytes(8), program=100005), reply(9, TICKET),
        call(4, 3, TICKET), denied(4, 1, 5), call(4, 3, TICKET)),
}

sys.stdout.buffer.write(pcap(frames(CAPTURES[sys.argv[1]]())))
