// How a measurement is registered, and how the program gives up.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace quorva::bench {

[[noreturn, gnu::format(printf, 1, 2)]] inline void die(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::fputs("bench: ", stderr);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    std::exit(1);
}

// Registers a measurement of `action`, which returns the bytes that it coded, after one run to see that it codes
// `length` of them. The report gets the `counters`, by name.
template <class Action>
void measure(const std::string& name, std::size_t length, Action action,
             std::initializer_list<std::pair<const char*, double>> counters = {})
{
    const std::size_t done = action();
    if (done != length) die("%s coded %zu bytes of %zu", name.c_str(), done, length);
    std::vector<std::pair<std::string, double>> shown(counters.begin(), counters.end());
    shown.emplace_back("bytes", static_cast<double>(length));
    ::benchmark::RegisterBenchmark(name.c_str(), [action, shown](::benchmark::State& state) mutable {
        for (auto _ : state) ::benchmark::DoNotOptimize(action());
        for (const auto& [counter, value] : shown) state.counters[counter] = value;
    });
}

// A thousand messages of many types; arrays of one to thousands of numbers.
void measureMixed();
void measureFields();

}  // namespace quorva::bench
