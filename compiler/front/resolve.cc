// Symbol tables over all modules of a run, and the lookups through them.
#include "resolve.h"

#include "structure.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

constexpr std::array<std::pair<std::string_view, Builtin>, 9> builtins = {{
    {"Boolean", Builtin::Boolean},
    {"ShortInteger", Builtin::ShortInteger},
    {"ShortNatural", Builtin::ShortNatural},
    {"Integer", Builtin::Integer},
    {"Natural", Builtin::Natural},
    {"LongInteger", Builtin::LongInteger},
    {"LongNatural", Builtin::LongNatural},
    {"UINT", Builtin::UINT},
    {"Float", Builtin::Float},
}};

// Type names of other XDR compilers, and types here with the same bytes.
constexpr std::string_view twoUnits = "struct name { unsigned int upper; unsigned int lower; };";
constexpr std::array<std::pair<std::string_view, std::string_view>, 25> foreignTypes = {{
    {"char", "Integer"},
    {"short", "Integer"},
    {"long", "int"},
    {"u_char", "ShortNatural"},
    {"u_short", "Natural"},
    {"u_int", "unsigned int"},
    {"u_long", "unsigned int"},
    {"int8_t", "Integer"},
    {"uint8_t", "ShortNatural"},
    {"int16_t", "Integer"},
    {"uint16_t", "Natural"},
    {"int32_t", "int"},
    {"uint32_t", "unsigned int"},
    {"u_int8_t", "ShortNatural"},
    {"u_int16_t", "Natural"},
    {"u_int32_t", "unsigned int"},
    {"int64_t", twoUnits},
    {"uint64_t", twoUnits},
    {"u_int64_t", twoUnits},
    {"quad_t", twoUnits},
    {"u_quad_t", twoUnits},
    {"signed", "int"},
    {"bool_t", "bool"},
    {"boolean", "bool"},
    {"String", "string name<n>"},
}};

bool isEnumeration(const TypeRef& type)
{
    return type.definition && type.definition->kind == DefinitionKind::enumeration;
}

std::string_view withArticle(DefinitionKind kind)
{
    switch (kind) {
    case DefinitionKind::enumeration: return "an enumeration";
    case DefinitionKind::structure: return "a struct";
    case DefinitionKind::discriminatedUnion: return "a union";
    case DefinitionKind::typeDefinition:
    case DefinitionKind::constant: break;  // not a type
    }
    return "a typedef";
}

class Resolver {
public:
    Resolver(Program& parsedProgram, Diagnostics& diagnostics) : program(parsedProgram), errors(diagnostics) {}

    void run();

private:
    // A constant or an enumerator. `state` detects constants that are defined by each other.
    struct NamedNumber {
        enum class State { untouched, onChain, settled };
        std::string_view name;
        Value* value = nullptr;
        const Definition* owner = nullptr;
        std::size_t module = 0;
        State state = State::untouched;
    };
    // A definition of a type, and the index of its module.
    struct TypeEntry {
        const Definition* definition = nullptr;
        std::size_t module = 0;
    };

    // Tables over all modules
    void collect();
    void findVisible();

    // Constants and enumerators
    void settleNumbers();
    void settle(NamedNumber& start);

    // The current module
    void definition(Definition& definition);
    void remoteProgram(RemoteProgram& remote);
    void declaration(Declaration& declaration);
    void type(TypeRef& type);
    void unknownType(const TypeRef& type);
    void bound(Declaration& declaration);
    void spreadDefault(Definition& definition);
    std::vector<Value> valuesWithoutCase(const Definition& definition) const;
    void value(Value& value);
    void label(Value& value, const TypeRef& discriminant);
    bool predeclared(Value& value) const;

    // Lookups of names that the current module sees; null if there is none.
    NamedNumber* findNumber(const std::string& name);
    NamedNumber* findEnumerator(const Definition& enumeration, const std::string& name);
    NamedNumber* findOrReport(const Value& value);
    bool followsFromReportedError(const std::string& name) const;
    const std::string& moduleName(std::size_t at) const { return program.modules[at]->source.module; }

