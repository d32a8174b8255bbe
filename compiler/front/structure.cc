// Implements the queries, and sorts definitions by their uses.
#include "structure.h"

#include "resolve.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

bool isByValue(Form form)
{
    return form == Form::single || form == Form::fixedArray;
}

// Finds the groups of definitions that refer to each other, and orders the groups: Tarjan's algorithm for strongly
// connected components, with an explicit stack instead of recursion.
class Order {
public:
    Order(const std::vector<const Definition*>& definitions, Language printedLanguage);

    std::vector<const Definition*> find();

private:
    static constexpr std::size_t unseen = std::numeric_limits<std::size_t>::max();

    // A use of another definition.
    struct Edge {
        std::size_t node;
        bool byValue;
    };
    struct Node {
        const Definition* definition = nullptr;
        std::vector<Edge> edges;
        std::size_t number = unseen;  // in the order of visits
        std::size_t lowest = unseen;  // number of the first node on the path that this one leads back to
        bool isGrouped = false;
    };
    // A node on the path of the search.
    struct Frame {
        std::size_t node;
        std::size_t nextEdge;
    };

    // The search for groups
    void visit(std::size_t start);
    void enter(std::size_t node);
    void leave(std::size_t node);
    void closeGroup(std::size_t node);

    // The order within a group
    void complete(std::size_t node);
    void name(std::size_t node);
    void append(std::size_t node);

    Language language;
    std::vector<Node> nodes;
    std::vector<Frame> path;
    std::vector<std::size_t> open;  // entered and not grouped yet
    std::size_t numbered = 0;
    std::vector<bool> completed;
    std::vector<bool> named;
    std::vector<bool> appended;
    std::vector<const Definition*> order;
};

Order::Order(const std::vector<const Definition*>& definitions, Language printedLanguage)
    : language(printedLanguage),
      nodes(definitions.size()),
      completed(definitions.size()),
      named(definitions.size()),
      appended(definitions.size())
{
    std::unordered_map<const Definition*, std::size_t> nodeOf;
    for (std::size_t at = 0; at < definitions.size(); ++at) nodeOf[definitions[at]] = at;
    for (std::size_t at = 0; at < definitions.size(); ++at) {
        nodes[at].definition = definitions[at];
        for (const Declaration* declaration : declarationsOf(*definitions[at]))
            if (const auto used = nodeOf.find(declaration->type.definition); used != nodeOf.end())
                nodes[at].edges.push_back({used->second, isByValue(declaration->form)});
    }
}

std::vector<const Definition*> Order::find()
{
    for (std::size_t at = 0; at < nodes.size(); ++at)
        if (nodes[at].number == unseen) visit(at);
    return order;
}

void Order::visit(std::size_t start)
{
    enter(start);
    while (!path.empty()) {
        const std::size_t node = path.back().node;
        if (path.back().nextEdge == nodes[node].edges.size()) {
            leave(node);
            continue;
        }
        const std::size_t used = nodes[node].edges[path.back().nextEdge++].node;
        if (nodes[used].number == unseen)
            enter(used);
        else if (!nodes[used].isGrouped)
            nodes[node].lowest = std::min(nodes[node].lowest, nodes[used].number);
    }
}

void Order::enter(std::size_t node)
{
    nodes[node].number = nodes[node].lowest = numbered++;
    open.push_back(node);
    path.push_back({node, 0});
}

void Order::leave(std::size_t node)
{
    path.pop_back();
    if (!path.empty()) {
        Node& user = nodes[path.back().node];
        user.lowest = std::min(user.lowest, nodes[node].lowest);
    }
    if (nodes[node].lowest == nodes[node].number) closeGroup(node);
}

void Order::closeGroup(std::size_t node)
{
    const auto first = std::find(open.begin(), open.end(), node);
    std::vector<std::size_t> group(first, open.end());
    open.erase(first, open.end());
    for (const std::size_t member : group) nodes[member].isGrouped = true;

    std::sort(group.begin(), group.end());
    for (const std::size_t member : group) complete(member);
}

// Appends the definition after what it holds by value and after the typedefs that it names. What it uses of other
// groups is in the order already.
void Order::complete(std::size_t node)
{
    if (completed[node]) return;
    completed[node] = true;
    for (const auto& [used, byValue] : nodes[node].edges) {
        if (byValue)
            complete(used);
        else
            name(used);
    }
    append(node);
}

// Appends a typedef before its name is used; the typedef itself needs only the names in it. Types that the language can
// forward-declare need not precede their use.
void Order::name(std::size_t node)
{
    const Definition& definition = *nodes[node].definition;
    if (definition.kind != DefinitionKind::typeDefinition || named[node]) return;
    if (language == Language::cpp && canBeForwardDeclared(definition)) return;
    named[node] = true;
    for (const auto& [used, byValue] : nodes[node].edges) name(used);
    append(node);
}

