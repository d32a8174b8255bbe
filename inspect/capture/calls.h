// Calls and replies: what their envelopes say, and which reply belongs to which call.
#pragma once

#include "events.h"
#include "procedures.h"

#include <cstddef>
#include <list>
#include <map>
#include <optional>

namespace quorva::inspect::capture {

// A call or a reply.
struct RpcMessage {
    std::uint64_t number = 0;  // in the capture, from 1
    Record record;
    std::string refusal;  // why the envelope cannot be decoded; then only the members above and `xid` are set
    std::uint32_t xid = 0;
    bool isReply = false;
    std::optional<ProcedureNumbers> numbers;  // of a call, and of a reply whose call is known
    std::uint64_t call = 0;                   // of a reply: the number of its call; 0 if it is not known
    Time elapsed;                             // since that call
    std::uint64_t repeats = 0;                // the number of the message that this one repeats; 0 if there is none
    std::string status;                       // of a reply: "SUCCESS", "PROG_MISMATCH 1..2", "AUTH_TOOWEAK"
    bool hasBody = false;                     // a call, or the reply to one that succeeded
    bool isProtected = false;                 // RPCSEC_GSS: the body may be encrypted
    std::size_t bodyAt = 0;                   // in the record

    // The argument or the result, as far as it is in the capture.
    std::span<const unsigned char> body() const { return std::span(record.bytes).subspan(bodyAt); }
    // Its bytes on the network.
    std::uint64_t bodySize() const { return record.size - bodyAt; }
};

class Calls {
public:
    // Calls that are remembered for their replies. The oldest one is forgotten first.
    static constexpr std::size_t mostCalls = 65536;

    // Decodes the envelope, and finds the call of a reply.
    RpcMessage read(Record record);

    // Calls without a reply so far.
    std::uint64_t unanswered() const { return unansweredCalls; }

private:
    struct Key {
        Flow flow;  // of the call
        std::uint32_t xid = 0;

        auto operator<=>(const Key&) const = default;
    };
    struct Call;
    using Table = std::map<Key, Call>;
    struct Call {
        std::uint64_t number = 0;
        Time time;
        ProcedureNumbers numbers;
        std::size_t hash = 0;
        bool isProtected = false;
        std::uint64_t answer = 0;  // number of the reply
        std::list<Table::iterator>::iterator place;
    };

    void remember(RpcMessage& message);
    void pair(RpcMessage& message);

    Table calls;
    std::list<Table::iterator> order;  // the oldest first
    std::uint64_t count = 0;
    std::uint64_t unansweredCalls = 0;
};

}  // namespace quorva::inspect::capture
