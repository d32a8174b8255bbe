// A whole program as one interface file: what its messages and headers are made of, and nothing for readers.
#pragma once

#include "front/model.h"

#include <map>
#include <string>
#include <vector>

namespace quorva::compiler {

// The definitions of a module, in the order of the file.
using Contents = std::map<std::string, std::vector<const Definition*>>;

// What the program's modules define, by the names of the modules: for a flattened file, of those that it was made of.
Contents contentsOf(const Program& program);

// Whether flatten() made the file.
bool isFlattened(const Source& source);

// Every module of the program, ordered by name, each behind a line with that name. Documentation is left out; of the
// comments only the provisional marks stay, of definitions and of members. The text is an interface file itself, and
// flattening it changes nothing.
std::string flatten(const Program& program);

}  // namespace quorva::compiler
