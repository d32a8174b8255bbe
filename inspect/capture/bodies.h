// The type of what follows an envelope.
#pragma once

#include "calls.h"

namespace quorva::inspect::capture {

// What is known of the argument or result of a message.
struct Body {
    const Type* type = nullptr;
    bool isVoid = false;  // it has no bytes
    std::string unknown;  // why neither is known: "unknown program"; empty if one is
};

// The type by the procedure. Bodies of programs, versions and procedures that are not known have the type `usual`, if
// it is not null.
Body bodyOf(const RpcMessage& message, const Procedures& procedures, const Type* usual);

}  // namespace quorva::inspect::capture
