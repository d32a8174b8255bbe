// The rules of the API over the resolved tree: names, numbers, forms, unions, circles.
#include "check.h"

#include "cycles.h"
#include "resolve.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

constexpr std::int64_t mostElements = 65535;

const std::unordered_set<std::string_view> cppKeywords = {
    "alignas",     "alignof",  "and",        "and_eq",    "asm",       "auto",         "bitand",
    "bitor",       "bool",     "break",      "case",      "catch",     "char",         "char8_t",
    "char16_t",    "char32_t", "class",      "co_await",  "co_return", "co_yield",     "compl",
    "concept",     "const",    "const_cast", "consteval", "constexpr", "constinit",    "continue",
    "decltype",    "default",  "delete",     "do",        "double",    "dynamic_cast", "else",
    "enum",        "explicit", "export",     "extern",    "false",     "float",        "for",
    "friend",      "goto",     "if",         "inline",    "int",       "long",         "mutable",
    "namespace",   "new",      "noexcept",   "not",       "not_eq",    "nullptr",      "operator",
    "or",          "or_eq",    "private",    "protected", "public",    "register",     "reinterpret_cast",
    "requires",    "return",   "short",      "signed",    "sizeof",    "static",       "static_assert",
    "static_cast", "struct",   "switch",     "template",  "this",      "thread_local", "throw",
    "true",        "try",      "typedef",    "typeid",    "typename",  "union",        "unsigned",
    "using",       "virtual",  "void",       "volatile",  "wchar_t",   "while",        "xor",
    "xor_eq",
};

// Macros of the headers that nearly every program includes: no declaration survives them.
const std::unordered_set<std::string_view> macros = {
    "NULL",    "TRUE",     "FALSE",   "EOF",      "BUFSIZ",  "errno",   "stdin",    "stdout", "stderr",
    "assert",  "offsetof", "linux",   "unix",     "i386",    "major",   "minor",    "EDOM",   "ERANGE",
    "EILSEQ",  "EPERM",    "ENOENT",  "EINTR",    "EIO",     "ENXIO",   "E2BIG",    "EBADF",  "EAGAIN",
    "ENOMEM",  "EACCES",   "EFAULT",  "EBUSY",    "EEXIST",  "EINVAL",  "ENFILE",   "EMFILE", "EFBIG",
    "ENOSPC",  "EPIPE",    "NAN",     "INFINITY", "INT_MAX", "INT_MIN", "UINT_MAX", "SIGINT", "SIGHUP",
    "SIGTERM", "SIGKILL",  "SIGSEGV", "SIGABRT",  "SIGFPE",  "SIGILL",  "TRACE",
};

// Names at global scope that generated code and its headers use themselves.
const std::unordered_set<std::string_view> libraryNames = {
    "Xdr",
    "XdrRoutine",
    "quorva",
    "std",
    "main",
    "code",  // the bodies
    "inPlace",
    "ClientsXdrSupport",
    "ClientsXdrDeserialize",
    "TestDeserialize",
    "DeallocateString",
    "Boolean",
    "ShortInteger",
    "ShortNatural",
    "Integer",
    "Natural",
    "LongInteger",
    "LongNatural",
    "UINT",
    "Float",
};

// What follows "Xdr" in the names of the routines that every type shares.
const std::unordered_set<std::string_view> primitiveRoutines = {
    "XdrVoid",       "XdrLongFloat", "XdrEnum",   "XdrLongNatural2", "XdrOpaque",  "XdrOpaque2",    "XdrString",
    "XdrWrapString", "XdrBytes",     "XdrVector", "XdrArray",        "XdrPointer", "XdrDeallocate", "XdrRoutine",
};

// Module names that would replace a file of the library.
const std::unordered_set<std::string_view> libraryModules = {"codec",  "drivers",    "modules", "passes",
                                                              "primitives", "schema", "walk"};

std::string_view kindWord(Kind kind)
{
    switch (kind) {
        case Kind::constant: return "constant";
        case Kind::enumeration: return "enumeration";
        case Kind::record: return "struct";
        case Kind::discriminated: return "union";
        case Kind::definedAs: break;
    }
    return "type";
}

std::string called(const Definition& definition)
{
    return std::string(kindWord(definition.kind)) + " " + inQuotes(definition.name);
}

bool sameContent(const Declaration& a, const Declaration& b)
{
    return a.form == b.form && a.bound == b.bound && a.type.builtin == b.type.builtin &&
           a.type.definition == b.type.definition;
}

