// Reads the calls and replies of a capture.

#include "reader.h"

#include "inspect/findings.h"

namespace quorva::inspect::capture {

namespace {

constexpr std::size_t shortestCall = 40, shortestReply = 20;

// ", 1 packet without UDP or TCP"; empty if there is none.
std::string counted(std::uint64_t number, const char* one, const char* several)
{
    return number == 0 ? "" : ", " + grouped(number) + ' ' + (number == 1 ? one : several);
}

}  // namespace

bool Reader::next(Shown& shown)
{
    while (events.empty()) {
        if (isAtEnd) {
            if (!streams.endNext(events)) return false;
            continue;
        }
        Packet packet;
        try {
            isAtEnd = !file.next(packet);
        } catch (const CaptureError&) {
            isAtEnd = true;
            throw;
        }
        if (isAtEnd) continue;
        ++packetCount;
        if (!begun) begun = packet.time;
        if (const auto payload = packets.read(packet)) add(*payload);
    }
    Event event = std::move(events.front());
    events.pop_front();
    if (Record* const record = std::get_if<Record>(&event))
        shown = calls.read(std::move(*record));
    else
        shown = std::move(std::get<Loss>(event));
    return true;
}

void Reader::add(const Payload& payload)
{
    if (payload.flow.transport == Transport::tcp) return streams.add(payload, events);
    const bool isCall = payload.bytes.size() >= 8 && payload.bytes[7] == 0;
    if (payload.size < (isCall ? shortestCall : shortestReply) || !isEnvelope(payload.bytes)) {
        ++otherDatagrams;
        return;
    }
    Record record{payload.flow, payload.time, payload.packet, payload.packet, {}, payload.size, {}};
    record.bytes.assign(payload.bytes.begin(), payload.bytes.end());
    if (payload.bytes.size() < payload.size) record.cut = "the capture has only the beginning of its packet";
    events.emplace_back(std::move(record));
}

std::string Reader::notes() const
{
    const std::string others =
        counted(packets.others(), "packet without UDP or TCP", "packets without UDP or TCP") +
        counted(otherDatagrams, "datagram of another protocol", "datagrams of other protocols") +
        counted(streams.others(), "stream of another protocol", "streams of other protocols") +
        counted(packets.fragments().incomplete(), "packet that lacks fragments", "packets that lack fragments") +
        counted(packets.fragments().conflicts(), "packet whose fragments contradict each other",
                "packets whose fragments contradict each other") +
        counted(streams.forgotten(), "stream for which memory was short", "streams for which memory was short");
    std::string text;
    if (!others.empty())
        text = grouped(packetCount) + (packetCount == 1 ? " packet" : " packets") + "; not read: " + others.substr(2);
    if (const std::uint64_t waiting = calls.unanswered())
        text +=
            (text.empty() ? "" : "; ") + grouped(waiting) + (waiting == 1 ? " call has" : " calls have") + " no reply";
    return text;
}

}  // namespace quorva::inspect::capture
