// Registers measurements. A measurement that cannot be made ends the program.
#pragma once

#include "passes.h"
#include "tirpc.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

namespace quorva::bench {

// Prints the message and ends the program.
[[noreturn]] inline void die(const std::string& sentence)
{
    std::fprintf(stderr, "bench: %s\n", sentence.c_str());
    std::exit(1);
}

// Registers a measurement of `action`, which returns the number of bytes that it codes. Runs it once first: it must
// code `length` bytes.
template <class Action>
void measure(const std::string& name, std::size_t length, Action action)
{
    if (action() != length) die(name + " does not code all bytes");
    ::benchmark::RegisterBenchmark(name.c_str(), [action](::benchmark::State& state) mutable {
        for (auto _ : state) ::benchmark::DoNotOptimize(action());
    });
}

inline unsigned char out[longest];  // every encode pass writes here

// Registers a measurement of `action`, an encode pass to `out` that must write the bytes of `wire`.
template <class Action>
void measureEncode(const std::string& name, const std::vector<unsigned char>& wire, Action action)
{
    std::memset(out, 0xA5, sizeof out);
    measure(name, wire.size(), action);
    if (std::memcmp(out, wire.data(), wire.size()) != 0) die(name + " writes other bytes than the codec");
}

// Measures encode and decode of `object` by the codec and by libtirpc. The names of the measurements begin with `set`.
// Returns the message, which lives until the program ends.
template <class T, class P>
std::vector<unsigned char>& measureCodec(const std::string& set, const std::string& message, T& object,
                                         XdrRoutine routine, TirpcRoutine<P> tirpc)
{
    static std::deque<std::vector<unsigned char>> wires;
    static std::deque<P> peers;
    auto& wire = wires.emplace_back(out, out + encodePass(routine, object, out));
    auto& peer = peers.emplace_back();
    if (tirpcDecode(tirpc, peer, wire.data(), wire.size()) != wire.size())
        die("libtirpc does not decode " + set + " " + message);
    std::printf("%s %s: %zu bytes\n", set.c_str(), message.c_str(), wire.size());

    const std::string encode = set + "/encode/" + message;
    const std::string decode = set + "/decode/" + message;
    measureEncode(encode + "/codec", wire, [&object, routine] { return encodePass(routine, object, out); });
    measureEncode(encode + "/tirpc", wire, [&peer, tirpc] { return tirpcEncode(tirpc, peer, out, longest); });
    measure(decode + "/codec", wire.size(),
            [&wire, routine] { return decodePass<T>(routine, wire.data(), wire.size()); });
    measure(decode + "/tirpc", wire.size(), [&wire, tirpc] { return tirpcDecode(tirpc, wire.data(), wire.size()); });
    return wire;
}

// Runs the registered measurements as the arguments say. Returns the exit status of the program.
inline int run(int count, char** arguments)
{
    ::benchmark::Initialize(&count, arguments);
    if (::benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
    ::benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace quorva::bench
