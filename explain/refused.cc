// Puts reasons into words.

#include "refused.h"

#include "layout.h"

namespace quorva::inspect {

namespace {

// "no byte", "1 byte", "2 bytes"
std::string byteCount(std::uint64_t bytes)
{
    return bytes == 1 ? "1 byte" : bytes == 0 ? "no byte" : std::to_string(bytes) + " bytes";
}

// "count 7 is beyond the maximum 6"
std::string beyond(const char* what, std::int64_t number, std::uint64_t maximum)
{
    return std::string(what) + ' ' + std::to_string(number) + " is beyond the maximum " + std::to_string(maximum);
}

}  // namespace

std::string Refused::sentence() const
{
    const std::string count = std::to_string(number);
    switch (cause) {
    case Cause::none: break;
    case Cause::messageEndsInUnit: return byteCount(left) + " left where a unit of 4 is needed";
    case Cause::messageEndsInContents: return byteCount(left) + " left where " + count + " are needed";
    case Cause::messageEndsInPadding:
        return "the message ends within the padding of " + byteCount(static_cast<std::uint64_t>(number));
    case Cause::lengthBeyondMaximum: return beyond("length", number, bound);
    case Cause::countBeyondMaximum:
        return beyond("count", number & 0xFFFF, bound) +
               (number > 0xFFFF ? " (the low 16 bits of " + count + ")" : std::string());
    case Cause::noArm:
        return std::string(type->members.front().name) + ' ' + numberText(discriminantOf(*type), number) +
               " has no arm in " + type->name;
    case Cause::nestedTooDeeply: return "elements are nested deeper than " + std::to_string(deepestNesting) + " levels";
    case Cause::foreignType:
        return std::string(type->name) + " is a type of another library, whose description is not here";
    case Cause::nullString: return "the string is a null pointer";
    case Cause::nullElements: return "count " + count + ", but the elements are a null pointer";
    case Cause::objectBeyondLimit: return "the message is longer than the limit of " + byteCount(bound);
    }
    return {};
}

}  // namespace quorva::inspect
