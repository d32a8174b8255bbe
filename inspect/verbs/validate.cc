// `validate`: what is wrong with a message, also where a decode accepts it.

#include "arguments.h"
#include "inspect/findings.h"
#include "output.h"

namespace quorva::inspect {

namespace {

class Validate : public Verb {
public:
    Validate()
        : Verb("validate", "Find what is wrong with a message",
               "quorvaxdr validate JobAVPSeq message.hex\n"
               "quorvaxdr validate JobAVPSeq message.hex --json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        arguments.declare(app);
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        arguments.resolve();
        const auto [type, message] = arguments.read();
        const Tree tree(type, message);
        const std::vector<Finding> findings = findingsOf(tree);
        if (json) {
            Json list = Json::array();
            for (const Finding& finding : findings) list.push_back(findingJson(finding));
            printJson(list);
        } else {
            std::string text;
            for (const Finding& finding : findings) text += findingText(finding, arguments.shown()) + '\n';
            print(text);
        }
        if (tree.stopped()) return codingError;
        return findings.empty() ? success : found;
    }

private:
    MessageArguments arguments;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeValidate()
{
    return std::make_unique<Validate>();
}

}  // namespace quorva::inspect
