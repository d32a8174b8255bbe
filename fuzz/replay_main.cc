// Runs a driver over files and folders without libFuzzer, as an ordinary test, and over mutations of them with
// --mutate. An input that ends the program is written to fuzz-finding.bin.

#include "mutate.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed);

namespace fs = std::filesystem;
using namespace quorva;

namespace {

constexpr std::size_t longestInput = 4096;  // that is mutated, in bytes; a longer one is cut
std::uint64_t seed = 1;

const char* const usage = "usage: fuzz_DRIVER [--mutate N] [--seed S] FILE|FOLDER...\n";

Bytes running;  // the current input, kept if the program ends

// Runs the driver over a copy in storage of just its size, so that the address sanitizer sees an overrun.
void run(std::span<const unsigned char> input)
{
    running.assign(input.begin(), input.end());
    const auto copy = std::make_unique<unsigned char[]>(input.size());
    std::copy(input.begin(), input.end(), copy.get());
    LLVMFuzzerTestOneInput(copy.get(), input.size());
}

}  // namespace

// Inserts, removes or changes a byte.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most)
{
    static fuzz::Chance chance(seed);
    const std::size_t at = size == 0 ? 0 : chance.below(size);
    if (size == 0 || (size < most && chance.oneIn(3))) {
        std::memmove(data + at + 1, data + at, size - at);
        data[at] = static_cast<std::uint8_t>(chance.next());
        return size + 1;
    }
    if (chance.oneIn(3)) {
        std::memmove(data + at, data + at + 1, size - at - 1);
        return size - 1;
    }
    data[at] = static_cast<std::uint8_t>(chance.oneIn(2) ? data[at] ^ 1u << chance.below(8) : chance.next());
    return size;
}

int main(int count, char** words)
{
    std::uint64_t mutations = 0;
    std::vector<fs::path> files;
    for (int i = 1; i < count; ++i) {
        const std::string_view word = words[i];
        std::uint64_t* const number = word == "--mutate" ? &mutations : word == "--seed" ? &seed : nullptr;
        if (number && i + 1 < count) {
            const char* const text = words[++i];
            const char* const end = text + std::strlen(text);
            if (std::from_chars(text, end, *number).ptr == end) continue;
        } else if (!number && fs::is_directory(word)) {
            for (const auto& entry : fs::recursive_directory_iterator(word))
                if (entry.is_regular_file()) files.push_back(entry.path());
            continue;
        } else if (!number && fs::exists(word)) {
            files.emplace_back(word);
            continue;
        }
        std::fputs(usage, stderr);
        return 2;
    }
    std::ranges::sort(files);

    std::vector<Bytes> inputs;
    for (const fs::path& path : files) {
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        if (!file) std::fprintf(stderr, "cannot read %s\n", path.c_str());
        if (!file) return 2;
    }
    fuzz::onCrash([] { fuzz::keepInput("fuzz-finding.bin", running); });
    for (const Bytes& input : inputs) run(input);
    fuzz::Chance chance(seed);
    for (std::uint64_t i = 0; i < mutations && !inputs.empty(); ++i) {
        Bytes input = inputs[chance.below(inputs.size())];
        std::size_t size = std::min(input.size(), longestInput);
        input.resize(longestInput);
        for (std::size_t k = 1 + chance.below(4); k > 0; --k)
            size = LLVMFuzzerCustomMutator(input.data(), size, longestInput, static_cast<unsigned>(chance.next()));
        input.resize(size);
        run(input);
    }
    std::printf("%zu inputs and %llu mutations, no finding\n", inputs.size(),
                static_cast<unsigned long long>(mutations));
    return inputs.empty() ? 1 : 0;
}
