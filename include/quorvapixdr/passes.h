// The passes that move bytes themselves: encode, decode and release where nobody collects a trace.
//
// They do what the primitives do, with the cursor in a register and one check of the room for each run of units whose
// number is known. They know only the way of success: whatever does not fit - no room, a length beyond its maximum, a
// null where there must not be one - is handed to the primitive from the start of that part, which refuses it at the
// same unit, with the same bytes and the same coded length, as it always did.
//
// Included by walk.h.
#pragma once

#include <bit>

namespace quorva::walk {

// A class that lends its buffer: a cursor, an end, and a way to say how far it was moved.
template <class Stream>
concept Lends = requires(Stream& x, At at) {
    { x.tracing() } -> std::convertible_to<bool>;
    { x.cursor() } -> std::same_as<At>;
    { x.end() } -> std::same_as<At>;
    x.moveTo(at);
};

// ---- Units ---------------------------------------------------------------------------------------------------------

QUORVA_INLINE void putUnit(At at, std::uint32_t unit)
{
    if constexpr (std::endian::native == std::endian::little) unit = __builtin_bswap32(unit);
    std::memcpy(at, &unit, 4);
}

QUORVA_INLINE std::uint32_t getUnit(const unsigned char* at)
{
    std::uint32_t unit;
    std::memcpy(&unit, at, 4);
    if constexpr (std::endian::native == std::endian::little) unit = __builtin_bswap32(unit);
    return unit;
}

constexpr std::uint32_t padded(std::uint32_t length)
{
    return (length + 3) & ~std::uint32_t{3};
}

// `count` units of 32-bit numbers. Two at a time: one swap of eight bytes and a turn by half make two of four.
QUORVA_INLINE void swapUnits(unsigned char* to, const unsigned char* from, std::size_t count)
{
    if constexpr (std::endian::native != std::endian::little) {
        std::memcpy(to, from, 4 * count);
    } else {
        std::size_t i = 0;
        for (; i + 4 <= count; i += 4) {
            std::uint64_t a, b;
            std::memcpy(&a, from + 4 * i, 8);
            std::memcpy(&b, from + 4 * i + 8, 8);
            a = std::rotl(__builtin_bswap64(a), 32);
            b = std::rotl(__builtin_bswap64(b), 32);
            std::memcpy(to + 4 * i, &a, 8);
            std::memcpy(to + 4 * i + 8, &b, 8);
        }
        for (; i < count; ++i) {
            std::uint32_t unit;
            std::memcpy(&unit, from + 4 * i, 4);
            putUnit(to + 4 * i, unit);
        }
    }
}

// ---- Shapes --------------------------------------------------------------------------------------------------------
// Of each shape: the units that it always takes (0 where that varies), whether a release pass must look at it, and whether
// its values stand in memory as on the wire but for the order of their four bytes; whether it is one number.

struct Shape {
    static constexpr bool isWord = false;
    static constexpr bool isScalar = false;
};
template <class S>
struct About;
template <class As, class Shown>
struct About<shape::Number<As, Shown>> : Shape {
    static constexpr std::uint32_t units = 1;
    static constexpr bool owns = false;
    static constexpr bool isWord = sizeof(As) == 4;
    static constexpr bool isScalar = true;
};
template <const char* (*nameOf)(int)>
struct About<shape::Enumeration<nameOf>> : About<shape::Number<std::int32_t, std::int32_t>> {};
template <>
struct About<shape::Real> : Shape {
    static constexpr std::uint32_t units = 1;
    static constexpr bool owns = true;  // its diagnostic print
};
template <std::uint32_t maximum>
struct About<shape::Text<maximum>> : Shape {
    static constexpr std::uint32_t units = 0;
    static constexpr bool owns = true;
};
template <std::uint32_t n>
struct About<shape::Fixed<n>> : Shape {
    static constexpr std::uint32_t units = n;
    static constexpr bool owns = false;
};
template <bool o>
struct About<shape::Body<o>> : Shape {
    static constexpr std::uint32_t units = 0;
    static constexpr bool owns = o;
};
template <>
struct About<shape::Routine> : Shape {
    static constexpr std::uint32_t units = 0;
    static constexpr bool owns = true;
};

template <class Part>
struct AboutPart;
template <class T, class S>
struct AboutPart<Field<T, S>> : About<S> {};
template <class T, std::size_t N, class S>
struct AboutPart<Vector<T, N, S>> {
    static constexpr std::uint32_t units = About<S>::units * N;
    static constexpr bool owns = About<S>::owns;
};
template <std::size_t N>
struct AboutPart<Opaque<N>> {
    static constexpr std::uint32_t units = padded(N) / 4;
    static constexpr bool owns = false;
};
template <class Part>
    requires requires(Part part) { part.maximum; }
struct AboutPart<Part> {
    static constexpr std::uint32_t units = 0;
    static constexpr bool owns = true;
};
template <class T, class S>
struct AboutPart<Optional<T, S>> {
    static constexpr std::uint32_t units = 0;
    static constexpr bool owns = true;
};

// The units of the parts up to the first whose number varies.
template <class... Parts>
consteval std::uint32_t leadingUnits()
{
    std::uint32_t total = 0;
    bool leading = true;
    ((leading = leading && AboutPart<Parts>::units != 0, total += leading ? AboutPart<Parts>::units : 0), ...);
    return total;
}

// ---- What encode and decode share ----------------------------------------------------------------------------------

template <class Stream>
struct Moving {
    Stream* xdrs;
    At end;
    // Inside a block that a decode allocated and nobody cleared. A part that fails there is emptied first, and `stop` is
    // where what was written ends: the block is emptied from there on.
    bool fresh = false;
    unsigned char* stop = nullptr;

