// The names that C takes beside those of C++, enumerators in the global scope, and arrays of incomplete types.
#include "check_for_c.h"

#include "reserved_names.h"
#include "resolve.h"
#include "structure.h"

#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

class CheckerForC {
public:
    explicit CheckerForC(Diagnostics& diagnostics) : errors(diagnostics) {}

    void run(const Program& program);

private:
    struct Owner {
        std::string what;
        Span at;
    };

    void member(const Declaration& declaration);
    void global(const std::string& name, const Owner& owner);
    void enumerators(const Definition& enumeration);
    void arrays(const Module& module);

    Diagnostics& errors;
    std::unordered_map<std::string, Owner> globals;
};

void CheckerForC::member(const Declaration& declaration)
{
    if (const std::string_view reason = reservedInC(declaration.name, NameScope::inner); !reason.empty())
        errors.error(declaration.at, inQuotes(declaration.name) + " " + std::string(reason) + "; choose another name");
}

void CheckerForC::global(const std::string& name, const Owner& owner)
{
    globals.emplace(name, owner);
    if (const std::string_view reason = reservedInC(name, NameScope::global); !reason.empty())
        errors.error(owner.at, inQuotes(name) + " " + std::string(reason) + "; choose another name");
}

// C has no scoped enumerators, so each is a global name that is made of two.
void CheckerForC::enumerators(const Definition& enumeration)
{
    for (const Enumerator& each : enumeration.enumerators) {
        const std::string name = enumeratorInC(enumeration, each);
        const std::string what = "enumerator " + inQuotes(each.name);
        std::string_view reason = reservedBecause(name, NameScope::global);
        if (reason.empty()) reason = reservedInC(name, NameScope::global);
        if (!reason.empty()) {
            errors.error(each.at, what + " would be " + inQuotes(name) + " in C, which " + std::string(reason) +
                                      "; choose another name");
            continue;
        }
        const auto [first, isNew] = globals.emplace(name, Owner{what, each.at});
        if (!isNew)
            errors.error(
                each.at,
                what + " would be " + inQuotes(name) + " in C, like " + first->second.what + "; rename one of them",
                Note{first->second.at, first->second.what + " is here"});
    }
}

// In a cycle of types, a typedef of an array precedes its element. C++ accepts that.
void CheckerForC::arrays(const Module& module)
{
    std::unordered_set<const Definition*> incomplete;
    const std::vector<const Definition*> order = declarationOrder(typesOf(module));
    for (const Definition* each : order)
        if (canBeForwardDeclared(*each)) incomplete.insert(each);
    for (const Definition* each : order) {
        incomplete.erase(each);
        if (each->kind != DefinitionKind::typeDefinition || each->target.form != Form::fixedArray) continue;
        const Definition* element = canonicalType(each->target.type).definition;
        if (incomplete.contains(element))
            errors.error(each->at,
                         describe(*each) + " is an array of " + describe(*element) +
                             ", which contains it; C cannot declare it before, so put the array into a struct",
                         Note{element->at, "the element is here"});
    }
}

void CheckerForC::run(const Program& program)
{
    for (const auto& module : program.modules) {
        for (const auto& each : module->definitions) {
            global(each->name, {describe(*each), each->at});
            if (each->kind == DefinitionKind::constant) continue;
            global("Xdr" + each->name, {"the routine of " + describe(*each), each->at});
            if (each->kind == DefinitionKind::enumeration)
                global(each->name + "String", {"the name function of " + describe(*each), each->at});
            if (each->kind == DefinitionKind::structure || each->kind == DefinitionKind::discriminatedUnion)
                for (const Declaration* declaration : declarationsOf(*each)) member(*declaration);
        }
    }
    for (const auto& module : program.modules) {
        for (const auto& each : module->definitions) enumerators(*each);
        arrays(*module);
    }
}

}  // namespace

void checkForC(const Program& program, Diagnostics& errors)
{
    CheckerForC(errors).run(program);
}

}  // namespace quorva::compiler
