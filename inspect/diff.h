// The differences of two messages of one type.
#pragma once

#include "json.h"
#include "tree.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quorva::inspect {

enum class Change : std::uint8_t {
    changed,    // another value, in `a` and `b`
    sameValue,  // other bytes that decode to the same value
    removed,    // only in the first message
    added,      // only in the second message
    reordered,  // a list of attributes has the same ids in another order
};

struct Difference {
    Change change;
    std::string path;       // JSON Pointer; into the second message, but for `removed` into the first
    Json a, b;              // the JSON form of what differs; null where there is none
    std::string attribute;  // "attribute 49": the id of the element of a list of attributes that the difference is in
};

// The differences, in the order of the messages. Two lists of attributes are aligned by their ids; other arrays as
// sequences, so that an inserted element does not make all later ones differ. A message that was refused is compared as
// far as it was decoded.
std::vector<Difference> differencesOf(const Tree& a, const Tree& b);

// One line, such as `~ /2/value/plex  "PlexOneToTwo" -> "PlexTwoToTwo"  (attribute 49)`.
std::string differenceText(const Difference& difference, bool coloured);

// {"change", "path", "a", "b", "attribute"}
Json differenceJson(const Difference& difference);

}  // namespace quorva::inspect
