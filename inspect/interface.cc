// Reads interface files with the compiler's front end, and describes their types.

#include "interface.h"

#include "compiler/front/check.h"
#include "compiler/front/layout.h"
#include "compiler/front/resolve.h"
#include "compiler/front/source.h"
#include "compiler/front/structure.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace quorva::inspect {

namespace {

using compiler::Declaration;
using compiler::Definition;
using compiler::DefinitionKind;

// A type and everything that its description points to, but for texts of the program.
struct Described {
    Type type;
    std::string armElement;
    std::vector<Member> members;
    std::vector<Case> cases;
    std::vector<MemberDocumentation> memberTexts;
    std::vector<Enumerator> enumerators;
};

struct DescribedModule {
    Module module;
    std::string file;
    std::vector<Documentation> types;
    std::vector<RemoteProgram> programs;
    std::deque<std::vector<RemoteVersion>> versions;
    std::deque<std::vector<RemoteProcedure>> procedures;
};

TypeKind kindOf(const Definition& definition)
{
    switch (definition.kind) {
    case DefinitionKind::enumeration: return TypeKind::enumeration;
    case DefinitionKind::structure: return TypeKind::structure;
    case DefinitionKind::discriminatedUnion: return TypeKind::discriminatedUnion;
    case DefinitionKind::constant:
    case DefinitionKind::typeDefinition: break;
    }
    return TypeKind::typeDefinition;
}

const Type* builtinType(compiler::Builtin builtin)
{
    static constexpr const Type* types[] = {
        nullptr,         &types::Boolean,     &types::ShortInteger, &types::ShortNatural, &types::Integer,
        &types::Natural, &types::LongInteger, &types::LongNatural,  &types::UINT,         &types::Float};
    return types[static_cast<int>(builtin)];
}

// The compiler has the same forms in the same order.
Form formOf(const Declaration& declaration)
{
    static_assert(static_cast<int>(Form::single) == static_cast<int>(compiler::Form::single) &&
                  static_cast<int>(Form::fixedArray) == static_cast<int>(compiler::Form::fixedArray) &&
                  static_cast<int>(Form::variableArray) == static_cast<int>(compiler::Form::variableArray) &&
                  static_cast<int>(Form::optional) == static_cast<int>(compiler::Form::optional) &&
                  static_cast<int>(Form::string) == static_cast<int>(compiler::Form::string) &&
                  static_cast<int>(Form::variableOpaque) == static_cast<int>(compiler::Form::variableOpaque) &&
                  static_cast<int>(Form::fixedOpaque) == static_cast<int>(compiler::Form::fixedOpaque) &&
                  static_cast<int>(Form::none) == static_cast<int>(compiler::Form::none));
    return static_cast<Form>(declaration.form);
}

const char* textOf(const std::optional<std::string>& text)
{
    return text ? text->c_str() : nullptr;
}

// Describes the types of a program, which must outlive the descriptions.
class Describer {
public:
    explicit Describer(std::unordered_map<const Definition*, Described>& described) : types(described) {}

    void describe(const compiler::Module& module, DescribedModule& described)
    {
        described.file = module.source.module + ".x";
        for (const Definition* definition : typesOf(module)) {
            describe(*definition);
            described.types.push_back(documentation(*definition));
        }
        for (const compiler::RemoteProgram& each : module.programs) describe(each, described);
        described.module = {module.source.module.c_str(), described.file.c_str(), module.doc.c_str(), described.types,
                            described.programs};
    }

private:
    void describe(const compiler::RemoteProgram& remote, DescribedModule& described)
    {
        auto& versions = described.versions.emplace_back();
        for (const compiler::RemoteVersion& version : remote.versions) {
            auto& procedures = described.procedures.emplace_back();
            for (const compiler::RemoteProcedure& each : version.procedures)
                procedures.push_back({each.name.c_str(), numberOf(each.number), typeOf(each.argument),
                                      typeOf(each.result), each.doc.c_str()});
            versions.push_back({version.name.c_str(), numberOf(version.number), version.doc.c_str(), procedures});
        }
        described.programs.push_back(
            {remote.name.c_str(), numberOf(remote.number), remote.at.line, remote.doc.c_str(), versions});
    }

