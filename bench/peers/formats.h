// Other formats with equivalent schemas. Each codes the measured messages as its own users would.
#pragma once

#include "../limit.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace quorva::bench {

// One message in another format.
class Format {
public:
    virtual ~Format() = default;

    // Bytes written to `buffer`; 0 where they are more than `room`. Every call does all the work again.
    virtual std::size_t encode(unsigned char* buffer, std::size_t room) = 0;

    // Checks the message, makes an object that owns its parts of all of it, and frees that. Whether it could.
    virtual bool decode(const unsigned char* message, std::size_t length) = 0;

    // Whether what a decode makes of the message is the object that the format was made for.
    virtual bool keeps(const unsigned char* message, std::size_t length) = 0;
};

// `value` must outlive the result.
template <class T>
std::unique_ptr<Format> protobufFormat(const T& value);
template <class T>
std::unique_ptr<Format> flatbuffersFormat(const T& value);
template <class T>
std::unique_ptr<Format> capnpFormat(const T& value);

template <class T>
bool sameOnWire(const T& a, const T& b)
{
    unsigned char first[longest], second[longest];
    const std::size_t length = limit::encode(a, first, longest);
    return length != 0 && limit::encode(b, second, longest) == length && std::memcmp(first, second, length) == 0;
}

// A format that has no objects of its own: it writes its message from the library's objects and is read into them.
// `read` sets a value that is zeroed.
template <class T, auto write, auto read>
class Direct : public Format {
public:
    explicit Direct(const T& ofValue) : value(ofValue) {}

    std::size_t encode(unsigned char* buffer, std::size_t room) override { return write(value, buffer, room); }
    bool decode(const unsigned char* message, std::size_t length) override
    {
        T made = {};
        const bool good = read(message, length, made);
        limit::release(made);
        return good;
    }
    bool keeps(const unsigned char* message, std::size_t length) override
    {
        T made = {};
        const bool good = read(message, length, made) && sameOnWire(made, value);
        limit::release(made);
        return good;
    }

private:
    const T& value;
};

// The attributes in the order in which the unions of these formats have them.
inline constexpr AttributeId attributeNumbers[] = {8,   13,  15,  50,  59,   70,   77,   100, 104,
                                                   106, 192, 244, 246, 1035, 1036, 1069, 1073};

// An array in storage of its own, which the object that holds it owns. Throws where there is none: these formats do,
// too.
template <class Array, class Numbers>
void own(Array& array, const Numbers& from, std::size_t count)
{
    array.count = static_cast<std::uint16_t>(count);
    array.elements = nullptr;
    if (count == 0) return;
    using Element = std::remove_reference_t<decltype(*array.elements)>;
    array.elements = new Element[count];
    for (std::size_t i = 0; i < count; ++i) array.elements[i] = static_cast<Element>(from[static_cast<unsigned>(i)]);
}

inline void own(Counted<unsigned char>& array, const unsigned char* bytes, std::size_t count)
{
    array = {static_cast<std::uint16_t>(count), count == 0 ? nullptr : new unsigned char[count]};
    if (count != 0) std::memcpy(array.elements, bytes, count);
}

inline char* ownText(const char* characters, std::size_t length)
{
    auto* const text = static_cast<char*>(std::memcpy(new char[length + 1], characters, length));
    text[length] = '\0';
    return text;
}

}  // namespace quorva::bench
