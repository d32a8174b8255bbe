// The parts of a pass that traces into a text that lends itself: the same bytes and the same text as the other
// primitives, for values that fit.

#include "shared.h"

#include <quorvapixdr/walk.h>

#ifdef QUORVA_TRACING

#include <utility>

namespace quorva::walk {

namespace {

using Kind = Step::Kind;

// An element by the routine of its contents, as `Calls` does.
template <class Routine>
At byCall(Tracing& pass, At at, Name name, Routine routine)
{
    pass.text->open(name);
    pass.leave(at);
    at = pass.resume(at, routine(pass.xdrs));
    if (at) pass.text->close(name);
    return at;
}

// A part whose length was read, and for whose storage there is no memory.
At noMemory(Tracing& pass, At at, Name name)
{
    if (name.text) pass.text->open(name);
    pass.leave(at + 4);
    return nullptr;
}

// The element that stands before an enumerator's name; empty for unknown values, and where it is too long for a byte.
Name elementOf(const char* name)
{
    const std::size_t length = static_cast<unsigned char>(name[-1]);
    return {name - 1 - length, length};
}

// The element of any other.
[[gnu::cold, gnu::noinline]] Name makeElement(char* to, const char* name, std::int32_t number)
{
    char* const end = TraceText::enumerator(to, name, number);
    std::memset(end, 0, beyondNames);
    return {to, static_cast<std::size_t>(end - to)};
}

// The unit of a value that moves at `at`, where there is room.
template <class As>
QUORVA_INLINE std::uint32_t moveUnit(bool decoding, At at, void* value)
{
    As held;
    std::uint32_t unit;
    if (decoding) {
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

// As what the trace shows it. Of a truth value it is the low byte that counts.
template <class Shown>
Shown shown(std::uint32_t unit)
{
    if constexpr (std::same_as<Shown, bool>)
        return (unit & 0xFF) != 0;
    else
        return static_cast<Shown>(unit);
}

// Moves the numbers of a block, one by one. What it stands at is its own, to be in registers.
template <class As, class Shown, bool decoding>
struct Units {
    At at;
    unsigned char* value;

    Shown operator()()
    {
        const std::uint32_t unit = moveUnit<As>(decoding, at, value);
        at += 4;
        value += sizeof(As);
        return shown<Shown>(unit);
    }
};

// The primitive that codes a number.
XdrRoutine routineOf(Kind kind)
{
    switch (kind) {
    case Kind::boolean: return XdrBoolean;
    case Kind::shortInteger: return XdrShortInteger;
    case Kind::shortNatural: return XdrShortNatural;
    case Kind::integer: return XdrInteger;
    case Kind::natural: return XdrNatural;
    case Kind::longInteger: return XdrLongInteger;
    case Kind::longNatural: return XdrLongNatural;
    default: return XdrUINT;
    }
}

// How far the lines of an object are done: up to a step, and to a callee.
struct Progress {
    At at;
    const Step* step;
    const Callee* callee;
};

// Any run, line by line, by those who can do with any text and any end of the buffer.
[[gnu::cold, gnu::noinline]] Progress runSlowly(Tracing& pass, Progress now, unsigned char* object)
{
    for (;; ++now.step) {
        const Step& step = now.step[1];
        unsigned char* const value = object + step.value;
        switch (step.kind) {
        case Kind::open:
        case Kind::push: pass.text->open(step.name()); break;
        case Kind::close:
        case Kind::pop: pass.text->close(step.name()); break;
        case Kind::enumerator:
            now.at = byCall(pass, now.at, step.name(), [&](Xdr* xdrs) {
                return enumeration<std::int32_t>(xdrs, value, (now.callee++)->nameOf);
            });
            break;
        case Kind::run:
        case Kind::slowRun:
        case Kind::text:
        case Kind::bytes:
        case Kind::arm:
        case Kind::call:
        case Kind::end: return now;
        default:
            now.at = byCall(pass, now.at, step.name(), [&](Xdr* xdrs) { return routineOf(step.kind)(xdrs, value); });
        }
        if (!now.at) return now;
    }
}

At textElement(Tracing& pass, At at, Name name, char** string, std::uint32_t maximum)
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
    if (!fits) return byCall(pass, at, name, [&](Xdr* xdrs) { return XdrString(xdrs, string, maximum); });

    const std::uint32_t all = padded(length);
    if (pass.decoding) {
        auto* const copy = static_cast<char*>(::operator new[](std::size_t{length} + 1, std::nothrow));
        *string = copy;
        if (!copy) return noMemory(pass, at, name);
        copyBytes(copy, at + 4, length);
        copy[length] = '\0';
    } else {
        putUnit(at, length);
        std::memset(at + all, 0, length > 0 ? 4 : 0);
        copyBytes(at + 4, *string, length);
    }
    pass.text->element(name, *string, length);
    return at + 4 + all;
}

At bytesElement(Tracing& pass, At at, Name name, void* sequence, std::uint32_t maximum)
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
        return byCall(pass, at, name, [&](Xdr* xdrs) {
            auto* held = static_cast<unsigned char*>(load(place));
            const int result = XdrBytes(xdrs, &held, static_cast<std::uint16_t*>(sequence), maximum);
            store(place, held);
            return result;
        });
    }

