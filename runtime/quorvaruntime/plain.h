// What generated code is written with: plain functions that encode, decode and release one type without a trace.
//
// For each struct, union and sequence `T` the interface compiler writes
//
//     unsigned char* encode(Encoder& out, unsigned char* at, const T& value)    memory to wire
//     unsigned char* decode(Decoder& in, unsigned char* at, T& value)           wire to memory
//     bool release(Xdr* xdrs, T& value)                                         what a decode allocated
//
// `at` is the next byte of the message. Each returns the byte after the value, and null (false) when the pass has
// failed. They know the way of success only. Where something does not fit, they hand the object over to the interpreter
// from that member on, which fails with the same bytes, the same coded length and the same object as if it had run from
// the start.
//
// A struct that always takes the same number of bytes has `put` and `get` instead, for callers that made sure of the
// room.
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

// One number as a unit. Eight bits travel without their sign: receivers have always read them so.
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
void put(unsigned char* at, float value);  // with the platform's diagnostic print

// The same numbers back; what does not fit into the type is cut off.
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

// An enumeration.
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

// `count` units of 32-bit numbers or enumerations, one after the other.
void putUnits(unsigned char* at, const void* values, std::size_t count);
void getUnits(const unsigned char* at, void* values, std::size_t count);

// The elements of a counted block: a `Counted<T>`, or a sequence type, which has the same two members.
template <class Block>
auto elementsOf(Block& block)
{
    return std::span(block.elements, block.count);
}

// Opaque data of a fixed length, with its padding.
inline constexpr std::size_t padded(std::size_t length)
{
    return (length + 3) & ~std::size_t{3};
}

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

// Memory to wire.
class Encoder {
public:
    Encoder(Xdr* stream, unsigned char* bufferEnd) : xdrs(stream), end(bufferEnd) {}

    // True if fewer than `size` bytes are left after `at`.
    bool lacks(const unsigned char* at, std::size_t size) const { return static_cast<std::size_t>(end - at) < size; }

    // True if a block with its count, whose elements take `size` bytes each, cannot be written at once.
    template <class Block>
    bool lacksArray(const unsigned char* at, const Block& block, std::uint32_t maximum, std::size_t size) const
    {
        return block.count > maximum || (!block.elements && block.count != 0) || lacks(at, 4 + size * block.count);
    }

    // A length and the bytes. Null where the interpreter refused them.
    unsigned char* string(unsigned char* at, char* const& text, std::uint32_t maximum);
    template <class Block>
    unsigned char* opaque(unsigned char* at, const Block& block, std::uint32_t maximum)
    {
        return opaque(at, block.elements, block.count, maximum);
    }

    // A value of another library's type.
    template <class T>
    unsigned char* foreign(unsigned char* at, const T& value, XdrRoutine routine)
    {
        return foreign(at, static_cast<const void*>(&value), routine);
    }

    // Hands `object` over to the interpreter: from the member `first` on, or the one member alone.
    unsigned char* rest(unsigned char* at, const void* object, const Type& type, std::size_t first);
    unsigned char* member(unsigned char* at, const void* object, const Type& type, std::size_t index);

    // A discriminant that selects no arm.
    unsigned char* refuse(unsigned char* at);

private:
    unsigned char* opaque(unsigned char* at, unsigned char* const& bytes, const std::uint16_t& count,
                          std::uint32_t maximum);
    unsigned char* foreign(unsigned char* at, const void* value, XdrRoutine routine);
    unsigned char* after(bool succeeded);

    Xdr* xdrs;
    unsigned char* end;
};

// Wire to memory.
//
// A block that the pass allocates is not cleared. While a pass is inside of one, `fresh` is true, and a failure leaves
// in `stop` where the defined contents of the block end: the block is zeroed from there on, so that a release pass
// finds nothing undefined.
class Decoder {
public:
    Decoder(Xdr* stream, unsigned char* bufferEnd) : xdrs(stream), end(bufferEnd) {}

    bool lacks(const unsigned char* at, std::size_t size) const { return static_cast<std::size_t>(end - at) < size; }

    // True if an array of elements that take `size` bytes each is not at `at` with its count and all of its elements.
    bool lacksArray(const unsigned char* at, std::uint32_t maximum, std::size_t size) const
    {
        if (lacks(at, 4)) return true;
        const auto count = static_cast<std::uint16_t>(getUnit(at));
        return count > maximum || lacks(at + 4, size * count);
    }

