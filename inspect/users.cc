// Finds the users of types.

#include "users.h"

#include "programs.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace quorva::inspect {

Users::Users(std::span<const Type* const> types)
{
    for (const Type* user : types)
        for (const Member& member : user->members)
            if (member.use.type) uses[member.use.type->name].push_back({user, &member});
    for (const KnownProcedure& each : knownProcedures()) {
        const RemoteProcedure& procedure = *each.procedure;
        if (procedure.argument) procedures[procedure.argument->name].push_back(each.name() + "(argument)");
        if (procedure.result) procedures[procedure.result->name].push_back(each.name() + "(result)");
    }
    for (auto& [type, names] : procedures) std::ranges::sort(names);
}

std::span<const Users::Entry> Users::usesOf(const Type& type) const
{
    const auto found = uses.find(type.name);
    return found == uses.end() ? std::span<const Entry>() : found->second;
}

std::vector<std::string> Users::direct(const Type& type) const
{
    std::vector<std::string> users;
    for (const auto& [user, member] : usesOf(type))
        users.push_back(user->kind == TypeKind::typeDefinition ? user->name
                                                               : std::string(user->name) + '.' + member->name);
    std::ranges::sort(users);
    users.erase(std::unique(users.begin(), users.end()), users.end());  // arms of a union may share a name
    if (const auto found = procedures.find(type.name); found != procedures.end())
        users.insert(users.begin(), found->second.begin(), found->second.end());
    return users;
}

std::vector<const Type*> Users::indirect(const Type& type) const
{
    std::unordered_set<const Type*> seen{&type};
    std::vector<const Type*> found, distance{&type};
    for (bool named = true; !distance.empty(); named = false) {
        std::vector<const Type*> next;
        for (const Type* each : distance)
            for (const auto& [user, member] : usesOf(*each))
                if (seen.insert(user).second) next.push_back(user);
        std::ranges::sort(next, {}, [](const Type* each) { return std::string_view(each->name); });
        if (!named) found.insert(found.end(), next.begin(), next.end());
        distance = std::move(next);
    }
    return found;
}

}  // namespace quorva::inspect
