// Who uses a type: the members and typedefs that name it, and the types that contain it through them.
#pragma once

#include <quorvapixdr/description.h>

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// An index of the uses in some types.
class Users {
public:
    explicit Users(std::span<const Type* const> types);

    // The members and typedefs that name the type: "JobAVP.value", "JobAVPSeq"; ordered by name.
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
};

}  // namespace quorva::inspect
