// Prints a line for each settled type. The line changes when the type does, so the lines guard an interface without a
// copy of it.
#pragma once

#include "front/model.h"

#include <string>

namespace quorva::compiler {

// A line for each settled type of the program, ordered by name: the name and three hashes of 16 hexadecimal digits,
// separated by spaces.
//
//   wire    the layout of the bytes: forms, bounds, widths, the numbers of enumerators and arms
//   source  what C++ callers name: the members, and the types of the members by name
//   trace   what the trace shows: the names of members, arms, enumerators, unions and built-in types
//
// Wire and trace cover the types that the type is made of; source shows where a change is written down. Typedefs
// without a C++ type of their own count as the type that they name. Of provisional types and members only the presence
// counts. Documentation, modules and the order of arms and enumerators do not count.
std::string fingerprint(const Program& program);

}  // namespace quorva::compiler
