// Why a pass over a message or an object fails, found by the description of its type alone.
#pragma once

#include <quorvapixdr/description.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace quorva {

// Where and why a pass stops.
struct Failure {
    std::string path;        // JSON Pointer (RFC 6901) into the JSON form of the value: "/aValues/2/value/jobName"
    std::size_t offset = 0;  // of the first byte of the refused unit or contents, from the start of the message
    std::string reason;      // "count 7 is beyond the maximum 6"
    std::size_t coded = 0;   // bytes that the pass codes before it stops: the offset, or the end of what is refused
};

// A failure as a phrase: "at /2/value, byte 24 of 61: attribute 700 has no arm in JobUnion", or "at byte ..." for the
// outermost value. `total` is the length of the message, or the limit of an encode, in bytes.
inline std::string explained(const Failure& failure, std::size_t total)
{
    const std::string place = failure.path.empty() ? "" : failure.path + ", ";
    return "at " + place + "byte " + std::to_string(failure.offset) + " of " + std::to_string(total) + ": " +
           failure.reason;
}

#pragma GCC visibility push(default)

// Why a decode of the message fails; nullopt if it succeeds. Bytes after the value are not a failure. There are two
// differences from a pass: memory is never short, and values that nest deeper than 512 levels are refused.
std::optional<Failure> explain(const Type& type, std::span<const unsigned char> message);

// Why an encode of the object into a buffer of `limit` bytes fails; nullopt if it succeeds. The object must be one that
// a pass could encode: what its pointers point to is read.
std::optional<Failure> explain(const Type& type, const void* object, std::size_t limit);

#pragma GCC visibility pop

}  // namespace quorva
