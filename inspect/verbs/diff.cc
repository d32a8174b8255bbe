// `diff`: what differs in two messages.

#include "inspect/diff.h"

#include "arguments.h"
#include "inspect/guess.h"
#include "output.h"

namespace quorva::inspect {

namespace {

class Diff : public Verb {
public:
    Diff()
        : Verb("diff", "Compare two messages of one type",
               "quorvaxdr diff yesterday.hex today.hex\n"
               "quorvaxdr diff JobAVPSeq yesterday.hex today.hex\n"
               "quorvaxdr diff JobAVPSeq yesterday.hex - --json <today.hex\n")
    {
    }

    void declare(CLI::App& app) override
    {
        const auto takeFirstWord = [this, &app](const std::string& word) { takeType(app, word); };
        app.add_option_function<std::string>("TYPE", takeFirstWord,
                                             "name of the type; guessed if only two files are given");
        app.add_option("A", fileA, "file with the first message; - is standard input")->required();
        app.add_option("B", fileB, "file with the second message; - is standard input")->required();
        first.declareForm(app);
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        const Type* const named = isNamed ? &subject.type() : nullptr;
        first.choose(fileA);
        second.choose(fileB);
        if (first.name() == "-" && second.name() == "-") throw Stop{usageError, "A and B are both standard input"};
        const Bytes a = first.message(named), b = second.message(named, first.form());
        const Type& type = named ? *named : guessed(a, b);
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
    // and B. It calls this before it stores A and B and checks that they are given.
    void takeType(CLI::App& app, const std::string& word)
    {
        CLI::Option& a = *app.get_option("A");
        CLI::Option& b = *app.get_option("B");
        isNamed = b.count() > 0;
        if (isNamed) return subject.choose(word);
        if (a.count() > 0) b.add_result(a.results().front());
        a.clear();
        a.add_result(word);
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
    bool isNamed = false;
    TypeArgument subject;
    InputArgument first, second;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeDiff()
{
    return std::make_unique<Diff>();
}

}  // namespace quorva::inspect
