#!/usr/bin/env python3
"""Counts the calls of each program in a capture of record.py over TCP, every one of which must have a reply.

captured_calls.py FILE LONGEST_SEGMENT
"""
import collections
import socket
import struct
import sys


def streams(data, longest):
    """The bytes of each direction of each connection, by its two ends. The segments may be in any order."""
    segments = collections.defaultdict(dict)
    at = 24
    while at < len(data):
        length = struct.unpack_from("<8xI", data, at)[0]
        ip = data[at + 16 + 14:at + 16 + length]
        at += 16 + length
        ports = struct.unpack_from("!HH", ip, 20)
        ends = (ip[12:16], ports[0]), (ip[16:20], ports[1])
        payload = ip[40:]
        assert ip[9] == socket.IPPROTO_TCP and len(payload) <= longest
        if payload:
            segments[ends][struct.unpack_from("!I", ip, 24)[0]] = payload
    for ends, parts in segments.items():
        yield ends, b"".join(parts[number] for number in sorted(parts))


def messages(stream):
    while stream:
        mark = struct.unpack("!I", stream[:4])[0]
        assert mark >> 31 and len(stream) >= 4 + (mark & 0x7FFFFFFF)
        yield stream[4:4 + (mark & 0x7FFFFFFF)]
        stream = stream[4 + (mark & 0x7FFFFFFF):]


calls, replies = {}, set()
with open(sys.argv[1], "rb") as capture:
    for (source, target), stream in streams(capture.read(), int(sys.argv[2])):
        for message in messages(stream):
            xid, is_reply = struct.unpack("!II", message[:8])
            if is_reply:
                replies.add((target, source, xid))
            else:
                calls[(source, target, xid)] = struct.unpack_from("!I", message, 12)[0]
assert replies == calls.keys()
for program, count in sorted(collections.Counter(calls.values()).items()):
    print(f"{count} calls of program {program:#x}")
