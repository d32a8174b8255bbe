// A random soak: generates messages of every type, damages most of them, and checks the properties of each. Without
// libFuzzer's coverage it runs many more messages a second.

#include "damage.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

using namespace quorva;
using namespace quorva::fuzz;

namespace {

const char* const usage =
    "usage: fuzz_soak [--each N] [--seed S] [--types FIRST-LAST] [--per-type]\n"
    "\n"
    "Runs N messages (default 1000) of every type, or of the types FIRST to LAST, numbered by name from 0.\n"
    "A message that breaks a property is written to soak-finding.bin, an input of fuzz_decode and fuzz_reencode.\n"
    "  --per-type  print a line for each type\n";

struct Settings {
    std::uint64_t each = 1000;
    std::uint64_t seed = 1;
    std::size_t first = 0;
    std::size_t last = allTypes().size() - 1;
    bool perType = false;
};

struct Tally {
    std::uint64_t executions = 0;
    std::uint64_t accepted = 0;
};

// The input that is running, for reportCrash().
struct {
    const Type* type = nullptr;
    std::uint8_t variant = 0;
    Bytes message;
} current;

void reportCrash()
{
    const Type* const type = std::exchange(current.type, nullptr);
    if (!type) return;
    std::fprintf(stderr, "type %s, variant %u, %zu bytes\n", type->name, static_cast<unsigned>(current.variant),
                 current.message.size());
    keepInput("soak-finding.bin", Input{type, current.variant, current.message}.bytes());
}

// Damaged messages derive from a well-formed one, and take over parts of the well-formed one before it.
Tally soak(const Type& type, const Settings& settings)
{
    // The largest block that a pass may allocate, in bytes. An array of 65535 elements costs as much as thousands of
    // small messages, so that most executions have no memory for one.
    constexpr std::size_t usualBlock = std::size_t{256} << 10, largestBlock = std::size_t{16} << 20;
    // One execution in so many: begins with a new well-formed message; compares interpreter and plain functions, or
    // runs out of memory; asks the inspector, which costs as much as hundreds of passes.
    constexpr std::uint64_t fromOne = 128, rarely = 16, seldom = 256;

    inspect::Sampler sampler;
    Subject subject(type);
    Chance chance(settings.seed ^ std::uint64_t{keyOf(type)} << 32);
    Tally tally;
    Generated base, before;
    current.type = &type;
    for (std::uint64_t i = 0; i < settings.each; ++i, ++tally.executions) {
        if (i % fromOne == 0) {
            before = std::exchange(base, generate(sampler, type, chance));
            if (before.message.empty()) before = base;
        }
        Bytes& message = current.message;
        message.assign(base.message.begin(), base.message.end());
        for (std::size_t k = i % fromOne == 2 ? 0 : 1 + chance.below(3); k > 0; --k)
            damage(message, base.control, before.message, chance);
        current.variant = i % rarely == 1 ? static_cast<std::uint8_t>(128 + chance.below(8)) : 0;

        if (i % seldom < 2) subject.refuseBlocksAbove(i % seldom == 0 ? largestBlock : usualBlock);

        bool accepted;
        if (i % rarely == 0)
            accepted = subject.decodeBothWays(message).succeeded;
        else if (i % rarely == 1)
            accepted = subject.decodeBothWays(message, current.variant - 128).succeeded;
        else
            accepted = subject.roundTrips(message);
        if (i % seldom == 5) subject.agreesWithInspector(message);
        if (i % rarely == 6 && !message.empty()) subject.encodeInto(chance.below(message.size()), message);
        tally.accepted += accepted;
    }
    current.type = nullptr;
    return tally;
}

bool readNumber(const char*& text, std::uint64_t& number)
{
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), number);
    text = end;
    return error == std::errc();
}

bool readSettings(int count, char** words, Settings& settings)
{
    for (int i = 1; i < count; ++i) {
        const std::string_view word = words[i];
        if (word == "--per-type") {
            settings.perType = true;
            continue;
        }
        if (i + 1 == count) return false;
        const char* text = words[++i];
        if (word == "--types") {
            std::uint64_t first, last;
            if (!readNumber(text, first) || *text++ != '-' || !readNumber(text, last) || first > last) return false;
            settings.first = first;
            settings.last = std::min<std::size_t>(last, settings.last);
        } else if (std::uint64_t* const number = word == "--each"   ? &settings.each
                                                 : word == "--seed" ? &settings.seed
                                                                    : nullptr) {
            if (!readNumber(text, *number)) return false;
        } else {
            return false;
        }
        if (*text != '\0') return false;
    }
    return true;
}

}  // namespace

int main(int count, char** words)
{
    Settings settings;
    if (!readSettings(count, words, settings)) {
        std::fputs(usage, stderr);
        return 2;
    }
    onCrash(reportCrash);

    const auto begin = std::chrono::steady_clock::now();
    std::uint64_t executions = 0, accepted = 0, fewest = UINT64_MAX, most = 0;
    std::size_t types = 0;
    for (std::size_t i = settings.first; i <= settings.last && i < allTypes().size(); ++i) {
        const Type& type = *allTypes()[i];
        try {
            const Tally tally = soak(type, settings);
            executions += tally.executions;
            accepted += tally.accepted;
            fewest = std::min(fewest, tally.executions);
            most = std::max(most, tally.executions);
            ++types;
            if (settings.perType)
                std::printf("%4zu %-48s %10llu executions, %10llu accepted\n", i, type.name,
                            static_cast<unsigned long long>(tally.executions),
                            static_cast<unsigned long long>(tally.accepted));
        } catch (const Finding& finding) {
            std::fprintf(stderr, "FINDING with seed %llu: %s\n", static_cast<unsigned long long>(settings.seed),
                         finding.what.c_str());
            reportCrash();
            return 1;
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    std::printf(
        "%llu executions over %zu types, %llu to %llu each, %.1f %% accepted, %.0f s, %.0f a second, no finding\n",
        static_cast<unsigned long long>(executions), types, static_cast<unsigned long long>(fewest),
        static_cast<unsigned long long>(most), 100.0 * static_cast<double>(accepted) / static_cast<double>(executions),
        seconds, static_cast<double>(executions) / seconds);
    return types > 0 ? 0 : 2;
}
