// The names that generated C++ cannot declare, each with the reason.
#pragma once

#include <string_view>

namespace quorva::compiler {

// Where the generated code declares a name. A declaration in a struct or a scoped enumeration hides a global one, but
// neither a macro nor a keyword.
enum class NameScope {
    global,  // types, constants, and the functions of types
    inner,   // fields, arms, discriminants, enumerators
};

// Returns why the name cannot be declared in that scope, as a predicate ("is a keyword of C++"); empty if it can.
std::string_view reservedBecause(std::string_view name, NameScope scope);

// The same for C11 and C23, and for a name that C++ can declare.
std::string_view reservedInC(std::string_view name, NameScope scope);

}  // namespace quorva::compiler
