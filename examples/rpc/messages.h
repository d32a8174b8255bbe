// Calls and replies as bytes, by the types of onc_rpc.x, and what can become of a call.
#pragma once

#include "socket.h"

#include <quorvapixdr/procedure.h>
#include <quorvapixdr/types/onc_rpc.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace rpc {

// A procedure without its types.
struct Called {
    Called(const char* ofName, std::uint32_t inProgram, std::uint32_t inVersion, std::uint32_t ofNumber)
        : name(ofName), program(inProgram), version(inVersion), number(ofNumber)
    {
    }
    template <class Argument, class Result>
    Called(const quorva::Procedure<Argument, Result>& procedure)
        : Called(procedure.name, procedure.program, procedure.version, procedure.number)
    {
    }

    const char* name;
    std::uint32_t program;
    std::uint32_t version;
    std::uint32_t number;
};

// The header of a call without credential, and of a reply with a result, in bytes.
inline constexpr std::size_t callHeader = 40;
inline constexpr std::size_t replyHeader = 24;

// Encodes an argument or a result of at most `limit` bytes. Throws quorva::CodingError, as quorva::encode does, which
// clears memory for the longest message first. Most are short and need a small buffer alone.
template <class T>
Bytes encoded(const T& value, quorva::Coder<T> coder, std::size_t limit)
{
    unsigned char buffer[512];
    void* const object = const_cast<void*>(static_cast<const void*>(&value));  // an encode only reads it
    const quorva::Pass pass = quorva::runPass(quorva::Mode::encode, coder.routine, object, buffer);
    if (pass.succeeded) return Bytes(buffer, buffer + pass.length);
    return quorva::encode(value, coder, {.limit = limit});
}

// Whole messages. `argument` and `result` are encoded already.
Bytes callMessage(std::uint32_t xid, const Called& called, ByteView argument);
Bytes acceptedMessage(std::uint32_t xid, const AcceptedOutcome& outcome, ByteView result = {});
Bytes deniedMessage(std::uint32_t xid, const RejectedReply& reply);

// Why a call has no result. what() is one sentence that names the procedure and the server:
// "CREATE_JOB at 127.0.0.1:40000: program 0x20000f01 has versions 1 to 1, not 2".
class RpcError : public std::runtime_error {
public:
    enum class Status {
        timedOut,
        disconnected,  // no connection, or it ended before the reply
        badReply,      // the reply is not one, or not of this call's type
        programUnavailable,
        programMismatch,  // the server has other versions
        procedureUnavailable,
        garbageArguments,  // the server cannot decode the argument
        systemError,       // the server failed
        rpcMismatch,       // the server speaks other versions of ONC RPC
        authError,         // the server does not accept the credential
        otherStatus        // a status that RFC 5531 does not have
    };

    RpcError(Status why, const std::string& sentence, VersionRange has = {}, AuthStat auth = AuthStat::AUTH_OK)
        : std::runtime_error(sentence), why(why), range(has), auth(auth)
    {
    }

    Status status() const { return why; }
    // With programMismatch and rpcMismatch: the versions that the server has.
    VersionRange versions() const { return range; }
    // With authError: the reason.
    AuthStat reason() const { return auth; }

private:
    Status why;
    VersionRange range;
    AuthStat auth;
};

// The result within the reply of `server` to `called`, still encoded. Throws RpcError for any other reply.
ByteView resultIn(ByteView reply, const Called& called, const Address& server);

}  // namespace rpc
