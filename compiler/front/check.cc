// The rules of the API for numbers, forms and unions.
#include "check.h"

#include "check_names.h"
#include "check_nesting.h"
#include "check_programs.h"
#include "resolve.h"

#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

namespace {

class Checker {
public:
    explicit Checker(Diagnostics& diagnostics) : errors(diagnostics) {}

    void definition(const Definition& definition);

private:
    struct Numbers {
        std::unordered_set<std::int64_t> known;  // of the enumerators
        bool isComplete = true;                  // false if the number of an enumerator could not be resolved
    };

    void constant(const Definition& definition);
    void enumeration(const Definition& definition);
    void structure(const Definition& definition);
    void discriminatedUnion(const Definition& definition);
    void discriminant(const Definition& definition);
    void cases(const Definition& definition);
    void caseValue(const Definition& definition, const Value& value);
    bool hasNumber(const Definition& enumeration, std::int64_t number);
    void declaration(const Declaration& declaration);

    Diagnostics& errors;
    std::unordered_map<const Definition*, Numbers> numbersOf;
};

void Checker::definition(const Definition& definition)
{
    switch (definition.kind) {
    case DefinitionKind::constant: constant(definition); break;
    case DefinitionKind::enumeration: enumeration(definition); break;
    case DefinitionKind::structure: structure(definition); break;
    case DefinitionKind::discriminatedUnion: discriminatedUnion(definition); break;
    case DefinitionKind::typeDefinition: declaration(definition.target); break;
    }
}

void Checker::constant(const Definition& definition)
{
    const Value& value = definition.constant;
    if (value.known && (value.number < std::numeric_limits<std::int32_t>::min() ||
                        value.number > std::numeric_limits<std::uint32_t>::max())) {
        errors.error(value.at, describe(definition) + " is out of range: the API's numbers have 32 bits");
    }
}

void Checker::enumeration(const Definition& definition)
{
    if (definition.enumerators.empty() && !definition.hasErrors) {
        errors.error(definition.at, describe(definition) + " has no enumerators");
    }
    std::unordered_map<std::int64_t, const Enumerator*> values;
    for (const Enumerator& enumerator : definition.enumerators) {
        const Value& value = enumerator.value;
        if (!value.known) continue;
        if (value.number < 0) {
            errors.error(value.at,
                         "enumerator " + inQuotes(enumerator.name) +
                             " is negative; values begin at 0, so for the same bytes write 'int' instead of " +
                             inQuotes(definition.name) + ", and 'const' for its values");
        } else if (value.number > std::numeric_limits<std::int32_t>::max()) {
            errors.error(value.at, "enumerator " + inQuotes(enumerator.name) +
                                       " is out of range: the largest value is 2147483647");
        } else if (const auto [first, fresh] = values.emplace(value.number, &enumerator); !fresh) {
            errors.error(value.at,
                         "enumerator " + inQuotes(enumerator.name) + " has the value " + std::to_string(value.number) +
                             ", which " + inQuotes(first->second->name) + " has already; each value has one name",
                         Note{first->second->value.at, "first used here"});
        }
    }
}

void Checker::structure(const Definition& definition)
{
    if (definition.fields.empty() && !definition.hasErrors) {
        errors.error(definition.at, describe(definition) + " has no fields");
    }
    for (const Declaration& field : definition.fields) {
        declaration(field);
        if (field.form == Form::none)
            errors.error(field.at, "'void' is for the arms of a union; a struct has no empty fields");
    }
}

void Checker::discriminatedUnion(const Definition& definition)
{
    discriminant(definition);
    const bool hasReportedDefault = definition.defaultArm && definition.defaultArm->declaration.form != Form::none;
    if (definition.arms.empty() && !definition.hasErrors && !hasReportedDefault) {
        errors.error(definition.at, describe(definition) + " has no 'case'; it needs at least one");
    }
    for (const Arm& arm : definition.arms) declaration(arm.declaration);
    cases(definition);
}

void Checker::discriminant(const Definition& definition)
{
    const TypeRef& written = definition.discriminant.type;
    const TypeRef& type = canonicalType(written);
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
        errors.error(written.at, inQuotes(written.name) +
                                     " cannot select an arm; a discriminant is an enumeration, "
                                     "a 32-bit number or 'bool'");
        return;
    case Builtin::none: break;
    }
    if (!type.definition || type.definition->kind == DefinitionKind::enumeration) return;
    if (isAlias(*type.definition)) return;  // a cycle, or too many aliases; checkNesting() reports both
    errors.error(written.at,
                 describe(*type.definition) +
                     " cannot select an arm; a discriminant is an enumeration, "
                     "a 32-bit number or 'bool'",
                 Note{type.definition->at, "defined here"});
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
                errors.error(value.at, "case " + inQuotes(value.text) + number + " has an arm already",
                             Note{first->second->at, "the first is here"});
            }
        }
    }
}

