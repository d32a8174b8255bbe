// Building blocks of the plain functions: generated code that encodes, decodes and releases one type without a trace.
//
// For each struct, union and sequence `T` the interface compiler prints
//
//     unsigned char* encode(Encoder& out, unsigned char* at, const T& value)    memory to wire
//     unsigned char* decode(Decoder& in, unsigned char* at, T& value)           wire to memory
//     bool release(Xdr* xdrs, T& value)                                         what a decode allocated
//
// `at` is the next byte of the message. `encode` and `decode` return the byte after the value, or null when the pass
// fails; `release` returns false then. They handle success only. Where a member does not fit, they hand the object over
// to the interpreter from that member on: it fails with the same bytes, the same coded length and the same object as if
// it had run from the start.
//
// A struct that always takes the same number of bytes has `put` and `get` instead. Their callers check how many bytes
// are left.
#pragma once

#include <quorvapixdr/description.h>

#include <quorvaruntime/stream.h>

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <type_traits>

namespace quorva {

// ---- Units ---------------------------------------------------------------------------------------------------------

// Writes or reads the unit at `at`, big-endian on the wire.
inline void putUnit(unsigned char* at, std::uint32_t unit)
{
    if constexpr (std::endian::native == std::endian::little) unit = __builtin_bswap32(unit);
    std::memcpy(at, &unit, 4);
}

inline std::uint32_t getUnit(const unsigned char* at)
{
    std::uint32_t unit;
    std::memcpy(&unit, at, 4);
    if constexpr (std::endian::native == std::endian::little) unit = __builtin_bswap32(unit);
    return unit;
}

// Writes one number as a unit. Numbers of eight bits are sent without their sign: receivers expect that.
inline void put(unsigned char* at, std::uint8_t value)
{
    putUnit(at, value);
}
inline void put(unsigned char* at, std::int8_t value)
{
    putUnit(at, static_cast<std::uint8_t>(value));
}
inline void put(unsigned char* at, std::uint16_t value)
{
    putUnit(at, value);
}
inline void put(unsigned char* at, std::int16_t value)
{
    putUnit(at, static_cast<std::uint32_t>(value));
}
inline void put(unsigned char* at, std::uint32_t value)
{
    putUnit(at, value);
}
inline void put(unsigned char* at, std::int32_t value)
{
    putUnit(at, static_cast<std::uint32_t>(value));
}
void put(unsigned char* at, float value);  // and makes the platform's diagnostic print

// Reads one number from a unit, and keeps the low bits that its type has.
inline void get(const unsigned char* at, std::uint8_t& value)
{
    value = static_cast<std::uint8_t>(getUnit(at));
}
inline void get(const unsigned char* at, std::int8_t& value)
{
    value = static_cast<std::int8_t>(getUnit(at));
}
inline void get(const unsigned char* at, std::uint16_t& value)
{
    value = static_cast<std::uint16_t>(getUnit(at));
}
inline void get(const unsigned char* at, std::int16_t& value)
{
    value = static_cast<std::int16_t>(getUnit(at));
}
inline void get(const unsigned char* at, std::uint32_t& value)
{
    value = getUnit(at);
}
inline void get(const unsigned char* at, std::int32_t& value)
{
    value = static_cast<std::int32_t>(getUnit(at));
}
void get(const unsigned char* at, float& value);

// The same for enumerations.
template <class E>
requires std::is_enum_v<E>
void put(unsigned char* at, E value)
{
    put(at, static_cast<std::int32_t>(value));
}

template <class E>
requires std::is_enum_v<E>
void get(const unsigned char* at, E& value)
{
    value = static_cast<E>(getUnit(at));
}

// Writes or reads `count` units: an array of 32-bit numbers or enumerations.
void putUnits(unsigned char* at, const void* values, std::size_t count);
void getUnits(const unsigned char* at, void* values, std::size_t count);

// The elements of a variable-length array: of a `Counted<T>`, or of a sequence type, which has the same two members.
template <class Block>
auto elementsOf(Block& block)
{
    return std::span(block.elements, block.count);
}

// Writes fixed-length opaque data with its padding, or reads it.
template <std::size_t length>
void putOpaque(unsigned char* at, const unsigned char (&bytes)[length])
{
    if constexpr (length % 4 != 0) std::memset(at + length / 4 * 4, 0, 4);
    std::memcpy(at, bytes, length);
}

template <std::size_t length>
void getOpaque(const unsigned char* at, unsigned char (&bytes)[length])
{
    std::memcpy(bytes, at, length);
}

// ---- One pass ------------------------------------------------------------------------------------------------------

// An encode pass over the buffer of `stream`, which ends at `bufferEnd`. The functions that return a pointer return the
// next byte of the message, or null when the pass fails.
class Encoder {
public:
    Encoder(Xdr* stream, unsigned char* bufferEnd) : xdrs(stream), end(bufferEnd) {}

