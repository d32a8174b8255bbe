// The JSON form of a message, without an object.
#pragma once

#include "json.h"
#include "tree.h"

#include <cstdint>

namespace quorva::inspect {

// The JSON form of a part of the message, by default the whole, as far as it was decoded: a failure leaves out what
// follows its place. For a message that was not refused it is `objectJson` of the decoded object.
Json treeJson(const Tree& tree, std::uint32_t part = 0);

}  // namespace quorva::inspect
