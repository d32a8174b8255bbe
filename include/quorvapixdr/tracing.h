// The pass that encodes or decodes while somebody collects the trace in a text that lends itself. It has no body for
// each type, but lines: a constant that tells which elements a value shows, and where its numbers and texts stand in
// memory. One function moves and shows them all, with the buffer, the text and the lines in registers.
//
// Where something does not fit - no room, a length beyond its maximum, no memory for the text, a release - it is handed
// to its routine in the way of `Calls`, from its start, so the text and the bytes are those of the calls to the letter.
//
// Included by walk.h.
#pragma once

#include <iterator>

namespace quorva::walk {

struct Tracing {
    Xdr* xdrs;
    Xdr::Trace* text;
    At end;
    bool decoding;
    bool releasing;

    // Where a release pass stands there is no room, so each of its parts is handed over.
    Tracing(Xdr* stream, At nowhere)
        : xdrs(stream), text(stream->sink()), end(nowhere), decoding(static_cast<int>(stream->streamMode) == 1),
          releasing(static_cast<int>(stream->streamMode) == 2)
    {
        if (!releasing) end = xdrs->end();
    }

    bool room(At at, std::size_t size) const { return static_cast<std::size_t>(end - at) >= size; }

    // Before and after a part that its routine codes.
    void leave(At at)
    {
        if (!releasing) xdrs->moveTo(at);
    }
    At resume(At at, int result) const { return result ? (releasing ? at : xdrs->cursor()) : nullptr; }
};

using Name = Xdr::Trace::Name;

// ---- Lines ----------------------------------------------------------------------------------------------------------
// What a record holds by value is among its own lines, and so is a union's discriminant; its arms have lines of their
// own.

struct Line;
struct Step;
union Callee;

// A part that lines do not show, of the object that `object` points to.
using Show = At (*)(Tracing& pass, At at, void* object);
// The lines of the arm that a union's discriminant selects, with what they call in `callee`; null where there is none.
using Arm = const Step* (*)(const void* object, Callee& callee);
using NameOf = const char* (*)(int);

// What lines call. An address among the lines would be relocated when the library is loaded, and so it would in an array
// of them that a compiler takes for constant.
union Callee {
    Callee() {}
    explicit Callee(Show function) : show(unknown(function)) {}
    explicit Callee(Arm function) : arm(unknown(function)) {}
    explicit Callee(NameOf function) : nameOf(unknown(function)) {}

    template <class Function>
    QUORVA_INLINE static Function unknown(Function function)
    {
        asm("" : "+r"(function));
        return function;
    }

    Show show;
    Arm arm;
    NameOf nameOf;
};

// A line as the pass reads it.
struct Step {
    enum class Kind : std::uint8_t {
        boolean, shortInteger, shortNatural, integer, natural, longInteger, longNatural, unsignedInteger, enumerator,
        open, close,   // tags of an element that begins and ends in one run
        push, pop,     // tags of any other element
        run, slowRun,  // what begins a run of those above, which cannot fail; one too long or too deep for the short way
        text, bytes,   // each with its maximum as the value of the next step
        arm, call,
        end
    };

    Kind kind;
    std::uint8_t length;  // of the name; 255: at least; of a run: the most blanks that its first line can begin with
    std::uint16_t place;  // of the tags, in bytes before this step; of a run: its bytes
    std::uint32_t value;  // where it stands in the object; of a run: its characters

