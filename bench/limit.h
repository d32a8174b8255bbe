// The limit: the measured messages coded and traced by hand, over the objects that the codec codes.
//
// The code is what a good engineer writes who has just these messages to code: one check of the room for each
// contiguous run, all lengths and maxima checked, one allocation for each string and array, numbers swapped one by one,
// no exceptions, no stream, no table. Arms that no measured message has are refused.
//
// The traces are the text that the stream's sink collects in an encode pass or, where `decoding`, in a decode pass over
// the same object. `limit::trace` writes into a buffer: tags are joined at compile time, copies have a fixed size,
// enumerators and digits come from tables, one check of the room covers each run. `naive::trace` appends to a string,
// one snprintf for each value and one append for each piece of a tag.
#pragma once

#include "library/messages.h"
#include "own/messages.h"

#include <cstddef>
#include <string>

#define QUORVA_LIMIT(T)                                                                           \
    namespace limit {                                                                             \
    /* Returns the number of bytes written, at most `room`; 0 if the value does not fit. */       \
    std::size_t encode(const T& value, unsigned char* buffer, std::size_t room);                  \
    /* Returns the number of bytes read; 0 after an error, when `value` can still be released. */ \
    std::size_t decode(T& value, const unsigned char* message, std::size_t length);               \
    /* Frees what a decode allocated. */                                                          \
    void release(T& value);                                                                       \
    /* Returns the length of the text; 0 if it does not fit or the object is no measured one. */  \
    std::size_t trace(const T& value, bool decoding, char* text, std::size_t room);               \
    }                                                                                             \
    namespace naive {                                                                             \
    void trace(const T& value, bool decoding, std::string& text);                                 \
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
// Decodes into an object of its own, hands that to `use` and releases it. Returns the number of bytes read.
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