    // Reads the count and allocates the block. Null when memory is short.
    template <class Block>
    unsigned char* allocate(unsigned char* at, Block& block)
    {
        block.count = static_cast<std::uint16_t>(getUnit(at));
        if (block.count != 0) {
            block.elements = static_cast<decltype(block.elements)>(newElements(block.count, sizeof *block.elements));
            if (!block.elements) return refuse(at + 4, &block + 1);
        } else if (fresh) {  // else a count of 0 leaves the pointer as it is
            block.elements = nullptr;
        }
        return at + 4;
    }

    // True if a presence unit, and where it means present a value of `size` bytes, is not at `at`.
    bool lacksOptional(const unsigned char* at, std::size_t size) const
    {
        return lacks(at, 4) || (isPresent(at) && lacks(at + 4, size));
    }

    // Reads the presence unit and allocates the value. `pointer` is null where the value is absent.
    template <class T>
    unsigned char* optional(unsigned char* at, T*& pointer)
    {
        const bool present = isPresent(at);
        pointer = present ? static_cast<T*>(newElements(1, sizeof(T))) : nullptr;
        return present && !pointer ? refuse(at + 4, &pointer + 1) : at + 4;
    }

    // Around the elements of a block: `enter` returns what `leave` wants back. `abandon` is for an element that failed.
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

    // A length and the bytes, which are allocated. Null where the interpreter refused them or memory is short.
    unsigned char* string(unsigned char* at, char*& text, std::uint32_t maximum);
    template <class Block>
    unsigned char* opaque(unsigned char* at, Block& block, std::uint32_t maximum)
    {
        return opaque(at, block.elements, block.count, maximum);
    }

    // A value of another library's type.
    template <class T>
    unsigned char* foreign(unsigned char* at, T& value, XdrRoutine routine)
    {
        return foreign(at, &value, sizeof value, routine);
    }

    // Hands `object` over to the interpreter: from the member `first` on, or the one member alone.
    unsigned char* rest(unsigned char* at, void* object, const Type& type, std::size_t first);
    unsigned char* member(unsigned char* at, void* object, const Type& type, std::size_t index);

    // Stops the pass after `at`; the object is defined up to `defined`.
    unsigned char* refuse(unsigned char* at, void* defined);

private:
    unsigned char* opaque(unsigned char* at, unsigned char*& bytes, std::uint16_t& count, std::uint32_t maximum);
    unsigned char* foreign(unsigned char* at, void* value, std::size_t size, XdrRoutine routine);
    unsigned char* abandon(bool outer, void* blockEnd, void* defined);

    // Only a low byte of 1 means present.
    static bool isPresent(const unsigned char* at) { return static_cast<std::uint8_t>(getUnit(at)) == 1; }
    static void* newElements(std::size_t count, std::size_t size);
    unsigned char* after(bool succeeded, void* defined);

    Xdr* xdrs;
    unsigned char* end;
    unsigned char* stop = nullptr;
    bool fresh = false;
};

// Releases a block alone, or after its elements, which `releaseOne` releases one by one up to the first that it
// refuses.
void releaseBlock(void* block);

template <class Elements, class ReleaseOne>
bool releaseElements(Elements elements, ReleaseOne releaseOne)
{
    bool released = true;
    for (std::size_t i = 0; released && elements.data() && i < elements.size(); ++i) released = releaseOne(elements[i]);
    if (!elements.empty()) releaseBlock(elements.data());
    return released;
}

// A value of another library's type.
template <class T>
bool releaseForeign(Xdr* xdrs, T& value, XdrRoutine routine)
{
    return routine(xdrs, &value) != 0;
}

// The member `index` of `object`, by the interpreter.
bool releaseMember(Xdr* xdrs, void* object, const Type& type, std::size_t index);

// The diagnostic print that every pass over a float makes.
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

// The body of any other routine.
int interpret(Xdr* xdrs, void* object, const Type& type);

// The body of the routine of a type that has plain functions. They run if no trace is collected and the stream exposes
// its buffer; otherwise the interpreter runs. `Functions` has the type's functions, one for each mode.
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

// The body of the routine of a type whose size varies. `owns` tells whether a release pass has anything to do, or to
// refuse.
template <class T, bool owns>
int code(Xdr* xdrs, void* object, const Type& type)
{
    return run<Varying<T, owns>>(xdrs, static_cast<T*>(object), type);
}

// The same of a struct that always takes `size` bytes.
template <class T, std::size_t size, bool owns>
int codeFixed(Xdr* xdrs, void* object, const Type& type)
{
    return run<Fixed<T, size, owns>>(xdrs, static_cast<T*>(object), type);
}

}  // namespace quorva
