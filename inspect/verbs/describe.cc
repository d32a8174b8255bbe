// `describe`: everything about one type.

#include "inspect/describe.h"

#include "arguments.h"
#include "output.h"

#include <limits>

namespace quorva::inspect {

namespace {

class Describe : public Verb {
public:
    Describe()
        : Verb("describe", "Describe one type",
               "quorvaxdr describe JobId\n"
               "quorvaxdr describe JobState --json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        subject.declare(app);
        auto* const asJson = app.add_flag("--json", json, "print JSON, in the form of `quorvaxdr schema`");
        app.add_flag("--all", all, "print all users, however many there are")->excludes(asJson);
    }

    int run() override
    {
        const Type& type = subject.type();
        const TypeFacts facts(subject.catalogue());
        if (json)
            printJson(descriptionJson(type, facts));
        else if (all)
            print(descriptionText(type, facts, std::numeric_limits<std::size_t>::max()));
        else
            print(descriptionText(type, facts));
        return success;
    }

private:
    TypeArgument subject;
    bool json = false;
    bool all = false;
};

}  // namespace

std::unique_ptr<Verb> makeDescribe()
{
    return std::make_unique<Describe>();
}

}  // namespace quorva::inspect
