// Measures encoding and decoding of the messages by the library and by its peers, in one process.

#include "limit.h"
#include "measure.h"
#include "passes.h"
#include "peers/formats.h"
#include "tirpc_peer.h"
#include "traces.h"

#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using namespace quorva;
using namespace quorva::bench;

namespace {

unsigned char out[longest];
TraceText sink;
char text[65536];
std::string naiveText;

void same(const std::string& peer, const std::vector<unsigned char>& wire)
{
    if (std::memcmp(out, wire.data(), wire.size()) != 0) die("%s writes other bytes than the library", peer.c_str());
    std::memset(out, 0xA5, sizeof out);
}

void sameText(const std::string& name, std::string_view theirs)
{
    if (theirs != std::string(sink.text())) die("%s writes another trace than the library", name.c_str());
}

// The traces of one direction. `limitPass` is the hand-written pass that moves the bytes; it hands the object to
// `then`.
template <class LimitPass>
void measureTraces(const std::string& direction, const std::string& name, std::size_t length, bool decoding,
                   std::function<std::size_t()> libraryPass, LimitPass limitPass)
{
    const std::string prefix = "trace-" + direction + "/" + name + "/";
    measure(prefix + "quorva", length, libraryPass);
    std::size_t textLength = 0;
    const auto byLimit = [limitPass, decoding](std::size_t& written) {
        return limitPass([&](const auto& value) { written = limit::trace(value, decoding, text, sizeof text); });
    };
    const auto byNaive = [limitPass, decoding] {
        naiveText.clear();
        return limitPass([&](const auto& value) { naive::trace(value, decoding, naiveText); });
    };
    byLimit(textLength);
    sameText(prefix + "limit", {text, textLength});
    byNaive();
    sameText(prefix + "naive", naiveText);
    measure(prefix + "limit", length, [byLimit] {
        std::size_t written = 0;
        const std::size_t done = byLimit(written);
        ::benchmark::DoNotOptimize(written);
        return done;
    });
    measure(prefix + "naive", length, byNaive);
    std::printf("%s trace of %s: %zu characters\n", direction.c_str(), name.c_str(), textLength);
}

// Another format, whose bytes are its own.
void measureFormat(const std::string& peer, const std::string& name, std::unique_ptr<Format> made)
{
    static std::deque<std::unique_ptr<Format>> formats;
    Format& format = *formats.emplace_back(std::move(made));
    alignas(8) static unsigned char buffer[8 * longest];
    const std::size_t length = format.encode(buffer, sizeof buffer);
    if (length == 0) die("%s does not encode %s", peer.c_str(), name.c_str());
    struct alignas(8) Words {
        unsigned char bytes[8 * longest];
    };
    static std::deque<Words> messages;
    Words& message = messages.emplace_back();
    std::memcpy(message.bytes, buffer, length);
    if (!format.keeps(message.bytes, length)) die("%s decodes another %s", peer.c_str(), name.c_str());
    measure("encode/" + name + "/" + peer, length, [&format] { return format.encode(buffer, sizeof buffer); });
    measure("decode/" + name + "/" + peer, length,
            [&format, &message, length] { return format.decode(message.bytes, length) ? length : 0; });
}

template <class T>
void measureMessage(const std::string& name, T& object, XdrRoutine routine, TirpcType tirpc)
{
    static std::deque<std::vector<unsigned char>> wires;
    std::vector<unsigned char>& wire = wires.emplace_back(out, out + encodePass(routine, object, out));
    const std::size_t length = wire.size();
    if (length == 0) die("the library does not encode %s", name.c_str());
    std::printf("%s: %zu bytes\n", name.c_str(), length);

    measure("encode/" + name + "/quorva", length, [&object, routine] { return encodePass(routine, object, out); });
    same("the library", wire);
    measure("encode/" + name + "/limit", length, [&object] { return limit::encode(object, out, longest); });
    same("limit", wire);
    measure("encode/" + name + "/lanes", length, [&object] { return lanes::encode(object, out, longest); });
    same("lanes", wire);
    void* const theirs = tirpcObject(tirpc, wire.data(), static_cast<unsigned>(length));
    if (!theirs) die("libtirpc does not decode %s", name.c_str());
    measure("encode/" + name + "/tirpc", length,
            [theirs, tirpc]() -> std::size_t { return tirpcEncode(tirpc, theirs, out, longest); });
    same("libtirpc", wire);

    measure("decode/" + name + "/quorva", length,
            [routine, &wire] { return decodePass<T>(routine, wire.data(), wire.size()); });
    measure("decode/" + name + "/limit", length, [&wire] {
        T value = {};
        const std::size_t consumed = limit::decode(value, wire.data(), wire.size());
        limit::release(value);
        return consumed;
    });
    measure("decode/" + name + "/lanes", length, [&wire] {
        T value = {};
        const std::size_t consumed = lanes::decode(value, wire.data(), wire.size());
        lanes::release(value);
        return consumed;
    });
    measure("decode/" + name + "/tirpc", length, [tirpc, &wire]() -> std::size_t {
        return tirpcDecode(tirpc, wire.data(), static_cast<unsigned>(wire.size()));
    });

    measureFormat("protobuf", name, protobufFormat(object));
    measureFormat("flatbuffers", name, flatbuffersFormat(object));
    measureFormat("capnp", name, capnpFormat(object));

    measureTraces(
        "encode", name, length, false, [routine, &object] { return encodePass(routine, object, out, &sink); },
        [&object](auto then) {
            const std::size_t written = limit::encode(object, out, longest);
            then(object);
            return written;
        });
    measureTraces(
        "decode", name, length, true,
        [routine, &wire] { return decodePass<T>(routine, wire.data(), wire.size(), &sink); },
        [&wire](auto then) {
            T value = {};
            const std::size_t consumed = limit::decode(value, wire.data(), wire.size());
            then(value);
            limit::release(value);
            return consumed;
        });
}

}  // namespace

int main(int count, char** arguments)
{
    static Messages messages;
    measureMessage("S", messages.small, XdrJobAttNotifyParams, tirpcSmall);
    measureMessage("T", messages.typical, XdrJobAVPSeq, tirpcAttributes);
    measureMessage("L", messages.many, XdrJobAVPSeq, tirpcAttributes);
    measureMessage("B", messages.numbers, XdrAttributeSeq, tirpcNumbers);

    measureMixed();
    measureFields();

    ::benchmark::Initialize(&count, arguments);
    if (::benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    ::benchmark::RunSpecifiedBenchmarks();
}
