// `schema`: all types as one JSON document, or the JSON Schema of a type.

#include "inspect/schema.h"

#include "arguments.h"
#include "output.h"

namespace quorva::inspect {

namespace {

class Schema : public Verb {
public:
    Schema()
        : Verb("schema", "Print all types as one JSON document, or the JSON Schema of a type",
               "quorvaxdr schema | jq '.types[] | select(.kind == \"union\") | .name'\n"
               "quorvaxdr schema JobAVP > JobAVP.schema.json\n"
               "quorvaxdr schema --json-schema > types.schema.json\n")
    {
    }

    void declare(CLI::App& app) override
    {
        app.add_option("TYPE", name, "name of the type; without it, everything about all types is printed");
        app.add_flag("--json-schema", jsonSchema,
                     "print a JSON Schema (2020-12) of the JSON form, as always for one type");
    }

    int run() override
    {
        const Catalogue catalogue;
        if (name.empty()) {
            printJson(jsonSchema ? jsonSchemaOf(catalogue.types()) : schemaJson(catalogue));
            return success;
        }
        const Type* const type = catalogue.find(name);
        if (!type) throw Stop{usageError, "there is no type " + name + catalogue.didYouMean(name)};
        printJson(jsonSchemaOf(*type));
        return success;
    }

private:
    std::string name;
    bool jsonSchema = false;
};

}  // namespace

std::unique_ptr<Verb> makeSchema()
{
    return std::make_unique<Schema>();
}

}  // namespace quorva::inspect
