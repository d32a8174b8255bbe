// The mutators.

#include "mutate.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace quorva::fuzz {

namespace {

std::ptrdiff_t offset(std::size_t at)
{
    return static_cast<std::ptrdiff_t>(at);
}

}  // namespace

std::size_t store(std::span<const unsigned char> bytes, unsigned char* data, std::size_t most)
{
    const std::size_t size = std::min(bytes.size(), most);
    if (size > 0) std::memcpy(data, bytes.data(), size);
    return size;
}

std::size_t mutateMessage(unsigned char* data, std::size_t size, std::size_t most, unsigned seed)
{
    static inspect::Sampler sampler;
    Chance chance(seed);
    Input input = Input::of({data, size});
    Bytes message(input.contents.begin(), input.contents.end());
    const std::size_t choice = chance.below(16);
    if (choice == 0) input.type = allTypes()[chance.below(allTypes().size())];
    if (choice == 1) input.variant = static_cast<std::uint8_t>(chance.next());
    if (choice <= 2 && !(choice == 1 && size > Input::headSize)) {
        message = generate(sampler, *input.type, chance).message;
    } else if (choice <= 6 && most > Input::headSize) {
        message.resize(std::max(message.size(), most - Input::headSize));
        message.resize(LLVMFuzzerMutate(message.data(), input.contents.size(), most - Input::headSize));
    } else {
        const Bytes other = generate(sampler, *input.type, chance).message;
        for (std::size_t i = 1 + chance.below(3); i > 0; --i)
            damage(message, controlUnits(*input.type, message), other, chance);
    }
    input.contents = message;
    return store(input.bytes(), data, most);
}

std::size_t mutateText(unsigned char* data, std::size_t size, std::size_t most, unsigned seed,
                       std::span<const std::string_view> words)
{
    Chance chance(seed);
    if (size == 0 || chance.oneIn(3)) return LLVMFuzzerMutate(data, size, most);

    const auto isWord = [](unsigned char c) { return std::isalnum(c) || c == '_' || c >= 0x80; };
    std::vector<std::string> tokens;
    for (std::size_t i = 0; i < size; ++i) {
        const bool joins =
            i > 0 && ((isWord(data[i]) && isWord(data[i - 1])) || (data[i] == data[i - 1] && data[i] <= ' '));
        if (!joins) tokens.emplace_back();
        tokens.back() += static_cast<char>(data[i]);
    }
    const auto some = [&] { return chance.below(tokens.size()); };
    for (std::size_t i = 1 + chance.below(3); i > 0 && !tokens.empty(); --i) {
        const std::size_t at = some();
        const std::size_t end = std::min(tokens.size(), at + 1 + chance.below(chance.oneIn(4) ? 40 : 3));
        const std::vector<std::string> run(tokens.begin() + offset(at), tokens.begin() + offset(end));
        switch (chance.below(6)) {
        case 0: std::swap(tokens[at], tokens[some()]); break;
        case 1: tokens[at] = words[chance.below(words.size())]; break;
        case 2: tokens.insert(tokens.begin() + offset(at), std::string(words[chance.below(words.size())])); break;
        case 3: tokens[at] = tokens[some()]; break;
        case 4: tokens.erase(tokens.begin() + offset(at), tokens.begin() + offset(end)); break;
        case 5: tokens.insert(tokens.begin() + offset(some()), run.begin(), run.end()); break;
        }
    }
    Bytes text;
    for (const std::string& token : tokens) text.insert(text.end(), token.begin(), token.end());
    return store(text, data, most);
}

}  // namespace quorva::fuzz
