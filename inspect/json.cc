// Converts objects to JSON and back.

#include "json.h"

#include "catalogue.h"
#include "documentation.h"
#include "explain/layout.h"
#include "explain/refused.h"
#include "input.h"
#include "support/text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <set>
#include <variant>

namespace quorva::inspect {

namespace {

constexpr std::size_t mostErrors = 20;

bool isPrintable(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7F; });
}

std::span<const unsigned char> bytesOf(std::string_view text)
{
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

Json opaqueJson(const std::byte* at, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(at), size);
    if (size > 0 && isPrintable(text)) return {{"text", text}};
    return {{"hex", hexDigits(bytesOf(text))}};
}

Json stringJson(const char* text)
{
    if (!text) return nullptr;
    if (support::isUtf8(text)) return text;
    return {{"hex", hexDigits(bytesOf(text))}};
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

Json numberJson(const Type& type, std::int64_t number)
{
    if (type.builtin == Builtin::Float) return floatJson(static_cast<std::uint32_t>(number));
    if (type.builtin == Builtin::Boolean && number <= 1) return number == 1;
    if (const Enumerator* named = enumeratorOf(type, number)) return named->name;
    return number;
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
        case TypeKind::foreign: throw Refusal{Refused{.cause = Cause::foreignType, .type = &type}.sentence()};
        }
        return value(targetOf(type), at);
    }

private:
    void add(Json& object, const Member& member, const std::byte* at)
    {
        if (++depth > deepestNesting) throw Refusal{"values are nested too deeply for JSON"};
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
        case Form::string: return stringJson(load<const char*>(at));
        case Form::variableOpaque: {
            const auto block = load<Block>(at);
            return opaqueJson(block.elements, block.elements ? block.count : 0);
        }
        case Form::fixedOpaque: return opaqueJson(at, use.bound);
        case Form::none: break;
        }
        return nullptr;
    }

    Json elements(const Type& type, const std::byte* first, std::size_t count)
    {
        if (++depth > deepestNesting) throw Refusal{"values are nested too deeply for JSON"};
        Json array = Json::array();
        for (std::size_t i = 0; i < count; ++i) array.push_back(value(type, first + i * type.size));
        --depth;
        return array;
    }

    std::size_t depth = 0;
};

// A value for a message, shortened to 40 characters.
std::string described(const Json& value)
{
    if (value.is_object()) return "an object";
    if (value.is_array()) return "an array";
    std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (text.size() > 40) text = text.substr(0, 40) + "...";
    return text;
}

// Reads a JSON value in one of two ways:
// - without an object (`at` is null), it collects the errors of the value;
// - with a zeroed object and a value without errors, it fills the object in the order of a decode pass. Each block is
//   stored in the object before it is filled, so that a release pass finds it if a later allocation throws.
class Reader {
public:
    void value(const Type& type, const Json& json, std::byte* at)
    {
        switch (type.kind) {
        case TypeKind::builtin:
        case TypeKind::enumeration: number(type, json, at); return;
        case TypeKind::structure: readStruct(type, json, at); return;
        case TypeKind::discriminatedUnion: readUnion(type, json, at); return;
        case TypeKind::typeDefinition: value(targetOf(type), json, at); return;
        case TypeKind::foreign: report(Refused{.cause = Cause::foreignType, .type = &type}.sentence()); return;
        }
    }

    std::vector<JsonError::Entry> errors;

private:
    using Token = std::variant<std::string_view, std::size_t>;  // of a JSON pointer: a name or an index

    // Runs `action` for the value of a field or an element.
    template <class Action>
    void within(Token token, Action action)
    {
        tokens.push_back(token);
        if (tokens.size() > deepestNesting)
            report("values are nested too deeply");
        else if (errors.size() < mostErrors)
            action();
        tokens.pop_back();
    }

