// The scopes of the generated code, and which definition or member declares a name in each.
#include "check_names.h"

#include "reserved_names.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

bool isSameType(const Declaration& a, const Declaration& b)
{
    return a.form == b.form && a.bound == b.bound && a.type.builtin == b.type.builtin &&
           a.type.definition == b.type.definition;
}

std::string alsoDefined(const std::string& name, const Source& module)
{
    return inQuotes(name) + " is also defined in module " + inQuotes(module.module) +
           ", and in one program one of the two replaces the other; rename the one here";
}

class NameChecker {
public:
    explicit NameChecker(Diagnostics& diagnostics) : errors(diagnostics) {}

    std::vector<const Definition*> run(const Program& program);

private:
    enum class Role { itself, routine, nameFunction };

    // What declares a name: a definition, a function generated for it, or one of its enumerators.
    struct Owner {
        const Definition* definition = nullptr;
        Role role = Role::itself;
        Span at;
    };

    void moduleName(const Module& module);
    void definition(const Definition& definition);
    // Enters a name into the global scope, or reports that it is taken. claimDerived() is for generated functions,
    // whose names may be reserved, too.
    void claim(const std::string& name, const Owner& owner);
    void claimDerived(const std::string& name, const Owner& owner);
    void enumerators(const Definition& definition);
    void fields(const Definition& definition);
    void arms(const Definition& definition);

    // Compares the names of requested modules with those of other modules that the same program may link.
    void others(const Program& program);
    void compare(const std::string& name, const Owner& theirs);

    // True if C++ does not reserve the name; otherwise that is reported.
    bool isFree(const std::string& name, const Span& at, NameScope scope);
    static std::string describeOwner(const Owner& owner);

    Diagnostics& errors;
    std::unordered_map<std::string, Owner> globals;              // names in the global scope of the generated code
    std::unordered_map<std::string_view, Owner> allEnumerators;  // of all enumerations
    std::vector<const Definition*> unique;                       // without those that repeat a name
    std::unordered_set<const Source*> requested;
    std::unordered_set<const Definition*> compared;  // reported by compare()
};

void NameChecker::moduleName(const Module& module)
{
    const std::string& name = module.source.module;
    const bool isMalformed = std::any_of(name.begin(), name.end(), [](char c) {
        return !(c >= 'a' && c <= 'z') && !(c >= 'A' && c <= 'Z') && !(c >= '0' && c <= '9') && c != '_' && c != '/';
    });
    if (isMalformed) {
        errors.error({&module.source, 1, 1, 1}, "a module's name is made of letters, digits and '_', which " +
                                                    inQuotes(name) + " is not; rename this file");
    }
}

bool NameChecker::isFree(const std::string& name, const Span& at, NameScope scope)
{
    const std::string_view reason = reservedBecause(name, scope);
    if (reason.empty()) return true;
    errors.error(at, inQuotes(name) + " " + std::string(reason) + "; choose another name");
    return false;
}

std::string NameChecker::describeOwner(const Owner& owner)
{
    switch (owner.role) {
    case Role::routine: return "the routine of " + describe(*owner.definition);
    case Role::nameFunction: return "the name function of " + describe(*owner.definition);
    case Role::itself: break;
    }
    return describe(*owner.definition);
}

void NameChecker::claim(const std::string& name, const Owner& owner)
{
    const auto [first, isNew] = globals.emplace(name, owner);
    if (isNew) return;
    errors.error(owner.at,
                 inQuotes(name) + " would name both " + describeOwner(owner) + " and " + describeOwner(first->second) +
                     "; rename one of them",
                 Note{first->second.at, describeOwner(first->second) + " comes from here"});
}

void NameChecker::claimDerived(const std::string& name, const Owner& owner)
{
    if (const std::string_view reason = reservedBecause(name, NameScope::global); !reason.empty()) {
        errors.error(owner.at, describeOwner(owner) + " would be " + inQuotes(name) + ", which " + std::string(reason) +
                                   "; choose another name");
        return;
    }
    claim(name, owner);
}

void NameChecker::definition(const Definition& definition)
{
    const auto known = globals.find(definition.name);
    if (known != globals.end() && known->second.role == Role::itself) {
        errors.error(definition.at,
                     inQuotes(definition.name) + " is defined twice; remove or rename one of the definitions",
                     Note{known->second.at, "first defined here"});
        return;
    }
    unique.push_back(&definition);
    claim(definition.name, {&definition, Role::itself, definition.at});
    if (definition.kind == DefinitionKind::constant && (definition.name == "TRUE" || definition.name == "FALSE")) {
        errors.error(definition.at, inQuotes(definition.name) + " is a value of 'bool' already; remove this line");
        return;
    }
    if (!isFree(definition.name, definition.at, NameScope::global) || definition.kind == DefinitionKind::constant)
        return;
    claimDerived("Xdr" + definition.name, {&definition, Role::routine, definition.at});
    if (definition.kind == DefinitionKind::enumeration)
        claimDerived(definition.name + "String", {&definition, Role::nameFunction, definition.at});
}

