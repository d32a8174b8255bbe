// The names that the headers of C, C++ and POSIX take for themselves.
#pragma once

#include <string_view>

namespace quorva::compiler {

// Lists of names, with blanks and line ends between them: the macros, and what the headers declare outside namespaces.
extern const std::string_view systemMacros;
extern const std::string_view systemGlobals;

}  // namespace quorva::compiler
