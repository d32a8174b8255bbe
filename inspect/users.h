// Who uses a type: the members, typedefs and remote procedures that name it, and the types that contain it through
// them.
#pragma once

#include <quorvapixdr/description.h>

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// An index of the uses in some types and in all known procedures.
class Users {
public:
    explicit Users(std::span<const Type* const> types);

    // The procedures that name the type, then the members and typedefs, each ordered by name:
    // "SPOOLER.FIRST.createJob(argument)", "JobAVP.value", "JobAVPSeq".
    std::vector<std::string> direct(const Type& type) const;

    // The types that contain the type, but do not name it: the nearest first, those of one distance by name.
    std::vector<const Type*> indirect(const Type& type) const;

private:
    struct Entry {
        const Type* user;
        const Member* member;
    };
    std::span<const Entry> usesOf(const Type& type) const;

    // By name: a module that is read at run time has descriptions of its own for what it shares with others.
    std::unordered_map<std::string_view, std::vector<Entry>> uses;
    std::unordered_map<std::string_view, std::vector<std::string>> procedures;
};

}  // namespace quorva::inspect
