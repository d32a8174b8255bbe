// Reads messages and objects by their descriptions alone: why a pass over them fails, and what each byte holds.
#pragma once

#include "traverse.h"

#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace quorva::inspect {

// Bytes of a message that hold one thing: a number, a count, a length, a presence, or contents with their padding.
struct Leaf {
    const Path& path;  // valid during the call only
    std::size_t offset;
    std::size_t size;
    std::string text;  // for people: "AKowner (1)", "count 3", "\"Anna\""
};

// Receives the leaves of a message, in the order of its bytes.
using LeafSink = std::function<void(const Leaf&)>;

// The outcome of `readMessage`.
struct Reading {
    // Bytes that belong to the value; after a failure, the bytes before the place where it failed.
    std::size_t length = 0;
    std::optional<Failure> failure;
    bool nestsTooDeeply = false;  // only the inspector refuses the message: the codec's bound is the stack
};

// Reads a message and fails where a decode pass fails, with two differences: it never lacks memory, and it bounds the
// nesting by `deepestNesting`. Bytes after the value are not a failure. `sink` may be empty.
Reading readMessage(const Type& type, std::span<const unsigned char> message, const LeafSink& sink = {});

// Why an encode pass over the object into a buffer of `limit` bytes fails; nullopt if it succeeds.
std::optional<Failure> refusalOf(const Type& type, const void* object, std::size_t limit);

// A failure as a phrase: "at value[2]/value/JobUnionUnion, byte 24 of 61: attribute 700 has no arm in JobUnion", or
// "at byte ..." for the outermost value. `total` is the length of the message or the buffer in bytes.
std::string explained(const Failure& failure, std::size_t total);

}  // namespace quorva::inspect