    static std::uint32_t numberOf(const compiler::Value& value) { return static_cast<std::uint32_t>(value.number); }

    const Type* typeOf(const std::optional<compiler::TypeRef>& type) { return type ? typeOf(*type) : nullptr; }

    const Type* typeOf(const compiler::TypeRef& type)
    {
        return type.definition ? &types[type.definition].type : builtinType(type.builtin);
    }

    // The description of the definition, which has at least its size.
    Described& sized(const Definition& definition)
    {
        Described& described = types[&definition];
        if (described.type.size != 0) return described;
        for (const Declaration* each : declarationsOf(definition)) {
            const bool isHeld = each->form == compiler::Form::single || each->form == compiler::Form::fixedArray;
            if (isHeld && each->type.definition) sized(*each->type.definition);
        }
        const compiler::Layout layout = layouts.add(definition);
        described.type.size = static_cast<std::uint32_t>(layout.size);
        described.type.alignment = static_cast<std::uint32_t>(layout.alignment);
        return described;
    }

    void describe(const Definition& definition)
    {
        Described& described = sized(definition);
        Type& type = described.type;
        type.name = definition.name.c_str();
        type.kind = kindOf(definition);
        type.hasDefault = definition.defaultArm.has_value();
        addMembers(definition, described);
        if (type.kind == TypeKind::enumeration) addEnumerators(definition, described);
        if (type.kind == TypeKind::discriminatedUnion) addCases(definition, described);
        type.members = described.members;
        type.cases = described.cases;
        type.armElement = described.armElement.c_str();
    }

    void addMembers(const Definition& definition, Described& described)
    {
        const std::vector<std::uint64_t> offsets = layouts.offsetsIn(definition);
        for (const Declaration* each : declarationsOf(definition)) {
            const bool isNamed = definition.kind != DefinitionKind::typeDefinition;
            const Use use = {typeOf(each->type), each->bound, formOf(*each)};
            described.members.emplace_back(isNamed ? each->name.c_str() : "", use, offsets[described.members.size()]);
            described.memberTexts.push_back({each->doc.c_str(), textOf(each->provisional)});
        }
        const auto isEmpty = [](const MemberDocumentation& each) { return !*each.text && !each.provisional; };
        if (std::ranges::all_of(described.memberTexts, isEmpty)) described.memberTexts.clear();
    }

    static void addEnumerators(const Definition& definition, Described& described)
    {
        described.members.emplace_back("Error_in_Function", Use{}, 0);  // as generated name functions return
        for (const compiler::Enumerator* each : enumeratorsByValue(definition)) {
            const std::int64_t value = each->value.number;
            described.enumerators.push_back({each->name.c_str(), static_cast<std::int32_t>(value), each->doc.c_str()});
            described.cases.push_back(
                {static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(described.members.size())});
            described.members.emplace_back(each->name.c_str(), Use{}, 0);
        }
    }

    static void addCases(const Definition& definition, Described& described)
    {
        described.armElement = definition.name + "Union";
        std::uint32_t member = 0;
        for (const compiler::Arm& arm : definition.arms) {
            ++member;
            for (const compiler::Value& value : arm.cases)
                described.cases.push_back({static_cast<std::uint32_t>(value.number), member});
        }
        std::ranges::sort(described.cases, {}, &Case::value);
    }

    Documentation documentation(const Definition& definition)
    {
        const Described& described = types[&definition];
        return {&described.type,       definition.at.line,   definition.doc.c_str(), textOf(definition.provisional),
                described.memberTexts, described.enumerators};
    }

