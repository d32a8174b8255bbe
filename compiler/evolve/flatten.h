// Prints a whole program as one interface file, with what affects messages and headers and without documentation.
#pragma once

#include "front/model.h"

#include <map>
#include <string>
#include <vector>

namespace quorva::compiler {

// Definitions by the name of their module, in the order of the file.
using DefinitionsByModule = std::map<std::string, std::vector<const Definition*>>;

// The definitions of the program, which must outlive the result. Those of a flattened file have the modules from which
// it was made.
DefinitionsByModule definitionsByModule(const Program& program);

// True if flatten() made the file.
bool isFlattened(const Source& source);

// The modules of the program, ordered by name, each after a line with its name. Of the comments only the provisional
// marks of definitions and members are kept. The text is an interface file; flattening it again returns the same text.
std::string flatten(const Program& program);

}  // namespace quorva::compiler
