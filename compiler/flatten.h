// A whole program as one interface file: what its messages and headers are made of, and nothing for readers.
#pragma once

#include "model.h"

#include <optional>
#include <string>
#include <string_view>

namespace quorva::compiler {

// Every module of the program, ordered by name, each behind a line "// module NAME" and in the order of its file.
// Documentation is left out; of the comments only the provisional marks stay. The text is an interface file itself, and
// flattening that file yields the same modules again.
std::string flatten(const Program& program);

// The name in a line that begins a module in a flattened file; nothing for any other line.
std::optional<std::string_view> moduleOfLine(std::string_view line);

}  // namespace quorva::compiler