    Program& program;
    Diagnostics& errors;
    std::unordered_map<std::string_view, std::vector<TypeEntry>> types;
    // By name the indices into namedNumbers: of all names, and of the enumerators of each enumeration.
    std::unordered_map<std::string_view, std::vector<std::size_t>> numbers;
    std::unordered_map<const Definition*, std::unordered_map<std::string_view, std::size_t>> enumerators;
    std::vector<NamedNumber> namedNumbers;
    std::vector<std::vector<bool>> visible;  // visible[a][b]: module a imports b, directly or through others
    std::size_t currentModule = 0;
    std::size_t spreadValues = 0;  // cases that default arms with data became
};

void Resolver::collect()
{
    for (std::size_t at = 0; at < program.modules.size(); ++at) {
        for (const auto& definition : program.modules[at]->definitions) {
            if (definition->kind == DefinitionKind::constant) {
                namedNumbers.push_back({definition->name, &definition->constant, definition.get(), at, {}});
            } else {
                types[definition->name].push_back({definition.get(), at});
            }
            for (Enumerator& enumerator : definition->enumerators) {
                enumerators[definition.get()].emplace(enumerator.name, namedNumbers.size());
                namedNumbers.push_back({enumerator.name, &enumerator.value, definition.get(), at, {}});
            }
        }
    }
    for (std::size_t i = 0; i < namedNumbers.size(); ++i) numbers[namedNumbers[i].name].push_back(i);
}

void Resolver::findVisible()
{
    const std::size_t count = program.modules.size();
    std::unordered_map<const Module*, std::size_t> indexOf;
    for (std::size_t at = 0; at < count; ++at) indexOf.emplace(program.modules[at].get(), at);

    visible.assign(count, std::vector<bool>(count, false));
    for (std::size_t at = 0; at < count; ++at)
        for (const Module* module : importClosure(*program.modules[at])) visible[at][indexOf.at(module)] = true;
}

// True if the name may be unknown only because of an error that was reported before.
bool Resolver::followsFromReportedError(const std::string& name) const
{
    for (std::size_t at = 0; at < program.modules.size(); ++at) {
        const Module& module = *program.modules[at];
        if (visible[currentModule][at] && (module.incomplete || module.skipped.contains(name))) return true;
    }
    return false;
}

Resolver::NamedNumber* Resolver::findNumber(const std::string& name)
{
    const auto found = numbers.find(name);
    if (found == numbers.end()) return nullptr;
    for (const std::size_t i : found->second) {
        if (visible[currentModule][namedNumbers[i].module]) return &namedNumbers[i];
    }
    return nullptr;
}

// Returns null if the name is unknown, which is reported.
Resolver::NamedNumber* Resolver::findOrReport(const Value& value)
{
    if (NamedNumber* const named = findNumber(value.text)) return named;
    if (followsFromReportedError(value.text) || errors.full()) return nullptr;

    if (const auto elsewhere = numbers.find(value.text); elsewhere != numbers.end()) {
        const std::string& home = moduleName(namedNumbers[elsewhere->second.front()].module);
        errors.error(value.at, inQuotes(value.text) + " is defined in module " + inQuotes(home) +
                                   ", which this file does not import; add 'import " + home + ";'");
        return nullptr;
    }
    if (types.contains(value.text)) {
        errors.error(value.at, inQuotes(value.text) + " is a type; expected a number or a constant's name");
        return nullptr;
    }
    std::vector<std::string_view> candidates;
    for (const NamedNumber& named : namedNumbers) {
        if (visible[currentModule][named.module]) candidates.push_back(named.name);
    }
    const std::string near = suggestion(value.text, candidates);
    errors.error(value.at, "unknown constant " + inQuotes(value.text) +
                               (near.empty() ? "; define it with 'const', or import the module that does" : near));
    return nullptr;
}

void Resolver::settleNumbers()
{
    for (NamedNumber& named : namedNumbers) settle(named);
}