    explicit Moving(Stream* stream) : xdrs(stream), end(stream->end()) {}

    QUORVA_INLINE bool room(At at, std::size_t size) const { return static_cast<std::size_t>(end - at) >= size; }

    // The part again, from its start, through its primitive, which refuses it or does it.
    template <class T, class S>
    QUORVA_INLINE At byRoutine(At at, const Field<T, S>& part)
    {
        return again(at, &part.value, sizeof part.value, part.coder.routine);
    }
    QUORVA_INLINE At byRoutine(At at, const Text& part) { return again(at, &part.value, part.maximum); }
    template <class Part>
    [[gnu::cold, gnu::noinline]] At byRoutine(At at, const Part& part)
    {
        start(at, &part.value, sizeof part.value);
        return finish(part.call(xdrs), &part.value, sizeof part.value);
    }

private:
    [[gnu::cold, gnu::noinline]] At again(At at, void* value, std::size_t size, XdrRoutine routine)
    {
        start(at, value, size);
        return finish(routine(xdrs, value), value, size);
    }
    [[gnu::cold, gnu::noinline]] At again(At at, char** string, std::uint32_t maximum)
    {
        start(at, string, sizeof *string);
        return finish(XdrString(xdrs, string, maximum), string, sizeof *string);
    }
    void start(At at, void* value, std::size_t size)
    {
        if (fresh) std::memset(value, 0, size);
        xdrs->moveTo(at);
    }
    At finish(int result, void* value, std::size_t size)
    {
        if (result) return xdrs->cursor();
        stop = static_cast<unsigned char*>(value) + size;
        return nullptr;
    }
};

// ---- Encode --------------------------------------------------------------------------------------------------------

template <class Stream>
struct Encoding : Moving<Stream> {
    using Moving<Stream>::Moving;
    using Moving<Stream>::xdrs;
    using Moving<Stream>::room;
    using Moving<Stream>::byRoutine;

    QUORVA_INLINE At failed(At at)
    {
        xdrs->moveTo(at);
        return nullptr;
    }

