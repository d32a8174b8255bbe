// Converts JSON to objects.

#include "catalogue.h"
#include "documentation.h"
#include "explain/layout.h"
#include "explain/refused.h"
#include "input.h"
#include "json.h"
#include "json_text.h"
#include "support/text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <variant>

namespace quorva::inspect {

namespace {

using Value = JsonText::Value;

constexpr std::size_t mostErrors = 20;
constexpr std::size_t mostMistakes = mostErrors + 1;  // the last one tells only that there are more errors

// A value for a message, shortened to 40 bytes.
std::string described(const Value& value)
{
    if (value.isObject()) return "an object";
    if (value.isArray()) return "an array";
    const std::string_view token = value.token();
    if (token.size() <= 40) return std::string(token);
    std::size_t end = 40;
    while (support::continuesCharacter(token[end])) --end;
    return std::string(token.substr(0, end)) + "...";
}

// An error of a value, with its place as an offset.
struct Mistake {
    std::string path;
    std::string sentence;
    std::size_t offset;
};

// Reads a JSON value in one of two ways:
// - without an object (`at` is null), it collects the errors of the value;
// - with a zeroed object and a value without errors, it fills the object. Each block is stored in the object before it
//   is filled, and each discriminant before its arm, so that a release pass works if a later allocation throws.
class Reader {
public:
    void value(const Type& type, const Value& json, std::byte* at)
    {
        switch (type.kind) {
        case TypeKind::builtin:
        case TypeKind::enumeration: number(type, json, at); return;
        case TypeKind::structure: readStruct(type, json, at); return;
        case TypeKind::discriminatedUnion: readUnion(type, json, at); return;
        case TypeKind::typeDefinition: value(targetOf(type), json, at); return;
        case TypeKind::foreign:
            if (type.described) return value(type.described(), json, at);
            return report(json, Refused{.cause = Cause::foreignType, .type = &type}.sentence());
        }
    }

    std::vector<Mistake> mistakes;

private:
    using Token = std::variant<const char*, std::size_t>;  // of a JSON Pointer: the name of a member, or an index

    // Runs `action` for the value of a member or an element.
    template <class Action>
    void within(Token token, Action action)
    {
        if (mistakes.size() >= mostMistakes) return;
        tokens.push_back(token);
        action();
        tokens.pop_back();
    }

    // Adds an error of the current value. `place` is the value, or the name of one of its members.
    void report(const Value& place, std::string sentence)
    {
        if (mistakes.size() >= mostMistakes) return;
        std::string path;
        for (const Token& token : tokens) {
            const auto* index = std::get_if<std::size_t>(&token);
            path += '/' + (index ? std::to_string(*index) : std::string(std::get<const char*>(token)));
        }
        mistakes.push_back({std::move(path), std::move(sentence), place.offset()});
    }

    void unexpected(const std::string& wanted, const Value& found)
    {
        report(found, "expected " + wanted + ", found " + described(found));
    }

    // ---- Numbers ---------------------------------------------------------------------------------------------------

    std::optional<std::int64_t> number(const Type& type, const Value& json, std::byte* at)
    {
        const auto read = numberIn(type, json);
        if (read && at) storeNumber(type, at, *read);
        return read;
    }

    std::optional<std::int64_t> numberIn(const Type& type, const Value& json)
    {
        if (type.builtin == Builtin::Float) return floatIn(json);
        if (type.kind == TypeKind::enumeration && json.isString()) return enumeratorIn(type, json);
        if (!json.isObject() && !json.isArray()) {
            const std::string_view token = json.token();
            if (type.builtin == Builtin::Boolean && (token == "true" || token == "false")) return token == "true";
            const Range range = rangeOf(type);
            const auto number = wholeNumber(token);
            if (number && *number >= range.least && *number <= range.most) return number;
        }
        const Range range = rangeOf(type);
        const std::string numbers = std::to_string(range.least) + " to " + std::to_string(range.most);
        unexpected(type.kind == TypeKind::enumeration ? std::string("an enumerator of ") + type.name + " or its number"
                   : type.builtin == Builtin::Boolean ? "true, false or a number from " + numbers
                                                      : "a whole number from " + numbers,
                   json);
        return std::nullopt;
    }