// Follows names to a literal or a settled number, then sets that number along the chain.
void Resolver::settle(NamedNumber& start)
{
    std::vector<NamedNumber*> chain;
    const NamedNumber* end = &start;
    for (NamedNumber* next = &start; next && next->state != NamedNumber::State::settled;) {
        if (next->state == NamedNumber::State::onChain) {
            std::vector<std::string_view> names;
            for (auto it = std::find(chain.begin(), chain.end(), next); it != chain.end(); ++it) {
                names.push_back((*it)->name);
            }
            errors.error(next->value->at, inQuotes(next->name) + " is defined by itself: " + cyclePath(names));
            end = nullptr;
            break;
        }
        next->state = NamedNumber::State::onChain;
        chain.push_back(next);
        if (!next->value->isName || predeclared(*next->value)) break;
        currentModule = next->module;
        NamedNumber* const target = findOrReport(*next->value);
        if (target) next->value->owner = target->owner;
        next = target;
        end = target;
    }
    if (!chain.empty() && chain.back()->value->known) end = chain.back();
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        NamedNumber& named = **it;
        named.state = NamedNumber::State::settled;
        if (end && end->value->known) {
            named.value->number = end->value->number;
            named.value->known = true;
        }
    }
}

// RFC 4506 predeclares TRUE and FALSE.
bool Resolver::predeclared(Value& value) const
{
    if (value.text != "TRUE" && value.text != "FALSE") return false;
    value.number = value.text == "TRUE" ? 1 : 0;
    value.known = true;
    return true;
}

void Resolver::value(Value& value)
{
    if (!value.isName || predeclared(value)) return;
    if (const NamedNumber* const named = findOrReport(value)) {
        value.owner = named->owner;
        value.known = named->value->known;
        value.number = named->value->number;
    }
}

Resolver::NamedNumber* Resolver::findEnumerator(const Definition& enumeration, const std::string& name)
{
    const auto names = enumerators.find(&enumeration);
    if (names == enumerators.end()) return nullptr;
    const auto found = names->second.find(name);
    return found == names->second.end() ? nullptr : &namedNumbers[found->second];
}

// Searches the discriminant's enumeration first, so that suggestions for a wrong name come from there.
void Resolver::label(Value& value, const TypeRef& discriminant)
{
    const TypeRef& type = canonicalType(discriminant);
    if (!value.isName || !isEnumeration(type)) {
        this->value(value);
        return;
    }
    const Definition& enumeration = *type.definition;
    const NamedNumber* named = findEnumerator(enumeration, value.text);
    if (!named) named = findNumber(value.text);
    if (named && (named->owner == &enumeration || named->owner->kind == DefinitionKind::constant)) {
        value.owner = named->owner;
        value.known = named->value->known;
        value.number = named->value->number;
        return;
    }
    if (enumeration.hasErrors || (!named && followsFromReportedError(value.text)) || errors.full()) return;

    std::vector<std::string_view> candidates;
    for (const Enumerator& enumerator : enumeration.enumerators) candidates.push_back(enumerator.name);
    std::string sentence = inQuotes(value.text) + " is not an enumerator of " + inQuotes(enumeration.name);
    if (named) sentence += " but of " + inQuotes(named->owner->name);
    errors.error(value.at, sentence + suggestion(value.text, candidates),
                 Note{enumeration.at, inQuotes(enumeration.name) + " is defined here"});
}

