// The client and the server of examples/rpc: every status, hostile peers, many clients, memory that does not grow.

#include "client.h"
#include "server.h"

#include <quorvapixdr/types/common/status.h>
#include <quorvapixdr/types/common/strings.h>
#include <quorvapixdr/types/spooler.h>

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using rpc::Address;
using rpc::Bytes;
using rpc::ByteView;
using rpc::Descriptor;
using rpc::Protocol;
using rpc::RpcError;
using Status = RpcError::Status;

using Text = EncodedLongString;
constexpr quorva::Procedure<Text, Text> echo = {
    "ECHO", 0x20000f10, 2, 1, quorva::coder::EncodedLongString, quorva::coder::EncodedLongString};
constexpr quorva::Procedure<quorva::Void, Text> failing = {"FAIL", 0x20000f10,        3,
                                                           2,      quorva::voidCoder, quorva::coder::EncodedLongString};
constexpr quorva::Procedure<LongNatural, AttributeSeq> repeat = {
    "REPEAT", 0x20000f10, 3, 3, quorva::coder::LongNatural, quorva::coder::AttributeSeq};
constexpr std::uint16_t manyNumbers = 15'000;

template <class Argument, class Result>
auto numbered(quorva::Procedure<Argument, Result> procedure, std::uint32_t program, std::uint32_t version,
              std::uint32_t number)
{
    procedure.program = program;
    procedure.version = version;
    procedure.number = number;
    return procedure;
}

// Calls ECHO and compares the answer.
void expectEcho(rpc::Client& client, const std::string& text)
{
    quorva::Arena arena;
    const auto result = client.call(echo, Text{StringEncoding::SEUTF8, arena.bytes(text)});
    const auto& bytes = result->bytes;
    EXPECT_EQ(std::string(bytes.elements, bytes.elements + bytes.count), text);
}

Bytes echoCall(std::uint32_t xid, const std::string& text)
{
    quorva::Arena arena;
    return rpc::callMessage(xid, echo, quorva::encode(Text{StringEncoding::SEUTF8, arena.bytes(text)}));
}

// A server with three procedures, in a thread of its own.
class Running {
public:
    explicit Running(const rpc::ServerOptions& options = {}) : server(options)
    {
        server.serve(echo, [this](const Text& text, rpc::Call& call) {
            ++calls;
            return Text{text.encoding,
                        call.arena.bytes(ByteView(text.bytes.elements, text.bytes.elements + text.bytes.count))};
        });
        server.serve(failing, [](quorva::Void, rpc::Call&) -> Text { throw std::runtime_error("out of paper"); });
        server.serve(repeat, [](LongNatural number, rpc::Call& call) {
            return call.arena.list<AttributeSeq>(std::vector<AttributeId>(manyNumbers, number));
        });
        thread = std::thread([this] { server.run(); });
    }
    ~Running()
    {
        server.stop();
        thread.join();
    }

    rpc::Client client(Protocol protocol) const { return {protocol, server.address()}; }

    rpc::Server server;
    std::atomic<int> calls = 0;

private:
    std::thread thread;
};

// A peer that sends and receives bytes as it likes. It blocks.
class RawPeer {
public:
    RawPeer(Protocol protocol, const Address& server) : socket(rpc::openSocket(protocol, server))
    {
        rpc::beginConnecting(socket, server);
        waitFor(POLLOUT);
    }

    void send(ByteView bytes)
    {
        while (!bytes.empty()) {
            waitFor(POLLOUT);
            const ssize_t count = ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (count < 0 && errno != EAGAIN) return;  // closed by the server, as some tests expect
            bytes = bytes.subspan(count < 0 ? 0 : static_cast<std::size_t>(count));
        }
    }
    // As many bytes as can be sent without waiting.
    void fill(ByteView bytes)
    {
        while (::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0) {}
    }
    // What arrives next. Empty: the server closed the connection.
    Bytes receive()
    {
        Bytes bytes(65536);
        waitFor(POLLIN);
        const ssize_t count = recv(socket.get(), bytes.data(), bytes.size(), 0);
        bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        return bytes;
    }
    void expectClosed()
    {
        while (!receive().empty()) {}
    }

    Descriptor socket;

private:
    void waitFor(short events)
    {
        pollfd waiting = {socket.get(), events, 0};
        poll(&waiting, 1, -1);
    }
};

Bytes units(std::initializer_list<std::uint32_t> numbers)
{
    Bytes bytes;
    for (const std::uint32_t number : numbers) rpc::appendUnit(bytes, number);
    return bytes;
}

