// `sample`: invents a message.

#include "inspect/sample.h"

#include "arguments.h"
#include "inspect/tree_json.h"
#include "output.h"
#include "values.h"

#include <algorithm>
#include <random>

namespace quorva::inspect {

namespace {

class Sample : public Verb {
public:
    Sample()
        : Verb("sample", "Invent a message of a type",
               "quorvaxdr sample JobAVPSeq --seed 7\n"
               "quorvaxdr sample JobAVPSeq --extent most --to hex\n"
               "quorvaxdr sample JobAVPSeq --arm attribute=683 --arm attribute=700\n")
    {
    }

    void declare(CLI::App& app) override
    {
        subject.declare(app);
        takeOneOf(app.add_option("--extent", extent, "how much the message holds"), {"least", "usual", "most"})
            ->capture_default_str();
        takeNumber(app.add_option("--seed", seed, "decides all choices; printed if it is not given"), 0,
                   std::numeric_limits<std::uint64_t>::max(), "NUMBER");
        app.add_option("--arm", arms,
                       "unions take this arm. NAME is a discriminant, a union type or a JSON Pointer; VALUE "
                       "is a number, an enumerator or the name of the arm")
            ->allow_extra_args(false)
            ->type_name("NAME=VALUE");
        takeNumber(app.add_option("--limit", limit, "maximum length of the message, if its arms allow it"), 0,
                   longestMessage, "BYTES")
            ->capture_default_str();
        output.declare(app, {"json", "hex", "raw", "base64", "c"});
    }

    int run() override
    {
        const Type& type = subject.type();
        Recipe recipe;
        recipe.extent = extent == "least" ? Extent::least : extent == "most" ? Extent::most : Extent::usual;
        recipe.budget = limit;
        recipe.seed = seed.value_or(0);
        if (!seed && recipe.extent == Extent::usual) {
            recipe.seed = std::random_device()() % 1'000'000;
            printError("seed " + std::to_string(recipe.seed));
        }
        for (const std::string& arm : arms) {
            const std::size_t sign = arm.find('=');
            if (sign == std::string::npos) throw Stop{usageError, "--arm " + arm + " is not of the form NAME=VALUE"};
            recipe.arms.push_back({arm.substr(0, sign), arm.substr(sign + 1)});
        }
        try {
            const Bytes message = Sampler().sample(type, recipe);
            if (message.size() > longestMessage)
                throw Stop{codingError, std::string("the shortest such ") + type.name + " has " +
                                            std::to_string(message.size()) + " bytes; a message has at most " +
                                            std::to_string(longestMessage)};
            if (output.form() == "json")
                printJson(treeJson(Tree(type, message)));
            else
                print(messageText(message, output.form()));
        } catch (const ArmError& error) {
            throw Stop{usageError, error.what()};
        }
        return success;
    }

private:
    TypeArgument subject;
    OutputOption output{"json"};
    std::string extent = "usual";
    std::optional<std::uint64_t> seed;
    std::vector<std::string> arms;
    std::size_t limit = driverMessage;
};

}  // namespace

std::unique_ptr<Verb> makeSample()
{
    return std::make_unique<Sample>();
}

}  // namespace quorva::inspect
