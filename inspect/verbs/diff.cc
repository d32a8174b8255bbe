// `diff`: what differs in two messages.

#include "inspect/diff.h"

#include "arguments.h"
#include "inspect/guess.h"
#include "output.h"
#include "reference.h"
#include "values.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quorva::inspect {

namespace {

class Diff : public Verb {
public:
    Diff()
        : Verb("diff", "Compare two messages of one type",
               "quorvaxdr diff yesterday.hex today.hex\n"
               "quorvaxdr diff JobAVPSeq yesterday.hex today.hex\n"
               "quorvaxdr diff JobAVPSeq yesterday.hex - --json <today.hex\n"
               "quorvaxdr diff capture.pcap --message 3 --message 7 --interface own.x\n")
    {
    }

    void declare(CLI::App& app) override
    {
        const auto takeFirstWord = [this, &app](const std::string& word) { takeType(app, word); };
        app.add_option_function<std::string>("TYPE", takeFirstWord,
                                             "name of the type; guessed if only two files are given");
        app.add_option("A", fileA, "file with the first message; - is standard input")->required();
        app.add_option("B", fileB,
                       "file with the second message; - is standard input. It may be left out for two messages of one "
                       "capture");
        first.declareForm(app);
        takeNumber(
            app.add_option("--message", numbers, "of a capture: the message with this number; twice for A and B"), 1,
            std::numeric_limits<std::uint64_t>::max(), "NUMBER")
            ->allow_extra_args(false);
        parser = &app;
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        chooseArguments();
        const Type* const named = subject.isGiven() ? &subject.type() : nullptr;
        const Type* typeA = named;
        const Type* typeB = named;
        const Bytes a = read(first, typeA), b = read(second, typeB);
        if (typeA && typeB && typeA != typeB)
            throw Stop{usageError, first.shown() + " is " + typeA->name + " and " + second.shown() + " is " +
                                       typeB->name + "; name a TYPE to compare them as"};
        const Type& type = typeA ? *typeA : typeB ? *typeB : guessed(a, b);
        const Tree treeA(type, a), treeB(type, b);
        const std::vector<Difference> differences = differencesOf(treeA, treeB);
        const std::string rests = restsText(treeA, treeB);
        if (json) {
            Json list = Json::array();
            for (const Difference& difference : differences) list.push_back(differenceJson(difference));
            if (!rests.empty())
                list.push_back({{"change", "left-over"},
                                {"path", ""},
                                {"a", opaqueJson(treeA.bytes().subspan(treeA.length()))},
                                {"b", opaqueJson(treeB.bytes().subspan(treeB.length()))}});
            printJson(list);
        } else {
            std::string text;
            for (const Difference& difference : differences) text += differenceText(difference, usesColour());
            print(text + rests);
        }
        checkDecoded(treeA, first);
        checkDecoded(treeB, second);
        return differences.empty() && rests.empty() ? success : found;
    }

private:
    // Takes the first word of three as TYPE. The parser fills the arguments from the first one on; fewer words are A
    // and B. It calls this before it stores A and B and checks that A is given.
    void takeType(CLI::App& app, const std::string& word)
    {
        CLI::Option& a = *app.get_option("A");
        CLI::Option& b = *app.get_option("B");
        if (b.count() > 0) return subject.choose(word);
        if (a.count() > 0) b.add_result(a.results().front());
        a.clear();
        a.add_result(word);
    }

    void chooseArguments()
    {
        // Two messages of one capture need one file, so the first of two words may be their type.
        const bool isOneCapture = numbers.size() == 2;
        if (isOneCapture && !subject.isGiven() && subject.catalogue().find(fileA)) {
            subject.choose(fileA);
            fileA = std::exchange(fileB, "");
        }
        if (fileB.empty() && !isOneCapture && isCaptureFile(fileA))
            throw Stop{usageError, fileA +
                                       ": a capture of packets; choose two messages with --message NUMBER, or one " +
                                       "message and a second file"};
        if (fileA.empty() || (fileB.empty() && !isOneCapture))
            throw Stop{usageError, std::string(fileA.empty() ? "A" : "B") + " is missing; usage: " + usageOf(*parser)};
        if (numbers.size() > 2) throw Stop{usageError, "--message is given more than twice"};
        first.choose(fileA);
        second.choose(fileB.empty() ? fileA : fileB);
        second.chooseForm(first.form());
        if (first.name() == "-" && second.name() == "-") throw Stop{usageError, "A and B are both standard input"};
        if (numbers.empty()) return;
        if (first.isCapture()) first.chooseMessage(numbers.front());
        if (second.isCapture()) second.chooseMessage(numbers.back());
        if (!first.isCapture() && !second.isCapture())
            throw Stop{usageError, "--message is for captures, and neither A nor B is one"};
    }

    // Reads a message of the type; sets the type of a message in a capture if it is null.
    static Bytes read(const InputArgument& input, const Type*& type)
    {
        if (!input.isCapture()) return input.message(type);
        CapturedBody body = input.captured();
        if (!type) type = body.type;
        return std::move(body.bytes);
    }

    // The most likely type of the first message that the second one fits, too.
    const Type& guessed(const Bytes& a, const Bytes& b) const
    {
        constexpr std::size_t most = 50;
        const Guesser guesser(subject.catalogue().types());
        for (const Guess& guess : guesser.guess(a, most)) {
            if (guess.fit != Fit::whole || Tree(*guess.type, b).stopped()) continue;
            printError(std::string("compared as ") + guess.type->name);
            return *guess.type;
        }
        throw Stop{usageError, "there is no type that both messages fit; name one: quorvaxdr diff TYPE A B"};
    }

    static std::string restsText(const Tree& a, const Tree& b)
    {
        const auto restA = a.bytes().subspan(a.length()), restB = b.bytes().subspan(b.length());
        if (a.stopped() || b.stopped() || std::ranges::equal(restA, restB)) return {};
        return "~ bytes left over: " + std::to_string(restA.size()) + " -> " + std::to_string(restB.size()) +
               (restA.size() == restB.size() ? ", with other contents\n" : "\n");
    }

    void checkDecoded(const Tree& tree, const InputArgument& input) const
    {
        if (!tree.stopped()) return;
        throw Stop{codingError, input.shown() + ": compared up to the failure: cannot decode " + tree.type().name +
                                    ' ' + explained(tree.stopped()->failure, tree.bytes().size())};
    }

    std::string fileA, fileB;
    TypeArgument subject;
    InputArgument first, second;
    std::vector<std::uint64_t> numbers;
    const CLI::App* parser = nullptr;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeDiff()
{
    return std::make_unique<Diff>();
}

}  // namespace quorva::inspect
