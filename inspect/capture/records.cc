// Finds records in streams.

#include "records.h"

#include "inspect/findings.h"
#include "inspect/messages.h"

#include <algorithm>
#include <cstring>

namespace quorva::inspect::capture {

namespace {

constexpr std::size_t startSize = 12;  // bytes of a message that tell what it is
constexpr std::size_t mostRaw = 128;   // bytes in which they have to come, with the marks between them
constexpr std::size_t shortest = 20;   // bytes of a message: a denied reply

std::uint32_t unitAt(std::span<const unsigned char> bytes, std::size_t at)
{
    std::uint32_t unit = 0;
    for (const unsigned char byte : bytes.subspan(at, 4)) unit = unit << 8 | byte;
    return unit;
}

}  // namespace

bool isEnvelope(std::span<const unsigned char> bytes)
{
    constexpr std::size_t longestVerifier = 400;
    constexpr std::uint32_t lastAcceptStat = 5, lastRejectStat = 1;
    if (bytes.size() < startSize) return false;
    const std::uint32_t type = unitAt(bytes, 4), next = unitAt(bytes, 8);
    if (type == 0) return next == 2;  // a call, and the version of the protocol
    if (type != 1 || next > 1) return false;
    if (next == 1) return bytes.size() < 16 || unitAt(bytes, 12) <= lastRejectStat;
    if (bytes.size() < 20) return true;
    const std::size_t verifier = unitAt(bytes, 16);
    if (verifier > longestVerifier) return false;
    const std::size_t status = 20 + (verifier + 3) / 4 * 4;
    return bytes.size() < status + 4 || unitAt(bytes, status) <= lastAcceptStat;
}

void Records::append(std::span<const unsigned char> bytes, const Place& place, Events& events)
{
    Bytes joined;
    const auto rereadFrom = [&](std::size_t first, std::size_t at) {
        Bytes again(raw.begin() + static_cast<std::ptrdiff_t>(first), raw.end());
        again.insert(again.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end());
        joined = std::move(again);
        bytes = joined;
        raw.clear();
    };
    if (state == State::searching && !raw.empty()) rereadFrom(0, 0);
    for (std::size_t at = 0; at < bytes.size();) {
        if (state == State::searching) {
            at = search(bytes, at);
            continue;
        }
        at += take(bytes.subspan(at), place, events);
        if (state != State::searching || raw.empty()) continue;
        if (raw.size() - 1 <= at) {  // no record begins at the first byte of `raw`
            at -= raw.size() - 1;
            raw.clear();
        } else {
            rereadFrom(1, at);
            at = 0;
        }
    }
}

// Takes some of the bytes, and returns their number.
std::size_t Records::take(std::span<const unsigned char> bytes, const Place& place, Events& events)
{
    const bool isTrusted = state == State::trusted;
    record.firstPacket = record.firstPacket == 0 ? place.earliest : std::min(record.firstPacket, place.earliest);
    if (markSize < RecordMark::size) {
        const std::size_t size = std::min(RecordMark::size - markSize, bytes.size());
        std::memcpy(mark + markSize, bytes.data(), size);
        markSize += static_cast<unsigned>(size);
        if (!isTrusted) raw.insert(raw.end(), mark + markSize - size, mark + markSize);
        if (markSize == RecordMark::size) takeMark(place, events);
        return size;
    }
    auto size = static_cast<std::size_t>(std::min<std::uint64_t>(fragmentLeft, bytes.size()));
    if (!isTrusted) size = std::min(size, startSize - record.bytes.size());
    const auto taken = bytes.first(size);
    if (!isTrusted) raw.insert(raw.end(), taken.begin(), taken.end());
    if (record.cut.empty()) {
        const auto kept = taken.first(std::min(size, mostKept - record.bytes.size()));
        record.bytes.insert(record.bytes.end(), kept.begin(), kept.end());
    }
    fragmentLeft -= size;
    if (!isTrusted && record.bytes.size() == startSize) checkStart(place, events);
    if (state != State::searching && fragmentLeft == 0) {
        markSize = 0;
        if (isLast) emit(place, events);
    }
    return size;
}

void Records::takeMark(const Place& place, Events& events)
{
    const RecordMark decoded = RecordMark{mark};
    if (decoded.length > longestRecord - record.size)
        return giveUp("a record mark of " + grouped(decoded.length) + " bytes", place, events);
    if (state == State::untrusted && raw.size() > mostRaw)
        return giveUp("a record in too many small fragments", place, events);
    record.size += decoded.length;
    fragmentLeft = decoded.length;
    isLast = decoded.isLast;
    if (fragmentLeft != 0) return;
    markSize = 0;
    if (isLast) emit(place, events);
}

// Trusts the record if it begins as a message.
void Records::checkStart(const Place& place, Events& events)
{
    if (!isEnvelope(record.bytes)) return giveUp("a record that is not a call or reply", place, events);
    if (lostBefore > 0) lose(grouped(lostBefore) + " bytes before this are not in the capture", place, events);
    if (!doubt.empty()) lose(doubt, place, events);
    lostBefore = 0;
    doubt.clear();
    isKnown = true;
    isLost = false;
    state = State::trusted;
    raw.clear();
}

// Returns where a record begins, or the size of `bytes` if there is none.
std::size_t Records::search(std::span<const unsigned char> bytes, std::size_t from)
{
    constexpr std::size_t window = 24;  // bytes of a message that are looked at
    for (std::size_t at = from; at < bytes.size(); ++at) {
        const auto rest = bytes.subspan(at);
        if (rest.size() >= RecordMark::size) {
            const RecordMark possible = RecordMark{rest};
            if (!possible.isLast || possible.length < shortest || possible.length > longestRecord) continue;
            const std::size_t needed = std::min<std::size_t>(window, possible.length);
            const auto message = rest.subspan(RecordMark::size);
            if (message.size() >= needed) {
                if (!isEnvelope(message.first(needed))) continue;
                restart(State::untrusted);
                return at;
            }
        }
        raw.assign(rest.begin(), rest.end());  // the next bytes decide
        break;
    }
    return bytes.size();
}

void Records::giveUp(const std::string& sentence, const Place& place, Events& events)
{
    if (state == State::trusted) {
        if (record.cut.empty()) record.cut = sentence + " follows";
        emit(place, events);
    } else if (isKnown && !isLost) {
        lose(sentence + "; everything before the next record is skipped", place, events);
        isLost = true;
    }
    Bytes kept = std::move(raw);
    restart(State::searching);
    raw = std::move(kept);
}

void Records::skip(std::uint64_t size, const Place& place, Events& events)
{
    const std::string missing = grouped(size) + (size == 1 ? " byte is" : " bytes are") + " not in the capture";
    if (!isKnown)
        lostBefore += size;
    else if (state != State::trusted)
        lose(missing, place, events);
    if (state != State::trusted) return restart(State::searching);

    if (record.cut.empty()) record.cut = "from its byte " + grouped(record.bytes.size()) + " on, " + missing;
    const bool endsWithin = markSize == RecordMark::size && size <= fragmentLeft;
    fragmentLeft -= endsWithin ? size : 0;
    if (endsWithin && fragmentLeft != 0) return;
    markSize = 0;
    if (endsWithin && !isLast) return;
    emit(place, events);
    if (!endsWithin) {
        lose(missing, place, events);
        state = State::searching;
    }
}

void Records::end(const char* why, const Place& place, Events& events)
{
    if (state == State::trusted) {
        if (record.cut.empty()) record.cut = std::string(why) + " within it";
        emit(place, events);
    } else if (state == State::untrusted && isKnown && !raw.empty()) {
        lose(std::string(why) + " within the first bytes of a record", place, events);
    }
    restart(State::untrusted);
}

void Records::warn(const std::string& sentence, const Place& place, Events& events)
{
    if (isKnown)
        lose(sentence, place, events);
    else
        doubt = sentence;
}

// Hands out a trusted record, with what there is of it. A record that is shorter than any message is refused.
void Records::emit(const Place& place, Events& events)
{
    if (state != State::trusted) return giveUp("a record of " + grouped(record.size) + " bytes", place, events);
    record.flow = flow;
    record.time = place.time;
    record.lastPacket = std::max(record.firstPacket, place.packet);
    events.emplace_back(std::move(record));
    restart(State::untrusted);
}

void Records::lose(const std::string& sentence, const Place& place, Events& events) const
{
    events.emplace_back(Loss{flow, place.time, place.packet, sentence});
}

void Records::restart(State next)
{
    state = next;
    raw.clear();
    record = {};
    markSize = 0;
    fragmentLeft = 0;
}

}  // namespace quorva::inspect::capture
