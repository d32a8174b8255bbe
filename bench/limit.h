// The limit: the measured messages coded by hand, straight on, over the objects that the library codes.
//
// What a good engineer writes who has just these messages to code: one check of the room for each contiguous run, all
// lengths and maxima checked, one allocation for each text and array, no exceptions, no stream, no table. Attributes
// that no measured message holds are refused. `lanes` is the same with numbers swapped two at a time, to know the
// floor.
#pragma once

#include "messages.h"

#include <cstddef>

#define QUORVA_LIMIT(T)                                                                           \
    /* Bytes written, at most `room`; 0 if the value cannot be coded in that. */                  \
    std::size_t encode(const T& value, unsigned char* buffer, std::size_t room);                  \
    /* Bytes read; 0 if the message is no such value, when `value` still is fit for `release`. */ \
    std::size_t decode(T& value, const unsigned char* message, std::size_t length);               \
    /* What a decode allocated. */                                                                \
    void release(T& value);

namespace quorva::bench::limit {
QUORVA_LIMIT(JobAttNotifyParams)
QUORVA_LIMIT(JobAVPSeq)
QUORVA_LIMIT(AttributeSeq)
}  // namespace quorva::bench::limit

namespace quorva::bench::lanes {
QUORVA_LIMIT(JobAttNotifyParams)
QUORVA_LIMIT(JobAVPSeq)
QUORVA_LIMIT(AttributeSeq)
}  // namespace quorva::bench::lanes

#undef QUORVA_LIMIT