    // Adds an error of the current value.
    void report(std::string sentence)
    {
        if (errors.size() >= mostErrors) return;
        std::string path;
        for (const Token& token : tokens) {
            path += '/';
            if (const auto* index = std::get_if<std::size_t>(&token)) {
                path += std::to_string(*index);
                continue;
            }
            for (const char c : std::get<std::string_view>(token)) {
                if (c == '~' || c == '/')
                    path += c == '~' ? "~0" : "~1";
                else
                    path += c;
            }
        }
        errors.push_back({std::move(path), std::move(sentence)});
    }

    void unexpected(const std::string& wanted, const Json& found)
    {
        report("expected " + wanted + ", found " + described(found));
    }

    // ---- Numbers ---------------------------------------------------------------------------------------------------

    std::optional<std::int64_t> number(const Type& type, const Json& json, std::byte* at)
    {
        const auto read = numberIn(type, json);
        if (read && at) storeNumber(type, at, *read);
        return read;
    }

    std::optional<std::int64_t> numberIn(const Type& type, const Json& json)
    {
        if (type.builtin == Builtin::Float) return floatIn(json);
        if (type.builtin == Builtin::Boolean && json.is_boolean()) return json.get<bool>();
        if (type.kind == TypeKind::enumeration && json.is_string())
            return enumeratorIn(type, json.get_ref<const std::string&>());
        const Range range = rangeOf(type);
        if (json.is_number_integer() && !(json.is_number_unsigned() && json.get<std::uint64_t>() > INT64_MAX)) {
            const auto number = json.get<std::int64_t>();
            if (number >= range.least && number <= range.most) return number;
        }
        const std::string numbers = std::to_string(range.least) + " to " + std::to_string(range.most);
        unexpected(type.kind == TypeKind::enumeration ? std::string("an enumerator of ") + type.name + " or its number"
                   : type.builtin == Builtin::Boolean ? "true, false or a number from " + numbers
                                                      : "a whole number from " + numbers,
                   json);
        return std::nullopt;
    }

    std::optional<std::int64_t> enumeratorIn(const Type& type, const std::string& name)
    {
        std::vector<std::string_view> names;
        for (const Enumerator& enumerator : enumeratorsOf(type)) {
            if (enumerator.name == name) return enumerator.value;
            names.emplace_back(enumerator.name);
        }
        report('"' + name + "\" is not an enumerator of " + type.name + didYouMean(name, names));
        return std::nullopt;
    }

    std::optional<std::int64_t> floatIn(const Json& json)
    {
        if (json.is_number()) {
            const auto number = json.get<double>();
            const auto narrow = static_cast<float>(number);
            if (std::isfinite(narrow)) return std::bit_cast<std::uint32_t>(narrow);
            report("the number " + described(json) + " is beyond the largest Float");
            return std::nullopt;
        }
        if (json.is_object() && json.size() == 1 && json.contains("bits") && json["bits"].is_string()) {
            const auto bytes = bytesOfDigits(json["bits"].get_ref<const std::string&>());
            if (bytes && bytes->size() == 4) {
                std::uint32_t bits = 0;
                for (const unsigned char byte : *bytes) bits = bits << 8 | byte;
                return bits;
            }
        }
        unexpected("a number or {\"bits\": \"7fc00001\"} with eight hexadecimal digits", json);
        return std::nullopt;
    }

    // ---- Structs and unions ----------------------------------------------------------------------------------------

    void readStruct(const Type& type, const Json& json, std::byte* at)
    {
        if (!json.is_object()) return unexpected(std::string("an object with the fields of ") + type.name, json);
        for (const Member& field : type.members) readMember(type, field, json, at);
        std::vector<std::string_view> names;
        for (const Member& field : type.members) names.emplace_back(field.name);
        refuseOthers(json, names, [&](std::string_view name) {
            return std::string("no such field in ") + type.name + didYouMean(name, names);
        });
    }

