// Compares two trees.

#include "diff.h"

#include "explain/layout.h"
#include "input.h"
#include "tree_json.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace quorva::inspect {

namespace {

using Index = std::uint32_t;

// The longest lists that are aligned as sequences, in pairs of elements; larger ones are compared by index.
constexpr std::size_t mostPairs = std::size_t{1} << 22;

class Comparison {
public:
    Comparison(const Tree& first, const Tree& second) : a(first), b(second) {}

    std::vector<Difference> differences;

    void compare(Index atA, Index atB)
    {
        const Node& nodeA = a.nodes()[atA];
        const Node& nodeB = b.nodes()[atB];
        if (bytesOf(a, nodeA) == bytesOf(b, nodeB) && nodeA.complete == nodeB.complete) return;
        if (nodeA.isGroup()) return compareMembers(atA, atB);
        if (nodeA.use && (nodeA.use->form == Form::fixedArray || nodeA.use->form == Form::variableArray)) {
            const Type& element = canonicalType(*nodeA.use->type);
            return attributeOf(element).id ? compareAttributes(atA, atB, element) : compareElements(atA, atB);
        }
        if (nodeA.use && nodeA.use->form == Form::optional && hasValue(nodeA, atA) && hasValue(nodeB, atB))
            return compare(atA + 1, atB + 1);
        Json valueA = treeJson(a, atA), valueB = treeJson(b, atB);
        const bool isSame = valueA == valueB && !nodeA.isGroup();
        if (isSame) {
            valueA = hexJson(a, nodeA);
            valueB = hexJson(b, nodeB);
        }
        add(isSame ? Change::sameValue : Change::changed, b.pointer(atB), std::move(valueA), std::move(valueB));
    }

private:
    static std::string_view bytesOf(const Tree& tree, const Node& node)
    {
        const auto bytes = tree.bytes().subspan(node.offset, node.size);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    static Json hexJson(const Tree& tree, const Node& node)
    {
        return {{"hex", hexDigits(tree.bytes().subspan(node.offset, node.size))}};
    }

    static bool hasValue(const Node& optional, Index at) { return optional.end > at + 1; }

    void add(Change change, std::string path, Json valueA, Json valueB)
    {
        differences.push_back({change, std::move(path), std::move(valueA), std::move(valueB), attribute});
    }
    void addRemoved(Index at) { add(Change::removed, a.pointer(at), treeJson(a, at), nullptr); }
    void addAdded(Index at) { add(Change::added, b.pointer(at), nullptr, treeJson(b, at)); }

    static std::vector<Index> partsOf(const Tree& tree, Index at)
    {
        std::vector<Index> parts;
        for (Index i = Tree::first(at); i < tree.nodes()[at].end; i = tree.nodes()[i].end)
            if (tree.nodes()[i].complete || tree.nodes()[i].size > 0) parts.push_back(i);
        return parts;
    }

    // Members of a struct, or the discriminant and the arm of a union: two arms are two members.
    void compareMembers(Index atA, Index atB)
    {
        const std::vector<Index> membersA = partsOf(a, atA), membersB = partsOf(b, atB);
        for (const Index i : membersA) {
            const auto other = b.memberOf(atB, *a.nodes()[i].member);
            if (other && std::ranges::find(membersB, *other) != membersB.end())
                compare(i, *other);
            else
                addRemoved(i);
        }
        for (const Index i : membersB) {
            const auto other = a.memberOf(atA, *b.nodes()[i].member);
            if (!other || std::ranges::find(membersA, *other) == membersA.end()) addAdded(i);
        }
    }

    // The id of an attribute, and how many attributes before it in its list have the same one.
    using Key = std::pair<std::int64_t, std::size_t>;

    static std::vector<std::pair<Key, Index>> keysOf(const Tree& tree, Index at, const Member& id)
    {
        std::vector<std::pair<Key, Index>> keys;
        std::map<std::int64_t, std::size_t> seen;
        for (const Index i : partsOf(tree, at))
            if (const auto named = tree.memberOf(i, id)) {
                const std::int64_t number = tree.nodes()[*named].number;
                keys.push_back({{number, seen[number]++}, i});
            }
        return keys;
    }

    void compareAttributes(Index atA, Index atB, const Type& element)
    {
        const Member& id = *attributeOf(element).id;
        const auto keysA = keysOf(a, atA, id), keysB = keysOf(b, atB, id);
        const std::map<Key, Index> inA(keysA.begin(), keysA.end()), inB(keysB.begin(), keysB.end());
        const std::string outer = std::exchange(attribute, {});
        const auto within = [&](const Key& key) {
            attribute = "attribute " + numberText(canonicalType(*id.use.type), key.first);
        };
        std::vector<Key> orderA, orderB;
        for (const auto& [key, i] : keysA) {
            within(key);
            const auto other = inB.find(key);
            if (other == inB.end()) {
                addRemoved(i);
                continue;
            }
            orderA.push_back(key);
            compare(i, other->second);
        }
        for (const auto& [key, i] : keysB) {
            within(key);
            if (inA.contains(key))
                orderB.push_back(key);
            else
                addAdded(i);
        }
        attribute = outer;
        if (orderA != orderB) add(Change::reordered, b.pointer(atB), idsOf(orderA), idsOf(orderB));
    }

    static Json idsOf(const std::vector<Key>& keys)
    {
        Json ids = Json::array();
        for (const Key& key : keys) ids.push_back(key.first);
        return ids;
    }

    // Aligns equal elements. The others between two equal ones are compared in pairs; the rest was removed or added.
    void compareElements(Index atA, Index atB)
    {
        const std::vector<Index> all = partsOf(a, atA), others = partsOf(b, atB);
        std::size_t beginA = 0, beginB = 0;
        for (const auto& [i, k] : commonElements(all, others)) {
            compareRun(all, beginA, i, others, beginB, k);
            beginA = i + 1;
            beginB = k + 1;
        }
        compareRun(all, beginA, all.size(), others, beginB, others.size());
    }

    void compareRun(const std::vector<Index>& all, std::size_t fromA, std::size_t toA, const std::vector<Index>& others,
                    std::size_t fromB, std::size_t toB)
    {
        for (; fromA < toA && fromB < toB; ++fromA, ++fromB) compare(all[fromA], others[fromB]);
        for (; fromA < toA; ++fromA) addRemoved(all[fromA]);
        for (; fromB < toB; ++fromB) addAdded(others[fromB]);
    }

    // The positions of a longest common subsequence of equal elements.
    std::vector<std::pair<std::size_t, std::size_t>> commonElements(const std::vector<Index>& all,
                                                                    const std::vector<Index>& others) const
    {
        const auto areEqual = [&](std::size_t i, std::size_t k) {
            return bytesOf(a, a.nodes()[all[i]]) == bytesOf(b, b.nodes()[others[k]]);
        };
        std::vector<std::pair<std::size_t, std::size_t>> pairs;
        std::size_t begin = 0, endA = all.size(), endB = others.size();
        for (; begin < endA && begin < endB && areEqual(begin, begin); ++begin) pairs.push_back({begin, begin});
        while (endA > begin && endB > begin && areEqual(endA - 1, endB - 1)) --endA, --endB;
        const std::size_t rows = endA - begin, columns = endB - begin;
        if (rows * columns <= mostPairs && rows > 0 && columns > 0) {
            // lengths[i][k]: of the longest common subsequence of the elements from i and from k on.
            std::vector<std::uint32_t> lengths((rows + 1) * (columns + 1), 0);
            const auto length = [&](std::size_t i, std::size_t k) -> std::uint32_t& {
                return lengths[i * (columns + 1) + k];
            };
            for (std::size_t i = rows; i-- > 0;)
                for (std::size_t k = columns; k-- > 0;)
                    length(i, k) = areEqual(begin + i, begin + k) ? length(i + 1, k + 1) + 1
                                                                  : std::max(length(i + 1, k), length(i, k + 1));
            for (std::size_t i = 0, k = 0; i < rows && k < columns;) {
                if (areEqual(begin + i, begin + k))
                    pairs.push_back({begin + i++, begin + k++});
                else if (length(i + 1, k) >= length(i, k + 1))
                    ++i;
                else
                    ++k;
            }
        }
        for (; endA < all.size(); ++endA, ++endB) pairs.push_back({endA, endB});
        return pairs;
    }

    const Tree& a;
    const Tree& b;
    std::string attribute;  // that the compared parts are in
};

constexpr const char* red = "\033[31m";
constexpr const char* green = "\033[32m";
constexpr const char* yellow = "\033[33m";
constexpr const char* plain = "\033[0m";

std::string compact(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

const char* changeName(Change change)
{
    switch (change) {
    case Change::changed: return "changed";
    case Change::sameValue: return "same-value";
    case Change::removed: return "removed";
    case Change::added: return "added";
    case Change::reordered: break;
    }
    return "reordered";
}

}  // namespace

std::vector<Difference> differencesOf(const Tree& a, const Tree& b)
{
    Comparison comparison(a, b);
    comparison.compare(0, 0);
    return std::move(comparison.differences);
}

std::string differenceText(const Difference& difference, bool coloured)
{
    const std::string path = difference.path.empty() ? "the whole value" : difference.path;
    const std::string values = compact(difference.a) + " -> " + compact(difference.b);
    std::string text, colour = yellow;
    switch (difference.change) {
    case Change::changed: text = "~ " + path + "  " + values; break;
    case Change::sameValue: text = "~ " + path + "  other bytes of the same value: " + values; break;
    case Change::reordered: text = "~ " + path + "  the attributes are in another order: " + values; break;
    case Change::removed:
        text = "- " + path + "  " + compact(difference.a);
        colour = red;
        break;
    case Change::added:
        text = "+ " + path + "  " + compact(difference.b);
        colour = green;
        break;
    }
    if (!difference.attribute.empty()) text += "  (" + difference.attribute + ')';
    return (coloured ? colour + text + plain : text) + '\n';
}

Json differenceJson(const Difference& difference)
{
    Json json = {{"change", changeName(difference.change)}, {"path", difference.path}};
    if (difference.change != Change::added) json["a"] = difference.a;
    if (difference.change != Change::removed) json["b"] = difference.b;
    if (!difference.attribute.empty()) json["attribute"] = difference.attribute;
    return json;
}

}  // namespace quorva::inspect
