// Tells what a change of the interface files does to peers, to callers and to readers of the trace.
#pragma once

#include "front/model.h"

#include <cstddef>
#include <iosfwd>

namespace quorva::compiler {

// One of two states of an interface, resolved and without faults. The modules of a single file that is no flattened
// interface bear the names of where it happens to lie; they are then not compared.
struct State {
    const Program& program;
    bool isFolder = false;
};

// Prints what is different, under one heading for each kind of consequence, and a line that counts them. The result is
// the number of breaks: findings other than additions and changes of what was provisional.
std::size_t compare(const State& before, const State& after, std::ostream& out);

}  // namespace quorva::compiler
