// The two ways in which a routine codes an object, and how a test chooses one without a trace to look at.
#pragma once

#include "memory.h"

#include <Xdr.h>

namespace quorva::test {

// A pass without a trace runs the plain functions of the type; a pass with a trace runs the interpreter.
enum class Coding { plain, interpreted };

// A trace without memory: a pass with it runs the interpreter, and the trace allocates nothing. Each thread has its
// own. Under the thread sanitizer, where allocations cannot be made to fail, it is an ordinary trace that keeps
// growing.
inline TraceText& exhaustedTrace()
{
    struct Exhausted {
        TraceText trace;
        Exhausted()
        {
            const Watch watch(0);
            for (int i = 0; trace.complete() && i < 100; ++i) trace.open("exhausted");
        }
    };
    thread_local Exhausted exhausted;
    return exhausted.trace;
}

}  // namespace quorva::test
