// Calls and replies as bytes.

#include "messages.h"

#include <cstdio>

namespace rpc {

namespace {

using Status = RpcError::Status;

constexpr OpaqueAuth noAuth = {AuthFlavor::AUTH_NONE, {0, nullptr}};

Bytes withHeader(const RpcMessage& header, ByteView rest)
{
    Bytes message = encoded(header, quorva::coder::RpcMessage, quorva::driverMessage);
    message.reserve(message.size() + rest.size());
    message.insert(message.end(), rest.begin(), rest.end());
    return message;
}

std::string hexadecimal(std::uint32_t number)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%08x", number);
    return text;
}

std::string rangeText(const VersionRange& range)
{
    return std::to_string(range.low) + " to " + std::to_string(range.high);
}

// Throws the error of a reply without a result.
class Refusal {
public:
    Refusal(const Called& procedure, const Address& ofServer) : called(procedure), server(ofServer) {}

    [[noreturn]] void because(Status status, const std::string& sentence, VersionRange range = {},
                              AuthStat auth = AuthStat::AUTH_OK) const
    {
        throw RpcError(status, std::string(called.name) + " at " + server.text() + ": " + sentence, range, auth);
    }

    [[noreturn]] void denied(const RejectedReply& reply) const
    {
        if (reply.stat == RejectStat::RPC_MISMATCH)
            because(Status::rpcMismatch, "the server speaks ONC RPC " + rangeText(reply.versions) + ", not 2",
                    reply.versions);
        because(Status::authError,
                std::string("the credential is refused: ") + AuthStatString(static_cast<int>(reply.reason)), {},
                reply.reason);
    }

    [[noreturn]] void accepted(const AcceptedOutcome& outcome) const
    {
        const std::string program = "program " + hexadecimal(called.program);
        const std::string version = program + " version " + std::to_string(called.version);
        switch (outcome.stat) {
        case AcceptStat::PROG_UNAVAIL: because(Status::programUnavailable, program + " is not here");
        case AcceptStat::PROG_MISMATCH:
            because(
                Status::programMismatch,
                program + " has versions " + rangeText(outcome.versions) + ", not " + std::to_string(called.version),
                outcome.versions);
        case AcceptStat::PROC_UNAVAIL:
            because(Status::procedureUnavailable, version + " has no procedure " + std::to_string(called.number));
        case AcceptStat::GARBAGE_ARGS: because(Status::garbageArguments, "the server cannot decode the argument");
        case AcceptStat::SYSTEM_ERR: because(Status::systemError, "the server failed");
        case AcceptStat::SUCCESS: break;
        }
        because(Status::otherStatus, "unknown status " + std::to_string(static_cast<int>(outcome.stat)));
    }

private:
    const Called& called;
    const Address& server;
};

}  // namespace

Bytes callMessage(std::uint32_t xid, const Called& called, ByteView argument)
{
    RpcMessage header = {xid, {MsgType::CALL, {}}};
    header.body.cbody = {RpcVersion, called.program, called.version, called.number, noAuth, noAuth};
    return withHeader(header, argument);
}

Bytes acceptedMessage(std::uint32_t xid, const AcceptedOutcome& outcome, ByteView result)
{
    RpcMessage header = {xid, {MsgType::REPLY, {}}};
    header.body.rbody.stat = ReplyStat::MSG_ACCEPTED;
    header.body.rbody.areply = {noAuth, outcome};
    return withHeader(header, result);
}

Bytes deniedMessage(std::uint32_t xid, const RejectedReply& reply)
{
    RpcMessage header = {xid, {MsgType::REPLY, {}}};
    header.body.rbody.stat = ReplyStat::MSG_DENIED;
    header.body.rbody.rreply = reply;
    return withHeader(header, {});
}

ByteView resultIn(ByteView reply, const Called& called, const Address& server)
{
    const Refusal refused(called, server);
    try {
        std::size_t length = 0;
        const auto header = quorva::decode<RpcMessage>(reply, quorva::coder::RpcMessage, &length);
        if (header->body.mtype != MsgType::REPLY) refused.because(Status::badReply, "the answer is a call");
        const ReplyBody& body = header->body.rbody;
        if (body.stat == ReplyStat::MSG_DENIED) refused.denied(body.rreply);
        if (body.areply.outcome.stat != AcceptStat::SUCCESS) refused.accepted(body.areply.outcome);
        return reply.subspan(length);
    } catch (const quorva::CodingError& error) {
        refused.because(Status::badReply, error.what());
    }
}

}  // namespace rpc
