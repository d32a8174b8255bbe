// Messages and objects read by the descriptions alone: why a pass over them fails, and which bytes hold what.
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

// A stretch of a message that holds one thing: a number, a count, a length, a presence, or contents with their padding.
struct Leaf {
    const Path& path;  // valid during the call only
    std::size_t offset;
    std::size_t size;
    std::string text;  // for people: "AKowner (1)", "count 3", "\"Anna\""
};

using LeafSink = std::function<void(const Leaf&)>;

struct Reading {
    std::size_t length = 0;  // bytes that belong to the value; up to the fault if there is one
    std::optional<Failure> failure;
    bool nestsTooDeeply = false;  // the failure is this reader's own: the codec sets no bound but the stack's
};

// Reads a message as a decode pass does, and stops where that fails, but for want of memory and with `deepestNesting`.
// Bytes behind the value are no failure. `sink`, if any, is given each leaf in the order of the message.
Reading readMessage(const Type& type, std::span<const unsigned char> message, const LeafSink& sink = {});

// Why an encode pass over the object into a buffer of `limit` bytes fails; nothing if it does not.
std::optional<Failure> refusalOf(const Type& type, const void* object, std::size_t limit);

// "at value[2]/value/JobUnionUnion, byte 24 of 61: attribute 700 has no arm in JobUnion"; at the root just "at byte
// ...".
std::string explained(const Failure& failure, std::size_t total);

}  // namespace quorva::inspect
