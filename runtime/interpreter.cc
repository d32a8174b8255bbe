// Follows a description: one function for each kind of type and for each step of a pass.

#include "interpreter.h"

#include "collections.h"
#include "numbers.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace quorva {

namespace {

// The index among the type's members that the case with this value gives; 0 if no case has it.
std::size_t memberOfCase(const Type& type, std::uint32_t value)
{
    const auto found = std::ranges::lower_bound(type.cases, value, {}, &Case::value);
    return found != type.cases.end() && found->value == value ? found->member : 0;
}

// The name of a value of an enumeration that is described at run time. In line it would slow other traces by 1 %.
[[gnu::cold, gnu::noinline]] const char* nameOfCase(const Type& type, std::int32_t number)
{
    return type.members[memberOfCase(type, static_cast<std::uint32_t>(number))].name;
}

class Interpreter {
public:
    explicit Interpreter(Xdr* stream) : xdrs(stream), mode(modeOf(stream)), traced(isTraced(stream)) {}

    bool value(const Type& type, void* object)
    {
        switch (type.kind) {
        case TypeKind::builtin:
            if (isNumber(type)) return number(type, object);
            [[fallthrough]];
        case TypeKind::foreign: return type.routine(xdrs, object) != 0;
        case TypeKind::enumeration: return enumeration(type, object);
        case TypeKind::structure: return structure(type, object, 0);
        case TypeKind::discriminatedUnion: return discriminatedUnion(type, object, 0);
        case TypeKind::typeDefinition: break;
        }
        return declared(type.members[0].use, object);
    }

    bool structure(const Type& type, void* object, std::size_t first)
    {
        for (const Member& each : type.members.subspan(first))
            if (!member(each, object)) return false;
        return true;
    }

    bool discriminatedUnion(const Type& type, void* object, std::size_t first)
    {
        if (first == 0 && !member(type.members[0], object)) return false;
        open(type.armElement);
        if (const std::size_t arm = selectedArm(type, object)) {
            if (type.members[arm].use.form != Form::none && !member(type.members[arm], object)) return false;
        } else {
            if (!type.hasDefault) return false;
            open("default");
            close("default");
        }
        close(type.armElement);
        return true;
    }

    bool member(const Member& member, void* object)
    {
        const std::string_view name(member.name, member.nameLength);
        void* const place = static_cast<unsigned char*>(object) + member.offset;
        if (member.use.form == Form::single) {
            const Type& type = canonical(*member.use.type);
            if (isAddedAtOnce(type)) return addAtOnce(xdrs, name, type, place);
        }
        open(name);
        if (!declared(member.use, place)) return false;
        close(name);
        return true;
    }

private:
    // The type that an alias names.
    static const Type& canonical(const Type& type)
    {
        const Type* named = &type;
        while (named->kind == TypeKind::typeDefinition && named->members[0].use.form == Form::single)
            named = named->members[0].use.type;
        return *named;
    }

    static bool isNumber(const Type& type)
    {
        return type.kind == TypeKind::builtin && type.builtin != Builtin::Boolean && type.builtin != Builtin::Float;
    }

    bool number(const Type& type, void* object)
    {
        if (mode == Mode::release) return true;
        const MovedNumber number = moveNumber(xdrs, type.builtin, object);
        if (traced) {
            showNumber(xdrs, number.shown);
            xdrs->setLineFeed(false);
        }
        return number.moved;
    }

    // True for a number in its own element, where the stream class exposes its sink: most of a trace is such elements.
    bool isAddedAtOnce(const Type& type) const
    {
        return ExposesSink<Xdr> && traced && mode != Mode::release && (type.nameOf || isNumber(type));
    }

    template <class Stream>
    static bool addAtOnce([[maybe_unused]] Stream* xdrs, std::string_view name, const Type& type, void* place)
    {
        const MovedNumber number = moveNumber(xdrs, type.builtin, place);
        if constexpr (ExposesSink<Stream>) {
            if (type.nameOf && number.moved) {
                xdrs->sink()->element(name, type.nameOf(static_cast<int>(number.shown)), number.shown);
            } else if (number.moved) {
                xdrs->sink()->element(name, number.shown);
            } else {  // the element that failed stays open around the number, which did not change
                xdrs->sink()->open(name);
                if (!type.nameOf) xdrs->sink()->value(number.shown);
                xdrs->setLineFeed(false);
            }
        }
        return number.moved;
    }

    static const char* enumeratorName(const Type& type, std::int32_t number)
    {
        return type.nameOf ? type.nameOf(number) : nameOfCase(type, number);
    }