    void readUnion(const Type& type, const Json& json, std::byte* at)
    {
        const Member& discriminant = type.members.front();
        const auto wanted =
            std::string("an object with the field \"") + discriminant.name + "\" and its arm of " + type.name;
        if (!json.is_object()) return unexpected(wanted, json);
        std::optional<std::int64_t> chosen;
        forMember(type, discriminant, json, [&](const Json& found) {
            chosen = number(discriminantOf(type), found, shifted(at, discriminant.offset));
        });
        if (!chosen) return;

        const std::string choice = std::string(discriminant.name) + ' ' + numberText(discriminantOf(type), *chosen);
        const Member* arm = armOf(type, *chosen);
        if (!arm && !type.hasDefault)
            return within(discriminant.name, [&] { report(choice + " has no arm in " + type.name); });

        std::vector<std::string_view> names{discriminant.name};
        const bool holds = arm && arm->use.form != Form::none;
        if (holds) {
            names.emplace_back(arm->name);
            readMember(type, *arm, json, at);
        }
        refuseOthers(json, names, [&](std::string_view) {
            return choice + (holds ? std::string(" goes with the arm \"") + arm->name + '"' : " has no contents");
        });
    }

    void readMember(const Type& type, const Member& member, const Json& json, std::byte* at)
    {
        forMember(type, member, json, [&](const Json& found) { value(member.use, found, shifted(at, member.offset)); });
    }

    // Calls `action` with the JSON value of the member; reports a missing one.
    template <class Action>
    void forMember(const Type& type, const Member& member, const Json& json, Action action)
    {
        const auto found = json.find(member.name);
        if (found == json.end())
            return report(std::string("the field \"") + member.name + "\" of " + type.name + " is missing");
        within(member.name, [&] { action(*found); });
    }

    // Reports each field whose name is not among `names`. `sentence` makes the message from the name.
    template <class Sentence>
    void refuseOthers(const Json& json, const std::vector<std::string_view>& names, Sentence sentence)
    {
        for (const auto& [name, ignored] : json.items())
            if (std::ranges::find(names, name) == names.end()) within(name, [&, &n = name] { report(sentence(n)); });
    }

    // ---- Declarations ----------------------------------------------------------------------------------------------

    void value(const Use& use, const Json& json, std::byte* at)
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
            if (!json.is_null()) value(*use.type, json, allocate(at, use.type->size));
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
    void readElements(const Type& type, std::size_t least, std::size_t most, const Json& json, Place place)
    {
        const auto wanted = "an array of " + amount(least, most) + ' ' + type.name;
        if (!json.is_array()) return unexpected(wanted, json);
        if (json.size() < least || json.size() > most)
            return report("expected " + wanted + ", found " + std::to_string(json.size()));
        std::byte* at = place(json.size());
        for (std::size_t i = 0; i < json.size(); ++i)
            within(i, [&] { value(type, json[i], shifted(at, i * type.size)); });
    }

    // "at most 6", "exactly 3"
    static std::string amount(std::size_t least, std::size_t most)
    {
        return (least == most ? "exactly " : "at most ") + std::to_string(most);
    }

    void readString(const Use& use, const Json& json, std::byte* at)
    {
        if (json.is_null()) return;
        std::string text;
        if (json.is_string()) {
            text = json.get_ref<const std::string&>();
        } else if (const auto bytes = wrappedBytes(json)) {
            text.assign(bytes->begin(), bytes->end());
        } else {
            return unexpected("a string, {\"hex\": \"...\"} or null", json);
        }
        if (text.size() > use.bound)
            return report("expected a string of at most " + std::to_string(use.bound) + " bytes, found " +
                          std::to_string(text.size()));
        if (text.find('\0') != std::string::npos) return report("a string cannot hold a zero byte");
        copy(bytesOf(text), allocate(at, text.size() + 1));
    }

