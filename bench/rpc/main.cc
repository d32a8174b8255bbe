// Calls a second over the loopback interface: the client and the server of examples/rpc beside those of rpcgen and
// libtirpc, in turn in one run.
//
//   bench_rpc [SECONDS [ROUNDS]]    of one measurement (0.3), of which the table has the median (7)

#include "client.h"
#include "server.h"

#include <quorvapixdr/types/echo.h>

#include "echo_plain.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" void plain_echo_server_1(svc_req* request, SVCXPRT* transport);

extern "C" plain_EchoQueue* plain_send_back_1_svc(plain_EchoQueue* queue, svc_req*)
{
    return queue;  // freed by the dispatch function after the reply
}

namespace {

using rpc::Protocol;
constexpr auto sendBack = quorva::procedure::ECHO_SERVER::ECHO_V1::SEND_BACK;
char name[] = "quarterly report.pdf";

// A server in a process of its own, which ends with the object.
class Child {
public:
    // `serve` is given a function to call with its port.
    explicit Child(const std::function<void(std::function<void(std::uint16_t)>)>& serve)
    {
        int ends[2];
        if (pipe(ends) != 0) rpc::throwErrno("pipe");
        pid = fork();
        if (pid == 0) {
            serve([&](std::uint16_t own) {
                if (write(ends[1], &own, sizeof own) != sizeof own) _exit(1);
            });
            _exit(1);
        }
        if (read(ends[0], &port, sizeof port) != sizeof port) throw std::runtime_error("a server did not start");
        close(ends[0]);
        close(ends[1]);
    }
    ~Child()
    {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
    Child(const Child&) = delete;

    long memory() const  // resident, in KB
    {
        std::ifstream file("/proc/" + std::to_string(pid) + "/statm");
        long whole = 0, resident = 0;
        file >> whole >> resident;
        return resident * (sysconf(_SC_PAGESIZE) / 1024);
    }

    std::uint16_t port = 0;

private:
    pid_t pid = 0;
};

void serveOurs(const std::function<void(std::uint16_t)>& ready)
{
    rpc::Server server;
    server.serve(sendBack, [](const EchoQueue& queue, rpc::Call&) { return queue; });
    ready(server.address().port());
    server.run();
}

void serveTheirs(const std::function<void(std::uint16_t)>& ready)
{
    // Bound sockets for both protocols, without the port mapper. A stream socket listens.
    rpc::ServerOptions options;
    rpc::Descriptor tcp = rpc::openListener(Protocol::tcp, rpc::Address::ofNumbers("127.0.0.1", 0));
    const rpc::Address address = rpc::Address::localOf(tcp);
    rpc::Descriptor udp = rpc::openListener(Protocol::udp, address);
    for (SVCXPRT* transport : {svctcp_create(tcp.get(), 0, 0), svcudp_create(udp.get())})
        if (!transport || !svc_register(transport, plain_ECHO_SERVER, plain_ECHO_V1, plain_echo_server_1, 0)) return;
    ready(address.port());
    svc_run();
}

// Makes calls with a queue of `jobs` for a while; returns the calls a second.
double rate(const std::function<void()>& call, std::chrono::duration<double> time)
{
    using Clock = std::chrono::steady_clock;
    call();
    const auto begin = Clock::now();
    long calls = 0;
    std::chrono::duration<double> passed{};
    for (; passed < time; ++calls) {
        call();
        passed = Clock::now() - begin;
    }
    return static_cast<double>(calls) / passed.count();
}

double ours(Protocol protocol, std::uint16_t port, std::size_t count, std::chrono::duration<double> time)
{
    rpc::Client client(protocol, rpc::Address::ofNumbers("127.0.0.1", port));
    std::vector<EchoJob> jobs(count, EchoJob{4, 1207, name});
    const EchoQueue queue = {static_cast<std::uint16_t>(count), jobs.data()};
    return rate(
        [&] {
            if (client.call(sendBack, queue)->count != count) throw std::runtime_error("another queue came back");
        },
        time);
}

double theirs(Protocol protocol, std::uint16_t port, std::size_t count, std::chrono::duration<double> time)
{
    sockaddr_in address = {};
    const rpc::Address server = rpc::Address::ofNumbers("127.0.0.1", port);
    std::memcpy(&address, server.get(), sizeof address);
    int socket = RPC_ANYSOCK;
    CLIENT* const client = protocol == Protocol::tcp
                               ? clnttcp_create(&address, plain_ECHO_SERVER, plain_ECHO_V1, &socket, 0, 0)
                               : clntudp_create(&address, plain_ECHO_SERVER, plain_ECHO_V1, timeval{1, 0}, &socket);
    if (!client) throw std::runtime_error("libtirpc cannot connect");
    std::vector<plain_EchoJob> jobs(count, plain_EchoJob{4, 1207, name});
    plain_EchoQueue queue = {static_cast<unsigned>(count), jobs.data()};
    const double found = rate(
        [&] {
            plain_EchoQueue* const result = plain_send_back_1(&queue, client);
            if (!result || result->plain_EchoQueue_len != count) throw std::runtime_error("another queue came back");
            clnt_freeres(client, reinterpret_cast<xdrproc_t>(xdr_plain_EchoQueue), reinterpret_cast<char*>(result));
        },
        time);
    clnt_destroy(client);
    return found;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int count, char** arguments)
try {
    const std::chrono::duration<double> time(count > 1 ? std::atof(arguments[1]) : 0.3);
    const int rounds = count > 2 ? std::atoi(arguments[2]) : 7;
    const Child ourServer(serveOurs), theirServer(serveTheirs);
    const long ourMemory = ourServer.memory(), theirMemory = theirServer.memory();
    const struct {
        const char* what;
        double (*client)(Protocol, std::uint16_t, std::size_t, std::chrono::duration<double>);
        const Child& server;
    } pairs[] = {{"examples/rpc", ours, ourServer},
                 {"libtirpc", theirs, theirServer},
                 {"client of examples/rpc", ours, theirServer},
                 {"server of examples/rpc", theirs, ourServer}};
    std::printf(
        "| calls a second | %s | %s | ratio | only the client | only the server |\n"
        "|----------------|--------------|----------|-------|-----------------|-----------------|\n",
        pairs[0].what, pairs[1].what);
    for (const Protocol protocol : {Protocol::tcp, Protocol::udp}) {
        for (const std::size_t jobs : {std::size_t{1}, std::size_t{256}}) {
            std::vector<double> rates[4];
            for (int round = 0; round < rounds; ++round)
                for (std::size_t i = 0; i < 4; ++i)
                    rates[i].push_back(pairs[i].client(protocol, pairs[i].server.port, jobs, time));
            const double own = median(rates[0]), peer = median(rates[1]);
            std::printf("| %s, %4zu bytes | %12.0f | %8.0f | %5.2f | %15.0f | %15.0f |\n",
                        protocol == Protocol::tcp ? "TCP" : "UDP", 4 + 32 * jobs, own, peer, own / peer,
                        median(rates[2]), median(rates[3]));
        }
    }
    std::printf("\nResident memory of the servers, before and after: %ld and %ld KB, libtirpc %ld and %ld KB.\n",
                ourMemory, ourServer.memory(), theirMemory, theirServer.memory());
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench_rpc: %s\n", error.what());
    return 1;
}
