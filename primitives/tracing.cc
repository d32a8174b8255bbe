// The parts of a pass that traces into a text that lends itself: the same bytes and the same text as the other
// primitives, for values that fit.

#include "shared.h"

#include <quorvapixdr/walk.h>

#ifdef QUORVA_TRACING

#include <utility>

namespace quorva::walk {

namespace {

// An element by the routine of its contents, as `Calls` does.
At byCall(Tracing& pass, At at, Name tag, void* value, XdrRoutine routine)
{
    pass.leave(at);
    return pass.resume(at, element(pass.xdrs, tag.text, value, routine));
}

// A part whose length was read, and for whose storage there is no memory.
At noMemory(Tracing& pass, At at, Name tag)
{
    if (tag.text) pass.text->open(tag);
    pass.leave(at + 4);
    return nullptr;
}

// The element of an enumerator. It stands behind the enumerator's name, its length before that; elements of unknown values,
// and such as are too long for a byte, are made here.
class Enumerator {
public:
    Name of(const char* (*nameOf)(int), std::int32_t number)
    {
        const char* const name = nameOf(number);
        const Name known = {name + static_cast<unsigned char>(name[-2]) + 1, static_cast<unsigned char>(name[-1])};
        return known.length != 0 ? known : made(name, number);
    }

private:
    [[gnu::cold, gnu::noinline]] Name made(const char* name, std::int32_t number)
    {
        const Decimal digits(number);
        char* at = text;
        const auto add = [&at](const char* piece) {
            const std::size_t length = std::strlen(piece);
            at = static_cast<char*>(std::memcpy(at, piece, length)) + length;
        };
        add("<");
        add(name);
        add(">");
        add(digits.text());
        add("</");
        add(name);
        add(">");
        return {text, static_cast<std::size_t>(at - text)};
    }

