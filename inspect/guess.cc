// Guesses the type of a message.

#include "guess.h"

#include "chance.h"
#include "documentation.h"
#include "explain/sources.h"
#include "tree.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace quorva::inspect {

namespace {

// Costs in bits. An unlikely value costs a little more than the same unit would cost as any number.
constexpr double anyNumber = 36;
constexpr double unlikely = 40;
constexpr double idDisagrees = 16;

// A message with a rest, one that is cut, and a damaged one are this much less likely than a whole one.
constexpr double hasRest = 48;
constexpr double isCut = 64;
constexpr double isDamaged = 72;

// Then the type must explain this much more of the message than numbers and texts of no type do.
constexpr double convincing = 24;

// A type that costs this much more than bytes at random is given up. Less than that are a few findings.
constexpr double hopeless = 160;

// Parts that are read of each type at first, and then of all unfinished types together.
constexpr std::size_t firstParts = 64;
constexpr std::size_t allParts = 30'000;

// Contents are judged by their first bytes.
constexpr std::size_t judgedBytes = 128;

unsigned widthOf(std::uint64_t number)
{
    return static_cast<unsigned>(std::bit_width(number));
}

// Most numbers in messages are small, and few numbers below 16 are more frequent than others.
double bitsOfNumber(std::uint64_t magnitude)
{
    const unsigned width = widthOf(magnitude);
    return width <= 4 ? 4 + 0.5 * width : width <= 11 ? width + 3 : std::min(width + 6.5, anyNumber);
}

double bitsOfScalar(const Type& scalar, std::int64_t value)
{
    switch (scalar.builtin) {
    case Builtin::Boolean: return value == 0 || value == 1 ? 1 : anyNumber;
    case Builtin::Float: {
        // Zero; or a number of a usual size, with the few digits that people choose.
        const auto bits = static_cast<std::uint32_t>(value);
        const int exponent = static_cast<int>(bits >> 23 & 0xFF) - 127;
        if (bits == 0) return 2;
        if (exponent < -20 || exponent > 40) return unlikely;
        return (bits & 0xFFFF) == 0 ? 18 : 30;
    }
    default: break;
    }
    const Range range = rangeOf(scalar);
    const auto most = static_cast<std::uint64_t>(range.most);
    const double sign = range.least == 0 ? 0 : value < 0 ? 2.3 : 0.3;
    const auto magnitude = static_cast<std::uint64_t>(value < 0 ? -value : value);
    return sign + std::min(bitsOfNumber(magnitude), widthOf(most) + 2.0);
}

// The first few enumerators are the most frequent ones.
double bitsOfEnumerator(std::int64_t value)
{
    const unsigned width = widthOf(static_cast<std::uint64_t>(value < 0 ? -value : value));
    return width <= 2 ? 2.6 : 2.5 * width - 2.4;
}

double bitsOfCount(std::uint32_t count, std::uint32_t bound)
{
    const unsigned width = widthOf(count);
    return std::min(width == 0 ? 3 : width == 1 ? 1.5 : 2.5 * (width - 1), widthOf(bound) + 2.0);
}

// Most texts have some four to thirty characters.
double bitsOfLength(std::uint32_t length, std::uint32_t bound)
{
    const unsigned width = widthOf(length);
    return std::min(width == 0 ? 3 : width <= 2 ? 6 : width <= 4 ? 4 : 2.5 * width - 6, widthOf(bound) + 2.0);
}

// The cost of each byte of a text, and of other contents, which often are zeros.
struct ByteCosts {
    std::array<double, 256> inText{};
    std::array<double, 256> inZeros{};
};
constexpr ByteCosts byteCosts = [] {
    ByteCosts costs;
    for (unsigned byte = 0; byte < 256; ++byte) {
        const bool isFrequent = (byte >= 'a' && byte <= 'z') || byte == ' ';
        costs.inText[byte] = isFrequent ? 5 : byte == 0 ? 24 : byte < ' ' || byte == 0x7F ? 14 : byte < 0x7F ? 6.5 : 9;
        costs.inZeros[byte] = byte == 0 ? 1 : 9.5;
    }
    return costs;
}();

double bitsOfContents(std::span<const unsigned char> contents, bool isString)
{
    const auto judged = contents.first(std::min(contents.size(), judgedBytes));
    if (judged.empty()) return 0;
    double asText = 0, asZeros = 0;
    for (const unsigned char byte : judged) {
        asText += byteCosts.inText[byte];
        asZeros += byteCosts.inZeros[byte];
    }
    const double count = static_cast<double>(judged.size());
    const double bits = isString ? asText : 1.6 + std::min({asText, asZeros, 8 * count});
    return bits / count * static_cast<double>(contents.size());
}

// Bits that are saved from each unit to the end by a message that is any numbers and texts.
std::vector<double> savedByAnything(std::span<const unsigned char> message)
{
    std::vector<double> saved(message.size() / 4 + 1);
    for (std::size_t i = message.size() / 4; i-- > 0;) {
        std::uint32_t unit = 0;
        double asText = 0;
        for (const unsigned char byte : message.subspan(4 * i, 4)) {
            unit = unit << 8 | byte;
            asText += byteCosts.inText[byte];
        }
        saved[i] = saved[i + 1] + std::max(0.0, 29 - std::min(asText, bitsOfNumber(unit)));
    }
    return saved;
}

// A number for the messages of each type: types with equal numbers have the same messages. The number of values that
// follow each other is a polynomial hash, so it does not depend on the structs that enclose them.
class Forms {
public:
    std::uint64_t of(const Type& type) { return sequenceOf(type).hash; }

private:
    // The hash of a sequence, and the power of the base that appending it multiplies with.
    struct Sequence {
        std::uint64_t hash = 0;
        std::uint64_t power = 1;

