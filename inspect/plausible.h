// Values as a device could send them: texts, times and numbers that fit the names of their members.
#pragma once

#include "chance.h"

#include <quorvapixdr/description.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

// A member with its type, as a place for a value; the names are its hints.
struct Place {
    const Type* owner;  // has the member
    const Member* member;
};

// Invents the values of one message. Moments and identifiers grow from one value to the next.
class Plausible {
public:
    explicit Plausible(Chance& from) : chance(from) {}

    // A number of a built-in type or an enumeration. `around` holds the open members, from the outermost in. The first
    // hint is taken from the innermost ones.
    std::int64_t number(const Type& scalar, std::span<const Place> around);

    // A text of 1 to `most` bytes without control characters; empty if `most` is 0. It is UTF-8, or ASCII alone if
    // `plain`.
    std::string text(std::size_t most, bool plain, std::span<const Place> around);

    // Bytes of an opaque that is not a text.
    std::string octets(std::size_t most);

private:
    std::int64_t steps(std::int64_t least, std::int64_t most, std::int64_t step);

    Chance& chance;
    std::int64_t moment = 0;
    std::map<std::string_view, std::int64_t> identifiers;  // the last one, by the name of the type
};

// The numbers that select an arm in any union of the known modules, by the type of the discriminant. A member of the
// same type holds such a number too, beside a union or not.
class KnownNumbers {
public:
    // Ascending; none for a built-in type, which says nothing about its numbers.
    std::span<const std::int64_t> of(const Type& discriminant);

private:
    std::map<const Type*, std::vector<std::int64_t>> byType;
    bool isCollected = false;
};

}  // namespace quorva::inspect
