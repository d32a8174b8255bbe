// Answers the back ends' questions about the tree.
#include "structure.h"

#include "resolve.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace quorva::compiler {

namespace {

bool isByValue(Form form)
{
    return form == Form::single || form == Form::vector;
}

// Finds groups of definitions that refer to each other, and the order among the groups (Tarjan's algorithm, with a
// stack of its own instead of recursion).
class Order {
public:
    explicit Order(const std::vector<const Definition*>& definitions);

    std::vector<const Definition*> find();

private:
    static constexpr std::size_t unseen = std::numeric_limits<std::size_t>::max();

    struct Use {
        std::size_t node;
        bool byValue;
    };
    struct Node {
        const Definition* definition = nullptr;
        std::vector<Use> uses;
        std::size_t number = unseen;
        std::size_t lowest = unseen;
        bool isClosed = false;  // its group is known
    };
    struct Step {
        std::size_t node;
        std::size_t nextUse;
    };

    void visit(std::size_t start);
    void enter(std::size_t node);
    void leave(std::size_t node);
    void closeGroup(std::size_t node);

    void complete(std::size_t node);
    void name(std::size_t node);
    void print(std::size_t node);

    std::vector<Node> nodes_;
    std::vector<Step> path_;
    std::vector<std::size_t> open_;  // entered, group not known yet
    std::size_t numbered_ = 0;
    std::vector<bool> completed_;
    std::vector<bool> named_;
    std::vector<bool> printed_;
    std::vector<const Definition*> order_;
};

Order::Order(const std::vector<const Definition*>& definitions)
    : nodes_(definitions.size()),
      completed_(definitions.size()),
      named_(definitions.size()),
      printed_(definitions.size())
{
    std::unordered_map<const Definition*, std::size_t> places;
    for (std::size_t at = 0; at < definitions.size(); ++at) places[definitions[at]] = at;
    for (std::size_t at = 0; at < definitions.size(); ++at) {
        nodes_[at].definition = definitions[at];
        for (const Declaration* declaration : declarationsOf(*definitions[at]))
            if (const auto used = places.find(declaration->type.definition); used != places.end())
                nodes_[at].uses.push_back({used->second, isByValue(declaration->form)});
    }
}

std::vector<const Definition*> Order::find()
{
    for (std::size_t at = 0; at < nodes_.size(); ++at)
        if (nodes_[at].number == unseen) visit(at);
    return order_;
}

void Order::visit(std::size_t start)
{
    enter(start);
    while (!path_.empty()) {
        const std::size_t node = path_.back().node;
        if (path_.back().nextUse == nodes_[node].uses.size()) {
            leave(node);
            continue;
        }
        const std::size_t used = nodes_[node].uses[path_.back().nextUse++].node;
        if (nodes_[used].number == unseen)
            enter(used);
        else if (!nodes_[used].isClosed)
            nodes_[node].lowest = std::min(nodes_[node].lowest, nodes_[used].number);
    }
}

void Order::enter(std::size_t node)
{
    nodes_[node].number = nodes_[node].lowest = numbered_++;
    open_.push_back(node);
    path_.push_back({node, 0});
}

void Order::leave(std::size_t node)
{
    path_.pop_back();
    if (!path_.empty()) {
        Node& user = nodes_[path_.back().node];
        user.lowest = std::min(user.lowest, nodes_[node].lowest);
    }
    if (nodes_[node].lowest == nodes_[node].number) closeGroup(node);
}

void Order::closeGroup(std::size_t node)
{
    const auto first = std::find(open_.begin(), open_.end(), node);
    std::vector<std::size_t> group(first, open_.end());
    open_.erase(first, open_.end());
    for (const std::size_t member : group) nodes_[member].isClosed = true;

    std::sort(group.begin(), group.end());
    for (const std::size_t member : group) complete(member);
}

// What the definition holds by value stands before it, and so do the typedefs that it names. Other groups are out.
void Order::complete(std::size_t node)
{
    if (completed_[node]) return;
    completed_[node] = true;
    for (const auto& [used, byValue] : nodes_[node].uses) {
        if (byValue)
            complete(used);
        else
            name(used);
    }
    print(node);
}

// A typedef has to be printed before its name can be used, which needs no more than the names in it; structs, unions
// and sequences can be declared ahead.
void Order::name(std::size_t node)
{
    const Definition& definition = *nodes_[node].definition;
    if (definition.kind != Kind::definedAs || canBeForward(definition) || named_[node]) return;
    named_[node] = true;
    for (const auto& [used, byValue] : nodes_[node].uses) name(used);
    print(node);
}

void Order::print(std::size_t node)
{
    if (printed_[node]) return;
    printed_[node] = true;
    order_.push_back(nodes_[node].definition);
}

}  // namespace