    // True if fewer than `size` bytes are left after `at`.
    bool lacks(const unsigned char* at, std::size_t size) const { return static_cast<std::size_t>(end - at) < size; }

    // True if a variable-length array of elements of `size` bytes each does not fit, exceeds its maximum, or has a
    // count without elements.
    template <class Block>
    bool lacksArray(const unsigned char* at, const Block& block, std::uint32_t maximum, std::size_t size) const
    {
        return block.count > maximum || (!block.elements && block.count != 0) || lacks(at, 4 + size * block.count);
    }

    // Writes a length and the bytes.
    unsigned char* string(unsigned char* at, char* const& text, std::uint32_t maximum);
    template <class Block>
    unsigned char* opaque(unsigned char* at, const Block& block, std::uint32_t maximum)
    {
        return opaque(at, block.elements, block.count, maximum);
    }

    // Writes a value of another library's type, by that type's routine.
    template <class T>
    unsigned char* foreign(unsigned char* at, const T& value, XdrRoutine routine)
    {
        return foreign(at, static_cast<const void*>(&value), routine);
    }

    // Hands `object` over to the interpreter: from the member `first` on, or the member `index` alone.
    unsigned char* rest(unsigned char* at, const void* object, const Type& type, std::size_t first);
    unsigned char* member(unsigned char* at, const void* object, const Type& type, std::size_t index);

    // Ends the pass after `at`, for a discriminant that selects no arm. Returns null.
    unsigned char* refuse(unsigned char* at);

private:
    unsigned char* opaque(unsigned char* at, unsigned char* const& bytes, const std::uint16_t& count,
                          std::uint32_t maximum);
    unsigned char* foreign(unsigned char* at, const void* value, XdrRoutine routine);
    unsigned char* after(bool succeeded);

    Xdr* xdrs;
    unsigned char* end;
};

// A decode pass over the buffer of `stream`, which ends at `bufferEnd`. The functions that return a pointer return the
// next byte of the message, or null when the pass fails.
//
// A block that the pass allocates is not cleared. While the pass is inside of one, `fresh` is true, and a failure sets
// `stop` to the end of the initialised part of the block. The rest is zeroed then, so that a release pass reads no
// uninitialised memory.
class Decoder {
public:
    Decoder(Xdr* stream, unsigned char* bufferEnd) : xdrs(stream), end(bufferEnd) {}

    // True if fewer than `size` bytes are left after `at`.
    bool lacks(const unsigned char* at, std::size_t size) const { return static_cast<std::size_t>(end - at) < size; }

    // True if the count at `at` exceeds the maximum, or the elements of `size` bytes each are not all in the message.
    bool lacksArray(const unsigned char* at, std::uint32_t maximum, std::size_t size) const
    {
        if (lacks(at, 4)) return true;
        const auto count = static_cast<std::uint16_t>(getUnit(at));
        return count > maximum || lacks(at + 4, size * count);
    }