    const std::uint32_t all = padded(count);
    if (pass.decoding) {
        std::memcpy(sequence, &count, sizeof count);
        if (count > 0) {
            bytes = static_cast<unsigned char*>(::operator new[](count, std::nothrow));
            store(place, bytes);
            if (!bytes) return noMemory(pass, at, name);
            copyBytes(bytes, at + 4, count);
        }
    } else {
        putUnit(at, count);
        std::memset(at + all, 0, count > 0 ? 4 : 0);
        copyBytes(at + 4, bytes, count);
    }
    pass.text->element(name, bytes, count);
    return at + 4 + all;
}

}  // namespace

// ---- Lines ----------------------------------------------------------------------------------------------------------

At showLines(Tracing& pass, At at, void* of, const Step* step, const Callee* callee)
{
    auto* object = static_cast<unsigned char*>(of);
    TraceText::Lines lines(*pass.text);
    // Where the lines go on behind those of an arm.
    const Step* outerStep = nullptr;
    const Callee* outerCallee;
    unsigned char* outerObject;
    Callee ofArm;

    const auto refuse = [&] {
        lines.leave();
        pass.leave(at);
        return nullptr;
    };
    // Whether the run that begins here cannot fail, and has its place in the text.
    const auto isTaken = [&] { return pass.room(at, step->place) && lines.take(step->value, step->length); };

    for (;; ++step) {
        const auto number = [&]<class As, class Shown> {
            lines.element(step->tags(), shown<Shown>(moveUnit<As>(pass.decoding, at, object + step->value)));
            at += 4;
        };
        switch (step->kind) {
        case Kind::boolean: number.template operator()<std::uint8_t, bool>(); break;
        case Kind::shortInteger: number.template operator()<std::uint8_t, std::int32_t>(); break;
        case Kind::shortNatural: number.template operator()<std::uint8_t, std::uint32_t>(); break;
        case Kind::integer: number.template operator()<std::int16_t, std::int32_t>(); break;
        case Kind::natural: number.template operator()<std::uint16_t, std::uint32_t>(); break;
        case Kind::longInteger: number.template operator()<std::int32_t, std::int32_t>(); break;
        case Kind::longNatural: number.template operator()<std::uint32_t, std::uint32_t>(); break;
        case Kind::unsignedInteger: number.template operator()<std::uint32_t, std::int32_t>(); break;
        case Kind::enumerator: {
            const auto value = static_cast<std::int32_t>(moveUnit<std::int32_t>(pass.decoding, at, object + step->value));
            const char* const name = (callee++)->nameOf(value);
            const Name known = elementOf(name);
            if (known.length > 0) [[likely]]
                lines.element(step->tags(), known);
            else
                lines.element(step->tags(), name, value);
            at += 4;
            break;
        }
        case Kind::open: lines.open(step->tags()); break;
        case Kind::close: lines.close(step->tags()); break;
        case Kind::push: lines.push(step->tags()); break;
        case Kind::pop: lines.pop(step->tags()); break;

        case Kind::run:
            if (isTaken()) break;
            lines.leave();
            pass.text->makeRoom(step->value);
            if (isTaken()) break;
            [[fallthrough]];
        case Kind::slowRun: {
            lines.leave();
            const Progress now = runSlowly(pass, {at, step, callee}, object);
            if (!now.at) return nullptr;
            at = now.at;
            step = now.step;
            callee = now.callee;
            break;
        }

        case Kind::arm: {
            unsigned char* const discriminated = object + step->value;
            if (outerStep) {
                lines.leave();
                Callee inner;
                const Step* const program = (callee++)->arm(discriminated, inner);
                if (!program) return refuse();
                at = showLines(pass, at, discriminated, program, &inner);
                if (!at) return nullptr;
                break;
            }
            const Step* const program = callee->arm(discriminated, ofArm);
            if (!program) return refuse();
            outerStep = step;
            outerCallee = callee + 1;
            outerObject = object;
            step = program - 1;
            callee = &ofArm;
            object = discriminated;
            break;
        }

        case Kind::call:
            lines.leave();
            at = (callee++)->show(pass, at, object + step->value);
            if (!at) return nullptr;
            break;
        case Kind::text:
            lines.leave();
            at = textElement(pass, at, step->name(), reinterpret_cast<char**>(object + step->value), step[1].value);
            if (!at) return nullptr;
            ++step;
            break;
        case Kind::bytes:
            lines.leave();
            at = bytesElement(pass, at, step->name(), object + step->value, step[1].value);
            if (!at) return nullptr;
            ++step;
            break;
        case Kind::end:
            if (!outerStep) {
                lines.leave();
                return at;
            }
            step = outerStep;
            callee = outerCallee;
            object = outerObject;
            outerStep = nullptr;
            break;
        default: __builtin_unreachable();
        }
    }
}