    char text[2 * 255 + 17];  // of a name of any length
};

// What is not shown in the short way. (A call in the last step: those who may come here save no registers for it.)
template <class... Contents>
[[gnu::cold, gnu::noinline]] At showSlowly(Tracing& pass, At at, Name tag, Contents... contents)
{
    pass.text->element(tag, contents...);
    return at + 4;
}

// The unit of a value that moves at `at`, where there is room.
template <class As>
std::uint32_t moveUnit(const Tracing& pass, At at, void* value)
{
    As held;
    std::uint32_t unit;
    if (pass.decoding) {
        unit = getUnit(at);
        held = static_cast<As>(unit);
        std::memcpy(value, &held, sizeof held);
    } else {
        std::memcpy(&held, value, sizeof held);
        unit = static_cast<std::uint32_t>(held);
        putUnit(at, unit);
    }
    return unit;
}

// The primitive that codes such a value.
template <class As, class Shown>
constexpr XdrRoutine routineOf()
{
    if constexpr (std::same_as<Shown, bool>)
        return XdrBoolean;
    else if constexpr (sizeof(As) == 1)
        return std::signed_integral<Shown> ? XdrShortInteger : XdrShortNatural;
    else if constexpr (sizeof(As) == 2)
        return std::signed_integral<As> ? XdrInteger : XdrNatural;
    else if constexpr (std::signed_integral<As>)
        return XdrLongInteger;
    else
        return std::signed_integral<Shown> ? XdrUINT : XdrLongNatural;
}

// As what the trace shows it. Of a truth value it is the low byte that counts.
template <class Shown>
Shown shown(std::uint32_t unit)
{
    if constexpr (std::same_as<Shown, bool>)
        return (unit & 0xFF) != 0;
    else
        return static_cast<Shown>(unit);
}

}  // namespace

At openTag(Tracing& pass, At at, Name tag)
{
    pass.text->open(tag);
    return at;
}

At closeTag(Tracing& pass, At at, Name tag)
{
    if (at) pass.text->close(tag);
    return at;
}

At routineElement(Tracing& pass, At at, void* value, XdrRoutine routine)
{
    pass.leave(at);
    return pass.resume(at, routine(pass.xdrs, value));
}

template <class As, class Shown>
At numberElement(Tracing& pass, At at, Name tag, void* value)
{
    if (!pass.room(at, 4)) return byCall(pass, at, tag, value, routineOf<As, Shown>());
    const Shown number = shown<Shown>(moveUnit<As>(pass, at, value));
    if (!pass.text->takesNumber(tag)) return showSlowly(pass, at, tag, number);
    pass.text->element(tag, number);
    return at + 4;
}

template <class As, class Shown>
At numbers(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    if (!pass.room(at, std::size_t{4} * count)) return blockOf(pass, at, first, count, sizeof(As), routineElement, routine);
    auto* value = static_cast<unsigned char*>(first);
    const auto next = [&] {
        const Shown number = shown<Shown>(moveUnit<As>(pass, at, value));
        value += sizeof(As);
        at += 4;
        return number;
    };
    if (pass.decoding)
        for (std::uint32_t i = 0; i < count; ++i) pass.text->framed(next());
    else
        pass.text->numbers(count, next);
    pass.text->endLine();
    return at;
}

#define NUMBER(As, Shown)                                                                \
    template At numberElement<As, Shown>(Tracing&, At, Name, void*);                  \
    template At numbers<As, Shown>(Tracing&, At, void*, std::uint32_t, XdrRoutine);
NUMBER(std::uint8_t, bool)
NUMBER(std::uint8_t, std::int32_t)
NUMBER(std::uint8_t, std::uint32_t)
NUMBER(std::int16_t, std::int32_t)
NUMBER(std::uint16_t, std::uint32_t)
NUMBER(std::int32_t, std::int32_t)
NUMBER(std::uint32_t, std::uint32_t)
NUMBER(std::uint32_t, std::int32_t)
#undef NUMBER

At enumElement(Tracing& pass, At at, Name tag, void* value, const char* (*nameOf)(int))
{
    if (!pass.room(at, 4)) {
        pass.leave(at);
        openElement(pass.xdrs, tag.text);
        const int result = enumeration<std::int32_t>(pass.xdrs, value, nameOf);
        return pass.resume(at, result && closeElement(pass.xdrs, tag.text));
    }
    const auto number = static_cast<std::int32_t>(moveUnit<std::int32_t>(pass, at, value));
    Enumerator enumerator;
    const Name shown = enumerator.of(nameOf, number);
    if (!pass.text->takes(tag, shown)) return showSlowly(pass, at, tag, shown);
    pass.text->element(tag, shown);
    return at + 4;
}

At enumerators(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine, const char* (*nameOf)(int))
{
    if (!pass.room(at, std::size_t{4} * count)) return blockOf(pass, at, first, count, 4, routineElement, routine);
    auto* value = static_cast<unsigned char*>(first);
    Enumerator enumerator;
    const auto next = [&] {
        const auto number = static_cast<std::int32_t>(moveUnit<std::int32_t>(pass, at, value));
        value += 4;
        at += 4;
        return enumerator.of(nameOf, number);
    };
    if (pass.decoding)
        for (std::uint32_t i = 0; i < count; ++i) pass.text->framed(next());
    else
        pass.text->inLine(count, next);
    return at;
}

At textElement(Tracing& pass, At at, Name tag, char** string, std::uint32_t maximum)
{
    std::uint32_t length = 0;
    bool fits = false;
    if (pass.decoding) {
        if (pass.room(at, 4)) {
            length = getUnit(at);
            fits = length <= maximum && length <= shownCharacters && pass.room(at + 4, padded(length));
        }
    } else if (!pass.releasing && *string) {
        const std::size_t characters = std::strlen(*string);
        length = static_cast<std::uint32_t>(characters);
        fits = characters <= maximum && characters <= shownCharacters && pass.room(at, 7 + characters);
    }
    if (!fits) return callInstead(pass, at, Text{tag.text, *string, maximum});

    const std::uint32_t all = padded(length);
    if (pass.decoding) {
        auto* const copy = static_cast<char*>(::operator new[](std::size_t{length} + 1, std::nothrow));
        *string = copy;
        if (!copy) return noMemory(pass, at, tag);
        copyBytes(copy, at + 4, length);
        copy[length] = '\0';
    } else {
        putUnit(at, length);
        std::memset(at + all, 0, length > 0 ? 4 : 0);
        copyBytes(at + 4, *string, length);
    }
    pass.text->element(tag, *string, length);
    return at + 4 + all;
}

At bytesElement(Tracing& pass, At at, Name tag, void* sequence, std::uint32_t maximum)
{
    auto* const place = static_cast<unsigned char*>(sequence) + sizeof(void*);
    std::uint16_t count = 0;
    unsigned char* bytes = nullptr;
    bool fits = pass.room(at, 4);
    if (fits) {
        if (pass.decoding) {
            count = static_cast<std::uint16_t>(getUnit(at));
        } else {
            std::memcpy(&count, sequence, sizeof count);
            bytes = static_cast<unsigned char*>(load(place));
        }
        fits = count <= maximum && pass.room(at, 4 + padded(count)) && (pass.decoding || bytes || count == 0);
    }
    if (!fits) {
        auto* held = static_cast<unsigned char*>(load(place));
        pass.leave(at);
        openElement(pass.xdrs, tag.text);
        const int result = XdrBytes(pass.xdrs, &held, static_cast<std::uint16_t*>(sequence), maximum);
        store(place, held);
        return pass.resume(at, result && closeElement(pass.xdrs, tag.text));
    }

    const std::uint32_t all = padded(count);
    if (pass.decoding) {
        std::memcpy(sequence, &count, sizeof count);
        if (count > 0) {
            bytes = static_cast<unsigned char*>(::operator new[](count, std::nothrow));
            store(place, bytes);
            if (!bytes) return noMemory(pass, at, tag);
            copyBytes(bytes, at + 4, count);
        }
    } else {
        putUnit(at, count);
        std::memset(at + all, 0, count > 0 ? 4 : 0);
        copyBytes(at + 4, bytes, count);
    }
    pass.text->element(tag, bytes, count);
    return at + 4 + all;
}

At blockOf(Tracing& pass, At at, void* first, std::uint32_t count, std::uint32_t size, Element element, XdrRoutine routine)
{
    auto* value = static_cast<unsigned char*>(first);
    for (std::uint32_t i = 0; i < count; ++i, value += size) {
        if (pass.decoding) {
            pass.text->beginValue();
            std::memset(value, 0, size);
        }
        at = element(pass, at, value, routine);
        if (!at) {
            if (pass.decoding) std::memset(value + size, 0, std::size_t{count - i - 1} * size);
            return nullptr;
        }
        if (pass.decoding) pass.text->endValue();
    }
    pass.text->endLine();
    return at;
}

At listElement(Tracing& pass, At at, const Block& of, Elements all, XdrRoutine routine)
{
    const auto [tag, sequence, maximum, size] = of;
    auto* const place = static_cast<unsigned char*>(sequence) + sizeof(void*);
    std::uint16_t count = 0;
    void* block = nullptr;
    bool fits = pass.room(at, 4);
    if (fits && pass.decoding) {
        count = static_cast<std::uint16_t>(getUnit(at));
        fits = count <= maximum;
    } else if (fits) {
        std::memcpy(&count, sequence, sizeof count);
        block = load(place);
        fits = count <= maximum && (block || count == 0);
    }
    if (!fits) {
        pass.leave(at);
        openElement(pass.xdrs, tag.text);
        auto* const counted = static_cast<std::uint16_t*>(sequence);
        const int result = XdrArray(pass.xdrs, place, counted, maximum, size, routine);
        return pass.resume(at, result && closeElement(pass.xdrs, tag.text));
    }

    if (pass.decoding) {
        std::memcpy(sequence, &count, sizeof count);
        if (count > 0) {
            block = size > SIZE_MAX / count ? nullptr : ::operator new[](std::size_t{count} * size, std::nothrow);
            store(place, block);
            if (!block) return noMemory(pass, at, tag);
        }
    } else {
        putUnit(at, count);
    }
    if (tag.text) pass.text->open(tag);
    at += 4;
    if (count > 0) at = all(pass, at, block, count, routine);
    if (at && tag.text) pass.text->close(tag);
    return at;
}

}  // namespace quorva::walk

#endif
