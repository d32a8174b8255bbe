// A client: calls the procedures of one server.
//
//     rpc::Client client(rpc::Protocol::tcp, rpc::Address::lookUp("127.0.0.1", 40000));
//     const auto status = client.call(CREATE_JOB, parameters);   // quorva::Owned<CreateJobStatus>
//
// A client makes one call at a time. It is not synchronised: use one for each thread.
#pragma once

#include "messages.h"

#include <chrono>

namespace rpc {

struct ClientOptions {
    std::chrono::milliseconds timeout{10'000};  // of a call, with the connection that it may have to make
    // Over UDP, the first wait for a reply; each one after it is twice as long.
    std::chrono::milliseconds retransmit{500};
};

class Client {
public:
    // Connects at the first call, and again at the first call after a connection that ended.
    Client(Protocol byProtocol, const Address& ofServer, ClientOptions withOptions = {});

    // Calls `procedure` and waits for its result. Throws RpcError if there is none, and quorva::CodingError for an
    // argument that cannot be encoded. After a time-out the server may have done the work, or may still do it.
    //
    // Over UDP the call is sent again, with the same xid, until the reply comes.
    template <class Argument, class Result>
    quorva::Owned<Result> call(const quorva::Procedure<Argument, Result>& procedure, const Argument& argument)
    {
        const Bytes reply = exchange(procedure, encoded(argument, procedure.argument, room()));
        const ByteView result = resultIn(reply, procedure, server);
        try {
            return quorva::decode<Result>(result, procedure.result);
        } catch (const quorva::CodingError& error) {
            fail(procedure, RpcError::Status::badReply, error.what());
        }
    }
    template <class Result>
    quorva::Owned<Result> call(const quorva::Procedure<quorva::Void, Result>& procedure)
    {
        return call(procedure, quorva::Void{});
    }

private:
    using Clock = std::chrono::steady_clock;

    // The longest argument.
    std::size_t room() const { return (protocol == Protocol::tcp ? longestMessage : longestDatagram) - callHeader; }
    // Sends a call and returns the reply with its xid.
    Bytes exchange(const Called& called, const Bytes& argument);
    Bytes byRecords(const Called& called, std::uint32_t xid, const Bytes& message);
    Bytes byDatagrams(const Called& called, std::uint32_t xid, const Bytes& message);
    void connect();
    // Waits until the socket is ready for `events` of poll(2). False: `until` came first.
    bool wait(short events, Clock::time_point until) const;
    [[noreturn]] void fail(const Called& called, RpcError::Status status, const std::string& sentence) const;

    Protocol protocol;
    Address server;
    ClientOptions options;
    Descriptor socket;
    RecordReader reader;
    Bytes buffer;  // for what is received
    std::uint32_t nextXid;
};

}  // namespace rpc