void Resolver::unknownType(const TypeRef& type)
{
    if (followsFromReportedError(type.name) || errors.full()) return;
    if (const auto elsewhere = types.find(type.name); elsewhere != types.end()) {
        const std::string& home = moduleName(elsewhere->second.front().module);
        errors.error(type.at, "type " + inQuotes(type.name) + " is defined in module " + inQuotes(home) +
                                  ", which this file does not import; add 'import " + home + ";'");
        return;
    }
    if (const NamedNumber* const named = findNumber(type.name)) {
        const bool constant = named->owner->kind == DefinitionKind::constant;
        errors.error(type.at,
                     inQuotes(type.name) + (constant ? " is a constant" : " is an enumerator") + ", not a type");
        return;
    }
    const auto foreign = std::find_if(foreignTypes.begin(), foreignTypes.end(),
                                      [&](const auto& pair) { return pair.first == type.name; });
    if (foreign != foreignTypes.end()) {
        errors.error(type.at,
                     "unknown type " + inQuotes(type.name) + "; write " + inQuotes(foreign->second) + " instead");
        return;
    }
    std::vector<std::string_view> candidates;
    for (const auto& [name, definitions] : types) {
        if (std::any_of(definitions.begin(), definitions.end(),
                        [&](const TypeEntry& typed) { return visible[currentModule][typed.module]; })) {
            candidates.push_back(name);
        }
    }
    for (const auto& [name, builtin] : builtins) candidates.push_back(name);
    const std::string near = suggestion(type.name, candidates);
    errors.error(type.at, "unknown type " + inQuotes(type.name) +
                              (near.empty() ? "; define it, or import the module that does" : near));
}

void Resolver::type(TypeRef& type)
{
    if (type.builtin != Builtin::none || type.name.empty()) return;
    const auto builtin =
        std::find_if(builtins.begin(), builtins.end(), [&](const auto& pair) { return pair.first == type.name; });
    if (builtin != builtins.end()) {
        type.builtin = builtin->second;
        if (type.keyword)
            errors.error(type.at,
                         inQuotes(type.name) + " is a built-in type, not " + std::string(withArticle(*type.keyword)));
        return;
    }
    if (const auto found = types.find(type.name); found != types.end()) {
        for (const TypeEntry& typed : found->second) {
            if (visible[currentModule][typed.module]) {
                type.definition = typed.definition;
                break;
            }
        }
    }
    if (!type.definition) {
        unknownType(type);
    } else if (type.keyword && type.definition->kind != *type.keyword) {
        errors.error(type.at,
                     inQuotes(type.name) + " is " + std::string(withArticle(type.definition->kind)) + ", not " +
                         std::string(withArticle(*type.keyword)),
                     Note{type.definition->at, "defined here"});
    }
}

// Values out of range are clamped to 0 or to one more than the maximum, so they stay out of range for check().
void Resolver::bound(Declaration& declaration)
{
    const bool isVariable = declaration.form == Form::variableArray || declaration.form == Form::string ||
                            declaration.form == Form::variableOpaque;
    declaration.bound = isVariable ? mostElements : 0;
    if (!declaration.written) return;
    value(*declaration.written);
    if (declaration.written->known) {
        declaration.bound =
            static_cast<std::uint32_t>(std::clamp<std::int64_t>(declaration.written->number, 0, mostElements + 1));
    }
}

void Resolver::declaration(Declaration& declaration)
{
    switch (declaration.form) {
    case Form::single:
    case Form::fixedArray:
    case Form::variableArray:
    case Form::optional: type(declaration.type); break;
    case Form::string:
    case Form::variableOpaque:
    case Form::fixedOpaque:
    case Form::none: break;
    }
    bound(declaration);
}

void Resolver::definition(Definition& definition)
{
    for (Declaration& field : definition.fields) declaration(field);
    if (definition.kind == DefinitionKind::typeDefinition) declaration(definition.target);
    if (definition.kind == DefinitionKind::discriminatedUnion) {
        declaration(definition.discriminant);
        for (Arm& arm : definition.arms) declaration(arm.declaration);
        if (definition.defaultArm) declaration(definition.defaultArm->declaration);
    }
}

