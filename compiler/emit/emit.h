// The back ends of the compiler: each prints one kind of text from a tree in which every name is resolved.
//
// They expect a tree without faults and make no decisions of their own. What they print depends on that tree alone,
// ends with a newline and is meant to be read: formatted, documented in the words of the interface file, and free of
// warnings in C++20.
#pragma once

#include "front/model.h"

#include <string>
#include <vector>

namespace quorva::compiler {

// The public header of a module, installed as <quorvapixdr/types/MODULE.h>: constants, types, name functions, routines
// and coders.
std::string emitHeader(const Module& module);

// The routines and name functions that the header declares, and the plain functions of the module's types.
std::string emitUnit(const Module& module);

// What units of one library need of each other: <quorvapixdr/private/MODULE.h>.
std::string emitPrivateHeader(const Module& module);

// The descriptions of the module's types (see <quorvapixdr/description.h>).
std::string emitDescriptions(const Module& module);

// Their documentation (see <quorvapixdr/documentation.h>).
std::string emitDocumentation(const Module& module);

// The definition of quorva::`function`() over the documentation of the given modules, whatever their order.
std::string emitModuleList(const std::vector<const Module*>& modules, const std::string& function);

struct PlainOptions {
    std::string prefix;  // put before the name of every type, enumerator and constant: C has one name space for all
};

// All modules of a program as one file of RFC 4506 for other XDR tools, every name defined before it is used.
std::string emitPlain(const Program& program, const PlainOptions& options = {});

}  // namespace quorva::compiler