// ---- Records
// ---------------------------------------------------------------------------------------------------------

TEST(RpcRecords, anyPiecesMakeTheRecord)
{
    // Two records; the first has three fragments, of which one is empty.
    const Bytes stream = {0, 0, 0, 2, 'a', 'b', 0, 0, 0, 0, 0x80, 0, 0, 1, 'c', 0x80, 0, 0, 1, 'd'};
    for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
        rpc::RecordReader reader;
        std::vector<std::string> records;
        for (ByteView rest(stream); !rest.empty();) {
            rest = rest.subspan(reader.take(rest.first(std::min(piece, rest.size()))));
            if (!reader.complete()) continue;
            const Bytes record = reader.release();
            records.emplace_back(record.begin(), record.end());
        }
        EXPECT_EQ(records, (std::vector<std::string>{"abc", "d"})) << "pieces of " << piece;
        EXPECT_FALSE(reader.begun());
    }
}

TEST(RpcRecords, longOnesAreRefusedByTheirMark)
{
    rpc::RecordReader whole;
    EXPECT_THROW(whole.take(units({0x80010000})), std::length_error);
    rpc::RecordReader inFragments;
    inFragments.take(units({4, 0}));
    EXPECT_THROW(inFragments.take(units({0xfffc})), std::length_error);
    rpc::RecordReader empty;
    EXPECT_THROW(empty.take(Bytes(8000)), std::length_error);
}

// ---- Statuses
// --------------------------------------------------------------------------------------------------------

TEST(RpcStatus, clientSaysWhyThereIsNoResult)
{
    constexpr auto number = quorva::Procedure<LongNatural, Text>{
        "ECHO", 0x20000f10, 2, 1, quorva::coder::LongNatural, quorva::coder::EncodedLongString};
    const struct {
        std::function<void(rpc::Client&)> call;
        Status status;
        const char* sentence;
    } cases[] = {
        {[](auto& client) { client.call(numbered(failing, 7, 1, 1)); }, Status::programUnavailable,
         "program 0x00000007 is not here"},
        {[](auto& client) { client.call(numbered(failing, 0x20000f10, 1, 1)); }, Status::programMismatch,
         "program 0x20000f10 has versions 2 to 3, not 1"},
        {[](auto& client) { client.call(numbered(failing, 0x20000f10, 2, 9)); }, Status::procedureUnavailable,
         "program 0x20000f10 version 2 has no procedure 9"},
        {[&](auto& client) { client.call(number, 7U); }, Status::garbageArguments,
         "the server cannot decode the argument"},
        {[](auto& client) { client.call(failing); }, Status::systemError, "the server failed"},
    };
    const Running running;
    for (const Protocol protocol : {Protocol::tcp, Protocol::udp}) {
        rpc::Client client = running.client(protocol);
        for (const auto& each : cases) {
            try {
                each.call(client);
                ADD_FAILURE() << each.sentence;
            } catch (const RpcError& error) {
                EXPECT_EQ(error.status(), each.status) << error.what();
                EXPECT_NE(std::string(error.what()).find(each.sentence), std::string::npos) << error.what();
            }
        }
        client.call(numbered(
            quorva::Procedure<quorva::Void, quorva::Void>{"NULL", 0, 0, 0, quorva::voidCoder, quorva::voidCoder},
            0x20000f10, 3, 0));
        expectEcho(client, "the connection is still good");
    }
}

// Answers datagrams with what a test makes of them.
class Scripted {
public:
    // `answers` are sent for the calls in turn, several for one call.
    using Answers = std::vector<std::function<std::vector<Bytes>(std::uint32_t xid)>>;
    explicit Scripted(Answers answers)
        : socket(rpc::openListener(Protocol::udp, Address::ofNumbers("127.0.0.1", 0))),
          thread([this, script = std::move(answers)] {
              for (const auto& answer : script) {
                  pollfd waiting = {socket.get(), POLLIN, 0};
                  poll(&waiting, 1, -1);
                  sockaddr_storage peer = {};
                  socklen_t length = sizeof peer;
                  Bytes call(65536);
                  const ssize_t count =
                      recvfrom(socket.get(), call.data(), call.size(), 0, reinterpret_cast<sockaddr*>(&peer), &length);
                  call.resize(static_cast<std::size_t>(count));
                  calls.push_back(call);
                  for (const Bytes& message : answer(rpc::unitAt(call)))
                      sendto(socket.get(), message.data(), message.size(), 0, reinterpret_cast<sockaddr*>(&peer),
                             length);
              }
          })
    {
    }
    ~Scripted() { finish(); }

