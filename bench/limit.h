// The limit: hand-written code that codes and traces the measured messages, over the same objects as the codec.
//
// The code is what a good engineer writes for these messages alone: one check of the available bytes for each run, all
// lengths and maxima checked, one allocation for each string and array, numbers swapped one by one, no exceptions, no
// stream, no table. It refuses arms that no measured message has.
//
// A trace is the text that the stream's sink collects in an encode pass or, if `decoding`, in a decode pass over the
// same object. `limit::trace` writes to a buffer: tags are joined at compile time, copies have a fixed size,
// enumerators and digits come from tables, and one check of the available bytes covers each run. `naive::trace` appends
// to a string: one snprintf for each value, one append for each part of a tag.
#pragma once

#include "library/messages.h"
#include "own/messages.h"

#include <cstddef>
#include <string>

#define QUORVA_LIMIT(T)                                                                             \
    namespace limit {                                                                               \
    /* Returns the number of bytes written, at most `available`; 0 if the value does not fit. */    \
    std::size_t encode(const T& value, unsigned char* buffer, std::size_t available);               \
    /* Returns the number of bytes read; 0 after an error, when `value` can still be released. */   \
    std::size_t decode(T& value, const unsigned char* message, std::size_t length);                 \
    /* Frees what a decode allocated. */                                                            \
    void release(T& value);                                                                         \
    /* Returns the length of the text; 0 if it does not fit or the object is not a measured one. */ \
    std::size_t trace(const T& value, bool decoding, char* text, std::size_t available);            \
    }                                                                                               \
    namespace naive {                                                                               \
    void trace(const T& value, bool decoding, std::string& text);                                   \
    }

namespace quorva::bench {
QUORVA_LIMIT(JobAttNotifyParams)
QUORVA_LIMIT(JobAVPSeq)
QUORVA_LIMIT(AttributeSeq)
QUORVA_LIMIT(StationReport)
QUORVA_LIMIT(ReadingSeq)
QUORVA_LIMIT(NodeSeq)
QUORVA_LIMIT(SampleSeq)

namespace limit {
// Decodes into a new object, calls `use` with it and releases it. Returns the number of bytes read; 0 after an error.
template <class T, class Use>
std::size_t decodePass(const unsigned char* message, std::size_t length, Use use)
{
    T value = {};
    const std::size_t consumed = decode(value, message, length);
    use(value);
    release(value);
    return consumed;
}
}  // namespace limit
}  // namespace quorva::bench

#undef QUORVA_LIMIT
