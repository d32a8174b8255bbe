// The graphs of types that are made of each other, and their bounds. Nothing here recurses, whatever the input.
#include "check_nesting.h"

#include "check_names.h"
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

// Types, and for each those that it is made of.
class TypeGraph {
public:
    // True if the first definition is made of the type of the declaration, which stands in it.
    using IsEdge = bool (*)(const Definition&, const Declaration&);

    TypeGraph(const std::vector<const Definition*>& types, IsEdge isEdge);

    // Calls `report` with each cycle until `errors` is full, and returns true if there was none.
    bool isAcyclic(const Diagnostics& errors, const std::function<void(const Cycle&)>& report);

    // The nodes, each after those that it has edges to. Known after isAcyclic().
    const std::vector<std::size_t>& order() const { return order_; }

    const Definition& type(std::size_t node) const { return *types_[node]; }
    const std::vector<std::size_t>& edges(std::size_t node) const { return edges_[node]; }

private:
    const std::vector<const Definition*>& types_;
    std::vector<std::vector<std::size_t>> edges_;
    std::vector<std::vector<const Declaration*>> declarations_;  // of the edges
    std::vector<std::size_t> order_;
};

TypeGraph::TypeGraph(const std::vector<const Definition*>& types, IsEdge isEdge)
    : types_(types), edges_(types.size()), declarations_(types.size())
{
    std::unordered_map<const Definition*, std::size_t> nodes;
    for (std::size_t node = 0; node < types.size(); ++node) nodes.emplace(types[node], node);

    for (std::size_t from = 0; from < types.size(); ++from) {
        std::unordered_set<std::size_t> known;
        const auto add = [&](const Declaration& declaration) {
            const auto to = nodes.find(declaration.type.definition);
            if (to == nodes.end() || !isEdge(*types[from], declaration) || !known.insert(to->second).second) return;
            edges_[from].push_back(to->second);
            declarations_[from].push_back(&declaration);
        };
        for (const Declaration& field : types[from]->fields) add(field);
        if (types[from]->kind == Kind::discriminated) add(types[from]->discriminant);
        for (const Arm& arm : types[from]->arms) add(arm.declaration);
        if (types[from]->kind == Kind::definedAs) add(types[from]->target);
    }
}

bool TypeGraph::isAcyclic(const Diagnostics& errors, const std::function<void(const Cycle&)>& report)
{
    bool acyclic = true;
    order_ = walk(edges_, [&](const std::vector<Step>& path, std::size_t first) {
        acyclic = false;
        if (errors.full()) return;
        const Step& start = path[first];
        Cycle cycle = {types_[start.node], declarations_[start.node][start.edge]->type.at, "", false};
        std::vector<std::string_view> names;
        for (std::size_t i = first; i < path.size(); ++i) {
            names.emplace_back(types_[path[i].node]->name);
            if (declarations_[path[i].node][path[i].edge]->form == Form::optional) cycle.throughOptional = true;
        }
        cycle.path = circle(names);
        report(cycle);
    });
    return acyclic;
}

bool isHeldByValue(const Definition&, const Declaration& declaration)
{
    return declaration.form == Form::single || declaration.form == Form::vector;
}

// A typedef of typedefs alone has no name of its own in C++: its type is spelled out, pointers included.
bool isSpelledOut(const Definition& definition, const Declaration& declaration)
{
    return definition.kind == Kind::definedAs && declaration.type.definition->kind == Kind::definedAs &&
           (isHeldByValue(definition, declaration) || declaration.form == Form::optional);
}

class NestingChecker {
public:
    NestingChecker(const std::vector<const Definition*>& types, Diagnostics& errors) : types_(types), errors_(errors) {}

    void run();

private:
    void depths(const TypeGraph& graph);
    void sizes(const TypeGraph& graph);

    const std::vector<const Definition*>& types_;
    Diagnostics& errors_;
    std::unordered_set<const Definition*> tooDeep_;  // reported
};

// Reports only the types that are one level too deep, not all of those that are made of them.
void NestingChecker::depths(const TypeGraph& graph)
{
    std::vector<std::size_t> depths(types_.size(), 1);
    for (const std::size_t node : graph.order()) {
        for (const std::size_t part : graph.edges(node)) depths[node] = std::max(depths[node], depths[part] + 1);
        const Definition& type = graph.type(node);
        if (depths[node] != deepestNesting + 1 || !tooDeep_.insert(&type).second) continue;
        errors_.error(type.at, describe(type) + " nests " + std::to_string(depths[node]) +
                                   " types, one in the other; the most is " + std::to_string(deepestNesting));
    }
}

// Reports only the types that are too large because of their own declarations.
void NestingChecker::sizes(const TypeGraph& graph)
{
    Layouts layouts;
    std::vector<bool> isTooLarge(types_.size(), false);
    for (const std::size_t node : graph.order()) {
        const Definition& type = graph.type(node);
        const Layout layout = layouts.add(type);
        const bool hasTooMany = layout.members > Layouts::mostMembers;
        isTooLarge[node] = hasTooMany || layout.size > Layouts::largest;
        const auto& parts = graph.edges(node);
        if (!isTooLarge[node] || std::any_of(parts.begin(), parts.end(), [&](auto part) { return isTooLarge[part]; }))
            continue;
        const std::string sentence = hasTooMany
                                         ? " has " + std::to_string(layout.members) +
                                               " members, counting those of its members; the most is " +
                                               std::to_string(Layouts::mostMembers)
                                         : " takes " + std::to_string(layout.size) + " bytes in memory; the most is " +
                                               std::to_string(Layouts::largest) + ", which is 64 MiB";
        errors_.error(type.at, describe(type) + sentence);
    }
}

void NestingChecker::run()
{
    TypeGraph values(types_, isHeldByValue);
    const bool areValuesFinite = values.isAcyclic(errors_, [&](const Cycle& cycle) {
        errors_.error(cycle.at, inQuotes(cycle.first->name) + " contains itself: " + cycle.path +
                                    "; hold one of them as an optional value ('*') or a list ('< >')");
    });
    // `typedef A *B; typedef B *A;` is finite in memory, but no C++ type says it.
    TypeGraph typedefs(types_, isSpelledOut);
    const bool areTypedefsFinite = typedefs.isAcyclic(errors_, [&](const Cycle& cycle) {
        if (!cycle.throughOptional) return;  // the rest was found as contained by value
        errors_.error(cycle.at, "typedef " + inQuotes(cycle.first->name) +
                                    " is made of nothing but typedefs: " + cycle.path + "; put a struct between them");
    });
    if (areTypedefsFinite) depths(typedefs);
    if (areValuesFinite) {
        depths(values);
        if (tooDeep_.empty()) sizes(values);  // or the deepest types would be reported again
    }
}

}  // namespace

void checkNesting(const std::vector<const Definition*>& types, Diagnostics& errors)
{
    NestingChecker(types, errors).run();
}

}  // namespace quorva::compiler
