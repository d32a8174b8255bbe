// Invents plausible values by the names of members and types.

#include "plausible.h"

#include "documentation.h"
#include "explain/layout.h"

#include <algorithm>
#include <array>
#include <bit>
#include <set>

namespace quorva::inspect {

namespace {

constexpr std::int64_t firstMoment = 1717228800;  // 2024-06-01 08:00 UTC, in seconds since 1970
constexpr std::size_t farthest = 3;               // members that give hints

// What a word in a name says about a number: one of a range or, with a step of 0, a moment or an identifier.
struct NumberHint {
    const char* word;
    std::int64_t least, most, step;
};
constexpr std::int64_t asMoment = -1, asIdentifier = -2;  // in `least`, with a step of 0

// The first row that has a word of the name wins.
constexpr NumberHint numberHints[] = {
    {"timeout", 10, 120, 10},
    {"interval", 5, 60, 5},
    {"period", 5, 60, 5},
    {"duration", 1, 90, 1},
    {"delay", 1, 30, 1},
    {"elapsed", 1, 600, 1},
    {"lifetime", 30, 365, 5},
    {"year", 2023, 2025, 1},
    {"month", 1, 12, 1},
    {"week", 1, 4, 1},
    {"day", 1, 28, 1},
    {"hour", 0, 23, 1},
    {"minute", 0, 59, 1},
    {"second", 0, 59, 1},
    {"time", asMoment, 0, 0},
    {"date", asMoment, 0, 0},
    {"stamp", asMoment, 0, 0},
    {"percent", 0, 100, 5},
    {"percentage", 0, 100, 5},
    {"humidity", 30, 70, 1},
    {"remaining", 0, 100, 5},
    {"level", 0, 100, 5},
    {"temperature", 18, 80, 1},
    {"altitude", 0, 800, 50},
    {"lower", 0, 10, 1},
    {"upper", 20, 40, 1},
    {"point", 8, 24, 1},
    {"port", 9100, 9103, 1},
    {"resolution", 300, 600, 300},
    {"magnification", 50, 200, 25},
    {"voltage", 3, 48, 1},
    {"weight", 60, 220, 10},
    {"capacity", 100, 550, 50},
    {"direction", 2100, 4200, 10},
    {"byte", 1024, 65536, 512},
    {"size", 1024, 65536, 512},
    {"width", 2100, 2970, 10},
    {"height", 2970, 4200, 10},
    {"length", 2970, 4200, 10},
    {"sheet", 1, 120, 1},
    {"image", 1, 120, 1},
    {"impression", 1, 5000, 1},
    {"page", 1, 60, 1},
    {"copy", 1, 20, 1},
    {"copies", 1, 20, 1},
    {"cycle", 100, 90000, 100},
    {"document", 1, 12, 1},
    {"quantity", 1, 20, 1},
    {"count", 0, 40, 1},
    {"maximum", 50, 100, 5},
    {"max", 50, 100, 5},
    {"minimum", 0, 20, 1},
    {"min", 0, 20, 1},
    {"tray", 1, 6, 1},
    {"priority", 1, 10, 1},
    {"service", 1, 32, 1},
    {"version", 1, 4, 1},
    {"revision", 1, 4, 1},
    {"chain", 1, 20, 1},
    {"link", 100, 900, 1},
    {"offset", -20, 20, 1},
    {"shift", -20, 20, 1},
    {"skew", -5, 5, 1},
    {"position", 0, 8, 1},
    {"token", asIdentifier, 0, 0},
    {"handle", asIdentifier, 0, 0},
    {"job", asIdentifier, 0, 0},
    {"identifier", asIdentifier, 0, 0},
    {"id", asIdentifier, 0, 0},
    {"junk", 0, 0, 1},
};
constexpr NumberHint anyNumber = {"", 0, 12, 1};

// What a word in a name says about a text: examples, in which `#` stands for any digit.
struct TextHint {
    const char* word;
    std::array<const char*, 4> examples;
};

constexpr TextHint hostHint = {"host", {"mfp-lobby.example.com", "print##.example.net", "scan.example.org", "mfp##"}};
constexpr TextHint phoneHint = {"phone", {"+1555010####", "030555####", "1555010####", "+4930555##"}};
constexpr TextHint personHint = {"user", {"anna.berg", "jmiller", "o.tanaka", "Zoë Müller"}};
constexpr TextHint versionHint = {"version", {"2.##.4", "10.##.1", "1.0.#", "73.##.25"}};
constexpr TextHint mailHint = {
    "mail", {"anna.berg@example.com", "scan@example.net", "o.tanaka@example.org", "team##@example.com"}};
constexpr TextHint networkHint = {"network", {"192.0.2.1#", "198.51.100.2#", "203.0.113.#", "2001:db8::#"}};

constexpr TextHint textHints[] = {
    {"url",
     {"https://mfp-lobby.example.com/jobs/##", "http://192.0.2.1#/", "https://example.org/help", "/icons/##.png"}},
    {"host", hostHint.examples},
    {"server", hostHint.examples},
    {"realm", {"EXAMPLE.COM", "example.net", "BERLIN.EXAMPLE.ORG", "guests"}},
    {"phone", phoneHint.examples},
    {"telephone", phoneHint.examples},
    {"modifier", {",,", "9,", "0,W", "*70,"}},
    {"zone", {"Europe/Berlin", "America/New_York", "Asia/Tokyo", "UTC"}},
    {"serial", {"XL4######", "QA7######", "3320######", "T######"}},
    {"version", versionHint.examples},
    {"release", versionHint.examples},
    {"revision", versionHint.examples},
    {"build", versionHint.examples},
    {"part", {"TN-#####", "DR-#####", "PN######", "#####-##"}},
    {"lot", {"L24####", "L23####", "B7###", "##-##"}},
    {"pin", {"####", "####", "######", "####"}},
    {"passcode", {"####", "####", "######", "####"}},
    {"authorization", {"####", "######", "####", "####"}},
    {"password", {"tulip-##-Oslo", "Secret##", "kite7####", "Grün!##"}},
    {"network", networkHint.examples},
    {"destination", networkHint.examples},
    {"mail", mailHint.examples},
    {"address", mailHint.examples},
    {"addresses", mailHint.examples},
    {"recipient", {"Anna Berg", "Jo Miller", "O. Tanaka", "Zoë Müller"}},
    {"owner", personHint.examples},
    {"user", personHint.examples},
    {"login", personHint.examples},
    {"operator", personHint.examples},
    {"path", {"/scans/2024/##", "/home/anna/invoices", "spool/####", "/export/templates"}},
    {"filename", {"scan####.pdf", "Report-##.pdf", "invoice-####.tif", "clone##.bin"}},
    {"file", {"scan####.pdf", "Report-##.pdf", "invoice-####.tif", "Übersicht.pdf"}},
    {"folder", {"Invoices 2024", "Public", "Anna's scans", "Entwürfe"}},
    {"company", {"Example Ltd", "Berg & Co", "Tanaka K.K.", "Müller GmbH"}},
    {"vendor", {"Example Ltd", "Berg & Co", "Tanaka K.K.", "Müller GmbH"}},
    {"account", {"Marketing", "Cost centre ####", "Library", "Forschung ##"}},
    {"group", {"Marketing", "Team ##", "Guests", "Vertrieb"}},
    {"subject", {"Scan from the lobby", "Invoice ####", "Your document", "Übersicht ##"}},
    {"message", {"Load A4 paper", "Call the help desk", "Your job is done", "Bitte Toner bestellen"}},
    {"comment", {"Draft ##", "Confidential", "For review", "Genehmigt"}},
    {"caption", {"Approved", "Copy ##", "Confidential", "Entwurf"}},
    {"prompt", {"User name", "Department", "Project code", "Kostenstelle"}},
    {"description", {"Lobby, ground floor", "Scan to the archive", "Room ###", "Für Rechnungen"}},
    {"configuration", {"default", "office", "duplex;staple", "##"}},
    {"document", {"Quarterly report", "Invoice ####", "Minutes 2024-06-##", "Übersicht"}},
    {"job", {"Quarterly report.pdf", "Invoice ####", "Copy job ##", "Übersicht.docx"}},
    {"prefix", {"scan", "A", "INV-", "ko_"}},
    {"separator", {"-", "_", ".", " "}},
    {"code", {"####", "A##", "DE", "en-US"}},
    {"id", {"####", "A###", "user##", "######"}},
    {"number", {"######", "####", "##", "####"}},
};
constexpr TextHint anyText = {"", {"Lobby", "Standard", "Archive ##", "Büro Nord"}};

// The words of a name or a sentence in lower case: "jobIDs" is "job" and "ids".
std::vector<std::string> wordsOf(std::string_view name)
{
    const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
    const auto isLower = [](char c) { return c >= 'a' && c <= 'z'; };
    std::vector<std::string> words = {""};
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool starts = isUpper(c) && i > 0 &&
                            (!isUpper(name[i - 1]) || (i + 2 < name.size() && isLower(name[i + 1]) &&
                                                       !(name[i + 1] == 's' && !isLower(name[i + 2]))));
        if ((starts || !(isUpper(c) || isLower(c))) && !words.back().empty()) words.emplace_back();
        if (isUpper(c) || isLower(c)) words.back() += static_cast<char>(isUpper(c) ? c - 'A' + 'a' : c);
    }
    return words;
}

// The first of the hints with a word of the name, or null.
template <class Hint>
const Hint* hintOf(std::span<const Hint> hints, std::string_view name)
{
    const std::vector<std::string> words = wordsOf(name);
    const auto found = std::ranges::find_if(hints, [&](const Hint& hint) {
        const std::string_view singular = hint.word;
        return std::ranges::any_of(words, [&](std::string_view word) {
            return word.starts_with(singular) &&
                   (word.size() == singular.size() || word.substr(singular.size()) == "s");
        });
    });
    return found == hints.end() ? nullptr : &*found;
}

// The hint of the innermost member that has one: by its name, its type or, after all of these, its documentation.
template <class Hint>
const Hint* hintOf(std::span<const Hint> hints, std::span<const Place> around)
{
    const auto nearest = around.last(std::min(around.size(), farthest));
    for (auto place = nearest.rbegin(); place != nearest.rend(); ++place) {
        const Member& member = *place->member;
        // A typedef has the name that its declaration lacks.
        if (const Hint* hint = hintOf(hints, *member.name ? member.name : place->owner->name)) return hint;
        if (member.use.type)
            if (const Hint* hint = hintOf(hints, member.use.type->name)) return hint;
    }
    for (auto place = nearest.rbegin(); place != nearest.rend(); ++place)
        if (const Hint* hint = hintOf(hints, documentationOf(*place->owner, *place->member).text)) return hint;
    return nullptr;
}

// Bytes of the character that starts with this byte of a UTF-8 text.
std::size_t characterSize(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

std::int64_t Plausible::steps(std::int64_t least, std::int64_t most, std::int64_t step)
{
    return least + step * static_cast<std::int64_t>(chance.below(static_cast<std::size_t>((most - least) / step + 1)));
}

std::int64_t Plausible::number(const Type& scalar, std::span<const Place> around)
{
    if (scalar.builtin == Builtin::Boolean) return static_cast<std::int64_t>(chance.below(2));
    if (const auto enumerators = enumeratorsOf(scalar); !enumerators.empty())
        return enumerators[chance.below(enumerators.size())].value;

    const NumberHint* hint = hintOf(std::span<const NumberHint>(numberHints), around);
    if (!hint) hint = &anyNumber;
    if (scalar.builtin == Builtin::Float) {
        const auto halves = hint->step > 0 ? steps(2 * hint->least, 2 * hint->most, 1) : steps(0, 40, 1);
        return std::bit_cast<std::uint32_t>(static_cast<float>(halves) / 2);
    }
    const Range range = rangeOf(scalar);
    if (hint->step > 0) {
        const std::int64_t least = std::max(hint->least, range.least), most = std::min(hint->most, range.most);
        return least < most ? steps(least, most, hint->step) : std::clamp(hint->least, range.least, range.most);
    }
    if (hint->least == asMoment) {
        moment += moment == 0 ? firstMoment + steps(0, 30 * 86400, 60) : steps(5, 900, 5);
        return moment <= range.most ? moment : steps(0, 60, 1);
    }
    std::int64_t& last = identifiers[hint->word];
    last += last == 0 ? steps(1, 40, 1) : steps(1, 3, 1);
    return std::min(last, range.most);
}

std::string Plausible::text(std::size_t most, bool plain, std::span<const Place> around)
{
    const TextHint* hint = hintOf(std::span<const TextHint>(textHints), around);
    if (!hint) hint = &anyText;
    // The first example that fits, or else the start of one.
    const std::size_t first = chance.below(hint->examples.size());
    const auto fits = [&](std::string_view example) {
        return example.size() <= most && (!plain || std::ranges::all_of(example, [](char c) { return c > 0; }));
    };
    std::string_view example = hint->examples[first];
    for (std::size_t i = 0; i < hint->examples.size() && !fits(example); ++i)
        example = hint->examples[(first + i) % hint->examples.size()];
    std::string text;
    for (std::size_t i = 0; i < example.size(); i += characterSize(example[i])) {
        const std::size_t size = characterSize(example[i]);
        if (text.size() + size > most) break;
        if (plain && size > 1)
            text += '?';
        else if (example[i] == '#')
            text += static_cast<char>('0' + chance.below(10));
        else
            text += example.substr(i, size);
    }
    return text;
}

std::string Plausible::octets(std::size_t most)
{
    std::string octets(std::min<std::size_t>(most, 4 + 2 * chance.below(4)), '\0');
    for (char& octet : octets) octet = static_cast<char>(chance.below(256));
    return octets;
}

std::span<const std::int64_t> KnownNumbers::of(const Type& discriminant)
{
    if (!isCollected) {
        std::map<const Type*, std::set<std::int64_t>> found;
        for (const Type* type : typesOf(knownModules())) {
            if (type->kind != TypeKind::discriminatedUnion) continue;
            const Type* const key = type->members.front().use.type;
            if (key->kind != TypeKind::typeDefinition) continue;
            for (const Member& arm : armsOf(*type))
                for (const std::int64_t value : casesOf(*type, arm)) found[key].insert(value);
        }
        for (const auto& [type, values] : found) byType[type].assign(values.begin(), values.end());
        isCollected = true;
    }
    const auto known = byType.find(&discriminant);
    return known == byType.end() ? std::span<const std::int64_t>() : known->second;
}

}  // namespace quorva::inspect
