// Puts the fragments of IP packets together.
#pragma once

#include "network.h"

#include <quorvapixdr/codec.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <span>

namespace quorva::inspect::capture {

// Fragments with equal keys belong to one packet of IP.
struct FragmentKey {
    Address from, to;
    std::uint32_t identification = 0;
    std::uint8_t protocol = 0;

    auto operator<=>(const FragmentKey&) const = default;
};

struct Fragment {
    std::size_t offset = 0;
    std::span<const unsigned char> bytes;
    bool isLast = false;
};

// Keeps at most `mostHeld` bytes, and drops the packets that wait longest for their fragments. Identifications repeat,
// so a packet whose fragments come within more than 15 seconds is dropped, too.
class Fragments {
public:
    static constexpr std::size_t mostHeld = std::size_t{16} << 20;
    static constexpr std::int64_t mostSeconds = 15;

    // Adds a fragment. Returns the payload of the packet if it is the last one that was missing. Fragments that overlap
    // without being equal make the packet unreadable.
    std::optional<Bytes> add(const FragmentKey& key, const Fragment& fragment, const Time& time);

    // Packets that were dropped, or still lack fragments.
    std::uint64_t incomplete() const { return dropped + packets.size() - conflictsOpen; }

    // Packets with fragments that contradict each other.
    std::uint64_t conflicts() const { return conflicting; }

private:
    struct Partial;
    using Table = std::map<FragmentKey, Partial>;
    struct Partial {
        std::map<std::size_t, Bytes> pieces;  // by offset; they do not overlap
        std::size_t held = 0;
        std::size_t received = 0;
        std::size_t size = 0;  // of the payload; 0 until the last fragment is there
        bool isConflicting = false;
        Time begun;
        std::list<Table::iterator>::iterator place;
    };

    void insert(Partial& partial, const Fragment& fragment);
    void refuse(Partial& partial);
    void forget(Table::iterator packet);  // an incomplete one
    void remove(Table::iterator packet);

    Table packets;
    std::list<Table::iterator> order;  // oldest first
    std::size_t held = 0;
    std::uint64_t dropped = 0;
    std::uint64_t conflicting = 0;
    std::uint64_t conflictsOpen = 0;  // of the packets in the table
};

}  // namespace quorva::inspect::capture