    std::optional<Bytes> bytesIn(const Json& json, std::size_t least, std::size_t most)
    {
        auto bytes = wrappedBytes(json);
        if (!bytes) {
            unexpected("{\"hex\": \"...\"} or {\"text\": \"...\"}", json);
        } else if (bytes->size() < least || bytes->size() > most) {
            report("expected " + amount(least, most) + " bytes, found " + std::to_string(bytes->size()));
            bytes.reset();
        }
        return bytes;
    }

    // The bytes of {"hex": "..."} or {"text": "..."}; nullopt if the value has neither form.
    static std::optional<Bytes> wrappedBytes(const Json& json)
    {
        if (!json.is_object() || json.size() != 1 || !json.front().is_string()) return std::nullopt;
        const auto& contents = json.front().get_ref<const std::string&>();
        if (json.contains("hex")) return bytesOfDigits(contents);
        if (json.contains("text")) return Bytes(contents.begin(), contents.end());
        return std::nullopt;
    }

    std::vector<Token> tokens;
};

// Refuses what the parser accepts: fields given twice, and values that nest too deeply. A callback of the parser.
class ParseGuard {
public:
    bool operator()(int, Json::parse_event_t event, Json& parsed)
    {
        switch (event) {
        case Json::parse_event_t::object_start:
        case Json::parse_event_t::array_start:
            open.push_back({event == Json::parse_event_t::array_start, 0, {}, {}});
            if (open.size() > 2 * deepestNesting)
                throw JsonError(std::vector{JsonError::Entry{"", "values are nested too deeply"}});
            break;
        case Json::parse_event_t::object_end:
        case Json::parse_event_t::array_end:
            open.pop_back();
            countElement();
            break;
        case Json::parse_event_t::key:
            open.back().name = parsed.get<std::string>();
            if (!open.back().seen.insert(open.back().name).second)
                throw JsonError(std::vector{JsonError::Entry{path(), "the field is given twice"}});
            break;
        case Json::parse_event_t::value: countElement(); break;
        }
        return true;
    }

private:
    struct Level {
        bool isArray;
        std::size_t index;
        std::string name;
        std::set<std::string> seen;
    };

    void countElement()
    {
        if (!open.empty() && open.back().isArray) ++open.back().index;
    }

    std::string path() const
    {
        std::string text;
        for (const Level& level : open) text += '/' + (level.isArray ? std::to_string(level.index) : level.name);
        return text;
    }

    std::vector<Level> open;
};

std::string joined(const std::vector<JsonError::Entry>& errors)
{
    std::string text;
    for (const JsonError::Entry& error : errors) {
        if (!text.empty()) text += '\n';
        if (!error.path.empty()) text += error.path + ": ";
        text += error.sentence;
    }
    return text;
}

// The message of the parser without its number and place: InputError has line and column.
std::string plainSentence(std::string what)
{
    const std::size_t column = what.find("column ");
    const std::size_t colon = column == std::string::npos ? column : what.find(": ", column);
    return "not JSON: " + (colon == std::string::npos ? what : what.substr(colon + 2));
}

}  // namespace

JsonError::JsonError(std::vector<Entry> found) : std::runtime_error(joined(found)), errors(std::move(found)) {}

Json toJson(const Type& type, const void* object)
{
    return Writer().value(type, static_cast<const std::byte*>(object));
}

Object fromJson(const Type& type, const Json& json)
{
    Reader reader;
    reader.value(type, json, nullptr);
    if (!reader.errors.empty()) throw JsonError(std::move(reader.errors));
    Object object(type);
    reader.value(type, json, object.data());
    return object;
}

Json parseJson(std::string_view text)
{
    try {
        return Json::parse(text, ParseGuard());
    } catch (const Json::parse_error& error) {
        throw InputError::at(text, error.byte > 0 ? error.byte - 1 : 0, plainSentence(error.what()));
    } catch (const Json::out_of_range& error) {
        throw InputError::at(text, text.size(), "not JSON: " + std::string(error.what()));
    }
}

}  // namespace quorva::inspect
