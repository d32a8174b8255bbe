// The names that the headers of C, C++ and POSIX define.
#pragma once

#include <string_view>

namespace quorva::compiler {

// Lists of names, separated by blanks and line ends: the macros, and the declarations outside namespaces.
extern const std::string_view systemMacros;
extern const std::string_view systemGlobals;

}  // namespace quorva::compiler
