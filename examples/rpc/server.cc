// The server's loop: sockets, connections, time.

#include "server.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <random>
#include <system_error>

namespace rpc {

namespace {

constexpr std::size_t readAtOnce = 16384;
constexpr int acceptedAtOnce = 64;
constexpr int callsAtOnce = 16;  // of one connection, before the others have their turn

bool mustWait()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

// True if `message` is the reply to the call `xid`, and says that it succeeded.
bool isSuccess(ByteView message, std::uint32_t xid)
{
    if (message.size() < 4 || unitAt(message) != xid) return false;
    try {
        resultIn(message, {"", 0, 0, 0}, {});
        return true;
    } catch (const RpcError&) {
        return false;
    }
}

}  // namespace

// A connection of a client; or to a server that is called, if it has a `done`.
struct Server::Connection {
    Descriptor socket;
    Address peer;
    Clock::time_point progress;  // when it was made, received its last record or had sent its last reply
    RecordReader reader = {};
    Bytes ahead = {};  // received, but its turn has not come
    Bytes out = {};    // the reply as a record
    std::size_t sent = 0;
    std::uint32_t watched = 0;  // events
    std::function<void(bool)> done = {};
    std::uint32_t xid = 0;  // of the call, with `done`
    bool succeeded = false;
    Connections::iterator self = {};
};

Server::Server(ServerOptions withOptions)
    : options(std::move(withOptions)),
      dispatcher(options.onError),
      events(epoll_create1(EPOLL_CLOEXEC)),
      stopped(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      buffer(longestMessage),
      nextXid(std::random_device()())
{
    if (!events) throwErrno("epoll_create1");
    if (!stopped) throwErrno("eventfd");
    rlimit files = {};
    if (getrlimit(RLIMIT_NOFILE, &files) == 0 && files.rlim_cur != RLIM_INFINITY)
        options.connections =
            std::min<std::size_t>(options.connections, files.rlim_cur > 64 ? files.rlim_cur - 32 : 32);
    listen();
    if (listener) watch(listener.get(), &listener, EPOLLIN, true);
    if (datagrams) watch(datagrams.get(), &datagrams, EPOLLIN, true);
    watch(stopped.get(), &stopped, EPOLLIN, true);
}

Server::~Server() = default;

void Server::listen()
{
    // The port that the system chooses for TCP may be taken for UDP; then the next one is tried.
    for (int attempts = options.port ? 1 : 16; attempts > 0; --attempts) {
        try {
            listening = Address::lookUp(options.host, options.port);
            if (options.tcp) {
                listener = openListener(Protocol::tcp, listening);
                listening = Address::localOf(listener);
            }
            if (options.udp) {
                datagrams = openListener(Protocol::udp, listening);
                listening = Address::localOf(datagrams);
            }
            return;
        } catch (const std::system_error&) {
            if (attempts == 1) throw;
        }
    }
}

void Server::watch(int descriptor, void* tag, std::uint32_t wanted, bool isNew)
{
    epoll_event event = {wanted, {tag}};
    if (epoll_ctl(events.get(), isNew ? EPOLL_CTL_ADD : EPOLL_CTL_MOD, descriptor, &event) != 0)
        throwErrno("epoll_ctl");
}

void Server::run()
{
    while (!stopping) step(std::chrono::hours(1));
    stopping = false;
}

void Server::stop()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(stopped.get(), &one, sizeof one);  // a full counter stops it, too
}

void Server::step(std::chrono::milliseconds atMost)
{
    if (!connections.empty()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(connections.front().progress + options.patience -
                                                                       Clock::now());
        atMost = std::clamp(left, std::chrono::milliseconds(0), atMost);
    }
    std::array<epoll_event, 64> happened;
    const int count = epoll_wait(events.get(), happened.data(), happened.size(), static_cast<int>(atMost.count()));
    if (count < 0 && errno != EINTR) throwErrno("epoll_wait");
    for (int i = 0; i < count; ++i) {
        const epoll_event& event = happened[static_cast<std::size_t>(i)];
        if (event.data.ptr == &listener) {
            accept();
        } else if (event.data.ptr == &datagrams) {
            receiveDatagram();
        } else if (event.data.ptr == &stopped) {
            std::uint64_t times;
            stopping = read(stopped.get(), &times, sizeof times) > 0;
        } else {
            ready(*static_cast<Connection*>(event.data.ptr), event.events);
        }
    }
    closeLateOnes();
    const Connections ended = std::move(closed);
    closed.clear();
    for (const Connection& connection : ended)
        if (connection.done) connection.done(connection.succeeded);
}

// ---- Connections ----------------------------------------------------------------------------------------------------

void Server::accept()
{
    for (int i = 0; i < acceptedAtOnce; ++i) {
        sockaddr_storage storage = {};
        socklen_t length = sizeof storage;
        Descriptor socket(
            accept4(listener.get(), reinterpret_cast<sockaddr*>(&storage), &length, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket) {
            if (errno == ECONNABORTED) continue;
            // The system is short of something that a connection has.
            if (!mustWait()) makeRoom();
            return;
        }
        Connection& added = add(std::move(socket), {storage, length});
        added.watched = EPOLLIN;
        try {
            watch(added.socket.get(), &added, added.watched, true);
        } catch (const std::system_error& error) {
            close(added, error.what());
        }
    }
}

Server::Connection& Server::add(Descriptor socket, const Address& peer)
{
    if (connections.size() >= options.connections) makeRoom();
    connections.push_back({std::move(socket), peer, Clock::now()});
    connections.back().self = std::prev(connections.end());
    return connections.back();
}

void Server::makeRoom()
{
    if (!connections.empty()) close(connections.front(), "closed, because its place is needed");
}

void Server::progressed(Connection& connection)
{
    connection.progress = Clock::now();
    connections.splice(connections.end(), connections, connection.self);
}

void Server::close(Connection& connection, const std::string& why)
{
    if (!why.empty()) report(connection.peer, why);
    connection.socket = {};
    closed.splice(closed.end(), connections, connection.self);
}

void Server::closeLateOnes()
{
    const auto since = Clock::now() - options.patience;
    while (!connections.empty() && connections.front().progress <= since)
        close(connections.front(), "closed, because it made no progress");
}

void Server::ready(Connection& connection, std::uint32_t happened)
{
    if (!connection.socket) return;  // closed by an earlier event of this step
    if (happened & EPOLLOUT) {
        send(connection);
        if (connection.socket && connection.out.empty()) take(connection, std::exchange(connection.ahead, {}));
    } else if (connection.out.empty() && connection.ahead.empty()) {
        receive(connection);
    } else {
        close(connection, "closed, because it does not read its reply");  // an error or the end of both directions
    }
    if (!connection.socket) return;

    // While a reply waits for its reader, or calls wait for their turn, nothing more is received.
    const std::uint32_t wanted = connection.out.empty() && connection.ahead.empty() ? EPOLLIN : EPOLLOUT;
    if (wanted != connection.watched) watch(connection.socket.get(), &connection, wanted, false);
    connection.watched = wanted;
}

void Server::receive(Connection& connection)
{
    const ssize_t count = recv(connection.socket.get(), buffer.data(), readAtOnce, 0);
    if (count > 0) {
        take(connection, ByteView(buffer).first(static_cast<std::size_t>(count)));
    } else if (count == 0 || !mustWait()) {
        close(connection, connection.reader.begun() ? "closed within a record" : "");
    }
}

void Server::take(Connection& connection, ByteView bytes)
{
    for (int calls = 0; calls < callsAtOnce && !bytes.empty() && connection.out.empty(); ++calls) {
        try {
            bytes = bytes.subspan(connection.reader.take(bytes));
        } catch (const std::length_error& error) {
            return close(connection, error.what());
        }
        if (!connection.reader.complete()) return;
        const Bytes message = connection.reader.release();
        progressed(connection);
        if (connection.done) {
            connection.succeeded = isSuccess(message, connection.xid);
            return close(connection);
        }
        const Bytes answer = dispatcher.reply(message, connection.peer, longestMessage);
        if (!connection.socket) return;  // its place was needed for a call of the handler
        if (answer.empty()) return close(connection, "closed, because it sent something else than a call");
        connection.out = asRecord(answer);
        send(connection);
        if (!connection.socket) return;
    }
    connection.ahead.assign(bytes.begin(), bytes.end());
}

void Server::send(Connection& connection)
{
    while (connection.sent < connection.out.size()) {
        const ssize_t count = ::send(connection.socket.get(), connection.out.data() + connection.sent,
                                     connection.out.size() - connection.sent, MSG_NOSIGNAL);
        if (count < 0) {
            if (!mustWait()) close(connection, std::generic_category().message(errno));
            return;
        }
        connection.sent += static_cast<std::size_t>(count);
    }
    connection.out = {};
    connection.sent = 0;
    progressed(connection);
}

void Server::beginCall(const Address& to, const Called& called, const Bytes& argument, std::function<void(bool)> done)
{
    Descriptor socket = openSocket(Protocol::tcp, to);
    Connection& added = add(std::move(socket), to);
    added.done = std::move(done);
    added.xid = nextXid++;
    added.out = asRecord(callMessage(added.xid, called, argument));
    added.watched = EPOLLOUT;
    try {
        beginConnecting(added.socket, to);
        watch(added.socket.get(), &added, added.watched, true);
    } catch (const std::system_error& error) {
        close(added, error.what());
    }
}

// ---- Datagrams ------------------------------------------------------------------------------------------------------

void Server::receiveDatagram()
{
    sockaddr_storage storage = {};
    socklen_t addressLength = sizeof storage;
    const ssize_t count = recvfrom(datagrams.get(), buffer.data(), buffer.size(), 0,
                                   reinterpret_cast<sockaddr*>(&storage), &addressLength);
    if (count < 0) return;
    const Address peer(storage, addressLength);
    const ByteView message = ByteView(buffer).first(static_cast<std::size_t>(count));
    std::string key(peer.bytes().begin(), peer.bytes().end());
    key.append(message.begin(), message.end());
    // A reply that the system does not take is lost like any other datagram: the client asks again.
    const auto answer = [&](const Bytes& reply) {
        sendto(datagrams.get(), reply.data(), reply.size(), MSG_NOSIGNAL, peer.get(), peer.length());
    };
    if (const auto known = kept.find(key); known != kept.end()) return answer(known->second);
    Bytes reply = dispatcher.reply(message, peer, longestDatagram);
    if (reply.empty()) return;
    answer(reply);
    keep(std::move(key), std::move(reply));
}

void Server::keep(std::string key, Bytes reply)
{
    const std::size_t size = key.size() + reply.size();
    if (size > options.keptReplies) return;
    while (keptBytes + size > options.keptReplies) {
        const auto oldest = kept.find(*keptKeys.front());
        keptBytes -= oldest->first.size() + oldest->second.size();
        kept.erase(oldest);
        keptKeys.pop_front();
    }
    keptBytes += size;
    keptKeys.push_back(&kept.emplace(std::move(key), std::move(reply)).first->first);
}

void Server::report(const Address& peer, const std::string& sentence) const
{
    if (options.onError) options.onError(peer.text() + ": " + sentence);
}

}  // namespace rpc