    template <class T, class As, class Shown>
    QUORVA_INLINE At fixed(At at, T& value, shape::Number<As, Shown>)
    {
        putUnit(at, static_cast<std::uint32_t>(static_cast<As>(value)));
        return at + 4;
    }
    template <class T>
    QUORVA_INLINE At fixed(At at, T& value, shape::Real)
    {
        TRACE("In XdrFloat\n");
        putUnit(at, std::bit_cast<std::uint32_t>(value));
        return at + 4;
    }
    template <class T, std::uint32_t n>
    QUORVA_INLINE At fixed(At at, T& value, shape::Fixed<n>)
    {
        return code(*this, at, value);
    }
    template <std::size_t N>
    QUORVA_INLINE At fixedOpaque(At at, unsigned char (&value)[N])
    {
        if constexpr (N % 4 != 0) std::memset(at + N / 4 * 4, 0, 4);
        std::memcpy(at, value, N);
        return at + padded(N);
    }

    QUORVA_INLINE At varying(At at, const Text& part)
    {
        if (const char* string = part.value) {
            const std::size_t length = std::strlen(string);
            if (length <= part.maximum && room(at, 7 + length)) return run(at, string, static_cast<std::uint32_t>(length));
        }
        return byRoutine(at, part);
    }
    template <class Sequence>
    QUORVA_INLINE At varying(At at, const Bytes<Sequence>& part)
    {
        const std::uint32_t count = part.value.count;
        if (count <= part.maximum && room(at, 4 + padded(count)) && (part.value.elements || count == 0))
            return run(at, part.value.elements, count);
        return byRoutine(at, part);
    }
    template <class Sequence, class T, class S>
    QUORVA_INLINE At varying(At at, const List<Sequence, T, S>& part)
    {
        const std::uint32_t count = part.value.count;
        T* const elements = part.value.elements;
        if (count > part.maximum || !room(at, 4) || (!elements && count != 0)) return byRoutine(at, part);
        putUnit(at, count);
        return this->elements(at + 4, elements, count, part.coder);
    }
    template <class T, class S>
    QUORVA_INLINE At varying(At at, const Optional<T, S>& part)
    {
        if (!room(at, 4)) return byRoutine(at, part);
        putUnit(at, part.value != nullptr);
        return part.value ? one(at + 4, *part.value, part.coder) : at + 4;
    }
    template <class T, class S>
    QUORVA_INLINE At varying(At at, const Field<T, S>& part)
    {
        return one(at, part.value, part.coder);
    }
    template <class T, std::size_t N, class S>
    QUORVA_INLINE At varying(At at, const Vector<T, N, S>& part)
    {
        return elements(at, part.value, N, part.coder);
    }

private:
    // A length and the bytes, behind which the padding is laid first.
    QUORVA_INLINE static At run(At at, const void* bytes, std::uint32_t length)
    {
        putUnit(at, length);
        at += 4;
        if (length == 0) return at;
        const std::uint32_t all = padded(length);
        std::memset(at + all - 4, 0, 4);
        std::memcpy(at, bytes, length);
        return at + all;
    }
    // One value of a shape that may vary.
    template <class T, class S>
    QUORVA_INLINE At one(At at, T& value, Shaped<T, S> coder)
    {
        const Field<T, S> part{nullptr, value, coder};
        if constexpr (About<S>::units != 0)
            return room(at, 4 * About<S>::units) ? fixed(at, value, S{}) : byRoutine(at, part);
        else
            return oneVarying(at, part, S{});
    }
    template <class T, class S, std::uint32_t maximum>
    QUORVA_INLINE At oneVarying(At at, const Field<T, S>& part, shape::Text<maximum>)
    {
        return varying(at, Text{nullptr, part.value, maximum});
    }
    template <class T, class S, bool owns>
    QUORVA_INLINE At oneVarying(At at, const Field<T, S>& part, shape::Body<owns>)
    {
        return code(*this, at, part.value);
    }
    template <class T, class S>
    QUORVA_INLINE At oneVarying(At at, const Field<T, S>& part, shape::Routine)
    {
        return byRoutine(at, part);
    }
    template <class T, class S>
    QUORVA_INLINE At elements(At at, T* first, std::uint32_t count, Shaped<T, S> coder)
    {
        if constexpr (About<S>::units != 0) {
            if (room(at, std::size_t{4} * About<S>::units * count)) return fixedElements(at, first, count, S{});
        }
        for (std::uint32_t i = 0; i < count; ++i)
            if (!(at = one(at, first[i], coder))) return nullptr;
        return at;
    }
    template <class T, class S>
    QUORVA_INLINE At fixedElements(At at, T* first, std::uint32_t count, S)
    {
        if constexpr (About<S>::isWord) {
            swapUnits(at, reinterpret_cast<const unsigned char*>(first), count);
            return at + std::size_t{4} * count;
        } else {
            for (std::uint32_t i = 0; i < count; ++i) at = fixed(at, first[i], S{});
            return at;
        }
    }
};

// ---- Decode --------------------------------------------------------------------------------------------------------

template <class Stream>
struct Decoding : Moving<Stream> {
    using Moving<Stream>::Moving;
    using Moving<Stream>::xdrs;
    using Moving<Stream>::room;
    using Moving<Stream>::byRoutine;
    using Moving<Stream>::fresh;
    using Moving<Stream>::stop;

