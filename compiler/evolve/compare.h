// Compares two versions of an interface: what a change breaks on the wire, in the source of callers, and in the trace.
#pragma once

#include "front/model.h"

#include <cstddef>
#include <iosfwd>

namespace quorva::compiler {

// A resolved program without errors, which must outlive the comparison.
struct InterfaceVersion {
    const Program& program;
    bool isFolder = false;  // all files below a folder: the names of the modules count
};

// Prints the differences, grouped by what they break, and a line of counts. Returns the number of breaks: additions and
// changes of what was provisional are not counted. The modules of single files are compared only if the files are
// flattened, because other file names do not belong to the interface.
std::size_t compare(const InterfaceVersion& before, const InterfaceVersion& after, std::ostream& out);

}  // namespace quorva::compiler
