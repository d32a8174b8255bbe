// Decodes envelopes and pairs calls with replies.

#include "calls.h"

#include <quorvapixdr/types/onc_rpc.h>

#include <quorvapixdr/codec.h>

#include <algorithm>
#include <functional>
#include <string_view>

namespace quorva::inspect::capture {

namespace {

constexpr std::size_t longestEnvelope = 1024;  // more than any call or reply has before its argument or result

// "PROG_UNAVAIL", or "accept_stat 9" for a number without a name.
template <class Enumeration>
std::string nameOf(Enumeration value, const char* (*name)(int), const char* what)
{
    const std::string text = name(static_cast<int>(value));
    return text.starts_with("Error_") ? std::string(what) + ' ' + std::to_string(static_cast<int>(value)) : text;
}

std::string rangeText(const VersionRange& versions)
{
    return ' ' + std::to_string(versions.low) + ".." + std::to_string(versions.high);
}

std::string statusOf(const ReplyBody& reply)
{
    if (reply.stat == ReplyStat::MSG_ACCEPTED) {
        const AcceptedOutcome& outcome = reply.areply.outcome;
        const std::string name = nameOf(outcome.stat, AcceptStatString, "accept_stat");
        return outcome.stat == AcceptStat::PROG_MISMATCH ? name + rangeText(outcome.versions) : name;
    }
    const RejectedReply& rejected = reply.rreply;
    if (rejected.stat == RejectStat::RPC_MISMATCH) return "RPC_MISMATCH" + rangeText(rejected.versions);
    return nameOf(rejected.reason, AuthStatString, "auth_stat");
}

std::size_t hashOf(std::span<const unsigned char> bytes)
{
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace

RpcMessage Calls::read(Record record)
{
    RpcMessage message;
    message.number = ++count;
    message.record = std::move(record);
    const std::span<const unsigned char> bytes = message.record.bytes;
    for (const unsigned char byte : bytes.first(std::min<std::size_t>(4, bytes.size())))
        message.xid = message.xid << 8 | byte;
    try {
        const auto envelope = decode<::RpcMessage>(bytes.first(std::min(bytes.size(), longestEnvelope)),
                                                   coderOf<::RpcMessage>, &message.bodyAt);
        message.isReply = envelope->body.mtype == MsgType::REPLY;
        if (message.isReply) {
            const ReplyBody& reply = envelope->body.rbody;
            message.status = statusOf(reply);
            message.hasBody = reply.stat == ReplyStat::MSG_ACCEPTED && reply.areply.outcome.stat == AcceptStat::SUCCESS;
        } else {
            const CallBody& call = envelope->body.cbody;
            message.numbers = ProcedureNumbers{call.prog, call.vers, call.proc};
            message.hasBody = true;
            message.isProtected = call.cred.flavor == AuthFlavor::RPCSEC_GSS;
        }
    } catch (const CodingError& error) {
        message.refusal = error.what();
        return message;
    }
    if (message.isReply)
        pair(message);
    else
        remember(message);
    return message;
}

void Calls::remember(RpcMessage& message)
{
    const auto [found, isNew] = calls.try_emplace(Key{message.record.flow, message.xid});
    Call& call = found->second;
    const std::size_t hash = hashOf(message.record.bytes);
    if (!isNew && call.hash == hash) {
        message.repeats = call.number;
        return;
    }
    if (!isNew) order.erase(call.place);  // the client uses the number again
    if (isNew || call.answer != 0) ++unansweredCalls;
    call = {message.number,
            message.record.time,
            *message.numbers,
            hash,
            message.isProtected,
            0,
            order.insert(order.end(), found)};
    if (calls.size() <= mostCalls) return;
    calls.erase(order.front());
    order.pop_front();
}

void Calls::pair(RpcMessage& message)
{
    const auto found = calls.find({message.record.flow.reversed(), message.xid});
    if (found == calls.end()) return;
    Call& call = found->second;
    message.numbers = call.numbers;
    message.call = call.number;
    message.elapsed = message.record.time - call.time;
    message.isProtected = call.isProtected;
    message.repeats = call.answer;
    if (call.answer != 0) return;
    call.answer = message.number;
    --unansweredCalls;
}

}  // namespace quorva::inspect::capture