    // The number of a token without fraction and exponent.
    static std::optional<std::int64_t> wholeNumber(std::string_view token)
    {
        const char* const end = token.data() + token.size();
        std::int64_t number = 0;
        const auto [stop, error] = std::from_chars(token.data(), end, number);
        return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
    }

    std::optional<std::int64_t> enumeratorIn(const Type& type, const Value& json)
    {
        const std::string name = json.string();
        const std::span<const Enumerator> enumerators = enumeratorsOf(type);
        const auto found = std::ranges::find(enumerators, name, &Enumerator::name);
        if (found != enumerators.end()) return found->value;
        std::vector<std::string_view> names;
        for (const Enumerator& each : enumerators) names.emplace_back(each.name);
        report(json, names.empty()
                         ? std::string("the enumerators of ") + type.name +
                               " are known by their numbers only: its module was not added"
                         : described(json) + " is not an enumerator of " + type.name + didYouMean(name, names));
        return std::nullopt;
    }

    std::optional<std::int64_t> floatIn(const Value& json)
    {
        if (const auto number = doubleIn(json)) {
            const auto narrow = static_cast<float>(*number);
            if (std::isfinite(narrow)) return std::bit_cast<std::uint32_t>(narrow);
            report(json, "the number " + described(json) + " is beyond the largest Float");
            return std::nullopt;
        }
        const auto digits = onlyMember(json, "bits");
        const auto bytes = digits ? bytesOfDigits(*digits) : std::nullopt;
        if (bytes && bytes->size() == 4) {
            std::uint32_t bits = 0;
            for (const unsigned char byte : *bytes) bits = bits << 8 | byte;
            return bits;
        }
        unexpected("a number or {\"bits\": \"7fc00001\"} with eight hexadecimal digits", json);
        return std::nullopt;
    }

    // The number of the value; infinite if it is beyond the largest double.
    static std::optional<double> doubleIn(const Value& json)
    {
        if (json.isObject() || json.isArray() || json.isString()) return std::nullopt;
        try {
            const Json number = Json::parse(json.token());
            return number.is_number() ? std::optional(number.get<double>()) : std::nullopt;
        } catch (const Json::out_of_range&) {
            return std::numeric_limits<double>::infinity();
        }
    }

    // ---- Structs and unions ----------------------------------------------------------------------------------------

    void readStruct(const Type& type, const Value& json, std::byte* at)
    {
        if (!json.isObject()) return unexpected(std::string("an object with the fields of ") + type.name, json);
        readFields(type, type.members, json, at, [&](const Value& name) {
            std::vector<std::string_view> names;
            for (const Member& field : type.members) names.emplace_back(field.name);
            return std::string(type.name) + " has no field " + described(name) + didYouMean(name.string(), names);
        });
    }

    void readUnion(const Type& type, const Value& json, std::byte* at)
    {
        const Member& discriminant = type.members.front();
        if (!json.isObject())
            return unexpected(
                std::string("an object with the field \"") + discriminant.name + "\" and its arm of " + type.name,
                json);
        const auto found = memberOf(json, discriminant.name);
        if (!found) return reportMissing(type, discriminant, json);
        std::optional<std::int64_t> chosen;
        within(discriminant.name,
               [&] { chosen = number(discriminantOf(type), *found, shifted(at, discriminant.offset)); });
        if (!chosen) return;

        const std::string choice = std::string(discriminant.name) + ' ' + numberText(discriminantOf(type), *chosen);
        const Member* arm = armOf(type, *chosen);
        if (!arm && !type.hasDefault)
            return within(discriminant.name, [&] { report(*found, choice + " has no arm in " + type.name); });

        std::vector<Member> members{discriminant};
        const bool holds = arm && arm->use.form != Form::none;
        if (holds) members.push_back(*arm);
        readFields(type, members, json, at, [&](const Value& name) {
            return choice + (holds
                                 ? std::string(" goes with the arm \"") + arm->name + "\", not with " + described(name)
                                 : " has no contents, but " + described(name) + " is given");
        });
    }

