// Sources of a traversal: a message, or an object with the message that an encode would make of it.
#pragma once

#include "traverse.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace quorva::inspect {

// Reads numbers and bytes from a message. Derived classes note what was read.
class MessageSource : public WithoutStructure {
public:
    explicit MessageSource(std::span<const unsigned char> from) : message(from) {}

    Refused refused;

    std::size_t offset() const { return position; }

    bool number(const Type& scalar, const std::byte*, std::int64_t& value)
    {
        std::uint32_t read = 0;
        if (!unit(read)) return false;
        value = fromUnit(scalar, read);
        return true;
    }

    bool discriminant(const Type& type, const std::byte* at, std::int64_t& value)
    {
        return number(discriminantOf(type), at, value);
    }
    bool length(const Use&, const std::byte*, std::uint32_t& value) { return unit(value); }
    bool count(const Use&, const std::byte*, std::uint32_t& value) { return unit(value); }

    bool present(const Use&, const std::byte*, bool& follows)
    {
        std::uint32_t read = 0;
        if (!unit(read)) return false;
        follows = (read & 0xFF) == 1;
        return true;
    }

    bool contents(const Use&, const std::byte*, std::uint32_t size)
    {
        const std::size_t left = message.size() - position;
        if (left < size) return stop({.cause = Cause::messageEndsInContents, .number = size, .left = left});
        if (left < padded(size)) {
            position += size;
            return stop({.cause = Cause::messageEndsInPadding, .number = size});
        }
        position += padded(size);
        return true;
    }

protected:
    // The last unit that was read; 0 before the first one.
    std::uint32_t lastUnit() const { return last; }

    std::span<const unsigned char> message;

private:
    bool stop(const Refused& why)
    {
        refused = why;
        return false;
    }

    bool unit(std::uint32_t& value)
    {
        const std::size_t left = message.size() - position;
        if (left < 4) return stop({.cause = Cause::messageEndsInUnit, .left = left});
        value = 0;
        for (const unsigned char byte : message.subspan(position, 4)) value = value << 8 | byte;
        last = value;
        position += 4;
        return true;
    }

    std::size_t position = 0;
    std::uint32_t last = 0;
};

// Reads numbers from an object and counts the bytes of its message.
class ObjectSource : public WithoutStructure {
public:
    explicit ObjectSource(std::size_t bytes) : limit(bytes) {}

    Refused refused;

    std::size_t offset() const { return position; }

    bool number(const Type& scalar, const std::byte* at, std::int64_t& value)
    {
        value = loadNumber(scalar, at);
        return fill(4);
    }

    bool discriminant(const Type& type, const std::byte* at, std::int64_t& value)
    {
        return number(discriminantOf(type), at, value);
    }

    bool length(const Use&, const std::byte* at, std::uint32_t& value)
    {
        const auto* const text = load<const char*>(at);
        if (!text) return stop({.cause = Cause::nullString});
        const std::size_t size = std::strlen(text);
        value = size < UINT32_MAX ? static_cast<std::uint32_t>(size) : UINT32_MAX;  // still beyond every maximum
        return fill(4);
    }

    bool count(const Use&, const std::byte* at, std::uint32_t& value)
    {
        const auto block = load<Block>(at);
        value = block.count;
        if (!fill(4)) return false;
        return block.count == 0 || block.elements || stop({.cause = Cause::nullElements, .number = block.count});
    }

    bool present(const Use&, const std::byte* at, bool& follows)
    {
        follows = load<const void*>(at) != nullptr;
        return fill(4);
    }

    bool contents(const Use&, const std::byte*, std::uint32_t size) { return fill(size) && fill(padded(size) - size); }

private:
    bool stop(const Refused& why)
    {
        refused = why;
        return false;
    }

    // Counts the bytes that the codec would write.
    bool fill(std::size_t size)
    {
        if (limit - position < size) return stop({.cause = Cause::objectBeyondLimit, .bound = limit});
        position += size;
        return true;
    }

    std::size_t limit;
    std::size_t position = 0;
};

}  // namespace quorva::inspect
