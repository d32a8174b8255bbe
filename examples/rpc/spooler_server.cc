// A print spooler: keeps a queue of jobs, answers calls about it, and notifies clients of jobs that change.
//
//   spooler_server [PORT]    0, the default, leaves the choice to the system

#include "server.h"

#include <quorvapixdr/types/spooler.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

namespace spooler = quorva::procedure::PRINT_SPOOLER::SPOOLER_V1;
namespace notified = quorva::procedure::SPOOLER_CLIENT::SPOOLER_CLIENT_V1;
using quorva::Arena;
using rpc::Address;

constexpr ServicePortionId thisService = 4;
constexpr std::size_t mostJobs = 1000;
constexpr std::size_t mostSubscribers = 16;
constexpr std::size_t jobsInBlock = 4;

struct Job {
    std::string name;
    DPAJobState state;
};

class Spooler {
public:
    explicit Spooler(rpc::Server& calls) : server(calls)
    {
        server.serve(spooler::CREATE_JOB, [this](const auto& asked, rpc::Call&) { return create(asked); });
        server.serve(spooler::READ_STATE, [this](const JobId& id, rpc::Call&) { return read(id); });
        server.serve(spooler::LIST_JOBS,
                     [this](const auto& asked, rpc::Call& call) { return list(asked, call.arena); });
        server.serve(spooler::CANCEL_JOB, [this](const JobId& id, rpc::Call&) { return cancel(id); });
        server.serve(spooler::SUBSCRIBE,
                     [this](const auto& asked, rpc::Call& call) { return subscribe(asked, call.peer); });
    }

private:
    CreateJobStatus create(const CreateJobParameters& asked)
    {
        if (jobs.size() >= mostJobs) {
            const auto done = std::find_if(jobs.begin(), jobs.end(), [](const auto& each) {
                return each.second.state == DPAJobState::JScancelled;
            });
            if (done == jobs.end()) return {{}, ReturnStatus::commandRejected};
            jobs.erase(done);
        }
        Job job = {"", DPAJobState::JSpending};
        for (const JobAVP& each : std::span(asked.jobAttributes.elements, asked.jobAttributes.count)) {
            if (each.id != AttributeJobName || each.value.attribute != AttributeJobName)
                return {{}, ReturnStatus::unknownAttribute};
            const auto& bytes = each.value.jobName.bytes;
            job.name.assign(bytes.elements, bytes.elements + bytes.count);
        }
        const JobId id = {thisService, nextJob++};
        jobs[id.job] = job;
        changed(id, job.state);
        return {id, ReturnStatus::ok};
    }

    JobStateReturn read(const JobId& id) const
    {
        const auto found = jobs.find(id.job);
        if (id.service != thisService || found == jobs.end())
            return {ReturnStatus::invalidId, {DPAJobState::JSunknown, {}}};
        return {ReturnStatus::ok, {found->second.state, {}}};
    }

    ListJobsXFerData list(const JobBlockParameters& asked, Arena& arena) const
    {
        const std::size_t first = asked.blockNumber * jobsInBlock;
        const auto blocks = static_cast<Natural>((jobs.size() + jobsInBlock - 1) / jobsInBlock);
        const auto total = static_cast<Natural>(jobs.size());
        if (first >= jobs.size())
            return {asked.blockNumber, blocks, total, asked.interruptToken, XFerReturnStatus::XFNoData, {0, nullptr}};
        std::vector<JobData> block;
        auto job = std::next(jobs.begin(), static_cast<std::ptrdiff_t>(first));
        for (; job != jobs.end() && block.size() < jobsInBlock; ++job) {
            QueryAVP attributes[3] = {};
            attributes[0].value.attribute = AttributeJobId;
            attributes[0].value.jobId = {thisService, job->first};
            attributes[1].value.attribute = AttributeJobState;
            attributes[1].value.jobState = {job->second.state, {}};
            attributes[2].value.attribute = AttributeJobName;
            attributes[2].value.jobName = {StringEncoding::SEUTF8, arena.bytes(job->second.name)};
            block.push_back(arena.list<JobData>(attributes));
        }
        return {asked.blockNumber,
                blocks,
                total,
                asked.interruptToken,
                XFerReturnStatus::XFOk,
                arena.counted<JobData>(block)};
    }

    ReturnStatus cancel(const JobId& id)
    {
        const auto found = jobs.find(id.job);
        if (id.service != thisService || found == jobs.end()) return ReturnStatus::invalidId;
        found->second.state = DPAJobState::JScancelled;
        changed(id, found->second.state);
        return ReturnStatus::ok;
    }

    // The binding must name the client's own host: no client can make the spooler connect to another one.
    ReturnStatus subscribe(const SubscribeParameters& asked, const Address& peer)
    {
        const NotifyBinding& binding = asked.clientNotify;
        if (peer.host() != binding.hostName) return ReturnStatus::invalidAccessRights;
        const Address client = Address::ofNumbers(binding.hostName, asked.port);
        if (subscribers.size() >= mostSubscribers && !subscribers.contains(client.text()))
            return ReturnStatus::commandRejected;
        auto procedure = notified::JOB_CHANGED;
        procedure.program = binding.programNumber;
        procedure.version = binding.versionNumber;
        procedure.number = binding.notifyProcedureNumber;
        subscribers.insert_or_assign(client.text(), Subscriber{client, procedure});
        return ReturnStatus::ok;
    }

    void changed(const JobId& id, DPAJobState state)
    {
        JobAVP attribute = {AttributeJobState, {AttributeJobState, {}}};
        attribute.value.jobState = {state, {}};
        const JobAttNotifyParams event = {id, {1, &attribute}};
        for (const auto& [name, subscriber] : subscribers)
            server.notify(subscriber.address, subscriber.procedure, event, [this, key = name](bool answered) {
                if (!answered) subscribers.erase(key);  // it has ended
            });
    }

    struct Subscriber {
        Address address;
        quorva::Procedure<JobAttNotifyParams, quorva::Void> procedure;
    };

    rpc::Server& server;
    std::map<JobPortionId, Job> jobs;
    std::map<std::string, Subscriber> subscribers;
    JobPortionId nextJob = 1;
};

rpc::Server* running = nullptr;

}  // namespace

int main(int count, char** arguments)
try {
    rpc::ServerOptions options;
    if (count > 1) options.port = static_cast<std::uint16_t>(std::strtoul(arguments[1], nullptr, 10));
    options.onError = [](const std::string& sentence) { std::fprintf(stderr, "%s\n", sentence.c_str()); };
    rpc::Server server(options);
    const Spooler queue(server);
    running = &server;
    for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, [](int) { running->stop(); });
    std::printf("listens at %s\n", server.address().text().c_str());
    std::fflush(stdout);
    server.run();
} catch (const std::exception& error) {
    std::fprintf(stderr, "spooler_server: %s\n", error.what());
    return 1;
}
