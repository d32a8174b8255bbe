// Finds what C++ can declare and C cannot.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <string>

namespace quorva::compiler {

// The name of an enumerator in C, where enumerators are not scoped.
inline std::string enumeratorInC(const Definition& enumeration, const Enumerator& enumerator)
{
    return enumeration.name + "_" + enumerator.name;
}

// Reports what prevents the generation of C headers from a program in which check() finds no error.
void checkForC(const Program& program, Diagnostics& errors);

}  // namespace quorva::compiler
