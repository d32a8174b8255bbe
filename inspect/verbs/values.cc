// Checks the values of options.

#include "values.h"

#include "inspect/catalogue.h"

#include <algorithm>
#include <charconv>

namespace quorva::inspect {

namespace {

// Returns false if the text is not a number of 64 bits.
bool readNumber(std::string_view text, std::uint64_t& number)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex) text.remove_prefix(2);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, isHex ? 16 : 10);
    return error == std::errc() && end == text.data() + text.size();
}

}  // namespace

CLI::Option* takeOneOf(CLI::Option* option, const std::vector<std::string>& words)
{
    std::string name;
    for (const std::string& word : words) name += (name.empty() ? "" : "|") + word;
    const auto refusal = [words](std::string& value) -> std::string {
        if (std::ranges::find(words, value) != words.end()) return {};
        const std::vector<std::string_view> views(words.begin(), words.end());
        return "takes " + alternatives(words) + ", not " + value + didYouMean(value, views);
    };
    return option->type_name(name)->check(CLI::Validator(refusal, ""));
}

CLI::Option* takeNumber(CLI::Option* option, std::uint64_t least, std::uint64_t most, const char* name)
{
    const auto refusal = [least, most](std::string& value) -> std::string {
        std::uint64_t number = 0;
        if (!readNumber(value, number) || number < least || number > most)
            return "takes a number from " + std::to_string(least) + " to " + std::to_string(most) + ", not " + value;
        value = std::to_string(number);  // the parser would read a leading zero as octal
        return {};
    };
    return option->type_name(name)->transform(CLI::Validator(refusal, ""));
}

std::vector<std::string> wordsOf(const CLI::Option& option)
{
    const std::string name = option.get_type_name();
    return name.find('|') == std::string::npos ? std::vector<std::string>{} : CLI::detail::split(name, '|');
}

bool takesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

std::string alternatives(const std::vector<std::string>& words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 < words.size() ? ", " : " or ") + words[i];
    return text;
}

}  // namespace quorva::inspect