    // Reads the members of an object, all of which must be there. `unknown` makes the sentence about another name.
    template <class Unknown>
    void readFields(const Type& type, std::span<const Member> members, const Value& json, std::byte* at,
                    Unknown unknown)
    {
        std::vector<bool> seen(members.size());
        json.forEachMember([&](const Value& name, const Value& found) {
            if (mistakes.size() >= mostMistakes) return;
            const auto field = std::ranges::find(members, name.string(), &Member::name);
            if (field == members.end()) return report(name, unknown(name));
            const auto index = static_cast<std::size_t>(field - members.begin());
            within(field->name, [&] {
                if (seen[index])
                    report(name, "the field is given twice");
                else
                    value(field->use, found, shifted(at, field->offset));
            });
            seen[index] = true;
        });
        for (std::size_t i = 0; i < members.size(); ++i)
            if (!seen[i]) reportMissing(type, members[i], json);
    }

    void reportMissing(const Type& type, const Member& member, const Value& json)
    {
        report(json, std::string("the field \"") + member.name + "\" of " + type.name + " is missing");
    }

    // The first member with this name.
    static std::optional<Value> memberOf(const Value& object, std::string_view wanted)
    {
        std::optional<Value> member;
        object.forEachMember([&](const Value& name, const Value& found) {
            if (!member && name.string() == wanted) member = found;
        });
        return member;
    }

    // The string of the only member of an object; nullopt if the value has another form.
    static std::optional<std::string> onlyMember(const Value& json, std::string_view wanted)
    {
        if (!json.isObject()) return std::nullopt;
        std::size_t count = 0;
        std::optional<std::string> contents;
        json.forEachMember([&](const Value& name, const Value& found) {
            if (++count == 1 && found.isString() && name.string() == wanted) contents = found.string();
        });
        return count == 1 ? contents : std::nullopt;
    }

    // ---- Declarations ----------------------------------------------------------------------------------------------

    void value(const Use& use, const Value& json, std::byte* at)
    {
        switch (use.form) {
        case Form::single: value(*use.type, json, at); return;
        case Form::fixedArray:
            readElements(*use.type, use.bound, use.bound, json, [at](std::size_t) { return at; });
            return;
        case Form::variableArray:
            readElements(*use.type, 0, use.bound, json,
                         [&](std::size_t count) { return allocateBlock(at, count, use.type->size); });
            return;
        case Form::optional:
            if (!isNull(json)) value(*use.type, json, allocate(at, use.type->size));
            return;
        case Form::string: readString(use, json, at); return;
        case Form::variableOpaque:
            if (const auto bytes = bytesIn(json, 0, use.bound)) copy(*bytes, allocateBlock(at, bytes->size(), 1));
            return;
        case Form::fixedOpaque:
            if (const auto bytes = bytesIn(json, use.bound, use.bound)) copy(*bytes, at);
            return;
        case Form::none: return;
        }
    }

    static bool isNull(const Value& json) { return !json.isObject() && !json.isArray() && json.token() == "null"; }

    // Allocates zeroed memory and stores its address at `at`. Returns null if there is no object.
    static std::byte* allocate(std::byte* at, std::size_t size)
    {
        if (!at) return nullptr;
        auto* memory = static_cast<std::byte*>(std::memset(::operator new[](size), 0, size));
        store(at, memory);
        return memory;
    }

    // Allocates the elements of a block and stores the block at `at`. Returns null if there is no object or no element.
    static std::byte* allocateBlock(std::byte* at, std::size_t count, std::size_t size)
    {
        if (!at || count == 0) return nullptr;
        Block block{static_cast<std::uint16_t>(count), nullptr};
        allocate(reinterpret_cast<std::byte*>(&block.elements), count * size);
        store(at, block);
        return block.elements;
    }

    static void copy(std::span<const unsigned char> bytes, std::byte* to)
    {
        if (to) std::ranges::copy(std::as_bytes(bytes), to);
    }

    // `place` takes the number of elements and returns the address of the first one.
    template <class Place>
    void readElements(const Type& type, std::size_t least, std::size_t most, const Value& json, Place place)
    {
        const auto wanted = "an array of " + amount(least, most) + ' ' + type.name;
        if (!json.isArray()) return unexpected(wanted, json);
        std::size_t count = 0;
        json.forEachElement([&](const Value&) { ++count; });
        if (count < least || count > most)
            return report(json, "expected " + wanted + ", found " + std::to_string(count));
        std::byte* const at = place(count);
        std::size_t i = 0;
        json.forEachElement([&](const Value& element) {
            within(i, [&] { value(type, element, shifted(at, i * type.size)); });
            ++i;
        });
    }