class Checker {
public:
    Checker(const Program& program, Diagnostics& faults) : program_(program), faults_(faults) {}

    void run();

private:
    // What a definition gives a name to.
    enum class Role { itself, routine, nameFunction, enumerator };
    struct Claim {
        const Definition* definition = nullptr;
        Role role = Role::itself;
        Span at;
    };

    void claimNames();
    void claim(const std::string& name, const Definition& definition, Role role);
    static std::string bearer(const Claim& claim);
    void claimEnumerators(const Definition& enumeration);
    void moduleName(const Module& module);
    void spelling(const std::string& name, const Span& at, bool global);

    void definition(const Definition& definition);
    void constant(const Definition& definition);
    void enumeration(const Definition& definition);
    void record(const Definition& definition);
    void discriminated(const Definition& definition);
    void discriminant(const Definition& definition);
    void armNames(const Definition& definition);
    void cases(const Definition& definition);
    void caseValue(const Definition& definition, const Value& value);
    void declaration(const Declaration& declaration);

    void circlesByValue();
    void circlesOfTypedefs();

    const Program& program_;
    Diagnostics& faults_;
    std::unordered_map<std::string, Claim> globals_;       // names at global scope of the generated code
    std::unordered_map<std::string_view, Claim> numbers_;  // constants and enumerators
    std::vector<const Definition*> firsts_;                // every definition but those that repeat a name
};

// Names

void Checker::moduleName(const Module& module)
{
    const std::string& name = module.source.module;
    const Span head{&module.source, 1, 1, 1};
    if (libraryModules.contains(name)) {
        faults_.error(head, "no module can be named " + inQuotes(name) +
                                ", because the library has a file of that name; rename this file");
    }
    const auto odd = std::find_if(name.begin(), name.end(), [](char c) {
        return !(c >= 'a' && c <= 'z') && !(c >= 'A' && c <= 'Z') && !(c >= '0' && c <= '9') && c != '_' && c != '/';
    });
    if (odd != name.end()) {
        faults_.error(head, "a module's name is made of letters, digits and '_', which " + inQuotes(name) +
                                " is not; rename this file");
    }
}

void Checker::spelling(const std::string& name, const Span& at, bool global)
{
    if (cppKeywords.contains(name)) {
        faults_.error(at, inQuotes(name) + " is a keyword of C++; choose another name");
    } else if (macros.contains(name)) {
        faults_.error(at, inQuotes(name) + " is a macro of common C++ headers; choose another name");
    } else if (name.find("__") != std::string::npos) {
        faults_.error(at, "names with a double underscore are reserved in C++; choose another name");
    } else if (name.size() > 1 && name[0] == '_' && name[1] >= 'A' && name[1] <= 'Z') {
        faults_.error(at, "names that begin with an underscore and a capital are reserved in C++; choose another name");
    } else if (global && name[0] == '_') {
        faults_.error(at, "global names that begin with an underscore are reserved in C++; choose another name");
    } else if (global && libraryNames.contains(name)) {
        faults_.error(at, inQuotes(name) + " is a name of the library itself; choose another name");
    }
}

std::string Checker::bearer(const Claim& claim)
{
    switch (claim.role) {
        case Role::routine: return "the routine of " + called(*claim.definition);
        case Role::nameFunction: return "the name function of " + called(*claim.definition);
        case Role::itself:
        case Role::enumerator: break;
    }
    return called(*claim.definition);
}

void Checker::claim(const std::string& name, const Definition& definition, Role role)
{
    const Claim claim{&definition, role, definition.at};
    const auto [first, fresh] = globals_.emplace(name, claim);
    if (!fresh) {
        faults_.error(definition.at,
                      inQuotes(name) + " would be the name of two things, of " + bearer(claim) + " and of " +
                          bearer(first->second) + "; rename one of them",
                      Note{first->second.at, bearer(first->second) + " comes from here"});
    }
}

