// The emitters of the compiler: each returns one kind of text that is generated from a resolved tree.
//
// They expect a tree without errors. The text depends on that tree alone and ends with a newline. It is meant to be
// read: formatted, with the comments of the interface file, and free of warnings in C++20.
#pragma once

#include "front/model.h"

#include <string>
#include <vector>

namespace quorva::compiler {

// The public header of a module, <quorvapixdr/types/MODULE.h>: constants, types, name functions, routines,
// coders and procedures.
std::string emitHeader(const Module& module);

// The header of a module for C11, <quorvapixdr/c/MODULE.h>: constants, types, name functions, routines, and functions
// that return descriptions. Expects a tree in which checkForC() finds no error.
std::string emitCHeader(const Module& module);

// The source file of a module: the routines and name functions that the header declares, and the plain functions.
std::string emitSource(const Module& module);

// The private header of a module, <quorvapixdr/private/MODULE.h>: what generated source files of one library share.
std::string emitPrivateHeader(const Module& module);

// The descriptions of the module's types (see <quorvapixdr/description.h>).
std::string emitDescriptions(const Module& module);

// The documentation of the module's types (see <quorvapixdr/documentation.h>).
std::string emitDocumentation(const Module& module);

// The definition of quorva::`function`(), which returns the documentation of the modules in the order of their names.
std::string emitModuleList(const std::vector<const Module*>& modules, const std::string& function);

struct Rfc4506Options {
    std::string prefix;  // of every global name, because C has one name space for all
};

// All modules of a program as one file of RFC 4506 for other XDR tools. Every name is defined before it is used.
std::string emitRfc4506(const Program& program, const Rfc4506Options& options = {});

struct PythonFile {
    std::string path;  // below the folder of the package
    std::string text;
};

// All modules of a program as a package of Python, with everything that they need.
std::vector<PythonFile> emitPython(const Program& program);

// A dissector for Wireshark in Lua: it reads the calls and replies of the remote programs of all modules.
std::string emitWireshark(const Program& program);

}  // namespace quorva::compiler
