// The names of an enumeration's values, in one table without addresses, so that nothing of it is relocated when the
// library is loaded, and no value takes longer than another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <type_traits>

namespace quorva::walk {

// Made of a literal, whose length compilers know without counting: there are thousands of these.
struct NamedValue {
    constexpr NamedValue() = default;
    constexpr NamedValue(std::int32_t number, const char* text) : value(number), name(text, __builtin_strlen(text)) {}

    std::int32_t value = 0;
    std::string_view name;
};

// What stands beyond the last name, for those who copy in steps.
inline constexpr std::size_t beyondNames = 48;

inline constexpr std::string_view unknownName = "Error_in_Function";

// The names in the form that `shape::Enumeration` promises.
class NameText {
public:
    // Writes to `to`, or only counts.
    constexpr explicit NameText(char* to) : text(to) {}

    // Where the name of the value stands.
    constexpr std::size_t add(const NamedValue& named)
    {
        char digits[11] = {};
        std::size_t from = sizeof digits;
        const bool negative = named.value < 0;
        const auto value = static_cast<std::uint32_t>(named.value);
        std::uint32_t rest = negative ? 0 - value : value;
        do digits[--from] = static_cast<char>('0' + rest % 10);
        while (rest /= 10);
        if (negative) digits[--from] = '-';

        const std::size_t before = size;
        put("<", named.name, ">");
        put(std::string_view(digits + from, sizeof digits - from), "</", named.name, ">");
        return add(named.name, size - before);
    }
    // A name behind its element of that length.
    constexpr std::size_t add(std::string_view name, std::size_t length)
    {
        put(static_cast<char>(length < 256 ? length : 0));
        const std::size_t at = size;
        put(name);
        put('\0');
        return at;
    }

    std::size_t size = 0;

private:
    constexpr void put(char c)
    {
        if (text) text[size] = c;
        ++size;
    }
    constexpr void put(std::string_view characters)
    {
        if (text)
            for (std::size_t i = 0; i < characters.size(); ++i) text[size + i] = characters[i];
        size += characters.size();
    }
    template <class... Rest>
    constexpr void put(std::string_view characters, Rest... rest)
    {
        put(characters);
        (put(std::string_view(rest)), ...);
    }

    char* text;
};

template <const auto& values>
struct Names {
    static constexpr std::size_t count = std::size(values);
    static constexpr std::uint32_t first = static_cast<std::uint32_t>(values[0].value);
    static constexpr std::uint32_t span = static_cast<std::uint32_t>(values[count - 1].value) - first;
    // Whether so many of the values between the first and the last have names that each is given a place.
    static constexpr bool isDense = span < 4 * count + 16;
    static constexpr std::size_t unknown = isDense ? span + std::size_t{1} : count;
    static constexpr std::size_t characters = [] {
        NameText text(nullptr);
        for (const NamedValue& each : values) text.add(each);
        text.add(unknownName, 0);
        return text.size;
    }();

    struct Table {
        std::int32_t known[isDense ? 1 : count];
        std::conditional_t<(characters > 0xFFFF), std::uint32_t, std::uint16_t> places[unknown + 1];
        char text[characters + beyondNames];
    };
    static constexpr Table table = [] {
        Table made = {};
        NameText text(made.text);
        const auto place = [](std::size_t at) { return static_cast<std::decay_t<decltype(made.places[0])>>(at); };
        for (auto& each : made.places) each = place(characters - (unknownName.size() + 1));
        for (std::size_t i = 0; i < count; ++i) {
            const NamedValue& each = values[i];
            if (i > 0 && values[i - 1].value >= each.value) throw "the values are not in ascending order";
            made.places[isDense ? static_cast<std::uint32_t>(each.value) - first : i] = place(text.add(each));
            if (!isDense) made.known[i] = each.value;
        }
        text.add(unknownName, 0);
        return made;
    }();

    static std::size_t slot(std::int32_t value)
    {
        if constexpr (isDense) {
            const std::uint32_t slot = static_cast<std::uint32_t>(value) - first;
            return slot <= span ? slot : unknown;
        } else {
            std::size_t from = 0;
            for (std::size_t to = count; from < to;) {
                const std::size_t middle = from + (to - from) / 2;
                if (table.known[middle] < value)
                    from = middle + 1;
                else
                    to = middle;
            }
            return from < count && table.known[from] == value ? from : unknown;
        }
    }
};

// The name of the value among those named, or what stands for all others.
template <const auto& values>
const char* nameAmong(std::int32_t value)
{
    return Names<values>::table.text + Names<values>::table.places[Names<values>::slot(value)];
}

}  // namespace quorva::walk