bool isCounted(const Definition& definition)
{
    return definition.kind == Kind::definedAs &&
           (definition.target.form == Form::list || definition.target.form == Form::bytes);
}

bool isOwnType(const Definition& definition)
{
    return definition.kind == Kind::enumeration || canBeForward(definition);
}

bool canBeForward(const Definition& definition)
{
    return definition.kind == Kind::record || definition.kind == Kind::discriminated || isCounted(definition);
}

std::vector<const Definition*> typesOf(const Module& module)
{
    std::vector<const Definition*> out;
    for (const auto& definition : module.definitions)
        if (definition->kind != Kind::constant) out.push_back(definition.get());
    return out;
}

std::vector<const Definition*> constantsOf(const Module& module)
{
    std::vector<const Definition*> out;
    for (const auto& definition : module.definitions)
        if (definition->kind == Kind::constant) out.push_back(definition.get());
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
    case Kind::constant:
    case Kind::enumeration: break;
    case Kind::record:
        for (const Declaration& field : definition.fields) out.push_back(&field);
        break;
    case Kind::discriminated:
        out.push_back(&definition.discriminant);
        for (const Arm& arm : definition.arms) out.push_back(&arm.declaration);
        break;
    case Kind::definedAs: out.push_back(&definition.target); break;
    }
    return out;
}

Discriminant discriminantOf(const Definition& discriminated)
{
    const TypeRef& type = behindAliases(discriminated.discriminant.type);
    return {type.builtin, type.definition};
}

std::vector<ArmMember> armMembersOf(const Definition& discriminated)
{
    std::vector<ArmMember> out;
    std::unordered_map<std::string, std::size_t> places;
    for (const Arm& arm : discriminated.arms) {
        const Declaration& declaration = arm.declaration;
        if (declaration.form == Form::nothing) continue;

        const auto [place, isNew] = places.emplace(declaration.name, out.size());
        if (isNew) out.push_back({&declaration, {}, ""});  // otherwise it has the same type, which was checked
        ArmMember& member = out[place->second];
        for (const Value& value : arm.cases) member.cases.push_back(&value);
        const std::string doc = docOf(declaration);
        if (member.doc.empty())
            member.doc = doc;
        else if (!doc.empty() && doc != member.doc)
            member.doc += '\n' + doc;
    }
    return out;
}

std::vector<ArmMember> voidArmsOf(const Definition& discriminated)
{
    ArmMember undocumented;
    std::vector<ArmMember> documented;
    for (const Arm& arm : discriminated.arms) {
        if (arm.declaration.form != Form::nothing) continue;
        const std::string doc = docOf(arm.declaration);
        ArmMember& place = doc.empty() ? undocumented : documented.emplace_back();
        place.declaration = &arm.declaration;
        place.doc = doc;
        for (const Value& value : arm.cases) place.cases.push_back(&value);
    }
    if (undocumented.declaration) documented.push_back(undocumented);
    return documented;
}

std::vector<const Definition*> declarationOrder(const std::vector<const Definition*>& definitions)
{
    return Order(definitions).find();
}

}  // namespace quorva::compiler