    // Reads the count and allocates the elements.
    template <class Block>
    unsigned char* allocate(unsigned char* at, Block& block)
    {
        block.count = static_cast<std::uint16_t>(getUnit(at));
        if (block.count != 0) {
            block.elements = static_cast<decltype(block.elements)>(newElements(block.count, sizeof *block.elements));
            if (!block.elements) return refuse(at + 4, &block + 1);
        } else if (fresh) {  // else a count of 0 leaves the pointer unchanged
            block.elements = nullptr;
        }
        return at + 4;
    }

    // True if the presence unit, or a present value of `size` bytes, is not in the message.
    bool lacksOptional(const unsigned char* at, std::size_t size) const
    {
        return lacks(at, 4) || (isPresent(at) && lacks(at + 4, size));
    }

    // Reads the presence unit and allocates the value; `pointer` becomes null for an absent one.
    template <class T>
    unsigned char* optional(unsigned char* at, T*& pointer)
    {
        const bool present = isPresent(at);
        pointer = present ? static_cast<T*>(newElements(1, sizeof(T))) : nullptr;
        return present && !pointer ? refuse(at + 4, &pointer + 1) : at + 4;
    }

    // Called before and after the elements of a block: `enter` returns the state that `leave` restores. `abandon`
    // replaces `leave` after an element that failed: it zeroes the rest of the block, and returns null.
    bool enter()
    {
        const bool outer = fresh;
        fresh = true;
        return outer;
    }
    void leave(bool outer) { fresh = outer; }
    template <class Block>
    unsigned char* abandon(bool outer, Block& block)
    {
        return abandon(outer, block.elements + block.count, &block + 1);
    }
    template <class T>
    unsigned char* abandon(bool outer, T*& optional)
    {
        return abandon(outer, optional + 1, &optional + 1);
    }

    // Reads a length and the bytes, which it allocates.
    unsigned char* string(unsigned char* at, char*& text, std::uint32_t maximum);
    template <class Block>
    unsigned char* opaque(unsigned char* at, Block& block, std::uint32_t maximum)
    {
        return opaque(at, block.elements, block.count, maximum);
    }

    // Reads a value of another library's type, by that type's routine.
    template <class T>
    unsigned char* foreign(unsigned char* at, T& value, XdrRoutine routine)
    {
        return foreign(at, &value, sizeof value, routine);
    }

    // Hands `object` over to the interpreter: from the member `first` on, or the member `index` alone.
    unsigned char* rest(unsigned char* at, void* object, const Type& type, std::size_t first);
    unsigned char* member(unsigned char* at, void* object, const Type& type, std::size_t index);

    // Ends the pass after `at`. The object is initialised up to `initialised`. Returns null.
    unsigned char* refuse(unsigned char* at, void* initialised);

private:
    unsigned char* opaque(unsigned char* at, unsigned char*& bytes, std::uint16_t& count, std::uint32_t maximum);
    unsigned char* foreign(unsigned char* at, void* value, std::size_t size, XdrRoutine routine);
    unsigned char* abandon(bool outer, void* blockEnd, void* initialised);

    // Only a low byte of 1 means present.
    static bool isPresent(const unsigned char* at) { return static_cast<std::uint8_t>(getUnit(at)) == 1; }
    static void* newElements(std::size_t count, std::size_t size);
    unsigned char* after(bool succeeded, void* initialised);

