// Graphs of types that contain each other, and their limits. Nothing here recurses, so no input exhausts the stack.
#include "check_nesting.h"

#include "cycles.h"
#include "layout.h"
#include "resolve.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

struct Cycle {
    const Definition* first = nullptr;
    Span at;  // where the first type names the second
    std::string path;
    bool throughOptional = false;
};

// The definitions of a program as nodes, with an edge to each definition that they contain. IsEdge defines "contain".
class TypeGraph {
public:
    // True if the definition contains the type of the declaration, which is one of its members.
    using IsEdge = bool (*)(const Definition&, const Declaration&);

    TypeGraph(const std::vector<const Definition*>& definitions, IsEdge isEdge);

    // Calls `report` with each cycle until `errors` is full. Returns true if there is no cycle.
    bool isAcyclic(const Diagnostics& errors, const std::function<void(const Cycle&)>& report);

    // The nodes, each after the nodes that it has edges to. Call isAcyclic() first.
    const std::vector<std::size_t>& order() const { return sorted; }

    const Definition& type(std::size_t node) const { return *types[node]; }
    const std::vector<std::size_t>& edges(std::size_t node) const { return successors[node]; }

private:
    const std::vector<const Definition*>& types;
    std::vector<std::vector<std::size_t>> successors;
    std::vector<std::vector<const Declaration*>> edgeDeclarations;
    std::vector<std::size_t> sorted;
};

TypeGraph::TypeGraph(const std::vector<const Definition*>& definitions, IsEdge isEdge)
    : types(definitions), successors(definitions.size()), edgeDeclarations(definitions.size())
{
    std::unordered_map<const Definition*, std::size_t> nodes;
    for (std::size_t node = 0; node < types.size(); ++node) nodes.emplace(types[node], node);

    for (std::size_t from = 0; from < types.size(); ++from) {
        std::unordered_set<std::size_t> known;
        const auto add = [&](const Declaration& declaration) {
            const auto to = nodes.find(declaration.type.definition);
            if (to == nodes.end() || !isEdge(*types[from], declaration) || !known.insert(to->second).second) return;
            successors[from].push_back(to->second);
            edgeDeclarations[from].push_back(&declaration);
        };
        for (const Declaration& field : types[from]->fields) add(field);
        if (types[from]->kind == DefinitionKind::discriminatedUnion) add(types[from]->discriminant);
        for (const Arm& arm : types[from]->arms) add(arm.declaration);
        if (types[from]->kind == DefinitionKind::typeDefinition) add(types[from]->target);
    }
}

bool TypeGraph::isAcyclic(const Diagnostics& errors, const std::function<void(const Cycle&)>& report)
{
    bool acyclic = true;
    sorted = depthFirst(successors, [&](const std::vector<PathNode>& path, std::size_t first) {
        acyclic = false;
        if (errors.full()) return;
        const PathNode& start = path[first];
        Cycle cycle = {types[start.node], edgeDeclarations[start.node][start.edge]->type.at, "", false};
        std::vector<std::string_view> names;
        for (std::size_t i = first; i < path.size(); ++i) {
            names.emplace_back(types[path[i].node]->name);
            if (edgeDeclarations[path[i].node][path[i].edge]->form == Form::optional) cycle.throughOptional = true;
        }
        cycle.path = cyclePath(names);
        report(cycle);
    });
    return acyclic;
}

bool isHeldByValue(const Definition&, const Declaration& declaration)
{
    return declaration.form == Form::single || declaration.form == Form::fixedArray;
}

// C++ compilers expand a typedef whose target is a typedef, pointers included, so such typedefs nest like types held by
// value.
bool isSpelledOut(const Definition& definition, const Declaration& declaration)
{
    return definition.kind == DefinitionKind::typeDefinition &&
           declaration.type.definition->kind == DefinitionKind::typeDefinition &&
           (isHeldByValue(definition, declaration) || declaration.form == Form::optional);
}

class NestingChecker {
public:
    NestingChecker(const std::vector<const Definition*>& definitions, Diagnostics& diagnostics)
        : types(definitions), errors(diagnostics)
    {
    }

    void run();

private:
    void depths(const TypeGraph& graph);
    void sizes(const TypeGraph& graph);

    const std::vector<const Definition*>& types;
    Diagnostics& errors;
    std::unordered_set<const Definition*> tooDeep;  // reported
};

// Reports only the types that are one level too deep, not the types that contain them.
void NestingChecker::depths(const TypeGraph& graph)
{
    std::vector<std::size_t> depths(types.size(), 1);
    for (const std::size_t node : graph.order()) {
        for (const std::size_t inner : graph.edges(node)) depths[node] = std::max(depths[node], depths[inner] + 1);
        const Definition& type = graph.type(node);
        if (depths[node] != deepestNesting + 1 || !tooDeep.insert(&type).second) continue;
        errors.error(type.at, describe(type) + " nests " + std::to_string(depths[node]) +
                                  " types within each other; the maximum is " + std::to_string(deepestNesting));
    }
}

// Reports only the types that are too large because of their own declarations.
void NestingChecker::sizes(const TypeGraph& graph)
{
    Layouts layouts;
    std::vector<bool> isTooLarge(types.size(), false);
    for (const std::size_t node : graph.order()) {
        const Definition& type = graph.type(node);
        const Layout layout = layouts.add(type);
        const bool hasTooMany = layout.members > Layouts::mostMembers;
        isTooLarge[node] = hasTooMany || layout.size > Layouts::mostBytes;
        const auto& inner = graph.edges(node);
        if (!isTooLarge[node] || std::any_of(inner.begin(), inner.end(), [&](auto held) { return isTooLarge[held]; }))
            continue;
        const std::string sentence =
            hasTooMany
                ? " has " + std::to_string(layout.members) +
                      " members, counting those of its members; the maximum is " + std::to_string(Layouts::mostMembers)
                : " takes " + std::to_string(layout.size) + " bytes in memory; the maximum is " +
                      std::to_string(Layouts::mostBytes) + ", which is 64 MiB";
        errors.error(type.at, describe(type) + sentence);
    }
}

void NestingChecker::run()
{
    TypeGraph values(types, isHeldByValue);
    const bool areValuesFinite = values.isAcyclic(errors, [&](const Cycle& cycle) {
        errors.error(cycle.at, inQuotes(cycle.first->name) + " contains itself: " + cycle.path +
                                   "; make one of them optional ('*') or a variable-length array ('< >')");
    });
    // `typedef A *B; typedef B *A;` is finite in memory, but C++ has no type for it.
    TypeGraph typedefs(types, isSpelledOut);
    const bool areTypedefsFinite = typedefs.isAcyclic(errors, [&](const Cycle& cycle) {
        if (!cycle.throughOptional) return;  // reported above, as contained by value
        errors.error(cycle.at, "typedef " + inQuotes(cycle.first->name) +
                                   " is made of nothing but typedefs: " + cycle.path + "; put a struct between them");
    });
    if (areTypedefsFinite) depths(typedefs);
    if (areValuesFinite) {
        depths(values);
        if (tooDeep.empty()) sizes(values);  // else the deepest types would be reported twice
    }
}

}  // namespace

void checkNesting(const std::vector<const Definition*>& types, Diagnostics& errors)
{
    NestingChecker(types, errors).run();
}

}  // namespace quorva::compiler