// ---- Parts that lines do not show -------------------------------------------------------------------------------------

At routineElement(Tracing& pass, At at, void* value, XdrRoutine routine)
{
    pass.leave(at);
    return pass.resume(at, routine(pass.xdrs, value));
}

template <class As, class Shown>
At numbers(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    if (!pass.room(at, std::size_t{4} * count)) return blockOf(pass, at, first, count, sizeof(As), routineElement, routine);
    auto* const value = static_cast<unsigned char*>(first);
    if (pass.decoding)
        pass.text->framed(count, Units<As, Shown, true>{at, value});
    else
        pass.text->numbers(count, Units<As, Shown, false>{at, value});
    pass.text->endLine();
    return at + std::size_t{4} * count;
}

#define NUMBER(As, Shown)                                                                \
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

At enumerators(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine, NameOf nameOf)
{
    if (!pass.room(at, std::size_t{4} * count)) return blockOf(pass, at, first, count, 4, routineElement, routine);
    auto* const value = static_cast<unsigned char*>(first);
    char made[2 * 255 + 17 + beyondNames];  // an element of any length
    const auto elements = [nameOf, &made](auto units) {
        return [=, &made]() mutable {
            const std::int32_t number = units();
            const char* const name = nameOf(number);
            const Name known = elementOf(name);
            return known.length > 0 ? known : makeElement(made, name, number);
        };
    };
    if (pass.decoding)
        pass.text->framed(count, elements(Units<std::int32_t, std::int32_t, true>{at, value}));
    else
        pass.text->inLine(count, elements(Units<std::int32_t, std::int32_t, false>{at, value}));
    return at + std::size_t{4} * count;
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
