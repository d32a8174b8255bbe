// Puts fragments together.

#include "fragments.h"

#include <algorithm>

namespace quorva::inspect::capture {

namespace {

constexpr std::size_t longestPayload = 65535;
constexpr std::size_t pieceCost = 128;  // memory of a piece besides its bytes

}  // namespace

std::optional<Bytes> Fragments::add(const FragmentKey& key, const Fragment& fragment, const Time& time)
{
    auto [packet, isNew] = packets.try_emplace(key);
    if (!isNew && (time - packet->second.begun).seconds >= mostSeconds) {
        forget(packet);
        std::tie(packet, isNew) = packets.try_emplace(key);
    }
    Partial& partial = packet->second;
    if (isNew) {
        partial.begun = time;
        partial.held = pieceCost;
        held += pieceCost;
        partial.place = order.insert(order.end(), packet);
    }
    if (!partial.isConflicting) insert(partial, fragment);
    if (!partial.isConflicting && partial.size != 0 && partial.received == partial.size) {
        Bytes whole;
        whole.reserve(partial.size);
        for (const auto& [offset, bytes] : partial.pieces) whole.insert(whole.end(), bytes.begin(), bytes.end());
        remove(packet);
        return whole;
    }
    while (held > mostHeld) forget(order.front());
    return std::nullopt;
}

void Fragments::insert(Partial& partial, const Fragment& fragment)
{
    const std::size_t end = fragment.offset + fragment.bytes.size();
    if (fragment.bytes.empty()) return;
    const auto after = partial.pieces.lower_bound(fragment.offset);
    if (after != partial.pieces.end() && after->first == fragment.offset &&
        std::ranges::equal(after->second, fragment.bytes) && (!fragment.isLast || partial.size == end))
        return;
    const bool overlapsNext = after != partial.pieces.end() && after->first < end;
    const bool overlapsLast =
        after != partial.pieces.begin() && std::prev(after)->first + std::prev(after)->second.size() > fragment.offset;
    const std::size_t furthest = partial.pieces.empty() ? 0 : std::prev(partial.pieces.end())->first;
    const bool isBeyond = end > longestPayload || (partial.size != 0 && (fragment.isLast || end > partial.size)) ||
                          (fragment.isLast && furthest >= end);
    if (overlapsNext || overlapsLast || isBeyond) return refuse(partial);
    partial.pieces.emplace_hint(after, fragment.offset, Bytes(fragment.bytes.begin(), fragment.bytes.end()));
    partial.received += fragment.bytes.size();
    partial.held += fragment.bytes.size() + pieceCost;
    held += fragment.bytes.size() + pieceCost;
    if (fragment.isLast) partial.size = end;
}

void Fragments::refuse(Partial& partial)
{
    partial.isConflicting = true;
    partial.pieces.clear();
    held -= partial.held - pieceCost;
    partial.held = pieceCost;
    ++conflicting;
    ++conflictsOpen;
}

void Fragments::forget(Table::iterator packet)
{
    if (!packet->second.isConflicting) ++dropped;
    remove(packet);
}

void Fragments::remove(Table::iterator packet)
{
    held -= packet->second.held;
    if (packet->second.isConflicting) --conflictsOpen;
    order.erase(packet->second.place);
    packets.erase(packet);
}

}  // namespace quorva::inspect::capture