void Checker::claimNames()
{
    for (const auto& module : program_.modules) {
        moduleName(*module);
        for (const auto& made : module->definitions) {
            const Definition& definition = *made;
            const auto known = globals_.find(definition.name);
            if (known != globals_.end() && known->second.role == Role::itself) {
                faults_.error(definition.at,
                              inQuotes(definition.name) + " is defined twice; remove or rename one of the definitions",
                              Note{known->second.at, "first defined here"});
                continue;
            }
            firsts_.push_back(&definition);
            spelling(definition.name, definition.at, true);
            claim(definition.name, definition, Role::itself);
            if (definition.kind == Kind::constant) {
                numbers_.emplace(definition.name, Claim{&definition, Role::itself, definition.at});
                continue;
            }
            const std::string routine = "Xdr" + definition.name;
            if (primitiveRoutines.contains(routine)) {
                faults_.error(definition.at, "the routine of " + called(definition) + " would be " + inQuotes(routine) +
                                                 ", a name of the library itself; choose another name");
            } else {
                claim(routine, definition, Role::routine);
            }
            if (definition.kind == Kind::enumeration) claim(definition.name + "String", definition, Role::nameFunction);
        }
    }
    for (const Definition* definition : firsts_) claimEnumerators(*definition);
}

// Enumerators are no globals of the generated code, but in the language they share one scope with constants and types.
void Checker::claimEnumerators(const Definition& enumeration)
{
    for (const Enumerator& enumerator : enumeration.enumerators) {
        spelling(enumerator.name, enumerator.at, false);
        const auto [first, fresh] =
            numbers_.emplace(enumerator.name, Claim{&enumeration, Role::enumerator, enumerator.at});
        const std::string name = "enumerator " + inQuotes(enumerator.name);
        if (!fresh && first->second.role == Role::enumerator) {
            faults_.error(enumerator.at,
                          name + " stands in " + called(*first->second.definition) +
                              " already; all enumerators share one scope, so rename one",
                          Note{first->second.at, "first defined here"});
            continue;
        }
        const auto global = globals_.find(enumerator.name);
        if (global != globals_.end() && global->second.role == Role::itself) {
            faults_.error(enumerator.at,
                          name + " has the name of " + called(*global->second.definition) + "; rename one",
                          Note{global->second.at, "defined here"});
        }
    }
}

// Definitions

void Checker::definition(const Definition& definition)
{
    switch (definition.kind) {
        case Kind::constant: constant(definition); break;
        case Kind::enumeration: enumeration(definition); break;
        case Kind::record: record(definition); break;
        case Kind::discriminated: discriminated(definition); break;
        case Kind::definedAs: declaration(definition.target); break;
    }
}

void Checker::constant(const Definition& definition)
{
    const Value& value = definition.constant;
    if (value.known && (value.number < std::numeric_limits<std::int32_t>::min() ||
                        value.number > std::numeric_limits<std::uint32_t>::max())) {
        faults_.error(value.at, called(definition) + " is out of range: the API's numbers have 32 bits");
    }
}

void Checker::enumeration(const Definition& definition)
{
    if (definition.enumerators.empty() && !definition.broken) {
        faults_.error(definition.at, called(definition) + " has no enumerators");
    }
    std::unordered_map<std::int64_t, const Enumerator*> values;
    for (const Enumerator& enumerator : definition.enumerators) {
        const Value& value = enumerator.value;
        if (!value.known) continue;
        if (value.number < 0) {
            faults_.error(value.at, "enumerator " + inQuotes(enumerator.name) + " is negative; values begin at 0");
        } else if (value.number > std::numeric_limits<std::int32_t>::max()) {
            faults_.error(value.at, "enumerator " + inQuotes(enumerator.name) +
                                        " is out of range: the largest value is 2147483647");
        } else if (const auto [first, fresh] = values.emplace(value.number, &enumerator); !fresh) {
            faults_.error(value.at,
                          "enumerator " + inQuotes(enumerator.name) + " has the value " + std::to_string(value.number) +
                              ", which " + inQuotes(first->second->name) + " has already; each value has one name",
                          Note{first->second->value.at, "first used here"});
        }
    }
}

void Checker::record(const Definition& definition)
{
    if (definition.fields.empty() && !definition.broken) {
        faults_.error(definition.at, called(definition) + " has no fields");
    }
    std::unordered_map<std::string_view, const Declaration*> names;
    for (const Declaration& field : definition.fields) {
        if (field.form == Form::nothing) {
            faults_.error(field.at, "'void' is for the arms of a union; a struct has no empty fields");
            continue;
        }
        spelling(field.name, field.at, false);
        declaration(field);
        if (const auto [first, fresh] = names.emplace(field.name, &field); !fresh) {
            faults_.error(field.at, called(definition) + " has two fields " + inQuotes(field.name) + "; rename one",
                          Note{first->second->at, "the first is here"});
        }
    }
}

