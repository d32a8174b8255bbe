// What UDP and TCP carry in the packets of a capture.
//
// Read are Ethernet with VLAN tags, Linux cooked captures, loopback and raw IP; IPv4 and IPv6 with extension headers
// and fragments. Checksums are not compared: the packets that a machine sends are captured before its network card
// makes them.
#pragma once

#include "capture_file.h"
#include "fragments.h"

#include <optional>

namespace quorva::inspect::capture {

// A datagram of UDP or a segment of TCP.
struct Payload {
    Flow flow;
    Time time;
    std::uint64_t packet = 0;  // number of its packet; of the packet that completes it if it was in fragments
    std::span<const unsigned char> bytes;
    std::size_t size = 0;        // bytes on the network, of which the capture may have the first ones only
    std::uint32_t sequence = 0;  // of TCP, as are the members below
    std::uint32_t acknowledgement = 0;
    bool synchronises = false, finishes = false, resets = false, acknowledges = false;
};

class PacketReader {
public:
    // Reads a packet. Returns its payload, which is valid until the next call or as long as the packet; nullopt if it
    // has no datagram or segment, or only a fragment of one.
    std::optional<Payload> read(const Packet& packet);

    // Packets without UDP or TCP, or with headers that are cut or malformed.
    std::uint64_t others() const { return otherPackets; }
    const Fragments& fragments() const { return partial; }

private:
    std::optional<Payload> readPayload(const Packet& packet);

    Fragments partial;
    Bytes whole;  // a packet whose fragments were put together
    bool isFragment = false;
    std::uint64_t otherPackets = 0;
};

}  // namespace quorva::inspect::capture
