// The reasons for which a traversal stops.
#pragma once

#include <quorvapixdr/description.h>

#include <cstdint>
#include <string>

namespace quorva::inspect {

enum class Cause : std::uint8_t {
    none,
    messageEndsInUnit,      // `left` bytes where a unit is needed
    messageEndsInContents,  // `left` bytes where `number` are needed
    messageEndsInPadding,   // of `number` bytes
    lengthBeyondMaximum,    // length `number`, maximum `bound`
    countBeyondMaximum,     // count `number`, of which the low 16 bits count; maximum `bound`
    noArm,                  // discriminant `number` of the union `type`
    nestedTooDeeply,
    foreignType,        // `type` is described in another library
    nullString,         // in an object
    nullElements,       // in an object, with count `number`
    objectBeyondLimit,  // the message of an object is longer than `bound` bytes
};

// Why a traversal stopped. The members that the cause does not name are zero.
struct Refused {
    Cause cause = Cause::none;
    const Type* type = nullptr;
    std::int64_t number = 0;
    std::uint64_t bound = 0;
    std::uint64_t left = 0;

    // A phrase: "count 7 is beyond the maximum 6".
    std::string sentence() const;
};

}  // namespace quorva::inspect
