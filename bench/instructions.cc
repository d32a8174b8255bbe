// Runs the library's measured passes for a tool that counts instructions.
//
//     instructions              every case a few times; what counts stands between two calls of passBoundary()
//     instructions CASE COUNT   one case, say trace-decode/T, that many times: for profiles

#include "passes.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace quorva::bench;

// Where the tool takes stock: it knows the function by its name.
extern "C" [[gnu::noinline]] void passBoundary()
{
    asm volatile("");
}

namespace {

constexpr unsigned long firstRuns = 3;  // they bind symbols and fill the allocator's caches
constexpr unsigned long countedRuns = 20;

enum class Pass { encode, decode, traceEncode, traceDecode, none };

Pass passOf(std::string_view name)
{
    return name == "encode"         ? Pass::encode
           : name == "decode"       ? Pass::decode
           : name == "trace-encode" ? Pass::traceEncode
           : name == "trace-decode" ? Pass::traceDecode
                                    : Pass::none;
}

template <class T>
std::size_t once(Pass pass, T& object, XdrRoutine routine, unsigned char* wire, std::size_t length, TraceText& sink)
{
    switch (pass) {
    case Pass::encode: return encodePass(routine, object, wire);
    case Pass::decode: return decodePass<T>(routine, wire, length);
    case Pass::traceEncode: return encodePass(routine, object, wire, &sink);
    case Pass::traceDecode: return decodePass<T>(routine, wire, length, &sink);
    case Pass::none: break;
    }
    return 0;
}

template <class T>
bool run(Pass pass, T& object, XdrRoutine routine, unsigned long before, unsigned long times)
{
    unsigned char wire[longest];
    const std::size_t length = encodePass(routine, object, wire);
    TraceText sink;
    std::size_t done = 0;
    for (unsigned long i = 0; i < before; ++i) done += once(pass, object, routine, wire, length, sink);
    passBoundary();
    for (unsigned long i = 0; i < times; ++i) done += once(pass, object, routine, wire, length, sink);
    passBoundary();
    return length != 0 && done == (before + times) * length;
}

bool runCase(std::string_view name, unsigned long before, unsigned long times)
{
    static Messages messages;
    const Pass pass = passOf(name.substr(0, name.find('/')));
    switch (name.back()) {
    case 'S': return run(pass, messages.small, XdrJobAttNotifyParams, before, times);
    case 'T': return run(pass, messages.typical, XdrJobAVPSeq, before, times);
    case 'L': return run(pass, messages.many, XdrJobAVPSeq, before, times);
    case 'B': return run(pass, messages.numbers, XdrAttributeSeq, before, times);
    default: return false;
    }
}

constexpr const char* cases[] = {"encode/S",       "encode/T",       "encode/L",       "encode/B",
                                 "decode/S",       "decode/T",       "decode/L",       "decode/B",
                                 "trace-encode/S", "trace-encode/T", "trace-encode/L", "trace-encode/B",
                                 "trace-decode/S", "trace-decode/T", "trace-decode/L", "trace-decode/B"};

bool good(bool ran, const char* name)
{
    if (!ran) std::fprintf(stderr, "instructions: %s did not code all bytes\n", name);
    return ran;
}

}  // namespace

int main(int count, char** arguments)
{
    if (count == 1) {
        std::printf("%lu passes of each\n", countedRuns);
        for (const char* name : cases) {
            if (!good(runCase(name, firstRuns, countedRuns), name)) return 1;
            std::puts(name);
        }
        return 0;
    }
    if (count == 3)
        return good(runCase(arguments[1], 0, std::strtoul(arguments[2], nullptr, 10)), arguments[1]) ? 0 : 1;
    std::fprintf(stderr, "usage: instructions [CASE COUNT]\n");
    return 2;
}
