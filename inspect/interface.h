// Types of interface files that are read at run time.
//
// The compiler's front end reads the files. Their types get descriptions in memory, equal to the generated ones but
// without routines and name functions, so the interpreter codes them.
#pragma once

#include "documentation.h"

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorva::compiler {
struct Program;
}

namespace quorva::inspect {

// Interface files, and the folders where their imports are searched for.
struct InterfaceFiles {
    std::vector<std::string> files;
    std::vector<std::string> folders;  // in this order; an empty list means the current folder
    std::string installed;             // the library's own interface files, searched last; empty if there are none
};

// The folder of the installed interface files that belong to the program in this folder; empty if there is none.
std::string installedInterfaces(const std::string& folderOfProgram);

// Interface files that cannot be used. `what` has the diagnostics as the compiler prints them, several lines each.
class InterfaceError : public std::runtime_error {
public:
    InterfaceError(const std::string& diagnostics, bool isUnreadable)
        : std::runtime_error(diagnostics), unreadable(isUnreadable)
    {
    }

    const bool unreadable;  // a file cannot be read; else all files were read and have errors
};

// The modules of interface files and of everything that they import. They are among the known modules while the object
// lives: each replaces the library's module of its name, and its types hide those of the same name in other modules.
// A module of the library that imports a replaced one keeps the types that it was built with.
class Interfaces {
public:
    // Most typedefs that may name each other in a row. The traversal recurses into each, and `deepestNesting` does not
    // bound them, because they have no name in a path.
    static constexpr unsigned mostTypedefs = 8;

    // Reads the files. Throws InterfaceError.
    explicit Interfaces(const InterfaceFiles& files);

    // Describes a program that the compiler has resolved and checked without an error. Throws InterfaceError.
    explicit Interfaces(compiler::Program program);

    ~Interfaces();
    Interfaces(const Interfaces&) = delete;
    Interfaces& operator=(const Interfaces&) = delete;

    // Each after the modules that it imports.
    std::span<const Module* const> modules() const;

    // A sentence for each type that is hidden: "own.x: NotifyBinding hides the type of common/event".
    const std::vector<std::string>& notes() const;

private:
    struct Contents;
    std::unique_ptr<Contents> contents;
};

}  // namespace quorva::inspect
