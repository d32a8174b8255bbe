// Measures the codec, the hand-written code and libtirpc: for types of the library and for those of a separate module.

#include "library/tirpc.h"
#include "limit.h"
#include "measure.h"
#include "own/tirpc.h"

using namespace quorva;
using namespace quorva::bench;

namespace {

TraceText sink;
char text[65536];
std::size_t textLength;
std::string naiveText;

// Measures one traced pass of the codec, `codecPass`, and of its peers: `limitPass` moves the bytes and hands the
// object to what it is called with. Each peer has to write the codec's text.
template <class CodecPass, class LimitPass>
void measureTrace(const std::string& name, std::size_t length, bool decoding, CodecPass codecPass, LimitPass limitPass)
{
    measure(name + "/codec", length, codecPass);
    measure(name + "/limit", length, [limitPass, decoding] {
        return limitPass([&](const auto& value) { textLength = limit::trace(value, decoding, text, sizeof text); });
    });
    if (sink.text() != std::string_view(text, textLength)) die(name + "/limit writes another trace than the codec");
    measure(name + "/naive", length, [limitPass, decoding] {
        naiveText.clear();
        return limitPass([&](const auto& value) { naive::trace(value, decoding, naiveText); });
    });
    if (sink.text() != naiveText) die(name + "/naive writes another trace than the codec");
}

template <class T>
void measureMessage(const std::string& set, const std::string& message, T& object, XdrRoutine routine)
{
    auto& wire = measureCodec(set, message, object, routine, tirpcOf(object));
    const auto encodeByLimit = [&object] { return limit::encode(object, out, longest); };
    const auto decodeByLimit = [&wire](auto use) { return limit::decodePass<T>(wire.data(), wire.size(), use); };
    measureEncode(set + "/encode/" + message + "/limit", wire, encodeByLimit);
    measure(set + "/decode/" + message + "/limit", wire.size(),
            [decodeByLimit] { return decodeByLimit([](const T&) {}); });

    measureTrace(
        set + "/trace-encode/" + message, wire.size(), false,
        [routine, &object] { return encodePass(routine, object, out, traced(sink)); },
        [encodeByLimit, &object](auto use) {
            const std::size_t written = encodeByLimit();
            use(object);
            return written;
        });
    measureTrace(
        set + "/trace-decode/" + message, wire.size(), true,
        [routine, &wire] { return decodePass<T>(routine, wire.data(), wire.size(), traced(sink)); }, decodeByLimit);
}

template <class Messages>
void measureSet(const std::string& set)
{
    static Messages messages;
    messages.each(
        [&set](const char* name, auto& object, XdrRoutine routine) { measureMessage(set, name, object, routine); });
}

}  // namespace

int main(int count, char** arguments)
{
    measureSet<library::Messages>("library");
    measureSet<own::Messages>("own");
    return run(count, arguments);
}