void Checker::caseValue(const Definition& definition, const Value& value)
{
    const TypeRef& type = canonicalType(definition.discriminant.type);
    const auto outside = [&](std::int64_t least, std::int64_t most) {
        if (value.number < least || value.number > most) {
            errors.error(value.at, "case " + inQuotes(value.text) + " is out of range: the discriminant " +
                                       inQuotes(definition.discriminant.name) + " holds " + std::to_string(least) +
                                       " to " + std::to_string(most));
        }
    };
    if (type.builtin == Builtin::Boolean && value.number != 0 && value.number != 1) {
        errors.error(value.at, "case " + inQuotes(value.text) + " is neither TRUE nor FALSE");
    }
    if (type.builtin == Builtin::LongInteger) {
        outside(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
    }
    if (type.builtin == Builtin::LongNatural || type.builtin == Builtin::UINT) {
        outside(0, std::numeric_limits<std::uint32_t>::max());
    }
    if (!type.definition || type.definition->kind != DefinitionKind::enumeration || type.definition->hasErrors) return;
    const Definition& enumeration = *type.definition;
    if (value.owner == &enumeration) return;
    if (!hasNumber(enumeration, value.number)) {
        errors.error(
            value.at,
            "no enumerator of " + inQuotes(enumeration.name) + " has the value " + std::to_string(value.number),
            Note{enumeration.at, inQuotes(enumeration.name) + " is defined here"});
    }
}

// True if an enumerator has the number, or may have it because its own number could not be resolved.
bool Checker::hasNumber(const Definition& enumeration, std::int64_t number)
{
    const auto [entry, isNew] = numbersOf.try_emplace(&enumeration);
    Numbers& numbers = entry->second;
    if (isNew) {
        for (const Enumerator& each : enumeration.enumerators) {
            numbers.known.insert(each.value.number);
            numbers.isComplete = numbers.isComplete && each.value.known;
        }
    }
    return !numbers.isComplete || numbers.known.contains(number);
}

void Checker::declaration(const Declaration& declaration)
{
    if (!declaration.written || !declaration.written->known) return;
    const Value& written = *declaration.written;
    const bool fixed = declaration.form == Form::fixedArray || declaration.form == Form::fixedOpaque;
    const std::string number =
        inQuotes(written.text) + (written.isName ? " (" + std::to_string(written.number) + ")" : "");
    if (written.number < 0) {
        errors.error(written.at, number + " is negative and cannot be a length");
    } else if (fixed && written.number == 0) {
        const std::string form = declaration.form == Form::fixedOpaque ? "fixed-length opaque" : "a fixed-length array";
        errors.error(written.at, form + " of length 0 has no bytes: remove the field, or write 'void' in an arm");
    } else if (written.number > mostElements) {
        errors.error(written.at, number + " is too large: counts in memory have 16 bits, so the maximum is 65535");
    }
}

}  // namespace

void check(const Program& program, Diagnostics& errors)
{
    const std::vector<const Definition*> definitions = checkNames(program, errors);
    Checker checker(errors);
    for (const Definition* each : definitions) {
        if (errors.full()) return;
        checker.definition(*each);
    }
    checkPrograms(program, definitions, errors);
    checkNesting(definitions, errors);
}

}  // namespace quorva::compiler