    Xdr::Trace::Tags tags() const { return {reinterpret_cast<const char*>(this) - place, length}; }
    Name name() const
    {
        Name name = tags().name();
        if (length == 255)
            while (name.text[name.length] != '>') ++name.length;
        return name;
    }
};

// Codes and shows the lines (in primitives/tracing.cc), which call what `callee` points to, one after the other.
At showLines(Tracing& pass, At at, void* object, const Step* step, const Callee* callee);

// What a type with a body shows, and the arms of a union. There is one of each for each such type.
template <class T>
At show(Tracing& pass, At at, void* object);
template <class T>
const Step* showArm(const void* object, Callee& callee);

// ---- The words that lines are written in ------------------------------------------------------------------------------

struct Line {
    Step::Kind kind;
    const char* name = "";
    std::size_t offset = 0;
    std::uint32_t maximum = 0;
    std::size_t length = __builtin_strlen(name);
};

template <class As, class Shown>
consteval Step::Kind kindOf()
{
    if (std::same_as<Shown, bool>) return Step::Kind::boolean;
    if (sizeof(As) == 1) return std::signed_integral<Shown> ? Step::Kind::shortInteger : Step::Kind::shortNatural;
    if (sizeof(As) == 2) return std::signed_integral<As> ? Step::Kind::integer : Step::Kind::natural;
    if (std::signed_integral<As>) return Step::Kind::longInteger;
    return std::signed_integral<Shown> ? Step::Kind::unsignedInteger : Step::Kind::longNatural;
}

template <class T, class As, class Shown>
consteval Line line(const char* name, std::size_t offset, Shaped<T, shape::Number<As, Shown>>)
{
    return {kindOf<As, Shown>(), name, offset};
}
template <class T, const char* (*nameOf)(int)>
consteval Line line(const char* name, std::size_t offset, Shaped<T, shape::Enumeration<nameOf>>)
{
    return {Step::Kind::enumerator, name, offset};
}
template <std::uint32_t maximum>
consteval Line line(const char* name, std::size_t offset, Shaped<char*, shape::Text<maximum>>)
{
    return {Step::Kind::text, name, offset, maximum};
}
consteval Line textLine(const char* name, std::size_t offset, std::uint32_t maximum)
{
    return {Step::Kind::text, name, offset, maximum};
}
consteval Line bytesLine(const char* name, std::size_t offset, std::uint32_t maximum)
{
    return {Step::Kind::bytes, name, offset, maximum};
}
consteval Line openLine(const char* name)
{
    return {Step::Kind::open, name};
}
consteval Line closeLine(const char* name)
{
    return {Step::Kind::close, name};
}
consteval Line armLine(std::size_t offset)
{
    return {Step::Kind::arm, "", offset};
}
consteval Line callLine(std::size_t offset)
{
    return {Step::Kind::call, "", offset};
}

// ---- Lines made steps -------------------------------------------------------------------------------------------------

// Makes the steps of some lines and, before them, their tags; or counts both, where it is not told where to.
class Packing {
public:
    constexpr Packing(const Line* from, std::size_t count, char* tagsTo, std::size_t sizeOfTags, Step* stepsTo)
        : lines(from), size(count), tags(tagsTo), tagsSize(sizeOfTags), made(stepsTo)
    {
        for (std::size_t i = 0; i < size;) i = isInRun(i) ? run(i) : single(i);
        add({Step::Kind::end, 0, 0, 0});
        // What can be read behind the last tag, which has four characters at least: some are the steps.
        const std::size_t behind = InText::beyond - 4;
        if (steps * sizeof(Step) < behind) characters += behind - steps * sizeof(Step);
        characters += (alignof(Step) - characters % alignof(Step)) % alignof(Step);
    }

    std::size_t steps = 0;
    std::size_t characters = 0;

private:
    using InText = Xdr::Trace::Lines;
    static constexpr std::size_t mostLines = 32;
    static constexpr std::size_t mostOfEnumerator = 2 * 255 + 17;  // its name, a number and brackets

    constexpr bool isInRun(std::size_t i) const { return i < size && lines[i].kind < Step::Kind::run; }

    constexpr std::size_t single(std::size_t i)
    {
        const Line& line = lines[i];
        if (line.kind == Step::Kind::text || line.kind == Step::Kind::bytes) {
            add(i, line.kind);
            add({line.kind, 0, 0, line.maximum});
        } else {
            add({line.kind, 0, 0, exactly<std::uint32_t>(line.offset)});
        }
        return i + 1;
    }