    // The calls that came, after the last answer.
    std::vector<Bytes> finish()
    {
        if (thread.joinable()) thread.join();
        return calls;
    }
    rpc::Client client() const { return {Protocol::udp, Address::localOf(socket), {.retransmit = 20ms}}; }

private:
    Descriptor socket;
    std::vector<Bytes> calls;
    std::thread thread;
};

Bytes success(std::uint32_t xid, const std::string& text)
{
    quorva::Arena arena;
    return rpc::acceptedMessage(xid, {AcceptStat::SUCCESS, {}},
                                quorva::encode(Text{StringEncoding::SEUTF8, arena.bytes(text)}));
}

TEST(RpcStatus, clientUnderstandsEveryReply)
{
    const struct {
        Bytes afterXid;
        Status status;
        const char* sentence;
    } cases[] = {
        {units({1, 1, 0, 3, 4}), Status::rpcMismatch, "the server speaks ONC RPC 3 to 4, not 2"},
        {units({1, 1, 1, 5}), Status::authError, "the credential is refused: AUTH_TOOWEAK"},
        {units({1, 0, 0, 0, 9}), Status::otherStatus, "unknown status 9"},
        {units({1, 0, 0, 0}), Status::badReply, "cannot decode RpcMessage"},
        {units({1, 2}), Status::badReply, "cannot decode RpcMessage"},
        {units({0, 2, 7, 1, 1, 0, 0, 0, 0}), Status::badReply, "the answer is a call"},
        {units({1, 0, 0, 0, 0, 2, 500}), Status::badReply, "cannot decode EncodedLongString at /bytes"},
        {units({1, 0, 0, 0, 0, 2, 0, 0}), Status::badReply, "4 bytes are left over"},
    };
    for (const auto& each : cases) {
        const Scripted server({[&](std::uint32_t xid) {
            Bytes reply = units({xid});
            reply.insert(reply.end(), each.afterXid.begin(), each.afterXid.end());
            return std::vector<Bytes>{reply};
        }});
        rpc::Client client = server.client();
        try {
            expectEcho(client, "");
            ADD_FAILURE() << each.sentence;
        } catch (const RpcError& error) {
            EXPECT_EQ(error.status(), each.status) << error.what();
            EXPECT_NE(std::string(error.what()).find(each.sentence), std::string::npos) << error.what();
        }
    }
}

TEST(RpcStatus, onlyTheReplyWithTheXidCounts)
{
    const Scripted server({[](std::uint32_t xid) {
        return std::vector<Bytes>{Bytes(), Bytes{1, 2}, success(xid - 1, "late"), success(xid, "right")};
    }});
    rpc::Client client = server.client();
    expectEcho(client, "right");
}

TEST(RpcStatus, datagramIsSentAgainWithTheSameXid)
{
    Scripted server({[](std::uint32_t) { return std::vector<Bytes>(); },
                     [](std::uint32_t) { return std::vector<Bytes>(); },
                     [](std::uint32_t xid) { return std::vector<Bytes>{success(xid, "third")}; }});
    rpc::Client client = server.client();
    expectEcho(client, "third");
    const std::vector<Bytes> calls = server.finish();
    EXPECT_EQ(calls[0], calls[1]);
    EXPECT_EQ(calls[0], calls[2]);
}

TEST(RpcStatus, silentAndAbsentServersAreErrors)
{
    const auto statusOf = [](Protocol protocol, const Address& address, const rpc::ClientOptions& options) {
        rpc::Client client(protocol, address, options);
        try {
            expectEcho(client, "");
        } catch (const RpcError& error) {
            return error.status();
        }
        return Status::otherStatus;
    };
    for (const Protocol protocol : {Protocol::tcp, Protocol::udp}) {
        Descriptor silent = rpc::openListener(protocol, Address::ofNumbers("127.0.0.1", 0));
        const Address address = Address::localOf(silent);
        EXPECT_EQ(statusOf(protocol, address, {.timeout = 50ms, .retransmit = 20ms}), Status::timedOut);
        silent = {};
        EXPECT_EQ(statusOf(protocol, address, {}), Status::disconnected);
    }
}

