"""Writes captures: messages of ONC RPC in packets, packets in pcap and pcapng files."""

import struct

CLIENT, SERVER = ("10.0.0.1", 700), ("10.0.0.2", 2049)
PROGRAM = 0x20000001


# ---- Messages --------------------------------------------------------------------------------------------------------

def opaque(contents):
    return struct.pack(">I", len(contents)) + contents + bytes(-len(contents) % 4)


def call(xid, procedure, argument=b"", program=PROGRAM, version=1, flavor=0, credential=b"", rpc_version=2):
    head = struct.pack(">7I", xid, 0, rpc_version, program, version, procedure, flavor)
    return head + opaque(credential) + struct.pack(">2I", 0, 0) + argument


def reply(xid, result=b"", status=0, verifier=b""):
    return struct.pack(">4I", xid, 1, 0, 0) + opaque(verifier) + struct.pack(">I", status) + result


def denied(xid, *units):
    return struct.pack(f">{3 + len(units)}I", xid, 1, 1, *units)


def record(message, fragment=None):
    """A message with record marks, in fragments of this size."""
    pieces = [message[i:i + fragment] for i in range(0, len(message), fragment)] if fragment else [message]
    return b"".join(struct.pack(">I", len(piece) | (0x80000000 if i + 1 == len(pieces) else 0)) + piece
                    for i, piece in enumerate(pieces))


# ---- Packets ---------------------------------------------------------------------------------------------------------

def address(text):
    if ":" not in text:
        return bytes(map(int, text.split(".")))
    left, _, right = text.partition("::")
    groups = [[int(group, 16) for group in side.split(":") if group] for side in (left, right)]
    zeros = [0] * (8 - len(groups[0]) - len(groups[1]))
    return struct.pack(">8H", *groups[0], *zeros, *groups[1])


def udp(source, target, payload):
    return 17, source, target, struct.pack(">4H", source[1], target[1], 8 + len(payload), 0) + payload


SYN, FIN, RST, ACK = 2, 1, 4, 16


def tcp(source, target, sequence, payload=b"", flags=ACK, acknowledgement=0):
    head = struct.pack(">2H2I2B3H", source[1], target[1], sequence % 2**32, acknowledgement % 2**32, 0x50, flags, 8192,
                       0, 0)
    return 6, source, target, head + payload


def ip(segment, identification=1, fragment=None, extensions=b"", extension=None):
    """The IP packets of a segment: one, or fragments of this many bytes."""
    protocol, (source, _), (target, _), payload = segment
    source, target = address(source), address(target)
    pieces = [(i, payload[i:i + fragment]) for i in range(0, len(payload), fragment)] if fragment else [(0, payload)]
    packets = []
    for offset, piece in pieces:
        more = offset + len(piece) < len(payload)
        if len(source) == 4:
            packets.append(struct.pack(">2B3H2BH", 0x45, 0, 20 + len(piece), identification, offset // 8 | more << 13,
                                       64, protocol, 0) + source + target + piece)
            continue
        first, headers = protocol, extensions
        if extension is not None:
            first, headers = extension, bytes([protocol]) + extensions[1:]
        if fragment:
            headers = struct.pack(">2BHI", first, 0, offset | more, identification)
            first = 44
        packets.append(struct.pack(">IH2B", 6 << 28, len(headers) + len(piece), first, 64) + source + target + headers +
                       piece)
    return packets


def ethernet(packet, tags=()):
    kind = 0x0800 if packet[0] >> 4 == 4 else 0x86DD
    return bytes(12) + b"".join(struct.pack(">2H", tag, 5) for tag in tags) + struct.pack(">H", kind) + packet


def cooked(packet):
    return struct.pack(">3H8xH", 0, 1, 6, 0x0800 if packet[0] >> 4 == 4 else 0x86DD) + packet


def cooked2(packet):
    return struct.pack(">2HIH2B8x", 0x0800 if packet[0] >> 4 == 4 else 0x86DD, 0, 1, 1, 0, 6) + packet


def loopback(packet):
    return struct.pack("<I", 2 if packet[0] >> 4 == 4 else 30) + packet


# The number of a link type in the files, and its header.
LINKS = {"ethernet": (1, ethernet), "raw": (101, lambda packet: packet), "cooked": (113, cooked),
         "cooked2": (276, cooked2), "loopback": (0, loopback)}


# ---- Files -----------------------------------------------------------------------------------------------------------

START = 1_700_000_000_000_000_000  # nanoseconds
STEP = 250_000


def pcap(packets, order="<", nanoseconds=False, link=1, kept=65535):
    """`packets` are bytes, or pairs of bytes and nanoseconds since START."""
    file = bytearray(struct.pack(order + "I2H4I", 0xA1B23C4D if nanoseconds else 0xA1B2C3D4, 2, 4, 0, 0, kept, link))
    for i, packet in enumerate(packets):
        packet, time = packet if isinstance(packet, tuple) else (packet, i * STEP)
        seconds, fraction = divmod(START + time, 10**9)
        file += struct.pack(order + "4I", seconds, fraction if nanoseconds else fraction // 1000,
                            len(packet[:kept]), len(packet)) + packet[:kept]
    return bytes(file)


def pcapng(packets, order="<", link=1, kept=65535):
    def block(kind, body):
        body += bytes(-len(body) % 4)
        return struct.pack(order + "2I", kind, 12 + len(body)) + body + struct.pack(order + "I", 12 + len(body))

    file = block(0x0A0D0D0A, struct.pack(order + "I2Hq", 0x1A2B3C4D, 1, 0, -1))
    file += block(1, struct.pack(order + "2HI", link, 0, kept))
    for i, packet in enumerate(packets):
        time = (START + i * STEP) // 1000
        file += block(6, struct.pack(order + "5I", 0, time >> 32, time % 2**32, len(packet[:kept]), len(packet)) +
                      packet[:kept])
    return file


# ---- Connections -----------------------------------------------------------------------------------------------------

class Connection:
    """Two streams with their sequence numbers; the methods return segments."""

    def __init__(self, client=CLIENT, server=SERVER, first=1000):
        self.ends = {True: (client, server), False: (server, client)}
        self.next = {True: first, False: 2**32 - 20}  # the server's numbers wrap around

    def segment(self, from_client, payload=b"", flags=ACK):
        made = tcp(*self.ends[from_client], self.next[from_client], payload, flags, self.next[not from_client])
        self.next[from_client] += len(payload) + bool(flags & SYN) + bool(flags & FIN)
        return made

    def handshake(self):
        return [self.segment(True, flags=SYN), self.segment(False, flags=SYN | ACK), self.segment(True)]

    def close(self):
        return [self.segment(True, flags=FIN | ACK), self.segment(False, flags=FIN | ACK), self.segment(True)]


def frames(segments, tags=()):
    return [ethernet(packet, tags) for segment in segments for packet in ip(segment)]
