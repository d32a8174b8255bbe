// Runs each measured pass under a tool that counts instructions.
//
//     instructions              every case a few times; passBoundary() is called before and after the counted passes
//     instructions CASE COUNT   one case, such as library/trace-decode/T, COUNT times: for profiles

#include "limit.h"
#include "passes.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

using namespace quorva;
using namespace quorva::bench;

// The tool finds this function by its name and writes its counts at each call.
extern "C" [[gnu::noinline]] void passBoundary()
{
    asm volatile("");
}

namespace {

constexpr unsigned long firstRuns = 3;  // bind symbols and fill the caches of the allocator
constexpr unsigned long countedRuns = 20;

unsigned char out[longest];
TraceText sink;
char text[65536];

struct Case {
    std::string name;
    std::size_t length;
    std::function<std::size_t(unsigned long)> run;  // returns the number of bytes coded in that many passes
};
std::vector<Case> cases;

template <class Action>
void add(const std::string& name, std::size_t length, Action action)
{
    cases.push_back({name, length, [action](unsigned long times) {
                         std::size_t done = 0;
                         while (times-- > 0) done += action();
                         return done;
                     }});
}

template <class T>
void addMessage(const std::string& set, const std::string& message, T& object, XdrRoutine routine)
{
    static std::deque<std::vector<unsigned char>> wires;
    auto& wire = wires.emplace_back(out, out + encodePass(routine, object, out));
    const auto addBoth = [&](const char* work, auto byCodec, auto byLimit) {
        add(set + "/" + work + "/" + message, wire.size(), byCodec);
        add(set + "/" + work + "/" + message + "/limit", wire.size(), byLimit);
    };
    addBoth(
        "encode", [&object, routine] { return encodePass(routine, object, out); },
        [&object] { return limit::encode(object, out, longest); });
    addBoth(
        "decode", [&wire, routine] { return decodePass<T>(routine, wire.data(), wire.size()); },
        [&wire] { return limit::decodePass<T>(wire.data(), wire.size(), [](const T&) {}); });
    addBoth(
        "trace-encode", [&object, routine] { return encodePass(routine, object, out, traced(sink)); },
        [&object] { return limit::trace(object, false, text, sizeof text) ? limit::encode(object, out, longest) : 0; });
    addBoth(
        "trace-decode", [&wire, routine] { return decodePass<T>(routine, wire.data(), wire.size(), traced(sink)); },
        [&wire] {
            return limit::decodePass<T>(wire.data(), wire.size(),
                                        [](const T& value) { limit::trace(value, true, text, sizeof text); });
        });
}

template <class Messages>
void addSet(const std::string& set)
{
    static Messages messages;
    messages.each(
        [&set](const char* name, auto& object, XdrRoutine routine) { addMessage(set, name, object, routine); });
}

bool run(const Case& one, unsigned long before, unsigned long times)
{
    std::size_t done = one.run(before);
    passBoundary();
    done += one.run(times);
    passBoundary();
    if (one.length != 0 && done == (before + times) * one.length) return true;
    std::fprintf(stderr, "instructions: %s did not code all bytes\n", one.name.c_str());
    return false;
}

}  // namespace

int main(int count, char** arguments)
{
    addSet<library::Messages>("library");
    addSet<own::Messages>("own");
    if (count == 1) {
        std::printf("%lu passes of each\n", countedRuns);
        for (const Case& one : cases) {
            if (!run(one, firstRuns, countedRuns)) return 1;
            std::puts(one.name.c_str());
        }
        return 0;
    }
    if (count == 3)
        for (const Case& one : cases)
            if (one.name == arguments[1]) return run(one, 0, std::strtoul(arguments[2], nullptr, 10)) ? 0 : 1;
    std::fprintf(stderr, "usage: instructions [CASE COUNT]\n");
    return 2;
}
