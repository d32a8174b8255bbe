// `types`: lists types.

#include "arguments.h"
#include "inspect/describe.h"
#include "inspect/documentation.h"
#include "output.h"
#include "values.h"

#include <iterator>

namespace quorva::inspect {

namespace {

class Types : public Verb {
public:
    Types()
        : Verb("types", "List types",
               "quorvaxdr types 'Job*Params'\n"
               "quorvaxdr types --module 'jobs/*' --kind enum\n"
               "quorvaxdr types --provisional --json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        app.add_option("PATTERN", pattern,
                       "part of a name, or a whole name with * and ?; the case of letters is ignored");
        takeOneOf(app.add_option("--kind", kind, "only types of this kind"),
                  {std::begin(kindNames), std::end(kindNames)});
        app.add_option("--module", module, "only types of modules whose name matches this pattern, such as jobs/*")
            ->type_name("PATTERN");
        app.add_flag("--provisional", provisional, "only types that are provisional, as a whole or in a member");
        auto* const asJson = app.add_flag("--json", json, "print JSON");
        app.add_flag("--summary", summary, "print only how many types, routines and layouts there are")
            ->excludes(asJson);
    }

    int run() override
    {
        const Catalogue catalogue;
        std::vector<const Type*> chosen;
        for (const Type* type : catalogue.types())
            if (matches(pattern, type->name) && (kind.empty() || kind == kindName(*type)) &&
                matches(module, moduleName(*type)) && (!provisional || isProvisional(*type)))
                chosen.push_back(type);
        const bool isWhole = chosen.size() == catalogue.types().size();
        if (summary)
            print(summaryText(chosen, isWhole ? otherPrimitives().size() : 0));
        else if (json)
            printJson(typesJson(chosen));
        else
            print(typesText(chosen));
        if (!chosen.empty()) return success;
        printError("no type matches" + (pattern.empty() ? std::string() : catalogue.didYouMean(pattern)));
        return found;
    }

private:
    std::string pattern, kind, module;
    bool provisional = false;
    bool summary = false;
    bool json = false;
};

}  // namespace

std::unique_ptr<Verb> makeTypes()
{
    return std::make_unique<Types>();
}

}  // namespace quorva::inspect