void Checker::discriminated(const Definition& definition)
{
    spelling(definition.discriminant.name, definition.discriminant.at, false);
    discriminant(definition);
    if (definition.arms.empty() && !definition.broken) {
        faults_.error(definition.at, called(definition) + " has no 'case'; it needs at least one");
    }
    if (definition.defaultArm && definition.defaultArm->declaration.form != Form::nothing) {
        faults_.error(
            definition.defaultArm->declaration.at,
            "a default arm carries nothing: only 'default: void;' is possible; give every value its own case");
    }
    for (const Arm& arm : definition.arms) {
        if (arm.declaration.form == Form::nothing) continue;
        spelling(arm.declaration.name, arm.declaration.at, false);
        declaration(arm.declaration);
    }
    armNames(definition);
    cases(definition);
}

void Checker::discriminant(const Definition& definition)
{
    const TypeRef& written = definition.discriminant.type;
    const TypeRef& type = behindAliases(written);
    switch (type.builtin) {
        case Builtin::Boolean:
        case Builtin::LongInteger:
        case Builtin::LongNatural:
        case Builtin::UINT: return;
        case Builtin::ShortInteger:
        case Builtin::ShortNatural:
        case Builtin::Integer:
        case Builtin::Natural:
        case Builtin::Float:
            faults_.error(written.at, inQuotes(written.name) +
                                          " cannot select an arm; a discriminant is an enumeration, "
                                          "a 32-bit number or 'bool'");
            return;
        case Builtin::none: break;
    }
    if (type.definition && type.definition->kind != Kind::enumeration) {
        faults_.error(written.at,
                      called(*type.definition) +
                          " cannot select an arm; a discriminant is an enumeration, "
                          "a 32-bit number or 'bool'",
                      Note{type.definition->at, "defined here"});
    }
}

void Checker::armNames(const Definition& definition)
{
    std::unordered_map<std::string_view, const Declaration*> names;
    for (const Arm& arm : definition.arms) {
        const Declaration& held = arm.declaration;
        if (held.form == Form::nothing) continue;
        if (held.name == definition.discriminant.name) {
            faults_.error(held.at, "arm " + inQuotes(held.name) + " has the name of the discriminant; rename one",
                          Note{definition.discriminant.at, "the discriminant is here"});
            continue;
        }
        const auto [first, fresh] = names.emplace(held.name, &held);
        if (!fresh && !sameContent(held, *first->second)) {
            faults_.error(held.at,
                          called(definition) + " has two arms " + inQuotes(held.name) +
                              " with different types; rename one, or give both the same type",
                          Note{first->second->at, "the first is here"});
        }
    }
}

void Checker::cases(const Definition& definition)
{
    std::unordered_map<std::int64_t, const Value*> seen;
    for (const Arm& arm : definition.arms) {
        for (const Value& value : arm.cases) {
            if (!value.known) continue;
            caseValue(definition, value);
            if (const auto [first, fresh] = seen.emplace(value.number, &value); !fresh) {
                const std::string number = value.isName ? " (" + std::to_string(value.number) + ")" : "";
                faults_.error(value.at, "case " + inQuotes(value.text) + number + " has an arm already",
                              Note{first->second->at, "the first is here"});
            }
        }
    }
}

