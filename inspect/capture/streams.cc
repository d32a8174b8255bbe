// Puts segments in order.

#include "streams.h"

#include <algorithm>
#include <cstdlib>

namespace quorva::inspect::capture {

namespace {

constexpr std::size_t pieceCost = 128;                           // memory of a segment that waits, besides its bytes
constexpr std::uint64_t firstPosition = std::uint64_t{1} << 40;  // so that bytes before it have positions, too

// True if two pieces of a stream have different bytes at the same position.
bool differ(std::uint64_t at, const Bytes& bytes, std::uint64_t otherAt, const Bytes& other)
{
    const std::uint64_t from = std::max(at, otherAt), to = std::min(at + bytes.size(), otherAt + other.size());
    return from < to && !std::equal(bytes.begin() + static_cast<std::ptrdiff_t>(from - at),
                                    bytes.begin() + static_cast<std::ptrdiff_t>(to - at),
                                    other.begin() + static_cast<std::ptrdiff_t>(from - otherAt));
}

}  // namespace

void Streams::add(const Payload& segment, Events& events)
{
    if (segment.acknowledges) acknowledge(segment, events);
    Stream& stream = find(segment.flow, events);
    stream.time = segment.time;
    stream.packet = segment.packet;
    const std::uint32_t sequence = segment.sequence + (segment.synchronises ? 1 : 0);
    const auto distance = [&] { return std::int64_t{static_cast<std::int32_t>(sequence - stream.next)}; };
    const auto positionOf = [&] {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(stream.position) + distance());
    };
    const bool isFar = segment.size > 0 && std::abs(distance()) > mostAhead;
    if (!stream.isStarted || isFar || (segment.synchronises && positionOf() != firstPosition)) {
        if (stream.isStarted) flush(stream, "a new connection begins", events);
        begin(stream, sequence);
    }
    const std::uint64_t position = positionOf();
    if (segment.size > 0) addBytes(stream, segment, position, events);
    if (segment.finishes) {
        stream.finish = position + segment.size;
        const Piece end{{}, 0, segment.time, segment.packet};  // shows that the bytes before it are missing
        if (*stream.finish > stream.position && stream.waiting.try_emplace(*stream.finish, end).second)
            stream.waitingSize += pieceCost;
    }
    if (segment.resets) flush(stream, "the connection is reset", events);
    if (stream.finish == stream.position) flush(stream, "the stream ends", events);
    count(stream);
    while (held > mostHeld) forgetOldest(events);
}

Streams::Stream& Streams::find(const Flow& flow, Events& events)
{
    const auto [found, isNew] = streams.try_emplace(flow, flow);
    Stream& stream = found->second;
    if (isNew)
        stream.place = order.insert(order.end(), found);
    else
        order.splice(order.end(), order, stream.place);
    if (streams.size() > mostStreams) forgetOldest(events);
    return stream;
}

void Streams::begin(Stream& stream, std::uint32_t sequence)
{
    stream.isStarted = true;
    stream.next = sequence;
    stream.position = firstPosition;
    stream.finish.reset();
}

void Streams::addBytes(Stream& stream, const Payload& segment, std::uint64_t position, Events& events)
{
    stream.hadBytes = true;
    if (position + segment.size <= stream.position) return;
    if (position <= stream.position && stream.waiting.empty())
        return deliver(stream, position, segment.bytes, segment.size, segment.packet, events);
    Piece piece{Bytes(segment.bytes.begin(), segment.bytes.end()), segment.size, segment.time, segment.packet};
    const auto [waiting, isNew] = stream.waiting.try_emplace(position);
    if (!isNew && differ(position, piece.bytes, position, waiting->second.bytes))
        stream.records.warn("segments with different bytes for the same place", stream.at(segment.packet), events);
    if (isNew) stream.waitingSize += pieceCost;
    if (isNew || piece.bytes.size() > waiting->second.bytes.size()) {
        stream.waitingSize += piece.bytes.size() - waiting->second.bytes.size();
        waiting->second = std::move(piece);
    }
    drain(stream, events);
    while (stream.waitingSize > mostWaiting) skipGap(stream, events);
}