    // The lines from `first` on, up to one that can fail or where too many elements begin.
    constexpr std::size_t run(std::size_t first)
    {
        std::size_t end = first;
        for (std::ptrdiff_t begun = 0; isInRun(end); ++end) {
            begun += lines[end].kind == Step::Kind::open;
            if (begun > InText::mostPushed) break;
        }
        const std::size_t head = steps;
        add({Step::Kind::run, 0, 0, 0});
        std::size_t bytes = 0, all = InText::mostOnce, blanks = 0, deepest = 0, longest = 0;
        for (std::size_t i = first; i < end; ++i) {
            const Step::Kind kind = lines[i].kind;
            if (lines[i].length > longest) longest = lines[i].length;
            all += InText::most + 2 * lines[i].length;
            if (kind == Step::Kind::open) {
                add(i, isWhole(i, first, end) ? kind : Step::Kind::push);
                blanks += 2;
                if (blanks > deepest) deepest = blanks;
            } else if (kind == Step::Kind::close) {
                add(i, isWhole(i, first, end) ? kind : Step::Kind::pop);
                blanks -= blanks > 0 ? 2 : 0;
            } else {
                add(i, kind);
                bytes += 4;
                all += kind == Step::Kind::enumerator ? mostOfEnumerator : InText::mostDigits;
            }
        }
        const bool isShort = longest <= InText::longestName && deepest <= InText::mostBlanks;
        if (made)
            made[head] = {isShort ? Step::Kind::run : Step::Kind::slowRun,
                          static_cast<std::uint8_t>(isShort ? InText::mostBlanks - deepest : 0),
                          exactly<std::uint16_t>(bytes), exactly<std::uint32_t>(all)};
        return end;
    }

    // Whether the element that begins or ends at `i` does both in its run, with lines between. Of what stands between the
    // tags of any other, only the pass knows whether there is anything to see.
    constexpr bool isWhole(std::size_t i, std::size_t first, std::size_t end) const
    {
        const Step::Kind own = lines[i].kind;
        const bool begins = own == Step::Kind::open;
        std::size_t depth = 0;
        for (std::size_t at = i; begins ? at < end : at + 1 > first; begins ? ++at : --at) {
            const Step::Kind kind = lines[at].kind;
            if (kind == own) ++depth;
            else if (kind == Step::Kind::open || kind == Step::Kind::close) --depth;
            if (depth == 0) return at != i + 1 && at + 1 != i;
        }
        return false;
    }

    constexpr void add(Step step)
    {
        if (made) made[steps] = step;
        ++steps;
    }
    constexpr void add(std::size_t i, Step::Kind kind)
    {
        const std::size_t place = tagsOf(i);
        add({kind, static_cast<std::uint8_t>(lines[i].length < 255 ? lines[i].length : 255),
             exactly<std::uint16_t>(made ? tagsSize + steps * sizeof(Step) - place : 0),
             exactly<std::uint32_t>(lines[i].offset)});
    }
    // Where the line's tags stand among all, in which each pair stands once.
    constexpr std::size_t tagsOf(std::size_t i)
    {
        const Line& own = lines[i];
        for (std::size_t j = 0; j < i; ++j)
            if (lines[j].length == own.length && __builtin_memcmp(lines[j].name, own.name, own.length) == 0 && own.length > 0)
                return places[i] = places[j];
        places[i] = characters;
        put("<", 1);
        put(own.name, own.length);
        put("></", 3);
        put(own.name, own.length);
        put(">", 1);
        return places[i];
    }
    constexpr void put(const char* text, std::size_t count)
    {
        if (tags)
            for (std::size_t i = 0; i < count; ++i) tags[characters + i] = text[i];
        characters += count;
    }
    template <class To>
    static constexpr To exactly(std::size_t number)
    {
        if (number != static_cast<To>(number)) throw "too large for a line";
        return static_cast<To>(number);
    }