TEST(RpcStatus, closedConnectionIsMadeAgain)
{
    rpc::ServerOptions options;
    options.connections = 1;
    const Running running(options);
    rpc::Client one = running.client(Protocol::tcp), other = running.client(Protocol::tcp);
    for (int i = 0; i < 5; ++i) {
        expectEcho(one, "takes the only place");
        expectEcho(other, "takes it back");
    }
}

// ---- Hostile peers
// ---------------------------------------------------------------------------------------------------

TEST(RpcServer, answersWhatIsWrongInAHeader)
{
    const Bytes tooLong(404);
    const auto joined = [](Bytes first, const Bytes& second) {
        first.insert(first.end(), second.begin(), second.end());
        return first;
    };
    const struct {
        const char* what;
        Bytes call;
        Bytes reply;  // empty: none over UDP, and over TCP the connection is closed
    } cases[] = {
        {"another version of ONC RPC", units({7, 0, 3}), units({7, 1, 1, 0, 2, 2})},
        {"an unknown kind of credential", units({7, 0, 2, 1, 1, 1, 6, 0, 0, 0}), units({7, 1, 1, 1, 2})},
        {"a long credential", joined(units({7, 0, 2, 1, 1, 1, 1, 404}), tooLong), units({7, 1, 1, 1, 1})},
        {"a count without its bytes", units({7, 0, 2, 1, 1, 1, 1, 0xffffffff}), units({7, 1, 1, 1, 1})},
        {"a long verifier", joined(units({7, 0, 2, 1, 1, 1, 0, 0, 0, 404}), tooLong), units({7, 1, 1, 1, 3})},
        {"a name without a proof", units({7, 0, 2, 9, 1, 1, 1, 4, 0, 0, 0}), units({7, 1, 0, 0, 0, 1})},
        {"an argument for procedure 0", units({7, 0, 2, 0x20000f10, 2, 0, 0, 0, 0, 0, 1}), units({7, 1, 0, 0, 0, 4})},
        {"a count beyond the argument", units({7, 0, 2, 0x20000f10, 2, 1, 0, 0, 0, 0, 2, 0x7fffffff}),
         units({7, 1, 0, 0, 0, 4})},
        {"a header that is cut off", units({7, 0, 2, 1, 1}), {}},
        {"a reply", units({7, 1, 0, 0, 0, 0}), {}},
        {"neither a call nor a reply", units({7, 2, 2}), {}},
        {"two bytes", {1, 2}, {}},
    };
    const Running running;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        RawPeer byRecords(Protocol::tcp, running.server.address());
        byRecords.send(rpc::asRecord(each.call));
        EXPECT_EQ(byRecords.receive(), each.reply.empty() ? Bytes() : rpc::asRecord(each.reply));

        RawPeer byDatagrams(Protocol::udp, running.server.address());
        byDatagrams.send(each.call);
        if (each.reply.empty()) byDatagrams.send(units({8, 0, 3}));
        EXPECT_EQ(byDatagrams.receive(), each.reply.empty() ? units({8, 1, 1, 0, 2, 2}) : each.reply);
    }
}

