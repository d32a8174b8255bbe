// `guess`: the types that a message fits.

#include "inspect/guess.h"

#include "arguments.h"
#include "explain/layout.h"
#include "inspect/documentation.h"
#include "inspect/findings.h"
#include "inspect/object.h"
#include "inspect/tree.h"
#include "output.h"
#include "values.h"

#include <algorithm>
#include <cmath>

namespace quorva::inspect {

namespace {

constexpr const char* fitNames[] = {"whole", "left-over", "cut", "refused"};

// What speaks for and against a guess, counted in its tree.
struct Reasons {
    std::size_t enumerators = 0, knownEnumerators = 0;
    std::size_t texts = 0, readableTexts = 0;  // strings, and other contents that are readable; without empty ones
    std::vector<Finding> findings;
    std::string refusal;  // where and why a decode stops, unless the message is only cut; empty if it does not
    bool isRoundTripEqual = false;  // an encode of the decoded object writes the same bytes
};

bool decodes(const Guess& guess)
{
    return guess.fit == Fit::whole || guess.fit == Fit::leftOver;
}

bool isReadable(std::span<const unsigned char> text)
{
    return std::ranges::all_of(text, [](unsigned char byte) { return byte >= ' ' && byte != 0x7F; });
}

bool isRoundTripEqual(const Type& type, std::span<const unsigned char> bytes)
{
    Object object(type);
    Bytes message(bytes.begin(), bytes.end());
    if (!codeObject(Mode::decode, type, object.data(), message).succeeded) return false;
    Bytes again(bytes.size());
    const Pass pass = codeObject(Mode::encode, type, object.data(), again);
    return pass.succeeded && pass.length == message.size() && again == message;
}

Reasons reasonsOf(const Guess& guess, std::span<const unsigned char> message)
{
    const auto bytes = message.first(guess.fit == Fit::leftOver ? guess.used : message.size());
    const Tree tree(*guess.type, bytes);
    Reasons reasons;
    for (const Node& node : tree.nodes()) {
        if (!node.complete) continue;
        if (node.type && node.type->kind == TypeKind::enumeration) {
            ++reasons.enumerators;
            reasons.knownEnumerators += enumeratorName(*node.type, node.number) != nullptr;
        }
        if (!node.use || node.contentsSize == 0) continue;
        const bool isText = isReadable(tree.contents(node));
        reasons.readableTexts += isText;
        reasons.texts += isText || node.use->form == Form::string;
    }
    reasons.findings = findingsOf(tree);
    if (guess.fit == Fit::refused && tree.stopped())
        reasons.refusal = explained(tree.stopped()->failure, message.size());
    std::erase_if(reasons.findings, [](const Finding& finding) { return finding.code == FindingCode::refused; });
    reasons.isRoundTripEqual = decodes(guess) && isRoundTripEqual(*guess.type, bytes);
    return reasons;
}

std::string counted(std::size_t number, const char* noun)
{
    return grouped(number) + ' ' + noun + (number == 1 ? "" : "s");
}

// ", 3 of 4 enumerators known"; empty if there are none.
std::string share(std::size_t good, std::size_t all, const char* noun, const char* adjective)
{
    if (all == 0) return {};
    return ", " + (good == all ? "" : grouped(good) + " of ") + counted(all, noun) + ' ' + adjective;
}

std::string fitText(const Guess& guess, std::size_t size)
{
    switch (guess.fit) {
    case Fit::cut: return "could go on as this type: " + grouped(size) + " of at least " + counted(guess.least, "byte");
    case Fit::leftOver:
        return "uses " + grouped(guess.used) + " of " + counted(size, "byte") + ", " + grouped(size - guess.used) +
               " left over";
    case Fit::refused: return "fits the first " + grouped(guess.used) + " of " + counted(size, "byte");
    case Fit::whole: break;
    }
    return "uses all " + counted(size, "byte");
}

// How probable it is that bytes at random fit as well.
std::string chanceText(const Guess& guess)
{
    const double digits = std::floor(guess.evidence * std::log10(2.0));
    return digits < 1 ? "likely" : "1 in 10^" + std::to_string(static_cast<long>(digits));
}

std::string guessText(std::size_t rank, const Guess& guess, std::span<const unsigned char> message)
{
    const Reasons reasons = reasonsOf(guess, message);
    const Type& type = *guess.type;
    std::string text = std::to_string(rank) + ". " + type.name + " (" + kindName(type);
    if (moduleOf(type)) text += std::string(", ") + moduleName(type);
    text += isProvisional(type) ? ", provisional" : ", settled";
    text += "), score " + std::to_string(std::lround(guess.score)) + "\n   " + fitText(guess, message.size());
    if (decodes(guess)) text += reasons.isRoundTripEqual ? ", round trip equal" : ", round trip differs";
    text += share(reasons.knownEnumerators, reasons.enumerators, "enumerator", "known");
    text += share(reasons.readableTexts, reasons.texts, "text", "readable");
    text += "\n   by chance: " + chanceText(guess) + '\n';
    if (!reasons.refusal.empty()) text += "   refused " + reasons.refusal + '\n';
    if (!reasons.findings.empty()) {
        const Finding& first = reasons.findings.front();
        text += "   " + counted(reasons.findings.size(), "finding") + "; byte " + grouped(first.offset) + ": " +
                (first.path.empty() ? "" : first.path + ": ") + codeName(first.code) + ": " + first.sentence + '\n';
    }
    constexpr std::size_t mostSame = 5;
    const std::size_t shown = std::min(mostSame, guess.same.size());
    for (std::size_t i = 0; i < shown; ++i)
        text += (i == 0 ? "   same bytes as: " : ", ") + std::string(guess.same[i]->name);
    if (shown < guess.same.size()) text += " and " + std::to_string(guess.same.size() - shown) + " more (--json)";
    if (shown > 0) text += '\n';
    return text;
}

Json guessJson(const Guess& guess, std::span<const unsigned char> message)
{
    constexpr std::size_t mostFindings = 20;
    const Reasons reasons = reasonsOf(guess, message);
    const Type& type = *guess.type;
    Json json{{"type", type.name}, {"kind", kindName(type)}};
    if (moduleOf(type)) json["module"] = moduleName(type);
    json["provisional"] = isProvisional(type);
    json["score"] = std::lround(guess.score);
    json["evidenceBits"] = std::lround(guess.evidence);
    json["fit"] = fitNames[static_cast<std::size_t>(guess.fit)];
    json["used"] = guess.used;
    json["size"] = message.size();
    if (guess.fit == Fit::cut) json["atLeast"] = guess.least;
    if (decodes(guess)) json["roundTripEqual"] = reasons.isRoundTripEqual;
    if (!reasons.refusal.empty()) json["refused"] = reasons.refusal;
    json["enumerators"] = {{"known", reasons.knownEnumerators}, {"all", reasons.enumerators}};
    json["texts"] = {{"readable", reasons.readableTexts}, {"all", reasons.texts}};
    json["findingCount"] = reasons.findings.size();
    json["findings"] = Json::array();
    for (std::size_t i = 0; i < std::min(mostFindings, reasons.findings.size()); ++i)
        json["findings"].push_back(findingJson(reasons.findings[i]));
    json["same"] = Json::array();
    for (const Type* same : guess.same) json["same"].push_back(same->name);
    return json;
}

class GuessVerb : public Verb {
public:
    GuessVerb()
        : Verb("guess", "Guess the type of a message",
               "quorvaxdr guess message.hex\n"
               "quorvaxdr guess message.bin --from raw --module 'jobs/*' --most 10\n"
               "quorvaxdr guess message.hex --json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        input.declare(app, "file with the message");
        app.add_option("--module", module, "only types of modules whose name matches this pattern, such as jobs/*")
            ->type_name("PATTERN");
        takeNumber(app.add_option("--most", most, "how many guesses to print at most"), 1, 10'000, "NUMBER")
            ->capture_default_str();
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        const Bytes message = input.message(nullptr);
        const Catalogue catalogue;
        std::vector<Guess> guesses = Guesser(catalogue.types()).guess(message, catalogue.types().size());
        if (!module.empty()) std::erase_if(guesses, [&](Guess& guess) { return !restrict(guess); });
        if (guesses.size() > most) guesses.resize(most);
        if (json) {
            Json list = Json::array();
            for (const Guess& guess : guesses) list.push_back(guessJson(guess, message));
            printJson(list);
        } else {
            std::string text;
            for (std::size_t i = 0; i < guesses.size(); ++i) text += guessText(i + 1, guesses[i], message);
            print(text);
        }
        if (std::ranges::any_of(guesses, [](const Guess& guess) { return guess.fit == Fit::whole; })) return success;
        printError(input.shown() + ": no type fits the message" + (guesses.empty() ? "" : " as a whole"));
        return found;
    }

private:
    // Leaves only types of the modules. Returns false if there are none.
    bool restrict(Guess& guess) const
    {
        const auto isOther = [&](const Type* type) { return !matches(module, moduleName(*type)); };
        std::erase_if(guess.same, isOther);
        if (!isOther(guess.type)) return true;
        if (guess.same.empty()) return false;
        guess.type = guess.same.front();
        guess.same.erase(guess.same.begin());
        return true;
    }

    InputArgument input;
    std::string module;
    std::size_t most = 5;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeGuess()
{
    return std::make_unique<GuessVerb>();
}

}  // namespace quorva::inspect
