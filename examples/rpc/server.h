// A server: answers the calls of many clients, over TCP and UDP, in one thread.
//
//     rpc::Server server;
//     server.serve(READ_STATE, [&](const JobId& id, rpc::Call& call) { return JobStateReturn{...}; });
//     server.run();
//
// What a peer sends cannot stop it. Memory is bounded for each connection: one call, one reply that the peer does not
// read, and 16 KB that it sent ahead. A connection that gets no further is closed after a while, and at once if its
// place is needed: then the one that has been waiting longest makes room for the new one.
#pragma once

#include "dispatcher.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <string>
#include <unordered_map>

namespace rpc {

struct ServerOptions {
    std::string host = "127.0.0.1";  // the address to listen at: by default, for clients of this machine alone
    std::uint16_t port = 0;          // of both protocols; 0: the system chooses
    bool tcp = true;
    bool udp = true;
    std::size_t connections = 256;               // at once, notifications included
    std::chrono::milliseconds patience{30'000};  // for one record to arrive, or one reply to be read
    std::size_t keptReplies = 1 << 20;           // bytes of replies that are kept to answer calls that UDP repeats
    // Hears one sentence about each handler that threw and each connection that was closed for what it did.
    std::function<void(const std::string&)> onError = {};
};

class Server {
public:
    // Listens. Throws std::system_error, for example if the port is taken.
    explicit Server(ServerOptions withOptions = {});
    ~Server();
    Server(const Server&) = delete;

    // Where it listens.
    const Address& address() const { return listening; }

    // Answers `procedure` with what `handler(argument, call)` returns. If the handler throws, the client is told that
    // the server failed. Procedure 0 of each version is answered without a handler.
    template <class Argument, class Result, class Function>
    void serve(const quorva::Procedure<Argument, Result>& procedure, Function handler)
    {
        dispatcher.serve(procedure, std::move(handler));
    }

    // Calls `procedure` of another server, over TCP, and returns before the reply is there. Afterwards `done` is called
    // from within `step`: true if the other server answered with success. `procedure` may have other numbers than those
    // of its interface file. Throws quorva::CodingError for an argument that cannot be encoded.
    template <class Argument, class Result>
    void notify(const Address& to, const quorva::Procedure<Argument, Result>& procedure, const Argument& argument,
                std::function<void(bool)> done)
    {
        beginCall(to, procedure, encoded(argument, procedure.argument, longestMessage - callHeader), std::move(done));
    }

    // Serves until `stop`.
    void run();
    // Serves what is ready, or waits for it, at most this long.
    void step(std::chrono::milliseconds atMost);
    // Ends `run`. Other threads and signal handlers may call it.
    void stop();

private:
    using Clock = std::chrono::steady_clock;
    struct Connection;
    using Connections = std::list<Connection>;

    void listen();
    void watch(int descriptor, void* tag, std::uint32_t events, bool isNew);
    void accept();
    void receiveDatagram();
    void ready(Connection& connection, std::uint32_t events);
    void receive(Connection& connection);
    void take(Connection& connection, ByteView bytes);
    void send(Connection& connection);
    void beginCall(const Address& to, const Called& called, const Bytes& argument, std::function<void(bool)> done);
    Connection& add(Descriptor socket, const Address& peer);
    void makeRoom();
    void progressed(Connection& connection);
    void close(Connection& connection, const std::string& why = {});
    void closeLateOnes();
    void keep(std::string key, Bytes reply);
    void report(const Address& peer, const std::string& sentence) const;

    ServerOptions options;
    Dispatcher dispatcher;
    Address listening;
    Descriptor listener;   // of TCP
    Descriptor datagrams;  // of UDP
    Descriptor events;     // of epoll(7)
    Descriptor stopped;    // of eventfd(2): readable after `stop`
    bool stopping = false;
    Connections connections;  // the one that made no progress for the longest time comes first
    Connections closed;       // until the end of the step, because events may still name them
    Bytes buffer;             // for what is received
    std::uint32_t nextXid;

    // The replies to the last calls over UDP, so that a repeated call is answered without being run again.
    std::unordered_map<std::string, Bytes> kept;
    std::deque<const std::string*> keptKeys;  // the oldest first
    std::size_t keptBytes = 0;
};

}  // namespace rpc
