// Converts trees to JSON.

#include "tree_json.h"

#include <string_view>

namespace quorva::inspect {

namespace {

// Adds the parts inside the node that were decoded, at least in part.
void fill(Json& json, const Tree& tree, std::uint32_t at)
{
    for (std::uint32_t i = Tree::first(at); i < tree.nodes()[at].end; i = tree.nodes()[i].end) {
        const Node& node = tree.nodes()[i];
        if (!node.wasRead()) continue;
        if (json.is_array())
            json.push_back(treeJson(tree, i));
        else
            json.emplace(node.member->name, treeJson(tree, i));  // `push_back` would copy the value
    }
}

}  // namespace

Json treeJson(const Tree& tree, std::uint32_t at)
{
    const Node& node = tree.nodes()[at];
    if (node.type && !node.isGroup()) return node.size > 0 ? numberJson(*node.type, node.number) : Json();
    if (node.isGroup()) {
        Json object = Json::object();
        fill(object, tree, at);
        return object;
    }
    if (!node.use) return nullptr;
    switch (node.use->form) {
    case Form::fixedArray:
    case Form::variableArray: {
        Json array = Json::array();
        fill(array, tree, at);
        return array;
    }
    case Form::optional: return node.number && node.end > at + 1 ? treeJson(tree, at + 1) : Json();
    case Form::string: {
        if (!node.complete) return nullptr;
        const auto contents = tree.contents(node);
        const std::string_view text(reinterpret_cast<const char*>(contents.data()), contents.size());
        return stringJson(text.substr(0, text.find('\0')));  // as the codec's strings end
    }
    default: return node.complete ? opaqueJson(tree.contents(node)) : Json();
    }
}

}  // namespace quorva::inspect