// Hands out a piece that begins at the next byte or before it.
void Streams::deliver(Stream& stream, std::uint64_t position, std::span<const unsigned char> bytes, std::size_t size,
                      std::uint64_t packet, Events& events)
{
    const std::uint64_t known = stream.position - position;
    if (known >= size) return;
    const auto old = static_cast<std::size_t>(known);
    stream.position += size - old;
    stream.next += static_cast<std::uint32_t>(size - old);
    const Records::Place place = stream.at(packet);
    if (old < bytes.size()) stream.records.append(bytes.subspan(old), place, events);
    if (const std::size_t captured = std::max(old, bytes.size()); captured < size)
        stream.records.skip(size - captured, place, events);
}

// Hands out what no longer waits.
void Streams::drain(Stream& stream, Events& events)
{
    std::uint64_t lastPosition = 0;
    Bytes last;
    while (!stream.waiting.empty() && stream.waiting.begin()->first <= stream.position) {
        const auto first = stream.waiting.begin();
        const std::uint64_t position = first->first;
        Piece piece = std::move(first->second);
        stream.waiting.erase(first);
        stream.waitingSize -= piece.bytes.size() + pieceCost;
        if (piece.packet > stream.packet) {
            stream.time = piece.time;
            stream.packet = piece.packet;
        }
        if (differ(lastPosition, last, position, piece.bytes))
            stream.records.warn("segments with different bytes for the same place", stream.at(piece.packet), events);
        deliver(stream, position, piece.bytes, piece.size, piece.packet, events);
        lastPosition = position;
        last = std::move(piece.bytes);
    }
}

void Streams::skipGap(Stream& stream, Events& events)
{
    const auto& [first, piece] = *stream.waiting.begin();
    const std::uint64_t size = first - stream.position;
    stream.records.skip(size, stream.at(stream.packet), events);
    stream.position = first;
    stream.next += static_cast<std::uint32_t>(size);
    stream.time = piece.time;
    stream.packet = piece.packet;
    drain(stream, events);
}

void Streams::flush(Stream& stream, const char* why, Events& events)
{
    while (!stream.waiting.empty()) skipGap(stream, events);
    stream.records.end(why, stream.at(stream.packet), events);
}

// Gives up what the other side has received, although the capture does not have it.
void Streams::acknowledge(const Payload& segment, Events& events)
{
    const auto found = streams.find(segment.flow.reversed());
    if (found == streams.end() || found->second.waiting.empty()) return;
    Stream& stream = found->second;
    const std::int64_t ahead = static_cast<std::int32_t>(segment.acknowledgement - stream.next);
    const std::int64_t received = static_cast<std::int64_t>(stream.position) + ahead;
    while (!stream.waiting.empty() && static_cast<std::int64_t>(stream.waiting.begin()->first) <= received)
        skipGap(stream, events);
    count(stream);
}

void Streams::count(Stream& stream)
{
    const std::size_t now = stream.records.held() + stream.waitingSize;
    held += now - stream.held;
    stream.held = now;
}

void Streams::remove(Table::iterator stream)
{
    const Stream& removed = stream->second;
    held -= removed.held;
    if (removed.hadBytes && !removed.records.hadRecords()) ++otherStreams;
    order.erase(removed.place);
    streams.erase(stream);
}

void Streams::forgetOldest(Events& events)
{
    const Table::iterator oldest = order.front();
    if (oldest->second.held > 0) ++forgottenStreams;
    flush(oldest->second, "it is idle for too long", events);
    remove(oldest);
}

bool Streams::endNext(Events& events)
{
    if (order.empty()) return false;
    flush(order.front()->second, "the capture ends", events);
    remove(order.front());
    return true;
}

}  // namespace quorva::inspect::capture
