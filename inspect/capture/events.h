// What a capture has, in its order: messages of ONC RPC, and places where bytes are missing.
#pragma once

#include "network.h"

#include <quorvapixdr/codec.h>

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <variant>

namespace quorva::inspect::capture {

// A call or a reply with its envelope.
struct Record {
    Flow flow;
    Time time;                      // of the packet that completes it
    std::uint64_t firstPacket = 0;  // the packets that it was in, and others between them
    std::uint64_t lastPacket = 0;
    Bytes bytes;             // fewer than `size` if some are missing
    std::uint64_t size = 0;  // on the network; as far as it is known if it is cut
    std::string cut;         // why bytes are missing: "the stream ends within it"; empty if all are there
};

// A place in a stream where messages may be missing.
struct Loss {
    Flow flow;
    Time time;
    std::uint64_t packet = 0;
    std::string sentence;  // "1,448 bytes are not in the capture"
};

using Event = std::variant<Record, Loss>;
using Events = std::deque<Event>;

// True if the bytes begin as a call, or as a reply, of ONC RPC version 2. They may be the first bytes of a message. 63
// bits have to be right, and more of a reply that has more than 12 bytes.
bool isEnvelope(std::span<const unsigned char> bytes);

}  // namespace quorva::inspect::capture
