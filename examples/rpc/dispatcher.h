// Which handler answers a call, and what a call without one is told.
#pragma once

#include "messages.h"

#include <quorvapixdr/arena.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace rpc {

// One call, for its handler.
struct Call {
    const Address& peer;
    quorva::Arena& arena;  // for what the result points to
};

class Dispatcher {
public:
    // Hears one sentence about each handler that threw.
    explicit Dispatcher(std::function<void(const std::string&)> onError) : report(std::move(onError)) {}

    // Answers `procedure` with what `handler(argument, call)` returns.
    template <class Argument, class Result, class Function>
    void serve(const quorva::Procedure<Argument, Result>& procedure, Function handler)
    {
        programs[procedure.program][procedure.version][procedure.number] = {
            procedure.name, [procedure, handler](ByteView bytes, Call& call, std::size_t limit) mutable {
                const quorva::Owned<Argument> argument = argumentOf(bytes, procedure.argument);
                const Result result = handler(*argument, call);
                return encoded(result, procedure.result, limit);
            }};
    }

    // The reply to a message, at most `room` bytes. Empty: the message is not a call, so there is no reply.
    Bytes reply(ByteView message, const Address& peer, std::size_t room);

private:
    struct Handler {
        const char* name;
        std::function<Bytes(ByteView argument, Call&, std::size_t limit)> answer;
    };
    using Version = std::map<std::uint32_t, Handler>;

    // Thrown for an argument that cannot be decoded.
    struct GarbageArguments {};

    template <class Argument>
    static quorva::Owned<Argument> argumentOf(ByteView bytes, quorva::Coder<Argument> coder)
    {
        try {
            return quorva::decode<Argument>(bytes, coder);
        } catch (const quorva::CodingError&) {
            throw GarbageArguments();
        }
    }

    Bytes replyToCall(std::uint32_t xid, const CallBody& call, ByteView argument, const Address& peer,
                      std::size_t room);
    Bytes run(const Handler& handler, std::uint32_t xid, ByteView argument, const Address& peer, std::size_t room);

    std::map<std::uint32_t, std::map<std::uint32_t, Version>> programs;
    std::function<void(const std::string&)> report;
};

}  // namespace rpc