    const Line* lines;
    std::size_t size;
    char* tags;
    std::size_t tagsSize;
    Step* made;
    std::size_t places[mostLines] = {};
};

template <std::size_t characters, std::size_t numberOfSteps>
struct Program {
    alignas(Step) char tags[characters];
    Step steps[numberOfSteps];
};

template <const auto& lines>
inline constexpr auto programOf = [] {
    constexpr Packing sizes(lines, std::size(lines), nullptr, 0, nullptr);
    Program<sizes.characters, sizes.steps> made = {};
    Packing(lines, std::size(lines), made.tags, sizes.characters, made.steps);
    return made;
}();

template <const auto& lines, class... Callees>
QUORVA_INLINE At showLines(Tracing& pass, At at, void* object, Callees... callees)
{
    if constexpr (sizeof...(callees) == 0) {
        return showLines(pass, at, object, programOf<lines>.steps, nullptr);
    } else {
        const Callee all[] = {Callee(callees)...};
        return showLines(pass, at, object, programOf<lines>.steps, all);
    }
}

// The lines of an arm, which call one function at most.
template <const auto& lines, class... Callees>
QUORVA_INLINE const Step* armLines(Callee& to, Callees... callee)
{
    static_assert(sizeof...(callee) < 2);
    ((to = Callee(callee)), ...);
    return Callee::unknown(programOf<lines>.steps);
}
// Those of an arm that holds nothing.
inline constexpr Step noLines = {Step::Kind::end, 0, 0, 0};

// ---- Parts that lines do not show (in primitives/tracing.cc) ------------------------------------------------------------

// What codes the elements of a block, with the routine of one. A block that the pass allocated is emptied element by
// element, just before each is begun, and behind a failure.
using Elements = At (*)(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine);
using Element = At (*)(Tracing& pass, At at, void* value, XdrRoutine routine);

template <class As, class Shown>
At numbers(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine);
// As numbers(), with the text that belongs to each.
At enumerators(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine, NameOf nameOf);
// A counted block of whatever type. `sequence` points to a count and a pointer, as every counted block begins. The two
// routines travel in registers: in an object or on the stack each address would be relocated when the library is loaded.
struct Block {
    Name tag;
    void* sequence;
    std::uint32_t maximum;
    std::uint32_t size;
};
At listElement(Tracing& pass, At at, const Block& block, Elements all, XdrRoutine routine);
At blockOf(Tracing& pass, At at, void* first, std::uint32_t count, std::uint32_t size, Element element, XdrRoutine routine);
At routineElement(Tracing& pass, At at, void* value, XdrRoutine routine);

QUORVA_INLINE Name nameOf(const char* tag)
{
    return {tag, tag ? __builtin_strlen(tag) : 0};
}

// Through the routines, as `Calls` does.
template <class Part>
QUORVA_INLINE At callInstead(Tracing& pass, At at, const Part& part)
{
    pass.leave(at);
    return pass.resume(at, callPart(pass.xdrs, part));
}

template <class T, class S>
At bodies(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    constexpr Element one = [](Tracing& inner, At from, void* value, XdrRoutine) {
        return show<T>(inner, from, value);
    };
    return blockOf(pass, at, first, count, sizeof(T), one, routine);
}
template <const char* (*nameOfValue)(int)>
At enumeratorsOf(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    return enumerators(pass, at, first, count, routine, nameOfValue);
}
template <class T, class S>
At others(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    return blockOf(pass, at, first, count, sizeof(T), routineElement, routine);
}

template <class T, class S, class As, class Shown>
consteval Elements elementsOf(shape::Number<As, Shown>)
{
    return numbers<As, Shown>;
}
template <class T, class S, const char* (*nameOfValue)(int)>
consteval Elements elementsOf(shape::Enumeration<nameOfValue>)
{
    return enumeratorsOf<nameOfValue>;
}
template <class T, class S, std::uint32_t units>
consteval Elements elementsOf(shape::Fixed<units>)
{
    return bodies<T, S>;
}
template <class T, class S, bool owns>
consteval Elements elementsOf(shape::Body<owns>)
{
    return bodies<T, S>;
}
template <class T, class S, class Other>
consteval Elements elementsOf(Other)
{
    return others<T, S>;
}

template <class Sequence, class T, class S>
QUORVA_INLINE At tracePart(Tracing& pass, At at, const List<Sequence, T, S>& part)
{
    static_assert(offsetof(Sequence, count) == 0 && offsetof(Sequence, elements) == sizeof(T*));
    return listElement(pass, at, {nameOf(part.tag), &part.value, part.maximum, sizeof(T)}, elementsOf<T, S>(S{}),
                       part.coder.routine);
}
// Where there is room, the values are only moved and shown; where there is none, they stay what they were.
template <class T, std::size_t N, class S>
    requires About<S>::isScalar
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Vector<T, N, S>& part)
{
    if (!pass.room(at, 4 * N)) return callInstead(pass, at, part);
    pass.text->open(nameOf(part.tag));
    at = elementsOf<T, S>(S{})(pass, at, part.value, N, part.coder.routine);
    if (at) pass.text->close(nameOf(part.tag));
    return at;
}
template <class Part>
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Part& part)
{
    return callInstead(pass, at, part);
}

}  // namespace quorva::walk
