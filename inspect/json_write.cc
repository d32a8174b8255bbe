// Converts objects to JSON.

#include "documentation.h"
#include "explain/layout.h"
#include "explain/refused.h"
#include "input.h"
#include "json.h"
#include "support/text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace quorva::inspect {

namespace {

bool isPrintable(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7F; });
}

Json hexJson(std::span<const unsigned char> bytes)
{
    return {{"hex", hexDigits(bytes)}};
}

std::span<const unsigned char> bytesAt(const std::byte* at, std::size_t size)
{
    return {reinterpret_cast<const unsigned char*>(at), size};
}

Json floatJson(std::uint32_t bits)
{
    const auto number = std::bit_cast<float>(bits);
    if (!std::isfinite(number)) {
        unsigned char bytes[4];
        for (unsigned i = 0; i < 4; ++i) bytes[i] = static_cast<unsigned char>(bits >> (24 - 8 * i));
        return {{"bits", hexDigits(bytes)}};
    }
    // JSON numbers are doubles. Take the double with the float's shortest text, if it rounds back to the float.
    const std::string shortest = floatText(number);
    double wide = 0;
    std::from_chars(shortest.data(), shortest.data() + shortest.size(), wide);
    return static_cast<float>(wide) == number ? wide : static_cast<double>(number);
}

class Writer {
public:
    Json value(const Type& type, const std::byte* at)
    {
        switch (type.kind) {
        case TypeKind::builtin:
        case TypeKind::enumeration: return numberJson(type, loadNumber(type, at));
        case TypeKind::structure: {
            Json object = Json::object();
            for (const Member& field : type.members) add(object, field, at);
            return object;
        }
        case TypeKind::discriminatedUnion: {
            const Member& discriminant = type.members.front();
            Json object = Json::object();
            add(object, discriminant, at);
            const Member* arm = armOf(type, loadNumber(discriminantOf(type), at + discriminant.offset));
            if (arm && arm->use.form != Form::none) add(object, *arm, at);
            return object;
        }
        case TypeKind::typeDefinition: break;
        case TypeKind::foreign:
            if (type.described) return value(type.described(), at);
            throw Refusal(Refused{.cause = Cause::foreignType, .type = &type}.sentence());
        }
        return value(targetOf(type), at);
    }

private:
    // Leaves one level for {"hex": "..."}.
    void descend()
    {
        if (++depth == deepestNesting) throw Refusal("values are nested too deeply for JSON");
    }

    void add(Json& object, const Member& member, const std::byte* at)
    {
        descend();
        object[member.name] = value(member.use, at + member.offset);
        --depth;
    }

    Json value(const Use& use, const std::byte* at)
    {
        switch (use.form) {
        case Form::single: return value(*use.type, at);
        case Form::fixedArray: return elements(*use.type, at, use.bound);
        case Form::variableArray: {
            const auto block = load<Block>(at);
            return elements(*use.type, block.elements, block.elements ? block.count : 0);
        }
        case Form::optional: {
            const auto* present = load<const std::byte*>(at);
            if (present) return value(*use.type, present);
            break;
        }
        case Form::string: {
            const auto* text = load<const char*>(at);
            if (text) return stringJson(text);
            break;
        }
        case Form::variableOpaque: {
            const auto block = load<Block>(at);
            return opaqueJson(bytesAt(block.elements, block.elements ? block.count : 0));
        }
        case Form::fixedOpaque: return opaqueJson(bytesAt(at, use.bound));
        case Form::none: break;
        }
        return nullptr;
    }

    Json elements(const Type& type, const std::byte* first, std::size_t count)
    {
        descend();
        Json array = Json::array();
        for (std::size_t i = 0; i < count; ++i) array.push_back(value(type, first + i * type.size));
        --depth;
        return array;
    }

    std::size_t depth = 0;
};

}  // namespace

Json objectJson(const Type& type, const void* object)
{
    return Writer().value(type, static_cast<const std::byte*>(object));
}

Json numberJson(const Type& scalar, std::int64_t number)
{
    if (scalar.builtin == Builtin::Float) return floatJson(static_cast<std::uint32_t>(number));
    if (scalar.builtin == Builtin::Boolean && number <= 1) return number == 1;
    if (const char* name = enumeratorName(scalar, number)) return name;
    return number;
}

Json stringJson(std::string_view contents)
{
    if (support::isUtf8(contents)) return contents;
    return hexJson({reinterpret_cast<const unsigned char*>(contents.data()), contents.size()});
}

Json opaqueJson(std::span<const unsigned char> contents)
{
    const std::string_view text(reinterpret_cast<const char*>(contents.data()), contents.size());
    if (!text.empty() && isPrintable(text)) return {{"text", text}};
    return hexJson(contents);
}

}  // namespace quorva::inspect

std::string quorva::toJson(const Type& type, const void* object, unsigned indent)
{
    return inspect::objectJson(type, object).dump(indent == 0 ? -1 : static_cast<int>(indent));
}
