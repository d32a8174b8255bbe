// Building blocks of the plain functions that are not inline: strings, opaque data, and the way to the interpreter.

#include "collections.h"
#include "interpreter.h"

#include <quorvaruntime/plain.h>

namespace quorva {

namespace {

// Plain functions run only with a stream class that exposes its buffer; for any other these do nothing.
template <class Stream>
unsigned char* cursorOf(Stream* xdrs)
{
    if constexpr (ExposesBuffer<Stream>) return xdrs->cursor();
    return nullptr;
}

template <class Stream>
void move([[maybe_unused]] Stream* xdrs, [[maybe_unused]] unsigned char* at)
{
    if constexpr (ExposesBuffer<Stream>) xdrs->moveTo(at);
}

}  // namespace

// ---- Units ---------------------------------------------------------------------------------------------------------

void put(unsigned char* at, float value)
{
    printFloat();
    putUnit(at, std::bit_cast<std::uint32_t>(value));
}

void get(const unsigned char* at, float& value)
{
    printFloat();
    value = std::bit_cast<float>(getUnit(at));
}

void printFloat()
{
    TRACE("In XdrFloat\n");
}

// ---- Encode --------------------------------------------------------------------------------------------------------

namespace {

// Copies bytes, most often a few: two copies of fixed size that may overlap are faster than a call.
void copy(void* to, const void* from, std::size_t size)
{
    auto* const out = static_cast<unsigned char*>(to);
    const auto* const in = static_cast<const unsigned char*>(from);
    if (size > 32) {
        std::memcpy(out, in, size);
    } else if (size >= 16) {
        std::memcpy(out, in, 16);
        std::memcpy(out + size - 16, in + size - 16, 16);
    } else if (size >= 8) {
        std::memcpy(out, in, 8);
        std::memcpy(out + size - 8, in + size - 8, 8);
    } else if (size >= 4) {
        std::memcpy(out, in, 4);
        std::memcpy(out + size - 4, in + size - 4, 4);
    } else {
        for (std::size_t i = 0; i < size; ++i) out[i] = in[i];
    }
}

// Writes a length and the bytes. The last unit is cleared first: that is the padding once the bytes are in it.
unsigned char* putBytes(unsigned char* at, const void* bytes, std::uint32_t length)
{
    putUnit(at, length);
    at += 4;
    if (length == 0) return at;
    const std::size_t all = padded(length);
    std::memset(at + all - 4, 0, 4);
    copy(at, bytes, length);
    return at + all;
}

}  // namespace

unsigned char* Encoder::after(bool succeeded)
{
    return succeeded ? cursorOf(xdrs) : nullptr;
}

unsigned char* Encoder::string(unsigned char* at, char* const& text, std::uint32_t maximum)
{
    if (text) {
        const std::size_t length = std::strlen(text);
        if (length <= maximum && !lacks(at, 7 + length)) return putBytes(at, text, static_cast<std::uint32_t>(length));
    }
    move(xdrs, at);
    return after(XdrString(xdrs, const_cast<char**>(&text), maximum) != 0);
}

unsigned char* Encoder::opaque(unsigned char* at, unsigned char* const& bytes, const std::uint16_t& count,
                               std::uint32_t maximum)
{
    if (count <= maximum && !lacks(at, 4 + padded(count)) && (bytes || count == 0)) return putBytes(at, bytes, count);
    move(xdrs, at);
    return after(XdrBytes(xdrs, const_cast<unsigned char**>(&bytes), const_cast<std::uint16_t*>(&count), maximum) != 0);
}

unsigned char* Encoder::foreign(unsigned char* at, const void* value, XdrRoutine routine)
{
    move(xdrs, at);
    return after(routine(xdrs, const_cast<void*>(value)) != 0);
}

unsigned char* Encoder::rest(unsigned char* at, const void* object, const Type& type, std::size_t first)
{
    move(xdrs, at);
    return after(interpretFrom(xdrs, const_cast<void*>(object), type, first));
}

unsigned char* Encoder::member(unsigned char* at, const void* object, const Type& type, std::size_t index)
{
    move(xdrs, at);
    return after(interpretMember(xdrs, const_cast<void*>(object), type, index));
}

unsigned char* Encoder::refuse(unsigned char* at)
{
    move(xdrs, at);
    return nullptr;
}

// ---- Decode --------------------------------------------------------------------------------------------------------

std::size_t memorySize(const Use& use)
{
    switch (use.form) {
    case Form::single: return use.type->size;
    case Form::fixedArray: return std::size_t{use.bound} * use.type->size;
    case Form::fixedOpaque: return use.bound;
    case Form::optional:
    case Form::string: return sizeof(void*);
    case Form::variableArray:
    case Form::variableOpaque: return sizeof(Counted<unsigned char>);
    case Form::none: break;
    }
    return 0;
}

unsigned char* Decoder::after(bool succeeded, void* initialised)
{
    if (succeeded) return cursorOf(xdrs);
    stop = static_cast<unsigned char*>(initialised);
    return nullptr;
}

unsigned char* Decoder::refuse(unsigned char* at, void* initialised)
{
    move(xdrs, at);
    return after(false, initialised);
}

void* Decoder::newElements(std::size_t count, std::size_t size)
{
    return newBlock(count, size);
}

unsigned char* Decoder::abandon(bool outer, void* blockEnd, void* initialised)
{
    std::memset(stop, 0, static_cast<std::size_t>(static_cast<unsigned char*>(blockEnd) - stop));
    fresh = outer;
    stop = static_cast<unsigned char*>(initialised);
    return nullptr;
}

unsigned char* Decoder::string(unsigned char* at, char*& text, std::uint32_t maximum)
{
    if (!lacks(at, 4)) {
        const std::uint32_t length = getUnit(at);
        if (length <= maximum && !lacks(at + 4, padded(length))) {
            text = static_cast<char*>(newBlock(std::size_t{length} + 1, 1));
            if (!text) return refuse(at + 4, &text + 1);
            copy(text, at + 4, length);
            text[length] = '\0';
            return at + 4 + padded(length);
        }
    }
    if (fresh) text = nullptr;
    move(xdrs, at);
    return after(XdrString(xdrs, &text, maximum) != 0, &text + 1);
}

unsigned char* Decoder::opaque(unsigned char* at, unsigned char*& bytes, std::uint16_t& count, std::uint32_t maximum)
{
    if (!lacksArray(at, maximum, 1) && !lacks(at + 4, padded(static_cast<std::uint16_t>(getUnit(at))))) {
        count = static_cast<std::uint16_t>(getUnit(at));
        at += 4;
        if (count == 0) {
            if (fresh) bytes = nullptr;  // else a count of 0 leaves the pointer unchanged
            return at;
        }
        bytes = static_cast<unsigned char*>(newBlock(count, 1));
        if (!bytes) return refuse(at, &bytes + 1);
        copy(bytes, at, count);
        return at + padded(count);
    }
    if (fresh) {
        count = 0;
        bytes = nullptr;
    }
    move(xdrs, at);
    return after(XdrBytes(xdrs, &bytes, &count, maximum) != 0, &bytes + 1);
}

unsigned char* Decoder::foreign(unsigned char* at, void* value, std::size_t size, XdrRoutine routine)
{
    if (fresh) std::memset(value, 0, size);
    move(xdrs, at);
    return after(routine(xdrs, value) != 0, static_cast<unsigned char*>(value) + size);
}

unsigned char* Decoder::rest(unsigned char* at, void* object, const Type& type, std::size_t first)
{
    auto* const bytes = static_cast<unsigned char*>(object);
    if (fresh) {
        const std::size_t initialised = first == 0 ? 0 : type.members[first].offset;
        std::memset(bytes + initialised, 0, type.size - initialised);
    }
    move(xdrs, at);
    return after(interpretFrom(xdrs, object, type, first), bytes + type.size);
}

unsigned char* Decoder::member(unsigned char* at, void* object, const Type& type, std::size_t index)
{
    auto* const place = static_cast<unsigned char*>(object) + type.members[index].offset;
    const std::size_t size = memorySize(type.members[index].use);
    if (fresh) std::memset(place, 0, size);
    move(xdrs, at);
    return after(interpretMember(xdrs, object, type, index), place + size);
}

// ---- Release -------------------------------------------------------------------------------------------------------

void releaseBlock(void* block)
{
    ::operator delete[](block);
}

bool releaseMember(Xdr* xdrs, void* object, const Type& type, std::size_t index)
{
    return interpretMember(xdrs, object, type, index);
}

}  // namespace quorva
