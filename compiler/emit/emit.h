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

// The public header of a module, installed as <quorvapixdr/MODULE.h>: constants, types, name functions, routines and
// coders.
std::string emitHeader(const Module& module);

// The routines and name functions that the header declares.
std::string emitUnit(const Module& module);

// The bodies that units of other modules code in place, and declarations of the others: <quorvapixdr/MODULE.bodies.h>.
std::string emitBodies(const Module& module);

// The module's part of the schema table (see <quorvapixdr/schema.h>).
std::string emitSchema(const Module& module);

// The definition of quorva::schema::modules() over the given modules, whatever their order.
std::string emitModuleList(const std::vector<const Module*>& modules);

struct PlainOptions {
    std::string prefix;  // put before the name of every type, enumerator and constant: C has one name space for all
};

// All modules of a program as one file of RFC 4506 for other XDR tools, every name defined before it is used.
std::string emitPlain(const Program& program, const PlainOptions& options = {});

}  // namespace quorva::compiler
