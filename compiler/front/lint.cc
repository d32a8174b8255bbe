// One function for each rule. All read the resolved tree, but width() reads the text.
#include "lint.h"

#include "layout.h"
#include "source.h"
#include "structure.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorva::compiler {

namespace {

constexpr std::uint64_t largeArm = 128;  // bytes

bool isCapital(char c)
{
    return c >= 'A' && c <= 'Z';
}

// Enumerations with settled enumerators, whose prefix cannot change.
constexpr std::array<std::pair<std::string_view, std::string_view>, 2> settledPrefixes = {{
    {"EPCBasicRecoveryAction", "BRA"},
    {"NVMReadWriteStatus", "NRS"},
}};

// The prefix of an enumeration's enumerators: the capitals and digits of its name.
std::string initialsOf(std::string_view name)
{
    for (const auto& [enumeration, prefix] : settledPrefixes) {
        if (enumeration == name) return std::string(prefix);
    }
    std::string initials;
    for (const char c : name) {
        if (isCapital(c) || (c >= '0' && c <= '9')) initials += c;
    }
    return initials;
}

// All types of the program.
std::vector<const Definition*> typesOf(const Program& program)
{
    std::vector<const Definition*> types;
    for (const auto& module : program.modules)
        for (const Definition* type : typesOf(*module)) types.push_back(type);
    return types;
}

class Linter {
public:
    Linter(const Program& program, Diagnostics& diagnostics);

    void module(const Module& module);

private:
    void warn(const Span& at, std::string sentence, std::optional<Note> note = std::nullopt);

    void width(const Source& source);
    void imports(const Module& module);
    template <class Documented>
    void missingDocumentation(const Documented& documented);
    void documentation(const Definition& definition);
    void typeName(const Definition& definition);
    void memberName(const Declaration& member, std::string_view what);
    void enumerators(const Definition& definition);
    void sequence(const Definition& definition);
    void maximum(const Declaration& declaration);
    void orderOfArms(const Definition& definition);
    void sizeOfArms(const Definition& definition);
    void definition(const Definition& definition);

