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
#include <type_traits>

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

// `count` units of 32-bit numbers, in either direction, the fastest way that the processor has.
void swapUnits(unsigned char* to, const unsigned char* from, std::size_t count);

void copyMany(void* to, const void* from, std::size_t size);

// Copies bytes, most often a few: short runs in steps of fixed size that may overlap. (Compilers that see how many there can
// be at most would write a string instruction here, which is slow to start.)
QUORVA_INLINE void copyBytes(void* to, const void* from, std::size_t size)
{
    auto* const out = static_cast<unsigned char*>(to);
    const auto* const in = static_cast<const unsigned char*>(from);
    const auto step = [out, in]<std::size_t n>(std::size_t at, std::integral_constant<std::size_t, n>) {
        std::memcpy(out + at, in + at, n);
    };
    const auto ends = [step, size](auto n) {
        step(0, n);
        step(size - n, n);
    };
    if (size > 32)
        copyMany(to, from, size);
    else if (size >= 16)
        ends(std::integral_constant<std::size_t, 16>{});
    else if (size >= 8)
        ends(std::integral_constant<std::size_t, 8>{});
    else if (size >= 4)
        ends(std::integral_constant<std::size_t, 4>{});
    else if (size > 0) {
        out[0] = in[0];
        out[size / 2] = in[size / 2];
        out[size - 1] = in[size - 1];
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

// The body of a type: in place where it is small, else by its function.
template <class Pass, class T>
QUORVA_INLINE At body(Pass& pass, At at, T& value)
{
    if constexpr (requires { inPlace(pass, at, value); })
        return inPlace(pass, at, value);
    else
        return code(pass, at, value);
}

// ---- What encode and decode share ----------------------------------------------------------------------------------

// Inside a block that a decode allocated and nobody cleared. A part that fails there is emptied first, and `stop` is where
// what was written ends: the block is emptied from there on.
struct Unwritten {
    bool fresh = false;
    unsigned char* stop = nullptr;
};
struct Written {};

template <class Stream, class Block>
struct Moving : Block {
    using Moved = Stream;
    Stream* xdrs;
    At end;

    explicit Moving(Stream* stream) : xdrs(stream), end(stream->end()) {}

    QUORVA_INLINE bool room(At at, std::size_t size) const { return static_cast<std::size_t>(end - at) >= size; }

    // The part again, from its start, through its primitive, which refuses it or does it. What the functions below need of a
    // part is given one by one: a part that a pointer leads to would have to be laid out, its addresses relocated.
    template <class T, class S>
    QUORVA_INLINE At byRoutine(At at, const Field<T, S>& part)
    {
        return again(at, &part.value, sizeof part.value, part.coder.routine);
    }
    QUORVA_INLINE At byRoutine(At at, const Text& part) { return again(at, &part.value, part.maximum); }
    template <class Sequence>
    QUORVA_INLINE At byRoutine(At at, const Bytes<Sequence>& part)
    {
        return againApart<Bytes<Sequence>>(at, part.value, part.maximum);
    }
    template <class Sequence, class T, class S>
    QUORVA_INLINE At byRoutine(At at, const List<Sequence, T, S>& part)
    {
        return againApart<List<Sequence, T, S>>(at, part.value, part.maximum, part.coder);
    }
    template <class T, class S>
    QUORVA_INLINE At byRoutine(At at, const Optional<T, S>& part)
    {
        return againApart<Optional<T, S>>(at, part.value, part.coder);
    }
    template <class T, std::size_t N, class S>
    QUORVA_INLINE At byRoutine(At at, const Vector<T, N, S>& part)
    {
        return againApart<Vector<T, N, S>>(at, part.value, part.coder);
    }
    template <std::size_t N>
    QUORVA_INLINE At byRoutine(At at, const Opaque<N>& part)
    {
        return againApart<Opaque<N>>(at, part.value);
    }

private:
    template <class Part, class Value, class... Bound>
    [[gnu::cold, gnu::noinline]] At againApart(At at, Value& value, Bound... bound)
    {
        start(at, &value, sizeof value);
        return finish(Part{nullptr, value, bound...}.call(xdrs), &value, sizeof value);
    }
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
        if constexpr (std::same_as<Block, Unwritten>)
            if (this->fresh) std::memset(value, 0, size);
        xdrs->moveTo(at);
    }
    At finish(int result, void* value, std::size_t size)
    {
        if (result) return xdrs->cursor();
        if constexpr (std::same_as<Block, Unwritten>) this->stop = static_cast<unsigned char*>(value) + size;
        return nullptr;
    }
};

// ---- Encode --------------------------------------------------------------------------------------------------------

template <class Stream>
struct Encoding : Moving<Stream, Written> {
    using Moving<Stream, Written>::Moving;
    using Moving<Stream, Written>::xdrs;
    using Moving<Stream, Written>::room;
    using Moving<Stream, Written>::byRoutine;

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
        return body(*this, at, value);
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
        copyBytes(at, bytes, length);
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
        return body(*this, at, part.value);
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
struct Decoding : Moving<Stream, Unwritten> {
    using Moving<Stream, Unwritten>::Moving;
    using Moving<Stream, Unwritten>::xdrs;
    using Moving<Stream, Unwritten>::room;
    using Moving<Stream, Unwritten>::byRoutine;
    using Moving<Stream, Unwritten>::fresh;
    using Moving<Stream, Unwritten>::stop;

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
        return body(*this, at, value);
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
                copyBytes(string, at + 4, length);
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
                copyBytes(bytes, at + 4, count);
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
        return body(*this, at, part.value);
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
concept Moves = requires { typename Pass::Moved; };

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
QUORVA_INLINE void shortRun(Pass&, At)
{
}
template <class Pass, class First, class... Rest>
QUORVA_INLINE void shortRun(Pass& pass, At at, const First& first, const Rest&... rest)
{
    if constexpr (AboutPart<First>::units != 0) {
        at = pass.byRoutine(at, first);
        if (at) shortRun(pass, at, rest...);
    }
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
    if constexpr (AboutPart<First>::units != 0) {
        if (!pass.room(at, 4 * leadingUnits<First, Rest...>())) [[unlikely]] {
            shortRun(pass, at, first, rest...);
            return nullptr;
        }
        return runOf(pass, at, first, rest...);
    } else {
        at = pass.varying(at, first);
        return at ? parts(pass, at, rest...) : nullptr;
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
        return body(*this, at, value);
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

// ---- The arms of a union ---------------------------------------------------------------------------------------------
// All but numbers are left to functions, in the arm's last step: the switch then needs neither registers nor storage of
// its own, and arms of one type are one call.

template <class Part, class Pass, class Value, class... Bound>
[[gnu::noinline]] At apart(Pass& pass, At at, Value& value, Bound... bound)
{
    return parts(pass, at, Part{nullptr, value, bound...});
}

template <class Pass, class T, class S>
QUORVA_INLINE At armApart(Pass& pass, At at, const Field<T, S>& part)
{
    return parts(pass, at, part);
}
template <class Pass, class T, bool owns>
QUORVA_INLINE At armApart(Pass& pass, At at, const Field<T, shape::Body<owns>>& part)
{
    return code(pass, at, part.value);
}
template <class Pass, class T, std::uint32_t maximum>
QUORVA_INLINE At armApart(Pass& pass, At at, const Field<T, shape::Text<maximum>>& part)
{
    return apart<Text>(pass, at, part.value, maximum);
}
template <class Pass>
QUORVA_INLINE At armApart(Pass& pass, At at, const Text& part)
{
    return apart<Text>(pass, at, part.value, part.maximum);
}
template <class Pass, class Sequence>
QUORVA_INLINE At armApart(Pass& pass, At at, const Bytes<Sequence>& part)
{
    return apart<Bytes<Sequence>>(pass, at, part.value, part.maximum);
}
template <class Pass, class Sequence, class T, class S>
QUORVA_INLINE At armApart(Pass& pass, At at, const List<Sequence, T, S>& part)
{
    return apart<List<Sequence, T, S>>(pass, at, part.value, part.maximum, part.coder);
}
template <class Pass, class T, class S>
QUORVA_INLINE At armApart(Pass& pass, At at, const Optional<T, S>& part)
{
    return apart<Optional<T, S>>(pass, at, part.value, part.coder);
}
template <class Pass, class T, std::size_t N, class S>
QUORVA_INLINE At armApart(Pass& pass, At at, const Vector<T, N, S>& part)
{
    return apart<Vector<T, N, S>>(pass, at, part.value, part.coder);
}

template <Moves Pass, class Part>
QUORVA_INLINE At armOf(Pass& pass, At at, const Part& part)
{
    if constexpr (AboutPart<Part>::units != 0)
        return pass.room(at, 4 * AboutPart<Part>::units) ? fixedPart(pass, at, part) : pass.byRoutine(at, part);
    else
        return armApart(pass, at, part);
}
template <class Stream, class Part>
QUORVA_INLINE At armOf(Releasing<Stream>& pass, At at, const Part& part)
{
    if constexpr (AboutPart<Part>::owns)
        return armApart(pass, at, part);
    else
        return at;
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

// Each direction is a function, so that none saves registers for another.
template <class Pass, class Stream, class T>
[[gnu::noinline]] int move(Stream* xdrs, T& value)
{
    Pass pass(xdrs);
    const At at = body(pass, xdrs->cursor(), value);
    if (!at) return 0;
    xdrs->moveTo(at);
    return 1;
}
template <class Stream, class T>
[[gnu::noinline]] int release(Stream* xdrs, T& value)
{
    Releasing<Stream> pass{xdrs};
    return body(pass, reinterpret_cast<At>(&value), value) != nullptr;
}

template <class T, class Stream>
QUORVA_INLINE int runDirect(Stream* xdrs, T& value)
{
    switch (static_cast<int>(xdrs->streamMode)) {
    case 0: return move<Encoding<Stream>>(xdrs, value);
    case 1: return move<Decoding<Stream>>(xdrs, value);
    default: return release(xdrs, value);
    }
}

}  // namespace quorva::walk
