// A client of the spooler: creates jobs, reads the state of one, lists the queue, and is notified of a cancelled job.
//
//   spooler_client tcp|udp HOST PORT [NAMED_PORT]
//
// NAMED_PORT is the port of the notifications that the spooler is told, if it is not the client's own: that of a relay.

#include "client.h"
#include "server.h"

#include <quorvapixdr/types/spooler.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <span>
#include <string>
#include <string_view>

namespace {

namespace spooler = quorva::procedure::PRINT_SPOOLER::SPOOLER_V1;
constexpr auto notification = quorva::procedure::SPOOLER_CLIENT::SPOOLER_CLIENT_V1::JOB_CHANGED;

const char* nameOf(ReturnStatus status)
{
    return ReturnStatusString(static_cast<int>(status));
}

const char* nameOf(const JobState& state)
{
    return DPAJobStateString(static_cast<int>(state.dpaJobState));
}

JobId createJob(rpc::Client& client, const std::string& name)
{
    quorva::Arena arena;
    JobAVP attribute = {AttributeJobName, {AttributeJobName, {}}};
    attribute.value.jobName = {StringEncoding::SEUTF8, arena.bytes(name)};
    const auto created = client.call(spooler::CREATE_JOB, {0, {1, &attribute}});
    std::printf("create \"%s\": %s, job %u\n", name.c_str(), nameOf(created->returnStatus), created->jobId.job);
    return created->jobId;
}

void readState(rpc::Client& client, const JobId& job)
{
    const auto state = client.call(spooler::READ_STATE, job);
    std::printf("state of job %u: %s, %s\n", job.job, nameOf(state->returnStatus), nameOf(state->jobState));
}

void printJob(const JobData& job)
{
    for (const QueryAVP& attribute : std::span(job.elements, job.count)) {
        const QueryUnion& value = attribute.value;
        switch (value.attribute) {
        case AttributeJobId: std::printf("  job %u", value.jobId.job); break;
        case AttributeJobState: std::printf(" %s", nameOf(value.jobState)); break;
        case AttributeJobName:
            std::printf(" \"%.*s\"", value.jobName.bytes.count,
                        reinterpret_cast<const char*>(value.jobName.bytes.elements));
            break;
        }
    }
    std::printf("\n");
}

void listQueue(rpc::Client& client)
{
    for (Natural number = 0;; ++number) {
        const auto block = client.call(spooler::LIST_JOBS, {number, 1});
        if (block->returnStatus != XFerReturnStatus::XFOk) return;
        std::printf("block %u of %u:\n", block->blockNumber, block->numberOfBlocks);
        for (const JobData& job : std::span(block->jobDataXFerList.elements, block->jobDataXFerList.count))
            printJob(job);
    }
}

// Subscribes, cancels the job, and waits for the notification. True if it came.
bool hearOfCancelling(rpc::Client& client, rpc::Server& listener, std::uint16_t namedPort, const JobId& job)
{
    bool heard = false;
    listener.serve(notification, [&](const JobAttNotifyParams& event, rpc::Call&) {
        for (const JobAVP& attribute : std::span(event.eventData.elements, event.eventData.count))
            if (attribute.value.attribute == AttributeJobState)
                std::printf("notified: job %u is %s\n", event.jobId.job, nameOf(attribute.value.jobState));
        heard = true;
        return quorva::Void();
    });
    std::string host = listener.address().host();
    const NotifyBinding binding = {host.data(), notification.program, notification.version, notification.number};
    std::printf("subscribe: %s\n", nameOf(*client.call(spooler::SUBSCRIBE, {binding, namedPort})));
    std::printf("cancel job %u: %s\n", job.job, nameOf(*client.call(spooler::CANCEL_JOB, job)));

    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!heard && std::chrono::steady_clock::now() < until) listener.step(std::chrono::seconds(1));
    return heard;
}

}  // namespace

int main(int count, char** arguments)
try {
    const std::string_view protocol = count > 3 ? arguments[1] : "";
    if (protocol != "tcp" && protocol != "udp") {
        std::fputs("usage: spooler_client tcp|udp HOST PORT [NAMED_PORT]\n", stderr);
        return 2;
    }
    const auto port = [&](int index) {
        return static_cast<std::uint16_t>(std::strtoul(arguments[index], nullptr, 10));
    };
    rpc::Client client(protocol == "tcp" ? rpc::Protocol::tcp : rpc::Protocol::udp,
                       rpc::Address::lookUp(arguments[2], port(3)));
    rpc::Server listener({.udp = false});
    std::printf("hears of jobs at %s\n", listener.address().text().c_str());
    std::fflush(stdout);

    JobId job = {};
    for (const char* name : {"letter", "invoice", "poster", "menu", "map", "label"}) job = createJob(client, name);
    readState(client, job);
    listQueue(client);
    if (!hearOfCancelling(client, listener, count > 4 ? port(4) : listener.address().port(), job)) {
        std::fputs("spooler_client: no notification\n", stderr);
        return 1;
    }
    readState(client, job);
    readState(client, {job.service, 0});
} catch (const std::exception& error) {
    std::fprintf(stderr, "spooler_client: %s\n", error.what());
    return 1;
}
