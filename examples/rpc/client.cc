// The client's side of a call.

#include "client.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <random>
#include <system_error>

namespace rpc {

namespace {

bool mustWait()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

bool answers(ByteView message, std::uint32_t xid)
{
    return message.size() >= 4 && unitAt(message) == xid;
}

}  // namespace

Client::Client(Protocol byProtocol, const Address& ofServer, ClientOptions withOptions)
    : protocol(byProtocol),
      server(ofServer),
      options(withOptions),
      buffer(longestMessage),
      nextXid(std::random_device()())
{
}

Bytes Client::exchange(const Called& called, const Bytes& argument)
{
    const std::uint32_t xid = nextXid++;
    const Bytes message = callMessage(xid, called, argument);
    try {
        connect();
        return protocol == Protocol::tcp ? byRecords(called, xid, message) : byDatagrams(called, xid, message);
    } catch (const std::exception& error) {
        // A part of the call may be sent and a part of a reply received, so this connection is of no more use.
        socket = {};
        reader = {};
        if (dynamic_cast<const RpcError*>(&error)) throw;
        fail(called, RpcError::Status::disconnected, error.what());
    }
}

Bytes Client::byRecords(const Called& called, std::uint32_t xid, const Bytes& message)
{
    const auto deadline = Clock::now() + options.timeout;
    const Bytes record = asRecord(message);
    for (std::size_t sent = 0; sent < record.size();) {
        const ssize_t count = send(socket.get(), record.data() + sent, record.size() - sent, MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else if (!mustWait()) {
            throwErrno("send");
        } else if (!wait(POLLOUT, deadline)) {
            fail(called, RpcError::Status::timedOut, "the server does not take the call");
        }
    }

    for (;;) {
        if (!wait(POLLIN, deadline)) fail(called, RpcError::Status::timedOut, "no reply in time");
        const ssize_t count = recv(socket.get(), buffer.data(), buffer.size(), 0);
        if (count == 0) fail(called, RpcError::Status::disconnected, "the server closed the connection");
        if (count < 0 && !mustWait()) throwErrno("receive");
        for (ByteView rest(buffer.data(), count < 0 ? 0 : static_cast<std::size_t>(count)); !rest.empty();) {
            rest = rest.subspan(reader.take(rest));
            if (!reader.complete()) continue;
            Bytes reply = reader.release();
            if (!answers(reply, xid)) continue;
            if (!rest.empty()) socket = {};  // there is no other call that this could answer
            return reply;
        }
    }
}

Bytes Client::byDatagrams(const Called& called, std::uint32_t xid, const Bytes& message)
{
    const auto deadline = Clock::now() + options.timeout;
    for (auto interval = options.retransmit; Clock::now() < deadline; interval *= 2) {
        if (send(socket.get(), message.data(), message.size(), MSG_NOSIGNAL) < 0 && !mustWait()) throwErrno("send");
        const auto again = std::min(Clock::now() + interval, deadline);
        while (wait(POLLIN, again)) {
            const ssize_t count = recv(socket.get(), buffer.data(), buffer.size(), 0);
            if (count < 0 && !mustWait()) throwErrno("receive");
            const ByteView reply(buffer.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
            if (answers(reply, xid)) return Bytes(reply.begin(), reply.end());
        }
    }
    fail(called, RpcError::Status::timedOut, "no reply in time");
}

void Client::connect()
{
    if (socket && protocol == Protocol::tcp) {
        unsigned char next;
        const ssize_t count = recv(socket.get(), &next, 1, MSG_PEEK);
        if (count > 0 || (count < 0 && mustWait())) return;
        socket = {};  // the server has closed it, for example because it was idle
        reader = {};
    }
    if (socket) return;
    socket = openSocket(protocol, server);
    beginConnecting(socket, server);
}

bool Client::wait(short events, Clock::time_point until) const
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    pollfd waiting = {socket.get(), events, 0};
    const int count = poll(&waiting, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    if (count < 0 && errno != EINTR) throwErrno("poll");
    return count != 0;
}

void Client::fail(const Called& called, RpcError::Status status, const std::string& sentence) const
{
    throw RpcError(status, std::string(called.name) + " at " + server.text() + ": " + sentence);
}

}  // namespace rpc
