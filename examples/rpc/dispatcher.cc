// Which handler answers a call.

#include "dispatcher.h"

#include <exception>
#include <optional>
#include <string_view>

namespace rpc {

namespace {

// The units at the beginning of a call, which all versions of ONC RPC have in common.
constexpr std::size_t xidAt = 0;
constexpr std::size_t directionAt = 4;
constexpr std::size_t rpcVersionAt = 8;

Bytes refused(std::uint32_t xid, AuthStat reason)
{
    RejectedReply reply = {RejectStat::AUTH_ERROR, {}};
    reply.reason = reason;
    return deniedMessage(xid, reply);
}

Bytes status(std::uint32_t xid, AcceptStat stat, VersionRange versions = {})
{
    return acceptedMessage(xid, {stat, {versions}});
}

}  // namespace

Bytes Dispatcher::reply(ByteView message, const Address& peer, std::size_t room)
{
    if (message.size() < rpcVersionAt + 4) return {};
    const std::uint32_t xid = unitAt(message.subspan(xidAt));
    if (unitAt(message.subspan(directionAt)) != static_cast<std::uint32_t>(MsgType::CALL)) return {};
    if (unitAt(message.subspan(rpcVersionAt)) != RpcVersion) {
        RejectedReply reply = {RejectStat::RPC_MISMATCH, {}};
        reply.versions = {RpcVersion, RpcVersion};
        return deniedMessage(xid, reply);
    }
    std::size_t length = 0;
    std::optional<quorva::Owned<RpcMessage>> header;
    try {
        header = quorva::decode<RpcMessage>(message, quorva::coder::RpcMessage, &length);
    } catch (const quorva::CodingError& error) {
        if (error.path() == "/body/cbody/cred/body") return refused(xid, AuthStat::AUTH_BADCRED);
        if (error.path() == "/body/cbody/verf/body") return refused(xid, AuthStat::AUTH_BADVERF);
        return {};
    }
    return replyToCall(xid, (**header).body.cbody, message.subspan(length), peer, room);
}

Bytes Dispatcher::replyToCall(std::uint32_t xid, const CallBody& call, ByteView argument, const Address& peer,
                              std::size_t room)
{
    // Names that nothing proves are accepted, because no procedure here depends on them.
    if (call.cred.flavor != AuthFlavor::AUTH_NONE && call.cred.flavor != AuthFlavor::AUTH_SYS)
        return refused(xid, AuthStat::AUTH_REJECTEDCRED);

    const auto program = programs.find(call.prog);
    if (program == programs.end()) return status(xid, AcceptStat::PROG_UNAVAIL);
    const auto& versions = program->second;
    const auto version = versions.find(call.vers);
    if (version == versions.end())
        return status(xid, AcceptStat::PROG_MISMATCH, {versions.begin()->first, versions.rbegin()->first});
    const auto handler = version->second.find(call.proc);
    if (handler != version->second.end()) return run(handler->second, xid, argument, peer, room);
    if (call.proc == 0) return status(xid, argument.empty() ? AcceptStat::SUCCESS : AcceptStat::GARBAGE_ARGS);
    return status(xid, AcceptStat::PROC_UNAVAIL);
}

Bytes Dispatcher::run(const Handler& handler, std::uint32_t xid, ByteView argument, const Address& peer,
                      std::size_t room)
{
    const auto failed = [&](std::string_view why) {
        if (report) report(std::string(handler.name) + " for " + peer.text() + ": " + std::string(why));
        return status(xid, AcceptStat::SYSTEM_ERR);
    };
    quorva::Arena arena;
    Call call = {peer, arena};
    try {
        const Bytes result = handler.answer(argument, call, room - replyHeader);
        return acceptedMessage(xid, {AcceptStat::SUCCESS, {}}, result);
    } catch (const GarbageArguments&) {
        return status(xid, AcceptStat::GARBAGE_ARGS);
    } catch (const std::exception& error) {
        return failed(error.what());
    } catch (...) {
        return failed("an exception of unknown type");
    }
}

}  // namespace rpc
