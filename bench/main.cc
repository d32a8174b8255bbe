// Measures encoding and decoding of the messages by the library and by its peers, in one process.

#include "limit.h"
#include "messages.h"
#include "tirpc_peer.h"

#include <Xdr.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <vector>

using namespace quorva;
using namespace quorva::bench;

namespace {

template <class... Arguments>
[[noreturn]] void die(const char* format, Arguments... arguments)
{
    std::fprintf(stderr, "bench: ");
    std::fprintf(stderr, format, arguments...);
    std::fputc('\n', stderr);
    std::exit(1);
}

std::size_t libraryEncode(XdrRoutine routine, void* object, unsigned char* buffer)
{
    Xdr xdrs;
    xdrs.Program(Xdr::encode, buffer, longest);
    return routine(&xdrs, object) ? xdrs.codedLength : 0;
}

// Decode and free, as a caller of the routines does.
template <class T>
std::size_t libraryDecode(XdrRoutine routine, const std::vector<unsigned char>& wire)
{
    T value = {};
    Xdr xdrs;
    auto* const buffer = const_cast<unsigned char*>(wire.data());
    xdrs.Program(Xdr::decode, buffer, static_cast<unsigned short>(wire.size()));
    const std::size_t length = routine(&xdrs, &value) ? xdrs.codedLength : 0;
    Xdr freeing;
    freeing.Program(Xdr::release, nullptr, 0);
    routine(&freeing, &value);
    return length;
}

// Registers a measurement of `action`, which returns the bytes that it coded, and runs it once to see that it does.
template <class Action>
void measure(const std::string& name, std::size_t length, Action action)
{
    const std::size_t done = action();
    if (done != length) die("%s coded %zu bytes of %zu", name.c_str(), done, length);
    ::benchmark::RegisterBenchmark(name.c_str(), [action](::benchmark::State& state) {
        for (auto _ : state) ::benchmark::DoNotOptimize(action());
    });
}

unsigned char out[longest];

void same(const std::string& peer, const std::vector<unsigned char>& wire)
{
    if (std::memcmp(out, wire.data(), wire.size()) != 0) die("%s writes other bytes than the library", peer.c_str());
    std::memset(out, 0xA5, sizeof out);
}

template <class T>
void measureMessage(const std::string& name, T& object, XdrRoutine routine, TirpcType tirpc)
{
    static std::deque<std::vector<unsigned char>> wires;
    const std::vector<unsigned char>& wire = wires.emplace_back(out, out + libraryEncode(routine, &object, out));
    const std::size_t length = wire.size();
    if (length == 0) die("the library does not encode %s", name.c_str());
    std::printf("%s: %zu bytes\n", name.c_str(), length);

    measure("encode/" + name + "/quorva", length, [&object, routine] { return libraryEncode(routine, &object, out); });
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

    measure("decode/" + name + "/quorva", length, [routine, &wire] { return libraryDecode<T>(routine, wire); });
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
}

}  // namespace

int main(int count, char** arguments)
{
    static Messages messages;
    measureMessage("S", messages.small, XdrJobAttNotifyParams, tirpcSmall);
    measureMessage("T", messages.typical, XdrJobAVPSeq, tirpcAttributes);
    measureMessage("L", messages.many, XdrJobAVPSeq, tirpcAttributes);
    measureMessage("B", messages.numbers, XdrAttributeSeq, tirpcNumbers);

    ::benchmark::Initialize(&count, arguments);
    if (::benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    ::benchmark::RunSpecifiedBenchmarks();
}