        void append(const Sequence& other)
        {
            hash = hash * other.power + other.hash;
            power *= other.power;
        }
    };
    enum Kind : std::uint64_t { number, choice, discriminated, array, contents, recursion };

    // One value, which these numbers tell from all others.
    static Sequence value(std::initializer_list<std::uint64_t> numbers)
    {
        std::uint64_t mixed = 0;
        for (const std::uint64_t each : numbers) mixed = Chance(mixed ^ each).next();
        return {mixed, 0xD1342543DE82EF95u};
    }

    Sequence sequenceOf(const Type& type)
    {
        if (const auto found = known.find(&type); found != known.end()) return found->second;
        known[&type] = value({recursion, reinterpret_cast<std::uintptr_t>(&type)});  // while it is open
        return known[&type] = computed(type);
    }

    Sequence computed(const Type& type)
    {
        switch (type.kind) {
        case TypeKind::typeDefinition: return sequenceOf(targetOf(type));
        case TypeKind::structure: {
            Sequence all;
            for (const Member& field : type.members) all.append(sequenceOf(field.use));
            return all;
        }
        case TypeKind::enumeration: {
            Sequence all;
            for (const Enumerator& each : enumeratorsOf(type))
                all.append(value({static_cast<std::uint32_t>(each.value)}));
            return value({choice, all.hash});
        }
        case TypeKind::discriminatedUnion: {
            Sequence all;
            for (const Case& each : type.cases)
                all.append(value({each.value, sequenceOf(type.members[each.member].use).hash}));
            return value({discriminated, type.hasDefault, sequenceOf(discriminantOf(type)).hash, all.hash});
        }
        default: return value({number, static_cast<std::uint64_t>(type.builtin)});
        }
    }

    Sequence sequenceOf(const Use& use)
    {
        if (use.form == Form::single) return sequenceOf(*use.type);
        if (use.form == Form::none) return {};
        const auto form = static_cast<std::uint64_t>(use.form);
        return use.type ? value({array, form, use.bound, sequenceOf(*use.type).hash})
                        : value({contents, form, use.bound});
    }

    std::unordered_map<const Type*, Sequence> known;
};

// How likely a message is to be of the type, before any byte is read; in bits, at most 0. Messages of their own are
// structs that nothing else uses, most of them settled.
double priorOf(const Type& type, bool isUsed)
{
    const Type& canonical = canonicalType(type);
    double prior = &canonical == &type ? 0 : -0.5;
    switch (canonical.kind) {
    case TypeKind::builtin: prior -= 10; break;
    case TypeKind::enumeration: prior -= 8; break;
    case TypeKind::typeDefinition: prior -= targetOf(canonical).type ? 2 : 8; break;
    case TypeKind::discriminatedUnion: prior -= isUsed ? 6 : 0; break;
    default: prior -= isUsed ? 4 : 0; break;
    }
    if (documentationOf(type).provisional) prior -= 3.5;
    prior -= 0.05 * static_cast<double>(std::string_view(type.name).size());  // the most general type has a short name
    return prior;
}

}  // namespace

// Reads a message and adds up what it costs.
class Guesser::Reader : public MessageSource {
public:
    Reader(const Guesser& from, std::span<const unsigned char> what, std::size_t least, std::size_t mostParts)
        : MessageSource(what), needed(least), partsLeft(mostParts), guesser(from)
    {
    }

    std::size_t needed;  // bytes that the value has at least, by what was read of it
    std::size_t partsLeft;
    bool isComplete = false;

