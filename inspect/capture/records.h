// Records of ONC RPC in one direction of a TCP connection.
//
// A record is trusted once 12 bytes of its message begin as a call or reply. Where that fails, and after a gap, the
// next place is searched for where a record mark and such a message follow each other. A connection that has none is
// one of another protocol, and gives no events.
#pragma once

#include "events.h"

#include <cstddef>

namespace quorva::inspect::capture {

class Records {
public:
    // Kept of a message; of a longer one, the rest is counted only.
    static constexpr std::size_t mostKept = longestMessage + 1024;  // with its envelope
    // A longer record is taken for a damaged mark.
    static constexpr std::uint64_t longestRecord = std::uint64_t{16} << 20;

    explicit Records(const Flow& ofStream) : flow(ofStream) {}

    struct Place {
        Time time;
        std::uint64_t packet = 0;
        std::uint64_t earliest = 0;  // the packet that has the bytes, which may have waited for others
    };

    // The next bytes of the stream.
    void append(std::span<const unsigned char> bytes, const Place& place, Events& events);

    // The next bytes of the stream are not in the capture.
    void skip(std::uint64_t size, const Place& place, Events& events);

    // The stream ends here, or the capture does. `why` completes "... within it": "the stream ends".
    void end(const char* why, const Place& place, Events& events);

    // Tells of a doubt about the bytes that come next, once the stream has a record.
    void warn(const std::string& sentence, const Place& place, Events& events);

    // Bytes that the object keeps.
    std::size_t held() const { return raw.size() + record.bytes.size(); }

    // True if the stream has had a record.
    bool hadRecords() const { return isKnown; }

private:
    enum class State : std::uint8_t {
        untrusted,  // at the start of a record; `raw` has its bytes with their marks
        trusted,    // within a record
        searching   // `raw` has the bytes among which no record was found, but the next bytes may show one
    };

    std::size_t take(std::span<const unsigned char> bytes, const Place& place, Events& events);
    void takeMark(const Place& place, Events& events);
    void checkStart(const Place& place, Events& events);
    std::size_t search(std::span<const unsigned char> bytes, std::size_t from);
    void giveUp(const std::string& sentence, const Place& place, Events& events);
    void emit(const Place& place, Events& events);
    void lose(const std::string& sentence, const Place& place, Events& events) const;
    void restart(State next);

    Flow flow;
    State state = State::untrusted;
    bool isKnown = false;
    bool isLost = false;           // a loss was told, and no record was found since
    std::uint64_t lostBefore = 0;  // bytes that were missing before the first record
    std::string doubt;             // of before the first record
    Bytes raw;
    Record record;
    unsigned char mark[4] = {};
    unsigned markSize = 0;
    bool isLast = false;
    std::uint64_t fragmentLeft = 0;
};

}  // namespace quorva::inspect::capture
