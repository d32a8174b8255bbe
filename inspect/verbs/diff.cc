// `diff`: what differs in two messages.

#include "inspect/diff.h"

#include "arguments.h"
#include "inspect/findings.h"
#include "output.h"

namespace quorva::inspect {

namespace {

class Diff : public Verb {
public:
    Diff()
        : Verb("diff", "Compare two messages of one type",
               "quorvaxdr diff JobAVPSeq yesterday.hex today.hex\n"
               "quorvaxdr diff JobAVPSeq yesterday.hex - --json <today.hex\n")
    {
    }

    void declare(CLI::App& app) override
    {
        subject.declare(app);
        first.declareFile(app, "A", "file with the first message");
        second.declareFile(app, "B", "file with the second message");
        first.declareForm(app);
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        const Type& type = subject.type();
        const Bytes a = first.message(&type), b = second.message(&type, first.form());
        const Tree treeA(type, a), treeB(type, b);
        const std::vector<Difference> differences = differencesOf(treeA, treeB);
        const std::string rests = restsText(treeA, treeB);
        if (json) {
            Json list = Json::array();
            for (const Difference& difference : differences) list.push_back(differenceJson(difference));
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