    compiler::Layouts layouts{sizeof(void*)};
    std::unordered_map<const Definition*, Described>& types;
};

// The typedefs from this type on that name each other, at most one more than may. Arrays end the row, because the
// traversal counts their elements.
unsigned typedefsFrom(const Definition* definition)
{
    unsigned count = 0;
    while (definition && definition->kind == DefinitionKind::typeDefinition && count <= Interfaces::mostTypedefs) {
        ++count;
        const compiler::Form form = definition->target.form;
        const bool goesOn = form == compiler::Form::single || form == compiler::Form::optional;
        definition = goesOn ? definition->target.type.definition : nullptr;
    }
    return count;
}

void checkTypedefs(const compiler::Program& program, compiler::Diagnostics& errors)
{
    for (const auto& module : program.modules)
        for (const Definition* each : typesOf(*module))
            if (typedefsFrom(each) > Interfaces::mostTypedefs)
                errors.error(each->at, "typedef " + compiler::inQuotes(each->name) + " begins a row of more than " +
                                           std::to_string(Interfaces::mostTypedefs) +
                                           " typedefs; the inspector follows no more");
}

// Throws the errors, if there are any.
void throwErrors(const compiler::Diagnostics& errors, const std::vector<std::string>& unreadable)
{
    if (errors.count() == 0 && unreadable.empty()) return;
    std::ostringstream text;
    errors.print(text);
    for (const std::string& sentence : unreadable) text << sentence << '\n';
    std::string lines = std::move(text).str();
    lines.pop_back();
    throw InterfaceError(lines, !unreadable.empty());
}

compiler::Program read(const InterfaceFiles& files)
{
    std::vector<std::string> folders = files.folders;
    if (folders.empty()) folders.emplace_back(".");
    if (!files.installed.empty()) folders.push_back(files.installed);
    compiler::Diagnostics errors;
    std::vector<std::string> unreadable;
    compiler::Program program = readProgram(files.files, compiler::SearchPath(folders), errors, unreadable);
    resolve(program, errors);
    check(program, errors);
    throwErrors(errors, unreadable);
    return program;
}

}  // namespace

struct Interfaces::Contents {
    compiler::Program program;  // has the names and the texts of the descriptions
    std::unordered_map<const Definition*, Described> types;
    std::deque<DescribedModule> described;
    std::vector<const Module*> modules;
    std::vector<std::string> notes;

    void describe();
    void noteHiddenTypes();
};

void Interfaces::Contents::describe()
{
    compiler::Diagnostics errors;
    checkTypedefs(program, errors);
    throwErrors(errors, {});
    Describer describer(types);
    for (const auto& module : program.modules) {
        describer.describe(*module, described.emplace_back());
        modules.push_back(&described.back().module);
    }
}

// A type of a module that is replaced is not hidden but replaced.
void Interfaces::Contents::noteHiddenTypes()
{
    std::unordered_map<std::string_view, const Module*> hidden;
    for (const Module* module : knownModules())
        for (const Documentation& each : module->types) hidden[each.type->name] = module;
    std::unordered_set<std::string_view> replaced;
    for (const Module* module : modules) replaced.insert(module->name);
    for (std::size_t i = 0; i < modules.size(); ++i)
        for (const Documentation& each : modules[i]->types) {
            const auto found = hidden.find(each.type->name);
            if (found == hidden.end() || replaced.contains(found->second->name)) continue;
            notes.push_back(program.modules[i]->source.path + ": " + each.type->name + " hides the type of " +
                            found->second->name);
        }
}

Interfaces::Interfaces(const InterfaceFiles& files) : Interfaces(read(files)) {}

Interfaces::Interfaces(compiler::Program program) : contents(std::make_unique<Contents>())
{
    contents->program = std::move(program);
    contents->describe();
    contents->noteHiddenTypes();
    addModules(contents->modules);
}

Interfaces::~Interfaces()
{
    removeModules(contents->modules);
}

std::span<const Module* const> Interfaces::modules() const
{
    return contents->modules;
}

const std::vector<std::string>& Interfaces::notes() const
{
    return contents->notes;
}

std::string installedInterfaces(const std::string& folderOfProgram)
{
    std::error_code ignored;
    const auto folder = std::filesystem::path(folderOfProgram) / ".." / "share" / "quorvapixdr" / "types";
    return std::filesystem::is_directory(folder, ignored) ? folder.lexically_normal().string() : "";
}

}  // namespace quorva::inspect
