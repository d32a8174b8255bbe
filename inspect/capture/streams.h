// Puts the segments of TCP in order, and reads the records in them.
//
// A byte is taken where it is seen first; later copies of it are dropped. A missing byte is given up as soon as the
// other side has acknowledged it, so that it was lost in the capture only, or when too much waits for it.
#pragma once

#include "packets.h"
#include "records.h"

#include <list>
#include <map>

namespace quorva::inspect::capture {

class Streams {
public:
    static constexpr std::size_t mostStreams = 16384;                    // directions of connections
    static constexpr std::size_t mostWaiting = std::size_t{1} << 20;     // of one direction
    static constexpr std::size_t mostHeld = std::size_t{64} << 20;       // of all
    static constexpr std::uint32_t mostAhead = std::uint32_t{64} << 20;  // a segment further on is of a new connection

    // Adds a segment, and appends the events that it completes.
    void add(const Payload& segment, Events& events);

    // Ends one stream, at the end of the capture. Returns false if there is none left.
    bool endNext(Events& events);

    // Directions in which no record was found, among those that had bytes.
    std::uint64_t others() const { return otherStreams; }

    // Directions that were forgotten while they had bytes in memory, because there were too many.
    std::uint64_t forgotten() const { return forgottenStreams; }

private:
    struct Piece {
        Bytes bytes;
        std::size_t size = 0;
        Time time;
        std::uint64_t packet = 0;
    };
    struct Stream;
    using Table = std::map<Flow, Stream>;
    struct Stream {
        explicit Stream(const Flow& flow) : records(flow) {}

        Records records;
        bool isStarted = false;
        bool hadBytes = false;
        std::uint32_t next = 0;                  // sequence number of the next byte
        std::uint64_t position = 0;              // the same byte, in numbers that do not wrap around
        std::optional<std::uint64_t> finish;     // position of the end
        std::map<std::uint64_t, Piece> waiting;  // by position
        std::size_t waitingSize = 0;
        Time time;  // of the packet that makes the next bytes known
        std::uint64_t packet = 0;
        std::size_t held = 0;  // as counted in the sum of all
        std::list<Table::iterator>::iterator place;

        Records::Place at(std::uint64_t earliest) const { return {time, packet, earliest}; }
    };

    Stream& find(const Flow& flow, Events& events);
    static void begin(Stream& stream, std::uint32_t sequence);
    static void addBytes(Stream& stream, const Payload& segment, std::uint64_t position, Events& events);
    static void deliver(Stream& stream, std::uint64_t position, std::span<const unsigned char> bytes, std::size_t size,
                        std::uint64_t packet, Events& events);
    static void drain(Stream& stream, Events& events);
    static void skipGap(Stream& stream, Events& events);
    static void flush(Stream& stream, const char* why, Events& events);
    void acknowledge(const Payload& segment, Events& events);
    void count(Stream& stream);
    void remove(Table::iterator stream);
    void forgetOldest(Events& events);

    Table streams;
    std::list<Table::iterator> order;  // the one that is idle for the longest time first
    std::size_t held = 0;
    std::uint64_t otherStreams = 0;
    std::uint64_t forgottenStreams = 0;
};

}  // namespace quorva::inspect::capture