    // Stops at `at`; of the object, everything up to `last` is written.
    template <class T>
    QUORVA_INLINE At failed(At at, T& last)
    {
        xdrs->moveTo(at);
        stop = behind(last);
        return nullptr;
    }

    template <class T, class As, class Shown>
    QUORVA_INLINE At fixed(At at, T& value, shape::Number<As, Shown>)
    {
        value = static_cast<T>(static_cast<As>(getUnit(at)));
        return at + 4;
    }
    template <class T>
    QUORVA_INLINE At fixed(At at, T& value, shape::Real)
    {
        TRACE("In XdrFloat\n");
        value = std::bit_cast<float>(getUnit(at));
        return at + 4;
    }
    template <class T, std::uint32_t n>
    QUORVA_INLINE At fixed(At at, T& value, shape::Fixed<n>)
    {
        return code(*this, at, value);
    }
    template <std::size_t N>
    QUORVA_INLINE At fixedOpaque(At at, unsigned char (&value)[N])
    {
        std::memcpy(value, at, N);
        return at + padded(N);
    }

    QUORVA_INLINE At varying(At at, const Text& part)
    {
        if (room(at, 4)) {
            const std::uint32_t length = getUnit(at);
            if (length <= part.maximum && room(at + 4, padded(length))) {
                auto* const string = static_cast<char*>(::operator new[](std::size_t{length} + 1, std::nothrow));
                part.value = string;
                if (!string) return failed(at + 4, part.value);
                std::memcpy(string, at + 4, length);
                string[length] = '\0';
                return at + 4 + padded(length);
            }
        }
        return byRoutine(at, part);
    }
    template <class Sequence>
    QUORVA_INLINE At varying(At at, const Bytes<Sequence>& part)
    {
        if (room(at, 4)) {
            const auto count = static_cast<std::uint16_t>(getUnit(at));
            if (count <= part.maximum && room(at + 4, padded(count))) {
                part.value.count = count;
                if (count == 0) return empty(at + 4, part.value);
                auto* const bytes = static_cast<unsigned char*>(::operator new[](count, std::nothrow));
                part.value.elements = bytes;
                if (!bytes) return failed(at + 4, part.value);
                std::memcpy(bytes, at + 4, count);
                return at + 4 + padded(count);
            }
        }
        return byRoutine(at, part);
    }
    template <class Sequence, class T, class S>
    QUORVA_INLINE At varying(At at, const List<Sequence, T, S>& part)
    {
        if (!room(at, 4)) return byRoutine(at, part);
        const auto count = static_cast<std::uint16_t>(getUnit(at));
        if (count > part.maximum) return byRoutine(at, part);
        part.value.count = count;
        if (count == 0) return empty(at + 4, part.value);
        auto* const block = static_cast<T*>(newBlock(count, sizeof(T)));
        part.value.elements = block;
        if (!block) return failed(at + 4, part.value);
        at = block_(at + 4, block, count, part.coder);
        if (!at) stop = behind(part.value);
        return at;
    }
    template <class T, class S>
    QUORVA_INLINE At varying(At at, const Optional<T, S>& part)
    {
        if (!room(at, 4)) return byRoutine(at, part);
        if (static_cast<unsigned char>(getUnit(at)) != 1) {
            part.value = nullptr;
            return at + 4;
        }
        part.value = static_cast<T*>(newBlock(1, sizeof(T)));
        if (!part.value) return failed(at + 4, part.value);
        at = block_(at + 4, part.value, 1, part.coder);
        if (!at) stop = behind(part.value);
        return at;
    }
    template <class T, class S>
    QUORVA_INLINE At varying(At at, const Field<T, S>& part)
    {
        return one(at, part.value, part.coder);
    }
    template <class T, std::size_t N, class S>
    QUORVA_INLINE At varying(At at, const Vector<T, N, S>& part)
    {
        return elements(at, part.value, N, part.coder);
    }

private:
    template <class T>
    static unsigned char* behind(T& value)
    {
        return reinterpret_cast<unsigned char*>(&value) + sizeof value;
    }
    // A count of 0 leaves the pointer as it is, but in a fresh block it has never been written.
    template <class Sequence>
    QUORVA_INLINE At empty(At at, Sequence& sequence)
    {
        if (fresh) sequence.elements = nullptr;
        return at;
    }
    static void* newBlock(std::size_t count, std::size_t size)
    {
        return size > SIZE_MAX / count ? nullptr : ::operator new[](count * size, std::nothrow);
    }
    // The elements of a block that was just allocated.
    template <class T, class S>
    QUORVA_INLINE At block_(At at, T* first, std::uint32_t count, Shaped<T, S> coder)
    {
        const bool outer = fresh;
        fresh = true;
        at = elements(at, first, count, coder);
        fresh = outer;
        if (!at) [[unlikely]]
            std::memset(stop, 0, static_cast<std::size_t>(reinterpret_cast<unsigned char*>(first + count) - stop));
        return at;
    }
    template <class T, class S>
    QUORVA_INLINE At one(At at, T& value, Shaped<T, S> coder)
    {
        const Field<T, S> part{nullptr, value, coder};
        if constexpr (About<S>::units != 0)
            return room(at, 4 * About<S>::units) ? fixed(at, value, S{}) : byRoutine(at, part);
        else
            return oneVarying(at, part, S{});
    }
    template <class T, class S, std::uint32_t maximum>
    QUORVA_INLINE At oneVarying(At at, const Field<T, S>& part, shape::Text<maximum>)
    {
        return varying(at, Text{nullptr, part.value, maximum});
    }
    template <class T, class S, bool owns>
    QUORVA_INLINE At oneVarying(At at, const Field<T, S>& part, shape::Body<owns>)
    {
        return code(*this, at, part.value);
    }
    template <class T, class S>
    QUORVA_INLINE At oneVarying(At at, const Field<T, S>& part, shape::Routine)
    {
        return byRoutine(at, part);
    }
    template <class T, class S>
    QUORVA_INLINE At elements(At at, T* first, std::uint32_t count, Shaped<T, S> coder)
    {
        if constexpr (About<S>::units != 0) {
            if (room(at, std::size_t{4} * About<S>::units * count)) return fixedElements(at, first, count, S{});
        }
        for (std::uint32_t i = 0; i < count; ++i)
            if (!(at = one(at, first[i], coder))) return nullptr;
        return at;
    }
    template <class T, class S>
    QUORVA_INLINE At fixedElements(At at, T* first, std::uint32_t count, S)
    {
        if constexpr (About<S>::isWord) {
            swapUnits(reinterpret_cast<unsigned char*>(first), at, count);
            return at + std::size_t{4} * count;
        } else {
            for (std::uint32_t i = 0; i < count; ++i) at = fixed(at, first[i], S{});
            return at;
        }
    }
};

// ---- Encode and decode alike ---------------------------------------------------------------------------------------

template <class Pass>
concept Moves = requires(Pass& pass) { pass.fresh; };

template <class Pass, class T, class S>
QUORVA_INLINE At fixedPart(Pass& pass, At at, const Field<T, S>& part)
{
    return pass.fixed(at, part.value, S{});
}

template <class Pass, class T, std::size_t N, class S>
QUORVA_INLINE At fixedPart(Pass& pass, At at, const Vector<T, N, S>& part)
{
    for (T& value : part.value) at = pass.fixed(at, value, S{});
    return at;
}

template <class Pass, std::size_t N>
QUORVA_INLINE At fixedPart(Pass& pass, At at, const Opaque<N>& part)
{
    return pass.fixedOpaque(at, part.value);
}

// A run for which there is no room: part by part, until the one that fails.
template <class Pass>
At shortRun(Pass&, At)
{
    return nullptr;
}
template <class Pass, class First, class... Rest>
[[gnu::cold, gnu::noinline]] At shortRun(Pass& pass, At at, const First& first, const Rest&... rest)
{
    at = pass.byRoutine(at, first);
    return at ? shortRun(pass, at, rest...) : nullptr;
}

template <Moves Pass>
QUORVA_INLINE At parts(Pass&, At at)
{
    return at;
}
template <Moves Pass, class First, class... Rest>
QUORVA_INLINE At parts(Pass& pass, At at, const First& first, const Rest&... rest);

// Parts of a run whose room is sure, then the rest.
template <Moves Pass>
QUORVA_INLINE At runOf(Pass&, At at)
{
    return at;
}
template <Moves Pass, class First, class... Rest>
QUORVA_INLINE At runOf(Pass& pass, At at, const First& first, const Rest&... rest)
{
    if constexpr (AboutPart<First>::units == 0)
        return parts(pass, at, first, rest...);
    else
        return runOf(pass, fixedPart(pass, at, first), rest...);
}

template <Moves Pass, class First, class... Rest>
QUORVA_INLINE At parts(Pass& pass, At at, const First& first, const Rest&... rest)
{
    if (!at) return nullptr;
    if constexpr (AboutPart<First>::units != 0) {
        if (!pass.room(at, 4 * leadingUnits<First, Rest...>())) [[unlikely]]
            return shortRun(pass, at, first, rest...);
        return runOf(pass, at, first, rest...);
    } else {
        return parts(pass, pass.varying(at, first), rest...);
    }
}

template <class Stream, class D>
QUORVA_INLINE At refuse(Encoding<Stream>& pass, At at, D&)
{
    return at ? pass.failed(at) : nullptr;
}
template <class Stream, class D>
QUORVA_INLINE At refuse(Decoding<Stream>& pass, At at, D& discriminant)
{
    return at ? pass.failed(at, discriminant) : nullptr;
}

// ---- Release -------------------------------------------------------------------------------------------------------

template <class Stream>
struct Releasing {
    Stream* xdrs;

