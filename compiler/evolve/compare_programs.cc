// Compares `program` blocks. Programs, versions and procedures are matched by name; their numbers travel.
#include "comparison.h"
#include "front/diagnostics.h"

#include <map>

namespace quorva::compiler {

namespace {

// By the names from the program on: "SPOOLER", "SPOOLER.FIRST", "SPOOLER.FIRST.CREATE".
using RemoteMembers = std::map<std::string, RemoteMember>;

RemoteMembers membersOf(const Program& program)
{
    RemoteMembers members;
    for (const auto& module : program.modules) {
        for (const RemoteProgram& remote : module->programs) {
            members[remote.name] = {"", "program " + inQuotes(remote.name), remote.at, remote.number.number, {}, {}};
            for (const RemoteVersion& version : remote.versions) {
                const std::string key = remote.name + "." + version.name;
                members[key] = {remote.name, members[remote.name].what + ": version " + inQuotes(version.name),
                                version.at,  version.number.number,
                                {},          {}};
                for (const RemoteProcedure& each : version.procedures)
                    members[key + "." + each.name] = {
                        key,           members[key].what + ": procedure " + inQuotes(each.name),
                        each.at,       each.number.number,
                        each.argument, each.result};
            }
        }
    }
    return members;
}

}  // namespace

void Comparison::remoteType(const std::string& what, const RemoteMember& before, const RemoteMember& after,
                            std::optional<TypeRef> RemoteMember::*type)
{
    const auto declared = [&](const RemoteMember& member) {
        return member.*type ? singleOf(*(member.*type)) : Declaration{};
    };
    const Declaration old = declared(before);
    const Declaration now = declared(after);
    const Difference found = types.difference(old, now);
    if (!found.any()) return;
    add(impactOf(found), before.at, after.at,
        before.what + ": " + what + " was " + typeText(old) + ", is " + typeText(now));
}

void Comparison::remotePrograms()
{
    const RemoteMembers olds = membersOf(oldIndex.everything());
    const RemoteMembers news = membersOf(newIndex.everything());
    for (const auto& [key, before] : olds) {
        const auto found = news.find(key);
        if (found == news.end()) {
            const bool isOwnerThere = before.owner.empty() || news.contains(before.owner);
            if (isOwnerThere) add(Impact::wire, before.at, {}, before.what + " is gone");
            continue;
        }
        const RemoteMember& after = found->second;
        if (before.number != after.number)
            add(Impact::wire, before.at, after.at,
                before.what + " was " + std::to_string(before.number) + ", is " + std::to_string(after.number));
        remoteType("the argument", before, after, &RemoteMember::argument);
        remoteType("the result", before, after, &RemoteMember::result);
    }
    for (const auto& [key, after] : news) {
        const bool isOwnerNew = !after.owner.empty() && !olds.contains(after.owner);
        if (!olds.contains(key) && !isOwnerNew) add(Impact::addition, {}, after.at, after.what);
    }
}

}  // namespace quorva::compiler