void Checker::caseValue(const Definition& definition, const Value& value)
{
    const TypeRef& type = behindAliases(definition.discriminant.type);
    const auto outside = [&](std::int64_t least, std::int64_t most) {
        if (value.number < least || value.number > most) {
            faults_.error(value.at, "case " + inQuotes(value.text) + " is out of range: the discriminant " +
                                        inQuotes(definition.discriminant.name) + " holds " + std::to_string(least) +
                                        " to " + std::to_string(most));
        }
    };
    if (type.builtin == Builtin::Boolean && value.number != 0 && value.number != 1) {
        faults_.error(value.at, "case " + inQuotes(value.text) + " is neither TRUE nor FALSE");
    }
    if (type.builtin == Builtin::LongInteger) {
        outside(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
    }
    if (type.builtin == Builtin::LongNatural || type.builtin == Builtin::UINT) {
        outside(0, std::numeric_limits<std::uint32_t>::max());
    }
    if (!type.definition || type.definition->kind != Kind::enumeration || type.definition->broken) return;
    const Definition& enumeration = *type.definition;
    if (value.owner == &enumeration) return;
    const bool named = std::any_of(enumeration.enumerators.begin(), enumeration.enumerators.end(),
                                   [&](const auto& e) { return !e.value.known || e.value.number == value.number; });
    if (!named) {
        faults_.error(
            value.at,
            "no enumerator of " + inQuotes(enumeration.name) + " has the value " + std::to_string(value.number),
            Note{enumeration.at, inQuotes(enumeration.name) + " is defined here"});
    }
}

void Checker::declaration(const Declaration& declaration)
{
    if (!declaration.written || !declaration.written->known) return;
    const Value& written = *declaration.written;
    const bool fixed = declaration.form == Form::vector || declaration.form == Form::opaque;
    const std::string number =
        inQuotes(written.text) + (written.isName ? " (" + std::to_string(written.number) + ")" : "");
    if (written.number < 0) {
        faults_.error(written.at, number + " is negative, and nothing can be counted with it");
    } else if (fixed && written.number == 0) {
        faults_.error(written.at, declaration.form == Form::opaque
                                      ? "no bytes at all: 'opaque' with '[ ]' needs 1 or more"
                                      : "a vector of no elements; give it 1 or more");
    } else if (written.number > mostElements) {
        faults_.error(written.at, number + " is too large: counts in memory have 16 bits, so the most is 65535");
    }
}

// Circles

struct Circle {
    const Definition* first = nullptr;
    Span at;  // where the first type names the second
    std::string path;
    bool throughOptional = false;
};

// Calls `report` with each circle of types that is made of the declarations that `counts` accepts.
template <typename Counts, typename Report>
void findCircles(const std::vector<const Definition*>& types, const Diagnostics& faults, Counts counts, Report report)
{
    std::unordered_map<const Definition*, std::size_t> places;
    for (std::size_t i = 0; i < types.size(); ++i) places.emplace(types[i], i);

    std::vector<std::vector<std::size_t>> edges(types.size());
    std::vector<std::vector<const Declaration*>> named(types.size());
    for (std::size_t i = 0; i < types.size(); ++i) {
        std::unordered_set<std::size_t> once;
        const auto add = [&](const Declaration& declaration) {
            const auto to = places.find(declaration.type.definition);
            if (to == places.end() || !counts(*types[i], declaration) || !once.insert(to->second).second) return;
            edges[i].push_back(to->second);
            named[i].push_back(&declaration);
        };
        for (const Declaration& field : types[i]->fields) add(field);
        for (const Arm& arm : types[i]->arms) add(arm.declaration);
        if (types[i]->kind == Kind::definedAs) add(types[i]->target);
    }
    walk(edges, [&](const std::vector<Step>& path, std::size_t first) {
        if (faults.full()) return;
        const Step& start = path[first];
        Circle found{types[start.node], named[start.node][start.edge]->type.at, "", false};
        std::vector<std::string_view> names;
        for (std::size_t i = first; i < path.size(); ++i) {
            names.emplace_back(types[path[i].node]->name);
            if (named[path[i].node][path[i].edge]->form == Form::optional) found.throughOptional = true;
        }
        found.path = circle(names);
        report(found);
    });
}

bool holdsInPlace(const Declaration& declaration)
{
    return declaration.form == Form::single || declaration.form == Form::vector;
}

void Checker::circlesByValue()
{
    findCircles(
        firsts_, faults_, [](const Definition&, const Declaration& declaration) { return holdsInPlace(declaration); },
        [&](const Circle& circle) {
            faults_.error(circle.at, inQuotes(circle.first->name) + " contains itself: " + circle.path +
                                         "; hold one of them as an optional value ('*') or a list ('< >')");
        });
}

// `typedef A *B; typedef B *A;` is finite in memory, but no C++ type says it.
void Checker::circlesOfTypedefs()
{
    findCircles(
        firsts_, faults_,
        [](const Definition& definition, const Declaration& declaration) {
            return definition.kind == Kind::definedAs && declaration.type.definition->kind == Kind::definedAs &&
                   (holdsInPlace(declaration) || declaration.form == Form::optional);
        },
        [&](const Circle& circle) {
            if (!circle.throughOptional) return;  // the rest was found as contained by value
            faults_.error(circle.at, "typedef " + inQuotes(circle.first->name) + " is made of nothing but typedefs: " +
                                         circle.path + "; put a struct between them");
        });
}

void Checker::run()
{
    claimNames();
    for (const Definition* made : firsts_) {
        if (faults_.full()) return;
        definition(*made);
    }
    circlesByValue();
    circlesOfTypedefs();
}

}  // namespace

void check(const Program& program, Diagnostics& faults)
{
    Checker(program, faults).run();
}

}  // namespace quorva::compiler
