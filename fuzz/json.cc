// Any text, read as the JSON form of any type: an accepted text makes an object that encodes unless the inspector gives
// a reason, and that survives the round trips through the wire and through JSON.

#include "inspect/json.h"
#include <quorvapixdr/explain.h>
#include "inspect/input.h"
#include "mutate.h"

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
    inspect::Object object = inspect::fromJson(type, inspect::parseJson(text));
    Bytes message = encoded(object);
    if (message.empty()) return;
    const std::string json = inspect::toJson(type, object.data()).dump();
    inspect::Object decoded(type);
    const Pass pass = runPass(Mode::decode, type.routine, decoded.data(), message);
    if (!pass.succeeded || pass.length != message.size())
        throw Finding{std::string(type.name) + ": the object's own message is refused"};
    if (inspect::toJson(type, decoded.data()).dump() != json)
        throw Finding{std::string(type.name) + ": the message does not keep " + json};
    inspect::Object again = inspect::fromJson(type, inspect::parseJson(json));
    if (encoded(again) != message) throw Finding{std::string(type.name) + ": JSON does not keep " + json};
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
                                      "\"\xC3\xA4\"",
                                      "[[[[[[[["};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const Input input = Input::of({data, size});
        try {
            checkRoundTrips(*input.type, {reinterpret_cast<const char*>(input.contents.data()), input.contents.size()});
        } catch (const inspect::JsonError& error) {
            if (error.errors.empty()) throw Finding{"refused without a reason"};
        } catch (const inspect::InputError&) {
        } catch (const inspect::Refusal&) {
        }
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
    const std::string text = inspect::toJson(type, object.data()).dump();
    return store(Input{&type, 0, {reinterpret_cast<const unsigned char*>(text.data()), text.size()}}.bytes(), data,
                 most);
}