    Layouts layouts;
    std::unordered_set<const Definition*> settledNames;
    Diagnostics& warnings;
};

Linter::Linter(const Program& program, Diagnostics& diagnostics)
    : layouts(layoutsOf(typesOf(program))), warnings(diagnostics)
{
    for (const auto& module : program.modules) {
        for (const auto& definition : module->definitions) {
            if (definition->provisional) continue;
            for (const Declaration* used : declarationsOf(*definition)) settledNames.insert(used->type.definition);
        }
    }
}

void Linter::warn(const Span& at, std::string sentence, std::optional<Note> note)
{
    warnings.error(at, std::move(sentence), std::move(note));
}

// Text

void Linter::width(const Source& source)
{
    unsigned number = 0;
    for (std::string_view line : support::linesOf(source.text)) {
        ++number;
        if (line.ends_with('\r')) line.remove_suffix(1);
        std::size_t columns = 0;
        std::size_t limit = 0;  // bytes within the width
        for (std::size_t at = 0; at < line.size(); ++at) {
            if (support::continuesCharacter(line[at])) continue;
            if (columns++ == lineWidth) limit = at;
        }
        if (columns > lineWidth) {
            warn({&source, number, static_cast<unsigned>(limit + 1), 1},
                 "this line has " + std::to_string(columns) + " columns; break it at " + std::to_string(lineWidth));
        }
    }
}

// Modules

// Warns of an import without which every name would still be found.
void Linter::imports(const Module& module)
{
    std::unordered_set<const Definition*> used;
    const auto useValue = [&](const Value& value) { used.insert(value.owner); };
    for (const auto& definition : module.definitions) {
        useValue(definition->constant);
        for (const Enumerator& enumerator : definition->enumerators) useValue(enumerator.value);
        for (const Arm& arm : definition->arms) std::for_each(arm.cases.begin(), arm.cases.end(), useValue);
        for (const Declaration* declaration : declarationsOf(*definition)) {
            used.insert(declaration->type.definition);
            if (declaration->written) useValue(*declaration->written);
        }
    }
    for (const RemoteProgram& program : module.programs) {
        useValue(program.number);
        for (const RemoteVersion& version : program.versions) {
            useValue(version.number);
            for (const RemoteProcedure& procedure : version.procedures) {
                useValue(procedure.number);
                for (const auto* type : {&procedure.argument, &procedure.result})
                    if (*type) used.insert((*type)->definition);
            }
        }
    }

    const auto defines = [&](const Module& home) {
        return std::any_of(home.definitions.begin(), home.definitions.end(),
                           [&](const auto& definition) { return used.contains(definition.get()); });
    };
    std::unordered_set<const Module*> found = {&module};
    for (const Import& import : module.imports) found.insert(import.module);

    for (const Import& import : module.imports) {
        const std::vector<const Module*> reached = importClosure(*import.module);
        const bool wanted = std::any_of(reached.begin(), reached.end(), [&](const Module* each) {
            return (each == import.module || !found.contains(each)) && defines(*each);
        });
        if (!wanted) warn(import.at, "nothing of module " + inQuotes(import.name) + " is used here; remove the import");
    }
}

// Documentation

template <class Documented>
void Linter::missingDocumentation(const Documented& documented)
{
    if (documented.doc.empty())
        warn(documented.at, inQuotes(documented.name) + " is not documented; describe it in a comment above it");
}

void Linter::documentation(const Definition& definition)
{
    missingDocumentation(definition);
    if (definition.provisional && definition.provisional->empty()) {
        warn(definition.at,
             inQuotes(definition.name) + " is provisional without a reason; say after the mark what it follows");
    }
    for (const Declaration* member : declarationsOf(definition)) {
        if (!member->provisional) continue;
        if (definition.provisional) {
            warn(member->at, inQuotes(member->name) + " is marked '@provisional', and so is the whole of " +
                                 inQuotes(definition.name) + "; keep one of the marks");
        } else if (member->provisional->empty()) {
            warn(member->at,
                 inQuotes(member->name) + " is provisional without a reason; say after the mark what is assumed");
        }
    }
}

// Names

// A name that a settled type refers to is settled, too.
void Linter::typeName(const Definition& definition)
{
    const std::string& name = definition.name;
    if (settledNames.contains(&definition) || (isCapital(name[0]) && name.find('_') == std::string::npos)) return;
    warn(definition.at, inQuotes(name) + " is not written as types are: in capitalised words, without '_'");
}

// Settled members may begin with a capital, so members in general may.
void Linter::memberName(const Declaration& member, std::string_view what)
{
    if (member.name.find('_') == std::string::npos) return;
    warn(member.at, std::string(what) + " " + inQuotes(member.name) +
                        " is not written as members are: in capitalised words but for the first, without '_'");
}

// A provisional enumeration may have a few settled enumerators without the prefix, so half of them suffices. A name of
// one word has no initials; two letters in common suffice there.
void Linter::enumerators(const Definition& definition)
{
    const std::vector<Enumerator>& all = definition.enumerators;
    const auto most = [&](std::size_t count) { return 2 * count >= all.size(); };
    const std::string prefix = initialsOf(definition.name);
    if (prefix.size() > 1) {
        const auto fits = [&](const Enumerator& each) {
            return each.name.starts_with(prefix) && each.name.size() > prefix.size();
        };
        if (most(static_cast<std::size_t>(std::count_if(all.begin(), all.end(), fits)))) return;
        warn(definition.at, "the enumerators of " + inQuotes(definition.name) + " do not begin with " +
                                inQuotes(prefix) + ", its initials, and all enumerators share one scope");
        return;
    }
    std::unordered_map<std::string_view, std::size_t> groups;
    std::size_t largest = 0;
    for (const Enumerator& each : all) largest = std::max(largest, ++groups[std::string_view(each.name).substr(0, 2)]);
    if (most(largest)) return;
    warn(definition.at, "the enumerators of " + inQuotes(definition.name) +
                            " have no prefix in common, and all enumerators share one scope; begin each with the name "
                            "of the enumeration");
}

void Linter::sequence(const Definition& definition)
{
    constexpr std::string_view suffix = "Seq";
    const std::string_view name = definition.name;
    if (definition.target.form != Form::variableArray || !name.ends_with(suffix)) return;
    const std::string_view wanted = name.substr(0, name.size() - suffix.size());
    const std::string& element = definition.target.type.name;
    if (element.starts_with(wanted)) return;
    warn(definition.target.type.at, inQuotes(name) + " is a sequence of " + inQuotes(element) +
                                        "; the name of its elements begins with " + inQuotes(wanted));
}

// Layout

void Linter::maximum(const Declaration& declaration)
{
    const auto& written = declaration.written;
    if (!written || written->isName || written->number != mostElements) return;
    if (declaration.form == Form::fixedArray || declaration.form == Form::fixedOpaque) return;
    warn(written->at, "65535 is the default maximum; write '<>'");
}

void Linter::orderOfArms(const Definition& definition)
{
    const Value* before = nullptr;
    for (const Arm& arm : definition.arms) {
        if (arm.wasDefault) continue;
        for (const Value& value : arm.cases) {
            if (before && value.number < before->number) {
                warn(value.at,
                     "case " + inQuotes(value.text) + " comes after " + inQuotes(before->text) +
                         "; put the arms of union " + inQuotes(definition.name) + " in ascending order",
                     Note{before->at, inQuotes(before->text) + " is here"});
                return;
            }
            before = &value;
        }
    }
}

// The largest arm decides the size of every value of a union.
void Linter::sizeOfArms(const Definition& definition)
{
    const Declaration* largest = nullptr;
    std::uint64_t most = 0;
    std::uint64_t next = 0;
    for (const Arm& arm : definition.arms) {
        const Declaration& held = arm.declaration;
        const std::uint64_t size = layouts.of(held).size;
        if (largest && largest->name == held.name) continue;  // the same member under another number
        if (size > most) {
            next = most;
            most = size;
            largest = &held;
        } else {
            next = std::max(next, size);
        }
    }
    if (!largest || most <= largeArm || most < 2 * next) return;
    const Definition* type = largest->type.definition;
    if (!definition.provisional && !(type && type->provisional)) return;
    warn(largest->at, "arm " + inQuotes(largest->name) + " takes " + std::to_string(most) +
                          " bytes in memory, the others at most " + std::to_string(next) +
                          ", and every value of union " + inQuotes(definition.name) +
                          " is as large as its largest arm; make it optional ('*') or a variable-length array ('< >')");
}

void Linter::definition(const Definition& definition)
{
    documentation(definition);
    for (const Declaration* declaration : declarationsOf(definition)) maximum(*declaration);
    orderOfArms(definition);
    sizeOfArms(definition);
    if (!definition.provisional) return;

    typeName(definition);
    if (definition.kind == DefinitionKind::enumeration) enumerators(definition);
    sequence(definition);
    for (const Declaration& field : definition.fields) memberName(field, "field");
    // The arms of a union of attributes have the names of the attributes, whose numbers select them.
    if (definition.kind != DefinitionKind::discriminatedUnion || !discriminantOf(definition).enumeration) return;
    memberName(definition.discriminant, "discriminant");
    for (const Arm& arm : definition.arms) memberName(arm.declaration, "arm");
}

void Linter::module(const Module& module)
{
    if (module.doc.empty()) {
        warn({&module.source, 1, 1, 1},
             "the module is not documented; describe it at the top of the file, above an empty line");
    }
    width(module.source);
    imports(module);
    for (const auto& each : module.definitions) definition(*each);
    for (const RemoteProgram& each : module.programs) missingDocumentation(each);
}

}  // namespace

void lint(const Program& program, Diagnostics& warnings)
{
    Linter linter(program, warnings);
    for (const auto& module : program.modules) {
        if (module->requested && !warnings.full()) linter.module(*module);
    }
}

}  // namespace quorva::compiler
