// The sources of a traversal that read a message or an object.

#include "wire.h"

#include "input.h"

#include <algorithm>

namespace quorva::inspect {

namespace {

// "no byte", "1 byte", "2 bytes"
std::string byteCount(std::size_t bytes)
{
    return bytes == 1 ? "1 byte" : bytes == 0 ? "no byte" : std::to_string(bytes) + " bytes";
}

// Reads numbers and bytes from a message.
class MessageSource {
public:
    MessageSource(std::span<const unsigned char> from, const Path& where, const LeafSink& to)
        : message(from), path(where), sink(to)
    {
    }

    std::size_t offset() const { return position; }

    std::int64_t number(const Type& scalar, const std::byte*)
    {
        const std::int64_t value = fromUnit(scalar, unit());
        if (sink) sink({path, position - 4, 4, numberText(scalar, value)});
        return value;
    }

    std::int64_t discriminant(const Type& type, const std::byte* at) { return number(discriminantOf(type), at); }
    std::uint32_t length(const Use&, const std::byte*) { return quantity("length"); }
    std::uint32_t count(const Use&, const std::byte*) { return quantity("count"); }

    bool present(const Use&, const std::byte*)
    {
        const bool follows = (unit() & 0xFF) == 1;
        if (sink) sink({path, position - 4, 4, follows ? "present" : "absent"});
        return follows;
    }

    void contents(const Use& use, const std::byte*, std::uint32_t size)
    {
        const auto bytes = taken(size, padded(size));
        if (sink && size > 0) sink({path, position - bytes.size(), bytes.size(), shown(use, bytes.first(size))});
    }

private:
    // The next bytes of the message, which the traversal then has passed.
    std::span<const unsigned char> taken(std::size_t size, std::size_t withPadding)
    {
        const std::size_t left = message.size() - position;
        if (left < size) throw Refusal{byteCount(left) + " left where " + std::to_string(size) + " are needed"};
        if (left < withPadding) throw Refusal{"the message ends within the padding of " + byteCount(size)};
        position += withPadding;
        return message.subspan(position - withPadding, withPadding);
    }

    std::uint32_t unit()
    {
        const std::size_t left = message.size() - position;
        if (left < 4) throw Refusal{byteCount(left) + " left where a unit of 4 is needed"};
        std::uint32_t value = 0;
        for (const unsigned char byte : taken(4, 4)) value = value << 8 | byte;
        return value;
    }

    std::uint32_t quantity(const char* what)
    {
        const std::uint32_t value = unit();
        if (sink) sink({path, position - 4, 4, std::string(what) + ' ' + std::to_string(value)});
        return value;
    }

    // A string in quotes, with every byte but printable ASCII as \xHH; an opaque as hex.
    static std::string shown(const Use& use, std::span<const unsigned char> bytes)
    {
        if (use.form != Form::string) return hexDigits(bytes);
        std::string text = "\"";
        for (const unsigned char byte : bytes) {
            if (byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\')
                text += static_cast<char>(byte);
            else
                text += "\\x" + hexDigits({&byte, 1});
        }
        return text + '"';
    }

    std::span<const unsigned char> message;
    const Path& path;
    const LeafSink& sink;
    std::size_t position = 0;
};

// Reads numbers from an object and counts the bytes of its message.
class ObjectSource {
public:
    explicit ObjectSource(std::size_t bytes) : limit(bytes) {}

    std::size_t offset() const { return position; }

    std::int64_t number(const Type& scalar, const std::byte* at)
    {
        fill(4);
        return loadNumber(scalar, at);
    }

    std::int64_t discriminant(const Type& type, const std::byte* at) { return number(discriminantOf(type), at); }

    std::uint32_t length(const Use&, const std::byte* at)
    {
        const auto* text = load<const char*>(at);
        if (!text) throw Refusal{"the string is a null pointer"};
        const std::size_t size = std::strlen(text);
        fill(4);
        return static_cast<std::uint32_t>(std::min<std::size_t>(size, UINT32_MAX));  // still beyond every maximum
    }

    std::uint32_t count(const Use&, const std::byte* at)
    {
        const auto block = load<Block>(at);
        fill(4);
        if (block.count > 0 && !block.elements)
            throw Refusal{"count " + std::to_string(block.count) + ", but the elements are a null pointer"};
        return block.count;
    }

    bool present(const Use&, const std::byte* at)
    {
        fill(4);
        return load<const void*>(at) != nullptr;
    }

    void contents(const Use&, const std::byte*, std::uint32_t size) { fill(padded(size)); }

private:
    // Counts the bytes that the codec would write.
    void fill(std::size_t size)
    {
        if (limit - position < size) throw Refusal{"the message is longer than the limit of " + byteCount(limit)};
        position += size;
    }

    std::size_t limit;
    std::size_t position = 0;
};

}  // namespace

Reading readMessage(const Type& type, std::span<const unsigned char> message, const LeafSink& sink)
{
    Path path;
    MessageSource source(message, path, sink);
    auto failure = Traversal(source, path).run(type);
    return {source.offset(), std::move(failure), path.depth() > deepestNesting};
}

std::optional<Failure> refusalOf(const Type& type, const void* object, std::size_t limit)
{
    Path path;
    ObjectSource source(limit);
    return Traversal(source, path).run(type, static_cast<const std::byte*>(object));
}

std::string explained(const Failure& failure, std::size_t total)
{
    const std::string element = failure.path.empty() ? "" : failure.path + ", ";
    return "at " + element + "byte " + std::to_string(failure.offset) + " of " + std::to_string(total) + ": " +
           failure.reason;
}

}  // namespace quorva::inspect
