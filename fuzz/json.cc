// Any text, read as the JSON form of any type: an accepted text makes an object that encodes unless the inspector gives
// a reason, and that survives the round trips through the wire and through JSON. A refused text has errors at places
// within it; it is not JSON for the JSON library either.

#include "inspect/json.h"
#include <quorvapixdr/explain.h>
#include "inspect/input.h"
#include "mutate.h"
#include "support/text.h"

#include <tuple>

using namespace quorva;
using namespace quorva::fuzz;

namespace {

Bytes encoded(inspect::Object& object)
{
    Bytes message(longestMessage);
    const Pass pass = runPass(Mode::encode, object.type().routine, object.data(), message);
    message.resize(pass.length);
    if (pass.succeeded == explain(object.type(), object.data(), longestMessage).has_value())
        throw Finding{std::string(object.type().name) +
                      ": the pass and the inspector disagree whether the object encodes"};
    if (!pass.succeeded) message.clear();
    return message;
}

void checkRoundTrips(const Type& type, std::string_view text)
{
    inspect::Object object = inspect::fromJson(type, text);
    Bytes message = encoded(object);
    if (message.empty()) return;
    const std::string json = inspect::objectJson(type, object.data()).dump();
    inspect::Object decoded(type);
    const Pass pass = runPass(Mode::decode, type.routine, decoded.data(), message);
    if (!pass.succeeded || pass.length != message.size())
        throw Finding{std::string(type.name) + ": the object's own message is refused"};
    if (inspect::objectJson(type, decoded.data()).dump() != json)
        throw Finding{std::string(type.name) + ": the message does not keep " + json};
    inspect::Object again = inspect::fromJson(type, json);
    if (encoded(again) != message) throw Finding{std::string(type.name) + ": JSON does not keep " + json};
}

// The text from this line and column on. Throws Finding if the text has no such place.
std::string_view textFrom(std::string_view text, std::size_t line, std::size_t column)
{
    const std::vector<std::string_view> lines = support::linesOf(text);
    if (line < 1 || line > lines.size() || column < 1 || column > lines[line - 1].size() + 1)
        throw Finding{"the error's place " + std::to_string(line) + ':' + std::to_string(column) +
                      " is outside of the text"};
    return lines[line - 1].substr(column - 1);
}

// Checks that each error is at a value or a name of the text, and that its path is a JSON Pointer.
void checkErrors(std::string_view text, const JsonError& found)
{
    if (found.errors().empty()) throw Finding{"refused without a reason"};
    for (const JsonError::Entry& error : found.errors()) {
        if (textFrom(text, error.line, error.column).find_first_of("{[\"-0123456789tfn") != 0)
            throw Finding{"the error is not at a value: " + error.text()};
        try {
            inspect::Json::json_pointer{error.path};
        } catch (const inspect::Json::exception&) {
            throw Finding{"not a JSON Pointer: " + error.path};
        }
    }
}

// Checks that the JSON library has the same opinion. It takes a text to end at a zero byte, and refuses numbers beyond
// the largest double before it reads the rest of the text.
void checkIsJson(std::string_view text, bool accepted)
{
    if (text.find('\0') != std::string_view::npos) return;
    bool isJson = true;
    try {
        std::ignore = inspect::Json::parse(text);
    } catch (const inspect::Json::parse_error&) {
        isJson = false;
    } catch (const inspect::Json::out_of_range&) {
        return;
    }
    if (isJson != accepted) throw Finding{"the JSON library disagrees whether the text is JSON"};
}

void checkText(const Type& type, std::string_view text)
{
    try {
        checkRoundTrips(type, text);
    } catch (const JsonError& error) {
        if (error.isMalformed()) {
            const JsonError::Entry& found = error.errors().front();
            textFrom(text, found.line, found.column);
            if (found.sentence.starts_with("not JSON: ")) checkIsJson(text, false);
            return;
        }
        checkErrors(text, error);
    } catch (const inspect::Refusal&) {
    }
    checkIsJson(text, true);
}

constexpr std::string_view words[] = {"null",
                                      "true",
                                      "false",
                                      "0",
                                      "-1",
                                      "255",
                                      "65535",
                                      "65536",
                                      "-32769",
                                      "4294967295",
                                      "4294967296",
                                      "1e400",
                                      "-0.0",
                                      "1.5e-45",
                                      "[",
                                      "]",
                                      "{",
                                      "}",
                                      ",",
                                      ":",
                                      "{}",
                                      "[]",
                                      "\"\"",
                                      "{\"hex\":\"\"}",
                                      "{\"text\":\"A\"}",
                                      "{\"bits\":\"7fc00001\"}",
                                      "\"\\u0000\"",
                                      "\"\\ud800\"",
                                      "\\udc00",
                                      "\\",
                                      "01",
                                      "\n",
                                      "\"\xC3\xA4\"",
                                      "[[[[[[[["};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const Input input = Input::of({data, size});
        checkText(*input.type, {reinterpret_cast<const char*>(input.contents.data()), input.contents.size()});
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    static inspect::Sampler sampler;
    Chance chance(seed);
    if (size > Input::headSize && most > Input::headSize && !chance.oneIn(16))
        return Input::headSize + mutateText(data + Input::headSize, size - Input::headSize, most - Input::headSize,
                                            static_cast<unsigned>(chance.next()), words);
    const Type& type = *allTypes()[chance.below(allTypes().size())];
    Bytes message = generate(sampler, type, chance).message;
    inspect::Object object(type);
    runPass(Mode::decode, type.routine, object.data(), message);
    const std::string text = inspect::objectJson(type, object.data()).dump();
    return store(Input{&type, 0, {reinterpret_cast<const unsigned char*>(text.data()), text.size()}}.bytes(), data,
                 most);
}