    void run(const Type& type, Path& path)
    {
        Traversal traversal(*this, path);
        isComplete = traversal.run(type);
        while (path.depth() > 0) path.leave();
    }

    // True if the reading stopped because it may not read more.
    bool isOutOfParts() const { return !isComplete && refused.cause == Cause::none && partsLeft == 0; }

    // True if the message ends within the value.
    bool ranOut() const
    {
        return refused.cause == Cause::messageEndsInUnit || refused.cause == Cause::messageEndsInContents ||
               refused.cause == Cause::messageEndsInPadding;
    }

    // Bits that the model saves of the bytes that were read.
    double saved() const { return savedAtEnd + 8 * static_cast<double>(offset()) - bits; }

    void open(const Part& part) { declared = part.type; }

    bool number(const Type& scalar, const std::byte* at, std::int64_t& value)
    {
        if (!MessageSource::number(scalar, at, value)) return false;
        const double cost = costOf(scalar, value);
        last = {declared, offset(), value, cost};
        return pay(cost);
    }

    bool discriminant(const Type& type, const std::byte* at, std::int64_t& value)
    {
        if (!MessageSource::number(discriminantOf(type), at, value)) return false;
        const Member* const arm = armOf(type, value);
        double cost = guesser.bitsOfChoice(type) + (arm ? 0 : anyNumber);
        // A number of the same type before the union, such as the `id` of an attribute, usually repeats it.
        if (last.declared == type.members.front().use.type && last.end + 4 == offset())
            cost += last.value == value ? -last.cost : idDisagrees;
        needed += guesser.sizes.extra(type, arm);
        return pay(cost);
    }

    bool length(const Use& use, const std::byte* at, std::uint32_t& value)
    {
        if (!MessageSource::length(use, at, value)) return false;
        needed += padded(value);
        return pay(bitsOfLength(value, use.bound));
    }

    bool count(const Use& use, const std::byte* at, std::uint32_t& value)
    {
        if (!MessageSource::count(use, at, value)) return false;
        const std::size_t used = value & 0xFFFF;
        needed += use.type ? used * guesser.sizes.of(*use.type) : padded(used);
        if (used != value) return pay(unlikely);
        return pay(use.type ? bitsOfCount(value, use.bound) : bitsOfLength(value, use.bound));
    }

    bool present(const Use& use, const std::byte* at, bool& follows)
    {
        if (!MessageSource::present(use, at, follows)) return false;
        if (follows) needed += guesser.sizes.of(*use.type);
        return pay(lastUnit() <= 1 ? 1 : anyNumber);
    }

    bool contents(const Use& use, const std::byte* at, std::uint32_t size)
    {
        const auto rest = message.subspan(offset());
        const auto given = rest.first(std::min<std::size_t>(size, rest.size()));
        const double cost = bitsOfContents(given, use.form == Form::string);
        constexpr std::size_t bytesLikeOnePart = 16;
        partsLeft -= std::min(partsLeft, std::min(given.size(), judgedBytes) / bytesLikeOnePart);
        if (!MessageSource::contents(use, at, size)) {
            savedAtEnd = 8 * static_cast<double>(given.size()) - cost;
            return false;
        }
        bits += cost;
        for (const unsigned char byte : rest.subspan(size, padded(size) - size)) bits += byte == 0 ? 0 : 12;
        return pay(0);
    }

private:
    double costOf(const Type& scalar, std::int64_t value) const
    {
        if (scalar.kind == TypeKind::enumeration)
            return enumeratorName(scalar, value) ? std::min(guesser.bitsOfChoice(scalar), bitsOfEnumerator(value))
                                                 : anyNumber;
        if (lastUnit() != toUnit(scalar, value)) return unlikely;
        const double bits = bitsOfScalar(scalar, value);
        const auto known = declared ? guesser.numbers.of(*declared) : std::span<const std::int64_t>();
        if (known.empty()) return bits;
        if (!std::ranges::binary_search(known, value)) return bits + 2;
        return std::min(bits, std::log2(static_cast<double>(known.size())));
    }

    // Returns false if the reading is not worth to be continued.
    bool pay(double cost)
    {
        bits += cost;
        if (partsLeft == 0) return false;
        --partsLeft;
        return saved() > -hopeless;
    }

    // A number, and the offset of its end.
    struct Number {
        const Type* declared = nullptr;
        std::size_t end = 0;
        std::int64_t value = 0;
        double cost = 0;
    };

    const Guesser& guesser;
    double bits = 0;
    double savedAtEnd = 0;           // of contents that are cut
    const Type* declared = nullptr;  // the type of the part that was opened last
    Number last;
};

