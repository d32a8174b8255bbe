// The result of a comparison: a list of changes, each with what it breaks.
#pragma once

#include "front/model.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

namespace quorva::compiler {

// The worst consequence of a change, in descending order; the last two break nothing.
enum class Impact { wire, source, trace, addition, provisional };

struct Finding {
    Impact impact = Impact::wire;
    Span before;  // without a source if the definition is new
    Span after;   // without a source if the definition is removed
    std::string sentence;
};

// Prints the findings under a heading for each impact, then a line of counts. Returns the number of breaks.
std::size_t print(const std::vector<Finding>& findings, std::ostream& out);

}  // namespace quorva::compiler
