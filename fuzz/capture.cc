// Any bytes, read as a capture: the messages are consistent with each other. The same bytes, read as a stream of TCP:
// the records do not depend on the segments.

#include "inspect/capture/reader.h"
#include "mutate.h"

#include <algorithm>

using namespace quorva;
using namespace quorva::fuzz;
using namespace quorva::inspect::capture;

namespace {

void require(bool holds, const std::string& property)
{
    if (!holds) throw Finding{"not so: " + property};
}

void checkRecord(const Record& record)
{
    require(record.bytes.size() <= std::min<std::uint64_t>(record.size, Records::mostKept), "few bytes are kept");
    require(!record.cut.empty() || record.bytes.size() == std::min<std::uint64_t>(record.size, Records::mostKept),
            "a record has all bytes, or a reason why not");
    require(1 <= record.firstPacket && record.firstPacket <= record.lastPacket, "the packets are in their order");
}

void checkMessage(const RpcMessage& message, std::uint64_t number)
{
    checkRecord(message.record);
    require(message.number == number, "messages are numbered in their order");
    require(message.call < number && message.repeats < number, "a message belongs to an earlier one");
    require(message.refusal.empty() == (message.numbers || message.isReply), "an envelope is read or refused");
    require(message.bodyAt <= message.record.bytes.size(), "the body is in the message");
}

void checkCapture(std::span<const unsigned char> file)
{
    std::FILE* const stream = fmemopen(const_cast<unsigned char*>(file.data()), file.size(), "rb");
    if (!stream) return;
    try {
        Reader reader(stream);
        std::uint64_t number = 0;
        for (Shown shown; true;) {
            try {
                if (!reader.next(shown)) break;
            } catch (const CaptureError&) {
                continue;
            }
            if (const RpcMessage* const message = std::get_if<RpcMessage>(&shown)) checkMessage(*message, ++number);
            reader.start().dateText();
        }
        reader.notes();
    } catch (const CaptureError&) {
    }
}

// The events of a stream in segments of this size; a gap comes before the segment with this number.
std::string eventsOf(std::span<const unsigned char> bytes, std::size_t segment, std::size_t gapAt)
{
    Events events;
    Records records(Flow{});
    for (std::size_t at = 0; at < bytes.size();) {
        if (at == gapAt) records.skip(1 + gapAt % 100, {{}, 1, 1}, events);
        const std::size_t end = std::min(bytes.size(), at + segment);
        const std::size_t next = at < gapAt ? std::min(end, gapAt) : end;
        records.append(bytes.subspan(at, next - at), {{}, 1, 1}, events);
        require(records.held() <= bytes.size() + 256, "a stream keeps no more than it has had");
        at = next;
    }
    records.end("the stream ends", {{}, 1, 1}, events);
    std::string text;
    for (const Event& event : events) {
        if (const Record* const record = std::get_if<Record>(&event)) {
            checkRecord(*record);
            text.append(record->bytes.begin(), record->bytes.end());
            text += '\n' + std::to_string(record->size) + record->cut + '\n';
        } else {
            text += std::get<Loss>(event).sentence + '\n';
        }
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const std::span<const unsigned char> bytes(data, size);
        checkCapture(bytes);
        const std::size_t gapAt = size == 0 ? 0 : data[size - 1] * std::size_t{2};  // beyond a short input: none
        const std::string whole = eventsOf(bytes, size, gapAt);
        for (const std::size_t segment : {1u, 3u, 16u})
            require(eventsOf(bytes, segment, gapAt) == whole, "records do not depend on segments");
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned)
{
    return LLVMFuzzerMutate(data, size, most);
}