    Xdr* xdrs;
    unsigned char* end;
    unsigned char* stop = nullptr;
    bool fresh = false;
};

// Releases a block. Null is fine.
void releaseBlock(void* block);

// Releases the elements of a block by `releaseOne`, up to the first that it refuses, and then the block. Returns false
// if an element was refused.

template <class Elements, class ReleaseOne>
bool releaseElements(Elements elements, ReleaseOne releaseOne)
{
    bool released = true;
    for (std::size_t i = 0; released && elements.data() && i < elements.size(); ++i) released = releaseOne(elements[i]);
    if (!elements.empty()) releaseBlock(elements.data());
    return released;
}

// Releases a value of another library's type, by that type's routine.
template <class T>
bool releaseForeign(Xdr* xdrs, T& value, XdrRoutine routine)
{
    return routine(xdrs, &value) != 0;
}

// Releases the member `index` of `object`, by the interpreter.
bool releaseMember(Xdr* xdrs, void* object, const Type& type, std::size_t index);

// Makes the platform's diagnostic print, as every pass over a float does.
void printFloat();

// ---- The functions that are generated for each type ----------------------------------------------------------------

namespace plain {

template <class T>
unsigned char* encode(Encoder& out, unsigned char* at, const T& value);
template <class T>
unsigned char* decode(Decoder& in, unsigned char* at, T& value);
template <class T>
bool release(Xdr* xdrs, T& value);
template <class T>
void put(unsigned char* at, const T& value);
template <class T>
void get(const unsigned char* at, T& value);

}  // namespace plain

// The body of the routine of a type without plain functions.
int interpret(Xdr* xdrs, void* object, const Type& type);

// The body of the routine of a type with plain functions. They run if no trace is collected and the stream class
// exposes its buffer; otherwise the interpreter runs. `Functions` has one function for each mode. Returns 1 or 0.
template <class Functions, class Stream, class T>
int run(Stream* xdrs, T* value, const Type& type)
{
    if constexpr (ExposesBuffer<Stream>) {
        if (!xdrs->tracing() && value) {
            unsigned char* at = nullptr;
            switch (modeOf(xdrs)) {
            case Mode::encode: {
                Encoder out(xdrs, xdrs->end());
                at = Functions::encode(out, xdrs->cursor(), *value, type);
                break;
            }
            case Mode::decode: {
                Decoder in(xdrs, xdrs->end());
                at = Functions::decode(in, xdrs->cursor(), *value, type);
                break;
            }
            case Mode::release: return Functions::release(xdrs, *value);
            }
            if (!at) return 0;
            xdrs->moveTo(at);
            return 1;
        }
    }
    return interpret(xdrs, value, type);
}

// The plain functions of a type whose size on the wire varies. `owns` is true if a release pass has something to
// release, or may fail.
template <class T, bool owns>
struct Varying {
    static unsigned char* encode(Encoder& out, unsigned char* at, const T& value, const Type&)
    {
        return plain::encode(out, at, value);
    }
    static unsigned char* decode(Decoder& in, unsigned char* at, T& value, const Type&)
    {
        return plain::decode(in, at, value);
    }
    static bool release(Xdr* xdrs, T& value)
    {
        if constexpr (owns) return plain::release(xdrs, value);
        return true;
    }
};

// Those of a struct that always takes `size` bytes.
template <class T, std::size_t size, bool owns>
struct Fixed : Varying<T, owns> {
    static unsigned char* encode(Encoder& out, unsigned char* at, const T& value, const Type& type)
    {
        if (out.lacks(at, size)) return out.rest(at, &value, type, 0);
        plain::put(at, value);
        return at + size;
    }
    static unsigned char* decode(Decoder& in, unsigned char* at, T& value, const Type& type)
    {
        if (in.lacks(at, size)) return in.rest(at, &value, type, 0);
        plain::get(at, value);
        return at + size;
    }
};

// The bodies that generated routines have. `size` and `owns` are those of `Varying` and `Fixed`.
template <class T, bool owns>
int code(Xdr* xdrs, void* object, const Type& type)
{
    return run<Varying<T, owns>>(xdrs, static_cast<T*>(object), type);
}

template <class T, std::size_t size, bool owns>
int codeFixed(Xdr* xdrs, void* object, const Type& type)
{
    return run<Fixed<T, size, owns>>(xdrs, static_cast<T*>(object), type);
}

}  // namespace quorva
