// `find`: types, members, arms, enumerators and documentation by a word or a number.

#include "inspect/find.h"

#include "output.h"
#include "values.h"
#include "verb.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace quorva::inspect {

namespace {

constexpr std::size_t shortList = 40;

class Find : public Verb {
public:
    Find()
        : Verb("find", "Find types, members, procedures and documentation by a word or a number",
               "quorvaxdr find pinNumber\n"
               "quorvaxdr find 0x1f4 --kind arm\n"
               "quorvaxdr find 'Job*' --kind enumerator --json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        app.add_option("WORD", word,
                       "part of a name, a whole name with * and ?, or a number such as 700 or 0x2bc; the case of "
                       "letters is ignored. Documentation is searched if no name matches")
            ->required();
        takeOneOf(app.add_option("--kind", kind, "only hits of this kind"),
                  {std::begin(hitKindNames), std::end(hitKindNames)});
        auto* const asJson = app.add_flag("--json", json, "print JSON");
        app.add_flag("--all", all, "print all hits, however many there are")->excludes(asJson);
    }

    int run() override
    {
        const Catalogue catalogue;
        std::optional<HitKind> only;
        if (!kind.empty())
            only = static_cast<HitKind>(std::ranges::find(hitKindNames, std::string_view(kind)) - hitKindNames);
        const std::vector<Hit> hits = findHits(word, catalogue.types(), only);
        if (json)
            printJson(hitsJson(hits));
        else
            print(hitsText(hits, all ? std::numeric_limits<std::size_t>::max() : shortList));
        if (!hits.empty()) return success;
        printError("nothing matches" + suggestedName(word, catalogue.types()));
        return found;
    }

private:
    std::string word, kind;
    bool json = false;
    bool all = false;
};

}  // namespace

std::unique_ptr<Verb> makeFind()
{
    return std::make_unique<Find>();
}

}  // namespace quorva::inspect