// The generated code scopes enumerators, but in RFC 4506 they share one scope with constants and types.
void NameChecker::enumerators(const Definition& enumeration)
{
    for (const Enumerator& enumerator : enumeration.enumerators) {
        if (enumerator.name == "TRUE" || enumerator.name == "FALSE") {
            errors.error(enumerator.at, inQuotes(enumerator.name) + " is a value of 'bool'; write 'bool' instead of " +
                                            inQuotes(enumeration.name) +
                                            ", if it has no other values, for the same bytes, or choose another name");
            continue;
        }
        isFree(enumerator.name, enumerator.at, NameScope::inner);
        const std::string name = "enumerator " + inQuotes(enumerator.name);
        const auto [first, isNew] =
            allEnumerators.emplace(enumerator.name, Owner{&enumeration, Role::itself, enumerator.at});
        if (!isNew) {
            errors.error(enumerator.at,
                         name + " is already defined in " + describe(*first->second.definition) +
                             "; all enumerators share one scope, so rename one",
                         Note{first->second.at, "first defined here"});
            continue;
        }
        const auto global = globals.find(enumerator.name);
        if (global != globals.end() && global->second.role == Role::itself) {
            errors.error(enumerator.at,
                         name + " has the name of " + describe(*global->second.definition) + "; rename one",
                         Note{global->second.at, "defined here"});
        }
    }
}

void NameChecker::fields(const Definition& definition)
{
    std::unordered_map<std::string_view, const Declaration*> names;
    for (const Declaration& field : definition.fields) {
        if (field.form == Form::none) continue;
        isFree(field.name, field.at, NameScope::inner);
        if (const auto [first, isNew] = names.emplace(field.name, &field); !isNew) {
            errors.error(field.at, describe(definition) + " has two fields " + inQuotes(field.name) + "; rename one",
                         Note{first->second->at, "the first is here"});
        }
    }
}

// Arms are members of an anonymous union, so their names may equal neither the discriminant nor the enclosing struct.
void NameChecker::arms(const Definition& definition)
{
    const Declaration& discriminant = definition.discriminant;
    isFree(discriminant.name, discriminant.at, NameScope::inner);
    std::unordered_map<std::string_view, const Declaration*> names;
    for (const Arm& arm : definition.arms) {
        const Declaration& held = arm.declaration;
        if (held.form == Form::none) continue;
        isFree(held.name, held.at, NameScope::inner);
        if (held.name == discriminant.name) {
            errors.error(held.at, "arm " + inQuotes(held.name) + " has the name of the discriminant; rename one",
                         Note{discriminant.at, "the discriminant is here"});
            continue;
        }
        if (held.name == definition.name) {
            errors.error(held.at,
                         "arm " + inQuotes(held.name) +
                             " has the name of its union, which C++ keeps for a constructor; rename one",
                         Note{definition.at, "the union is here"});
            continue;
        }
        const auto [first, isNew] = names.emplace(held.name, &held);
        if (!isNew && !isSameType(held, *first->second)) {
            errors.error(held.at,
                         describe(definition) + " has two arms " + inQuotes(held.name) +
                             " with different types; rename one, or give both the same type",
                         Note{first->second->at, "the first is here"});
        }
    }
}

// Enumerators are missing here: generated code scopes them.
void NameChecker::others(const Program& program)
{
    std::unordered_map<std::string_view, const RemoteProgram*> programs;
    for (const auto& module : program.modules) {
        if (!module->requested) continue;
        for (const RemoteProgram& each : module->programs) programs.emplace(each.name, &each);
    }
    for (const auto& module : program.others) {
        for (const auto& made : module->definitions) {
            const Definition& each = *made;
            compare(each.name, {&each, Role::itself, each.at});
            if (each.kind == DefinitionKind::constant) continue;
            compare("Xdr" + each.name, {&each, Role::routine, each.at});
            if (each.kind == DefinitionKind::enumeration)
                compare(each.name + "String", {&each, Role::nameFunction, each.at});
        }
        for (const RemoteProgram& each : module->programs) {
            const auto own = programs.find(each.name);
            if (own == programs.end()) continue;
            errors.error(own->second->at, alsoDefined(each.name, module->source), Note{each.at, "defined here"});
            programs.erase(own);
        }
    }
}

void NameChecker::compare(const std::string& name, const Owner& theirs)
{
    const auto found = globals.find(name);
    if (found == globals.end() || !requested.contains(found->second.at.source)) return;
    const Owner& own = found->second;
    if (!compared.insert(own.definition).second) return;
    const Source& module = *theirs.at.source;
    if (own.role == Role::itself && theirs.role == Role::itself) {
        errors.error(own.at, alsoDefined(name, module), Note{theirs.at, "defined here"});
    } else {
        errors.error(own.at,
                     inQuotes(name) + " would name both " + describeOwner(own) + " and " + describeOwner(theirs) +
                         " in module " + inQuotes(module.module) + "; rename the one here",
                     Note{theirs.at, describeOwner(theirs) + " comes from here"});
    }
}

std::vector<const Definition*> NameChecker::run(const Program& program)
{
    for (const auto& module : program.modules) {
        if (module->requested) requested.insert(&module->source);
        moduleName(*module);
        for (const auto& each : module->definitions) definition(*each);
    }
    for (const Definition* definition : unique) {
        enumerators(*definition);
        fields(*definition);
        if (definition->kind == DefinitionKind::discriminatedUnion) arms(*definition);
    }
    others(program);
    return std::move(unique);
}

}  // namespace

std::vector<const Definition*> checkNames(const Program& program, Diagnostics& errors)
{
    return NameChecker(errors).run(program);
}

}  // namespace quorva::compiler