// Values of an enumeration or of `bool` that no case of the union has, in ascending order.
std::vector<Value> Resolver::valuesWithoutCase(const Definition& definition) const
{
    std::unordered_set<std::int64_t> taken;
    for (const Arm& arm : definition.arms)
        for (const Value& each : arm.cases) taken.insert(each.number);

    std::vector<Value> values;
    const auto add = [&](std::string_view name, std::int64_t number, const Definition* owner) {
        if (taken.contains(number)) return;
        values.push_back({std::string(name), definition.defaultArm->declaration.at, true, true, number, owner});
    };
    const TypeRef& type = canonicalType(definition.discriminant.type);
    if (type.builtin == Builtin::Boolean) {
        add("FALSE", 0, nullptr);
        add("TRUE", 1, nullptr);
    } else {
        for (const Enumerator* each : enumeratorsByValue(*type.definition))
            add(each->name, each->value.number, type.definition);
    }
    return values;
}

// Replaces a default arm with data by an arm for the values that have no case. A number as the discriminant has too
// many of them.
void Resolver::spreadDefault(Definition& definition)
{
    if (!definition.defaultArm || definition.defaultArm->declaration.form == Form::none || definition.hasErrors) return;
    const Span& at = definition.defaultArm->declaration.at;
    const TypeRef& type = canonicalType(definition.discriminant.type);
    if (type.builtin == Builtin::LongInteger || type.builtin == Builtin::LongNatural || type.builtin == Builtin::UINT) {
        errors.error(at, "a default arm has data only if the discriminant is an enumeration or 'bool', and " +
                             inQuotes(definition.discriminant.name) +
                             " is a number; write a 'case' for each number that has this data");
        return;
    }
    const bool hasEnumeration = isEnumeration(type) && !type.definition->hasErrors;
    if (type.builtin != Builtin::Boolean && !hasEnumeration) return;  // reported elsewhere
    std::vector<Value> values = valuesWithoutCase(definition);
    if (values.empty()) {
        errors.error(at, "every value of " + inQuotes(definition.discriminant.name) +
                             " has a case, so this default arm never applies; remove it");
        return;
    }
    constexpr std::size_t mostSpreadValues = 65536;
    spreadValues += values.size();
    if (spreadValues > mostSpreadValues) {
        errors.error(at, "the default arms with data apply to more than " + std::to_string(mostSpreadValues) +
                             " values in all files together; write 'default: void;', or cases");
        return;
    }
    definition.arms.push_back({std::move(values), std::move(definition.defaultArm->declaration), true});
    definition.defaultArm.reset();
}

void Resolver::remoteProgram(RemoteProgram& remote)
{
    value(remote.number);
    for (RemoteVersion& version : remote.versions) {
        value(version.number);
        for (RemoteProcedure& procedure : version.procedures) {
            value(procedure.number);
            if (procedure.argument) type(*procedure.argument);
            if (procedure.result) type(*procedure.result);
        }
    }
}

void Resolver::run()
{
    collect();
    findVisible();
    settleNumbers();
    for (currentModule = 0; currentModule < program.modules.size() && !errors.full(); ++currentModule) {
        for (const auto& made : program.modules[currentModule]->definitions) definition(*made);
        for (RemoteProgram& made : program.modules[currentModule]->programs) remoteProgram(made);
    }
    // Cases need the resolved discriminants of the whole program.
    for (currentModule = 0; currentModule < program.modules.size() && !errors.full(); ++currentModule) {
        for (const auto& made : program.modules[currentModule]->definitions) {
            for (Arm& arm : made->arms) {
                for (Value& value : arm.cases) label(value, made->discriminant.type);
            }
            if (!errors.full()) spreadDefault(*made);
        }
    }
}

}  // namespace

void resolve(Program& program, Diagnostics& errors)
{
    Resolver(program, errors).run();
}

bool isAlias(const Definition& definition)
{
    return definition.kind == DefinitionKind::typeDefinition && definition.target.form == Form::single;
}

const TypeRef& canonicalType(const TypeRef& type)
{
    const TypeRef* at = &type;
    for (std::size_t links = 0; links <= deepestNesting; ++links) {
        if (!at->definition || !isAlias(*at->definition)) return *at;
        at = &at->definition->target.type;
    }
    return type;
}

}  // namespace quorva::compiler