    QUORVA_INLINE At part(At at, const Text& part)
    {
        ::operator delete[](part.value);
        return at;
    }
    template <class Sequence>
    QUORVA_INLINE At part(At at, const Bytes<Sequence>& part)
    {
        if (part.value.count > part.maximum) return nullptr;
        if (part.value.count != 0) ::operator delete[](part.value.elements);
        return at;
    }
    template <class Sequence, class T, class S>
    QUORVA_INLINE At part(At at, const List<Sequence, T, S>& part)
    {
        if (part.value.count > part.maximum) return nullptr;
        if (part.value.count == 0 || !part.value.elements) return at;
        const At result = elements(at, part.value.elements, part.value.count, part.coder);
        ::operator delete[](part.value.elements);
        return result;
    }
    template <class T, class S>
    QUORVA_INLINE At part(At at, const Optional<T, S>& part)
    {
        if (!part.value) return at;
        const At result = one(at, *part.value, part.coder);
        ::operator delete[](part.value);
        return result;
    }
    template <class T, class S>
    QUORVA_INLINE At part(At at, const Field<T, S>& part)
    {
        return one(at, part.value, part.coder);
    }
    template <class T, std::size_t N, class S>
    QUORVA_INLINE At part(At at, const Vector<T, N, S>& part)
    {
        return elements(at, part.value, N, part.coder);
    }

private:
    template <class T, class S>
    QUORVA_INLINE At elements(At at, T* first, std::uint32_t count, Shaped<T, S> coder)
    {
        if constexpr (About<S>::owns)
            for (std::uint32_t i = 0; i < count; ++i)
                if (!one(at, first[i], coder)) return nullptr;
        return at;
    }
    template <class T, class S>
    QUORVA_INLINE At one(At at, T& value, Shaped<T, S> coder)
    {
        return ofShape(at, value, coder, S{});
    }
    template <class T, class S>
    QUORVA_INLINE At ofShape(At at, T& value, Shaped<T, S> coder, S)
    {
        return coder.routine(xdrs, &value) ? at : nullptr;  // a float prints; a typedef has its routine only
    }
    template <class T, std::uint32_t maximum>
    QUORVA_INLINE At ofShape(At at, T& value, Shaped<T, shape::Text<maximum>>, shape::Text<maximum>)
    {
        ::operator delete[](value);
        return at;
    }
    template <class T, bool owns>
    QUORVA_INLINE At ofShape(At at, T& value, Shaped<T, shape::Body<owns>>, shape::Body<owns>)
    {
        return code(*this, at, value);
    }
};

template <class Stream, class Part>
QUORVA_INLINE At releasePart(Releasing<Stream>& pass, At at, const Part& part)
{
    if constexpr (AboutPart<Part>::owns)
        return at ? pass.part(at, part) : nullptr;
    else
        return at;
}

template <class Stream, class... Parts>
QUORVA_INLINE At parts(Releasing<Stream>& pass, At at, const Parts&... all)
{
    ((at = releasePart(pass, at, all)), ...);
    return at;
}

template <class Stream, class D>
QUORVA_INLINE At refuse(Releasing<Stream>&, At, D&)
{
    return nullptr;
}

// ---- Elements of the trace, which nobody collects here ---------------------------------------------------------------

template <class Pass>
    requires(!std::same_as<Pass, Calls>)
QUORVA_INLINE At open(Pass&, At at, const char*)
{
    return at;
}

template <class Pass>
    requires(!std::same_as<Pass, Calls>)
QUORVA_INLINE At close(Pass&, At at, const char*)
{
    return at;
}

// ---- The routine's way in ------------------------------------------------------------------------------------------

template <class T, class Stream>
QUORVA_INLINE int runDirect(Stream* xdrs, T& value)
{
    switch (static_cast<int>(xdrs->streamMode)) {
    case 0: {
        Encoding<Stream> pass(xdrs);
        const At at = code(pass, xdrs->cursor(), value);
        if (at) xdrs->moveTo(at);
        return at != nullptr;
    }
    case 1: {
        Decoding<Stream> pass(xdrs);
        const At at = code(pass, xdrs->cursor(), value);
        if (at) xdrs->moveTo(at);
        return at != nullptr;
    }
    default: {
        Releasing<Stream> pass{xdrs};
        return code(pass, reinterpret_cast<At>(&value), value) != nullptr;
    }
    }
}

}  // namespace quorva::walk
