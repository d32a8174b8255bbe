// `describe`: everything about one type.

#include "inspect/describe.h"

#include "arguments.h"
#include "output.h"

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
        app.add_flag("--json", json, "print JSON");
    }

    int run() override
    {
        const Type& type = subject.type();
        if (json)
            printJson(descriptionJson(type, subject.catalogue()));
        else
            print(descriptionText(type, subject.catalogue()));
        return success;
    }

private:
    TypeArgument subject;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeDescribe()
{
    return std::make_unique<Describe>();
}

}  // namespace quorva::inspect