TEST(RpcServer, servesOthersWhileAPeerMisbehaves)
{
    Bytes lines(200'000, 'A');
    const Bytes call = rpc::asRecord(echoCall(7, std::string(200, 'x')));
    const struct {
        const char* what;
        std::function<void(RawPeer&)> misbehave;
    } cases[] = {
        {"text", [&](RawPeer& peer) { peer.send(lines); }},
        {"nothing", [](RawPeer&) {}},
        {"a part of a record", [&](RawPeer& peer) { peer.send(ByteView(call).first(30)); }},
        {"a part of a mark", [&](RawPeer& peer) { peer.send(ByteView(call).first(3)); }},
        {"a record without an end",
         [](RawPeer& peer) {
             peer.send(units({0x80010000, 0}));
         }},
        {"empty fragments without an end", [](RawPeer& peer) { peer.send(Bytes(100'000)); }},
        {"an empty record", [](RawPeer& peer) { peer.send(units({0x80000000})); }},
        {"calls whose replies it does not read",
         [&](RawPeer& peer) {
             Bytes many;
             for (int i = 0; i < 1000; ++i) many.insert(many.end(), call.begin(), call.end());
             peer.fill(many);
         }},
    };
    rpc::ServerOptions options;
    options.patience = 50ms;
    const Running running(options);
    rpc::Client other = running.client(Protocol::udp);
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        std::vector<std::unique_ptr<RawPeer>> peers;
        for (int i = 0; i < 8; ++i) {
            peers.push_back(std::make_unique<RawPeer>(Protocol::tcp, running.server.address()));
            each.misbehave(*peers.back());
            expectEcho(other, each.what);
        }
        for (const auto& peer : peers) peer->expectClosed();
    }
}

TEST(RpcServer, answersAPeerThatSendsOneByteAtATime)
{
    const Running running;
    RawPeer slow(Protocol::tcp, running.server.address());
    rpc::Client other = running.client(Protocol::tcp);
    const Bytes call = rpc::asRecord(echoCall(7, "slow"));
    for (const unsigned char& byte : call) {
        slow.send({&byte, 1});
        expectEcho(other, "quick");
    }
    EXPECT_EQ(slow.receive(), rpc::asRecord(success(7, "slow")));
}

TEST(RpcServer, answersCallsThatAreSentAhead)
{
    const Running running;
    RawPeer peer(Protocol::tcp, running.server.address());
    // 18 MB of replies, more than the system takes before they are read.
    constexpr std::uint32_t count = 300;
    Bytes calls;
    for (std::uint32_t xid = 0; xid < count; ++xid) {
        const Bytes call = rpc::asRecord(rpc::callMessage(xid, repeat, units({xid})));
        calls.insert(calls.end(), call.begin(), call.end());
    }
    peer.send(calls);
    rpc::RecordReader reader;
    for (std::uint32_t xid = 0; xid < count;) {
        const Bytes bytes = peer.receive();
        ASSERT_FALSE(bytes.empty());
        for (ByteView rest(bytes); !rest.empty();) {
            rest = rest.subspan(reader.take(rest));
            if (!reader.complete()) continue;
            std::vector<AttributeId> numbers(manyNumbers, xid);
            const AttributeSeq result = {manyNumbers, numbers.data()};
            ASSERT_EQ(reader.release(),
                      rpc::acceptedMessage(xid, {AcceptStat::SUCCESS, {}}, quorva::encode(result, {.limit = 65535})));
            ++xid;
        }
    }
}

TEST(RpcServer, newClientTakesThePlaceOfTheOneThatWaitsLongest)
{
    rlimit files = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    files.rlim_cur = std::min<rlim_t>(files.rlim_max, 4096);
    setrlimit(RLIMIT_NOFILE, &files);
    rpc::ServerOptions options;
    options.connections = 32;
    options.patience = std::chrono::hours(1);
    const Running running(options);
    std::vector<std::unique_ptr<RawPeer>> open;
    for (int i = 0; i < 1000; ++i) open.push_back(std::make_unique<RawPeer>(Protocol::tcp, running.server.address()));
    std::vector<rpc::Client> clients;
    for (int i = 0; i < 16; ++i) clients.push_back(running.client(Protocol::tcp));
    for (rpc::Client& client : clients) expectEcho(client, "served");
    for (int i = 0; i < 1000 - 32; ++i) open[static_cast<std::size_t>(i)]->expectClosed();
}

TEST(RpcServer, repeatedDatagramIsAnsweredWithoutASecondRun)
{
    const Running running;
    RawPeer peer(Protocol::udp, running.server.address());
    for (int i = 0; i < 3; ++i) {
        peer.send(echoCall(7, "once"));
        EXPECT_EQ(peer.receive(), success(7, "once"));
    }
    peer.send(echoCall(8, "once"));
    EXPECT_EQ(peer.receive(), success(8, "once"));
    EXPECT_EQ(running.calls, 2);
}

TEST(RpcServer, keepsRepliesToALimit)
{
    rpc::ServerOptions options;
    options.keptReplies = 1000;  // about four calls with their replies
    const Running running(options);
    RawPeer peer(Protocol::udp, running.server.address());
    for (const std::uint32_t xid : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 9U, 0U}) {
        peer.send(echoCall(xid, std::string(50, 'x')));
        EXPECT_EQ(rpc::unitAt(peer.receive()), xid);
    }
    EXPECT_EQ(running.calls, 11);
}

TEST(RpcServer, serves16ClientsAtOnce)
{
    const Running running;
    std::vector<std::thread> threads;
    for (int number = 0; number < 16; ++number)
        threads.emplace_back([&running, number] {
            rpc::Client client = running.client(number % 2 ? Protocol::tcp : Protocol::udp);
            for (int i = 0; i < 500; ++i) expectEcho(client, std::to_string(number) + '/' + std::to_string(i));
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(running.calls, 16 * 500);
}

TEST(RpcServer, saysWhatBecameOfANotification)
{
    const Running good;
    Descriptor silent = rpc::openListener(Protocol::tcp, Address::ofNumbers("127.0.0.1", 0));
    const Address silentAddress = Address::localOf(silent);
    Address absent;
    {
        const Descriptor soonGone = rpc::openListener(Protocol::tcp, Address::ofNumbers("127.0.0.1", 0));
        absent = Address::localOf(soonGone);
    }
    const Text text = {StringEncoding::SEUTF8, {0, nullptr}};
    const struct {
        Address to;
        std::uint32_t version;
        std::chrono::milliseconds patience;
        bool succeeds;
    } cases[] = {{good.server.address(), 2, 30s, true},
                 {good.server.address(), 7, 30s, false},  // the reply is an error
                 {silentAddress, 2, 50ms, false},
                 {absent, 2, 30s, false}};
    for (const auto& each : cases) {
        int done = 0;
        rpc::ServerOptions options;
        options.patience = each.patience;
        rpc::Server server(options);
        server.notify(each.to, numbered(echo, echo.program, each.version, echo.number), text, [&](bool succeeded) {
            ++done;
            EXPECT_EQ(succeeded, each.succeeds);
        });
        while (!done) server.step(1s);
        EXPECT_EQ(done, 1);
    }
}

// ---- The spooler as a process
// ----------------------------------------------------------------------------------------

class SpoolerProcess {
public:
    SpoolerProcess()
    {
        int ends[2];
        if (pipe(ends) != 0) rpc::throwErrno("pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, ends[0]);
        char name[] = SPOOLER_SERVER;
        char* const arguments[] = {name, nullptr};
        EXPECT_EQ(posix_spawn(&pid, name, &actions, nullptr, arguments, environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        FILE* const output = fdopen(ends[0], "r");
        EXPECT_EQ(fscanf(output, "listens at 127.0.0.1:%hu", &port), 1);
        fclose(output);
    }
    ~SpoolerProcess()
    {
        kill(pid, SIGTERM);
        int status = -1;
        waitpid(pid, &status, 0);
        EXPECT_EQ(status, 0);
    }

    rpc::Client client(Protocol protocol) const { return {protocol, Address::ofNumbers("127.0.0.1", port)}; }
    // The resident memory, in KB.
    long memory() const
    {
        std::ifstream file("/proc/" + std::to_string(pid) + "/statm");
        long whole = 0, resident = 0;
        file >> whole >> resident;
        return resident * (sysconf(_SC_PAGESIZE) / 1024);
    }

private:
    pid_t pid = 0;
    std::uint16_t port = 0;
};

namespace spooler = quorva::procedure::PRINT_SPOOLER::SPOOLER_V1;

TEST(RpcSpooler, notifiesOnlyTheCaller)
{
    const SpoolerProcess process;
    rpc::Client client = process.client(Protocol::tcp);
    char other[] = "192.0.2.1", name[] = "localhost";
    for (char* host : {other, name})
        EXPECT_EQ(*client.call(spooler::SUBSCRIBE, {{host, 1, 1, 1}, 7}), ReturnStatus::invalidAccessRights);
}

TEST(RpcSpooler, memoryIsFlatAfter100000Calls)
{
    const SpoolerProcess process;
    rpc::Client clients[] = {process.client(Protocol::tcp), process.client(Protocol::udp)};
    const auto call = [&](int count) {
        for (int i = 0; i < count; ++i) {
            rpc::Client& client = clients[i % 2];
            switch (i / 2 % 5) {
            case 0: client.call(spooler::CREATE_JOB, {}); break;
            case 1: client.call(spooler::READ_STATE, {4, static_cast<LongNatural>(i)}); break;
            case 2: client.call(spooler::LIST_JOBS, {static_cast<Natural>(i % 300), 1}); break;
            case 3: client.call(spooler::CANCEL_JOB, {4, static_cast<LongNatural>(i / 10)}); break;
            case 4: EXPECT_THROW(client.call(numbered(spooler::READ_STATE, 1, 1, 1), {}), RpcError); break;
            }
        }
    };
    call(20'000);  // the queue and the kept replies are full
    const long before = process.memory();
    call(100'000);
    const long grown = process.memory() - before;
    RecordProperty("kilobytes", std::to_string(before) + " + " + std::to_string(grown));
#ifndef SANITIZED
    EXPECT_LE(grown, 256) << "KB more than " << before;
#endif
}

}  // namespace
