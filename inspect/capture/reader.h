// The calls and replies of a capture, one at a time and in constant memory.
#pragma once

#include "calls.h"
#include "streams.h"

#include <variant>

namespace quorva::inspect::capture {

// What a capture shows: a message, or a place where messages may be missing.
using Shown = std::variant<RpcMessage, Loss>;

class Reader {
public:
    // Takes the stream over, as CaptureFile does. Throws CaptureError.
    explicit Reader(std::FILE* stream) : file(stream) {}

    // Reads the next message or loss. Returns false at the end. Throws CaptureError where the file is damaged; further
    // calls then give what the packets before that place hold.
    bool next(Shown& shown);

    // The time of the first packet, which there is once `next` has returned true.
    const Time& start() const { return *begun; }

    // A sentence about what was not shown, and about calls without a reply; empty if there is nothing to say.
    std::string notes() const;

private:
    void add(const Payload& payload);

    CaptureFile file;
    PacketReader packets;
    Streams streams;
    Calls calls;
    Events events;
    std::optional<Time> begun;
    bool isAtEnd = false;
    std::uint64_t packetCount = 0;
    std::uint64_t otherDatagrams = 0;
};

}  // namespace quorva::inspect::capture
