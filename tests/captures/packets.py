"""Messages of ONC RPC in packets with right checksums, and packets in pcap and pcapng files, for all tests."""

import struct

CLIENT, SERVER = ("10.0.0.1", 700), ("10.0.0.2", 2049)
PROGRAM = 0x20000001


# ---- Messages --------------------------------------------------------------------------------------------------------

def opaque(contents):
    return struct.pack(">I", len(contents)) + contents + bytes(-len(contents) % 4)


def call(xid, procedure=0, argument=b"", program=PROGRAM, version=1, flavor=0, credential=b"", rpc_version=2):
    head = struct.pack(">7I", xid, 0, rpc_version, program, version, procedure, flavor)
    return head + opaque(credential) + struct.pack(">2I", 0, 0) + argument


def reply(xid, result=b"", status=0, verifier=b""):
    return struct.pack(">4I", xid, 1, 0, 0) + opaque(verifier) + struct.pack(">I", status) + result


def denied(xid, *units):
    return struct.pack(f">{3 + len(units)}I", xid, 1, 1, *units)


def record(message, cuts=()):
    """A message with record marks; its fragments end at the cuts."""
    places = [0, *cuts, len(message)]
    return b"".join(struct.pack(">I", end - begin | (end == len(message)) << 31) + message[begin:end]
                    for begin, end in zip(places, places[1:]))


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


def datagram(message, client=CLIENT, server=SERVER):
    """A call travels to the server, a reply to the client."""
    return udp(client, server, message) if message[4:8] == bytes(4) else udp(server, client, message)


FIN, SYN, PUSH, ACK = 1, 2, 8, 16


def tcp(source, target, sequence, payload=b"", flags=ACK, acknowledgement=0):
    head = struct.pack(">2H2I2B3H", source[1], target[1], sequence % 2**32, acknowledgement % 2**32, 0x50, flags, 65535,
                       0, 0)
    return 6, source, target, head + payload


def checksum(data):
    """The checksum of RFC 1071: the sum of 16-bit units, with its carries added to it, is the remainder by 0xFFFF."""
    return -int.from_bytes(data + bytes(len(data) % 2), "big") % 0xFFFF


def with_checksum(protocol, addresses, segment):
    value = checksum(addresses + struct.pack(">2H", protocol, len(segment)) + segment)
    if protocol == 17:
        value = value or 0xFFFF  # 0 says that there is no checksum
    at = 6 if protocol == 17 else 16
    return segment[:at] + struct.pack(">H", value) + segment[at + 2:]


def ip(segment, identification=1, fragment=None, extensions=b"", extension=None):
    """The IP packets of a segment: one, or fragments of this many bytes."""
    protocol, (source, _), (target, _), payload = segment
    addresses = address(source) + address(target)
    payload = with_checksum(protocol, addresses, payload)
    pieces = [(i, payload[i:i + fragment]) for i in range(0, len(payload), fragment)] if fragment else [(0, payload)]
    packets = []
    for offset, piece in pieces:
        more = offset + len(piece) < len(payload)
        if len(addresses) == 8:
            head = struct.pack(">2B3H2B", 0x45, 0, 20 + len(piece), identification, offset // 8 | more << 13, 64,
                               protocol)
            packets.append(head + struct.pack(">H", checksum(head + addresses)) + addresses + piece)
            continue
        first, headers = protocol, extensions
        if extension is not None:
            first, headers = extension, bytes([protocol]) + extensions[1:]
        if fragment:
            headers = struct.pack(">2BHI", first, 0, offset | more, identification)
            first = 44
        head = struct.pack(">IH2B", 6 << 28, len(headers) + len(piece), first, 64)
        packets.append(head + addresses + headers + piece)
    return packets


def ethernet(packet, tags=()):
    kind = 0x0800 if packet[0] >> 4 == 4 else 0x86DD
    stations = b"\2\0\0\0\0\2\2\0\0\0\0\1"  # made-up local addresses
    return stations + b"".join(struct.pack(">2H", tag, 5) for tag in tags) + struct.pack(">H", kind) + packet


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
LONGEST = 262_144  # more than a packet has


def pcap_head(order="<", nanoseconds=False, link=1, kept=LONGEST):
    return struct.pack(order + "I2H4I", 0xA1B23C4D if nanoseconds else 0xA1B2C3D4, 2, 4, 0, 0, kept, link)


def pcap_packet(time, packet, size=None, order="<", nanoseconds=False):
    """`size` is that of the whole packet if the capture has less of it."""
    seconds, fraction = divmod(time, 10**9)
    return struct.pack(order + "4I", seconds, fraction if nanoseconds else fraction // 1000, len(packet),
                       size or len(packet)) + packet


def pcap(packets, order="<", nanoseconds=False, link=1, kept=LONGEST, step=STEP):
    """`packets` are bytes, or pairs of what is captured and the size of the whole packet."""
    file = bytearray(pcap_head(order, nanoseconds, link, kept))
    for i, packet in enumerate(packets):
        packet, size = packet if isinstance(packet, tuple) else (packet[:kept], len(packet))
        file += pcap_packet(START + i * step, packet, size, order, nanoseconds)
    return bytes(file)


def pcapng(packets, order="<", link=1, kept=LONGEST):
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

    def __init__(self, client=CLIENT, server=SERVER, first=(1000, 2**32 - 20)):
        """`first` are the client's number and the server's, which wraps around soon."""
        self.ends = {True: (client, server), False: (server, client)}
        self.next = dict(zip((True, False), first))

    def segment(self, from_client, payload=b"", flags=ACK):
        acknowledged = self.next[not from_client] if flags & ACK else 0
        flags |= PUSH if payload else 0
        made = tcp(*self.ends[from_client], self.next[from_client], payload, flags, acknowledged)
        self.next[from_client] += len(payload) + bool(flags & SYN) + bool(flags & FIN)
        return made

    def segments(self, from_client, stream, size):
        return [self.segment(from_client, stream[i:i + size]) for i in range(0, len(stream), size)]

    def handshake(self):
        return [self.segment(True, flags=SYN), self.segment(False, flags=SYN | ACK), self.segment(True)]

    def close(self):
        return [self.segment(True, flags=FIN | ACK), self.segment(False, flags=FIN | ACK), self.segment(True)]


def frames(segments, tags=()):
    return [ethernet(packet, tags) for segment in segments for packet in ip(segment)]