Guesser::Guesser(std::span<const Type* const> types)
{
    std::unordered_set<const Type*> used;
    for (const Type* type : types)
        for (const Member& member : type->members) used.insert(member.use.type);
    Forms forms;
    std::unordered_map<std::uint64_t, std::size_t> indices;
    std::unordered_map<const Type*, double> priors;
    for (const Type* type : types) {
        if (type->kind == TypeKind::foreign) continue;
        const auto [found, isNew] = indices.emplace(forms.of(*type), candidates.size());
        if (isNew) candidates.push_back({{}, 0, sizes.of(*type)});
        candidates[found->second].types.push_back(type);
        priors[type] = priorOf(*type, used.contains(type));
        if (type->kind == TypeKind::discriminatedUnion || type->kind == TypeKind::enumeration)
            choices.emplace(type, bitsOfChoice(*type));
    }
    const auto rank = [&](const Type* type) { return std::pair(-priors[type], std::string_view(type->name)); };
    for (Candidate& candidate : candidates) {
        std::ranges::sort(candidate.types, {}, rank);
        candidate.prior = priors[candidate.types.front()];
    }
}

double Guesser::bitsOfChoice(const Type& type) const
{
    if (const auto found = choices.find(&type); found != choices.end()) return found->second;
    const std::size_t count =
        type.kind == TypeKind::discriminatedUnion ? armsOf(type).size() + type.hasDefault : enumeratorsOf(type).size();
    return std::log2(static_cast<double>(std::max<std::size_t>(1, count)));
}

std::optional<Guess> Guesser::guessOf(const Candidate& candidate, const Reader& reader, std::size_t size,
                                      std::span<const double> savedByAnything)
{
    const std::size_t rest = size - reader.offset();
    const std::size_t longestRest = std::max<std::size_t>(16, size / 8);
    const bool isUnfinished = !reader.isComplete && reader.refused.cause == Cause::none;
    if (isUnfinished || (reader.isComplete && rest > longestRest)) return std::nullopt;
    Guess guess{candidate.types.front(), {candidate.types.begin() + 1, candidate.types.end()}};
    if (!reader.isComplete)
        guess.fit = reader.ranOut() ? Fit::cut : Fit::refused;
    else if (rest > 0)
        guess.fit = Fit::leftOver;
    guess.used = reader.offset() - (guess.fit == Fit::refused ? 4 : 0);  // without the refused unit
    guess.least = reader.needed;
    guess.evidence = reader.saved();
    guess.score = guess.evidence + candidate.prior;
    if (guess.fit == Fit::leftOver) guess.score -= hasRest;
    if (guess.fit == Fit::cut)
        guess.score -= isCut + 4 * std::log2(static_cast<double>(guess.least) / static_cast<double>(size + 1));
    if (guess.fit == Fit::refused) guess.score -= isDamaged;
    if (guess.fit == Fit::whole) return guess;
    // What follows can be anything; what comes before must fit better than that.
    const double after = guess.fit == Fit::cut ? 0 : savedByAnything[reader.offset() / 4];
    if (guess.score < 0 || guess.evidence + after - savedByAnything[0] < convincing) return std::nullopt;
    guess.score += after;
    return guess;
}

std::vector<Guess> Guesser::guess(std::span<const unsigned char> message, std::size_t most) const
{
    std::vector<Guess> guesses;
    const std::vector<double> savedInAnyCase = savedByAnything(message);
    Path path;
    const auto read = [&](const Candidate& candidate, std::size_t parts) {
        Reader reader(*this, message, candidate.least, parts);
        reader.run(*candidate.types.front(), path);
        auto guess = guessOf(candidate, reader, message.size(), savedInAnyCase);
        if (guess) guesses.push_back(std::move(*guess));
        return reader;
    };

    std::vector<std::pair<double, const Candidate*>> unfinished;
    for (const Candidate& candidate : candidates)
        if (const Reader reader = read(candidate, firstParts); reader.isOutOfParts())
            unfinished.emplace_back(reader.saved() + candidate.prior, &candidate);
    std::ranges::stable_sort(unfinished, std::ranges::greater(), [](const auto& each) { return each.first; });
    std::size_t partsLeft = allParts;
    for (const auto& [score, candidate] : unfinished) {
        const std::size_t parts = std::max(partsLeft, message.size());
        const Reader reader = read(*candidate, parts);
        partsLeft -= std::min(partsLeft, parts - reader.partsLeft);
        if (partsLeft == 0) break;
    }

    std::ranges::stable_sort(guesses, std::ranges::greater(), &Guess::score);
    if (guesses.size() > most) guesses.resize(most);
    return guesses;
}

}  // namespace quorva::inspect