    // "at most 6", "exactly 3"
    static std::string amount(std::size_t least, std::size_t most)
    {
        return (least == most ? "exactly " : "at most ") + std::to_string(most);
    }

    void readString(const Use& use, const Value& json, std::byte* at)
    {
        if (isNull(json)) return;
        const auto bytes = json.isString() ? bytesOf(json.string()) : wrappedBytes(json);
        if (!bytes) return unexpected("a string, {\"hex\": \"...\"} or null", json);
        if (bytes->size() > use.bound)
            return report(json, "expected a string of at most " + std::to_string(use.bound) + " bytes, found " +
                                    std::to_string(bytes->size()));
        if (std::ranges::find(*bytes, 0) != bytes->end()) return report(json, "a string cannot hold a zero byte");
        copy(*bytes, allocate(at, bytes->size() + 1));
    }

    std::optional<Bytes> bytesIn(const Value& json, std::size_t least, std::size_t most)
    {
        auto bytes = wrappedBytes(json);
        if (!bytes) {
            unexpected("{\"hex\": \"...\"} or {\"text\": \"...\"}", json);
        } else if (bytes->size() < least || bytes->size() > most) {
            report(json, "expected " + amount(least, most) + " bytes, found " + std::to_string(bytes->size()));
            bytes.reset();
        }
        return bytes;
    }

    // The bytes of {"hex": "..."} or {"text": "..."}; nullopt if the value has neither form.
    static std::optional<Bytes> wrappedBytes(const Value& json)
    {
        if (const auto digits = onlyMember(json, "hex")) return bytesOfDigits(*digits);
        if (const auto text = onlyMember(json, "text")) return bytesOf(*text);
        return std::nullopt;
    }

    static std::optional<Bytes> bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

    std::vector<Token> tokens;
};

const char* remainderOf(bool areMore)
{
    static_assert(mostErrors == 20);
    return areMore ? "there are more errors; these are the first 20" : "";
}

std::string joined(const std::vector<JsonError::Entry>& errors, const char* remainder)
{
    std::string text;
    for (const JsonError::Entry& error : errors) text += (text.empty() ? "" : "\n") + error.text();
    return *remainder ? text + '\n' + remainder : text;
}

// Throws JsonError if the value does not have the form of the type.
void check(const Type& type, const JsonText& json)
{
    Reader reader;
    reader.value(type, json.value(), nullptr);
    if (reader.mistakes.empty()) return;
    const bool areMore = reader.mistakes.size() > mostErrors;
    if (areMore) reader.mistakes.pop_back();
    std::vector<JsonError::Entry> errors;
    for (Mistake& mistake : reader.mistakes)
        errors.push_back(json.error(mistake.offset, std::move(mistake.path), std::move(mistake.sentence)));
    throw JsonError(std::move(errors), areMore);
}

}  // namespace

Object fromJson(const Type& type, std::string_view text)
{
    Object object(type);
    quorva::fromJson(type, text, object.data());
    return object;
}

}  // namespace quorva::inspect

namespace quorva {

std::string JsonError::Entry::text() const
{
    return std::to_string(line) + ':' + std::to_string(column) + ": " + (path.empty() ? "" : path + ": ") + sentence;
}

JsonError::JsonError(Entry malformation)
    : std::runtime_error(malformation.text()), malformed(true), entries{std::move(malformation)}
{
}

JsonError::JsonError(std::vector<Entry> found, bool areMore)
    : std::runtime_error(inspect::joined(found, inspect::remainderOf(areMore))),
      malformed(false),
      isCut(areMore),
      entries(std::move(found))
{
}

const char* JsonError::remainder() const
{
    return inspect::remainderOf(isCut);
}

JsonError::~JsonError() = default;

void fromJson(const Type& type, std::string_view text, void* object)
{
    const inspect::JsonText json(text);
    inspect::check(type, json);
    try {
        inspect::Reader().value(type, json.value(), static_cast<std::byte*>(object));
    } catch (...) {  // memory is exhausted
        inspect::codeObject(Mode::release, type, object, {});
        std::memset(object, 0, type.size);
        throw;
    }
}

}  // namespace quorva