void Order::append(std::size_t node)
{
    if (appended[node]) return;
    appended[node] = true;
    order.push_back(nodes[node].definition);
}

}  // namespace

bool isCountedStruct(const Definition& definition)
{
    return definition.kind == DefinitionKind::typeDefinition &&
           (definition.target.form == Form::variableArray || definition.target.form == Form::variableOpaque);
}

bool isDistinctType(const Definition& definition)
{
    return definition.kind == DefinitionKind::enumeration || canBeForwardDeclared(definition);
}

bool canBeForwardDeclared(const Definition& definition)
{
    return definition.kind == DefinitionKind::structure || definition.kind == DefinitionKind::discriminatedUnion ||
           isCountedStruct(definition);
}

std::vector<const Definition*> typesOf(const Module& module)
{
    std::vector<const Definition*> out;
    for (const auto& definition : module.definitions)
        if (definition->kind != DefinitionKind::constant) out.push_back(definition.get());
    return out;
}

std::vector<const Definition*> constantsOf(const Module& module)
{
    std::vector<const Definition*> out;
    for (const auto& definition : module.definitions)
        if (definition->kind == DefinitionKind::constant) out.push_back(definition.get());
    return out;
}

std::vector<const Module*> importClosure(const Module& module)
{
    std::vector<const Module*> found = {&module};
    std::unordered_set<const Module*> seen = {&module};
    for (std::size_t next = 0; next < found.size(); ++next)
        for (const Import& import : found[next]->imports)
            if (import.module && seen.insert(import.module).second) found.push_back(import.module);
    return found;
}

std::vector<const Enumerator*> enumeratorsByValue(const Definition& enumeration)
{
    std::vector<const Enumerator*> out;
    for (const Enumerator& each : enumeration.enumerators) out.push_back(&each);
    std::ranges::sort(out, {}, [](const Enumerator* each) { return each->value.number; });
    return out;
}

namespace {

std::string marked(const std::string& doc, const std::optional<std::string>& provisional)
{
    if (!provisional) return doc;
    const std::string mark = provisional->empty() ? "Provisional." : "Provisional: " + *provisional;
    return doc.empty() ? mark : doc + "\n" + mark;
}

}  // namespace

std::string docOf(const Definition& definition)
{
    return marked(definition.doc, definition.provisional);
}

std::string docOf(const Declaration& declaration)
{
    return marked(declaration.doc, declaration.provisional);
}

std::vector<const Declaration*> declarationsOf(const Definition& definition)
{
    std::vector<const Declaration*> out;
    switch (definition.kind) {
    case DefinitionKind::constant:
    case DefinitionKind::enumeration: break;
    case DefinitionKind::structure:
        for (const Declaration& field : definition.fields) out.push_back(&field);
        break;
    case DefinitionKind::discriminatedUnion:
        out.push_back(&definition.discriminant);
        for (const Arm& arm : definition.arms) out.push_back(&arm.declaration);
        break;
    case DefinitionKind::typeDefinition: out.push_back(&definition.target); break;
    }
    return out;
}

Discriminant discriminantOf(const Definition& discriminatedUnion)
{
    const TypeRef& type = canonicalType(discriminatedUnion.discriminant.type);
    return {type.builtin, type.definition};
}

std::vector<ArmMember> armMembersOf(const Definition& discriminatedUnion)
{
    std::vector<ArmMember> out;
    std::unordered_map<std::string, std::size_t> indexOf;
    for (const Arm& arm : discriminatedUnion.arms) {
        const Declaration& declaration = arm.declaration;
        if (declaration.form == Form::none) continue;

        const auto [entry, isNew] = indexOf.emplace(declaration.name, out.size());
        if (isNew) out.push_back({&declaration, {}, ""});  // else check() made sure that the types are the same
        ArmMember& member = out[entry->second];
        for (const Value& value : arm.cases) member.cases.push_back(&value);
        const std::string doc = docOf(declaration);
        if (member.doc.empty())
            member.doc = doc;
        else if (!doc.empty() && doc != member.doc)
            member.doc += '\n' + doc;
    }
    return out;
}

std::vector<ArmMember> voidArmsOf(const Definition& discriminatedUnion)
{
    ArmMember undocumented;
    std::vector<ArmMember> documented;
    for (const Arm& arm : discriminatedUnion.arms) {
        if (arm.declaration.form != Form::none) continue;
        const std::string doc = docOf(arm.declaration);
        ArmMember& member = doc.empty() ? undocumented : documented.emplace_back();
        member.declaration = &arm.declaration;
        member.doc = doc;
        for (const Value& value : arm.cases) member.cases.push_back(&value);
    }
    if (undocumented.declaration) documented.push_back(undocumented);
    return documented;
}

std::vector<const Definition*> declarationOrder(const std::vector<const Definition*>& definitions, Language language)
{
    return Order(definitions, language).find();
}

}  // namespace quorva::compiler