    // A value without an enumerator is not an error: the peer may be newer.
    bool enumeration(const Type& type, void* object)
    {
        std::int32_t number;
        if (mode == Mode::release) {
            std::memcpy(&number, object, sizeof number);
        } else {
            const MovedNumber moved = moveNumber<std::int32_t, std::int32_t>(xdrs, object);
            if (traced) xdrs->setLineFeed(false);
            if (!moved.moved) return false;
            number = static_cast<std::int32_t>(moved.shown);
        }
        if (traced) addEnumerator(xdrs, enumeratorName(type, number), number);
        return true;
    }

    template <class Stream>
    static void addEnumerator(Stream* xdrs, std::string_view name, std::int32_t number)
    {
        if constexpr (ExposesSink<Stream>) {
            xdrs->sink()->element(name, number);
        } else {
            openElement(xdrs, name);
            showNumber(xdrs, number);
            closeElement(xdrs, name);
        }
    }

    // Codes what a declaration declares.
    bool declared(const Use& use, void* place)
    {
        // Most elements are numbers; for them, the general dispatch of `value` would cost more than the work.
        const auto element = [this, type = use.type ? &canonical(*use.type) : nullptr](void* at) {
            if (type->kind == TypeKind::enumeration) return enumeration(*type, at);
            if (isNumber(*type)) return number(*type, at);
            return value(*type, at);
        };
        switch (use.form) {
        case Form::single: return value(*use.type, place);
        case Form::fixedArray: return codeVector(xdrs, place, use.bound, use.type->size, element);
        case Form::variableArray:
            return codeArray(xdrs, elementsAt(place), countAt(place), use.bound, use.type->size, element);
        case Form::optional: return codeOptional(xdrs, place, use.type->size, element);
        case Form::string: return XdrString(xdrs, static_cast<char**>(place), use.bound) != 0;
        case Form::variableOpaque:
            return XdrBytes(xdrs, static_cast<unsigned char**>(elementsAt(place)), countAt(place), use.bound) != 0;
        case Form::fixedOpaque: return XdrOpaque2(xdrs, static_cast<unsigned char*>(place), use.bound) != 0;
        case Form::none: break;
        }
        return true;
    }

    // Every variable-length array is a `Counted<T>` or has the same two members.
    static std::uint16_t* countAt(void* place) { return static_cast<std::uint16_t*>(place); }
    static void* elementsAt(void* place)
    {
        return static_cast<unsigned char*>(place) + offsetof(Counted<unsigned char>, elements);
    }

    void open(std::string_view name)
    {
        if (traced) openElement(xdrs, name);
    }
    void close(std::string_view name)
    {
        if (traced) closeElement(xdrs, name);
    }

    Xdr* const xdrs;
    const Mode mode;
    const bool traced;
};

// The discriminant in `object`, as a unit of the wire.
std::uint32_t discriminantUnit(const Type& type, const void* object)
{
    const Member& discriminant = type.members[0];
    const Type* held = discriminant.use.type;
    while (held->kind == TypeKind::typeDefinition) held = held->members[0].use.type;
    const auto* const place = static_cast<const unsigned char*>(object) + discriminant.offset;
    const auto as = [place]<class T>(T value) {
        std::memcpy(&value, place, sizeof value);
        return static_cast<std::uint32_t>(value);
    };
    switch (held->builtin) {
    case Builtin::Boolean:
    case Builtin::ShortNatural: return as(std::uint8_t{});
    case Builtin::ShortInteger: return as(std::int8_t{});
    case Builtin::Integer: return as(std::int16_t{});
    case Builtin::Natural: return as(std::uint16_t{});
    default: return as(std::uint32_t{});
    }
}

}  // namespace

std::size_t selectedArm(const Type& type, const void* object)
{
    return memberOfCase(type, discriminantUnit(type, object));
}

int interpret(Xdr* xdrs, void* object, const Type& type)
{
    if (!object && !(object = newRoot(xdrs, type.size))) return 0;
    return Interpreter(xdrs).value(type, object);
}

bool interpretFrom(Xdr* xdrs, void* object, const Type& type, std::size_t first)
{
    Interpreter interpreter(xdrs);
    switch (type.kind) {
    case TypeKind::structure: return interpreter.structure(type, object, first);
    case TypeKind::discriminatedUnion: return interpreter.discriminatedUnion(type, object, first);
    default: return interpreter.value(type, object);
    }
}

bool interpretMember(Xdr* xdrs, void* object, const Type& type, std::size_t index)
{
    return Interpreter(xdrs).member(type.members[index], object);
}

}  // namespace quorva
