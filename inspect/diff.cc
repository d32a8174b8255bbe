// Compares two trees.

#include "diff.h"

#include "explain/layout.h"
#include "input.h"
#include "tree_json.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace quorva::inspect {

namespace {

using Index = std::uint32_t;

// The longest lists that are aligned as sequences, in pairs of elements; larger ones are compared by index. The longest
// messages have no larger lists of elements of a unit or more.
constexpr std::size_t mostPairs = std::size_t{1} << 28;

// Pairs of a position in one list and one in another.
using Positions = std::vector<std::pair<std::size_t, std::size_t>>;

// The positions of a longest common subsequence of two lists of numbers, those of the first one below its size. Uses a
// bit for each pair of elements, and takes time for each word of bits.
Positions commonSubsequence(std::span<const std::uint32_t> listA, std::span<const std::uint32_t> listB)
{
    using Word = std::uint64_t;
    constexpr std::size_t wordSize = 64;
    const std::size_t size = listA.size(), words = (size + wordSize - 1) / wordSize;
    const auto wordOf = [&](std::size_t i) { return (size - 1 - i) / wordSize; };
    const auto bitOf = [&](std::size_t i) { return Word{1} << (size - 1 - i) % wordSize; };

    // The positions of each number in the first list, as words of bits.
    struct Places {
        std::size_t word;
        Word bits;
    };
    std::vector<std::vector<Places>> places(size);
    for (std::size_t i = size; i-- > 0;) {
        std::vector<Places>& known = places[listA[i]];
        if (known.empty() || known.back().word != wordOf(i)) known.push_back({wordOf(i), 0});
        known.back().bits |= bitOf(i);
    }

    // The bit of i in row k is clear if the elements from i and k on have a longer common subsequence than those from
    // i + 1 and k on (Hyyro 2004). The last row is that after the second list.
    const auto rows = std::make_unique_for_overwrite<Word[]>((listB.size() + 1) * words);
    std::fill_n(&rows[listB.size() * words], words, ~Word{0});
    for (std::size_t k = listB.size(); k-- > 0;) {
        const std::vector<Places>& here = places[listB[k]];
        auto place = here.begin();
        Word carry = 0;
        for (std::size_t word = 0; word < words; ++word) {
            const Word old = rows[(k + 1) * words + word];
            const Word matches = place != here.end() && place->word == word ? old & (place++)->bits : 0;
            const Word sum = old + matches, next = sum + carry;
            carry = sum < old || next < sum;
            rows[k * words + word] = next | (old - matches);
        }
    }

    Positions common;
    for (std::size_t i = 0, k = 0; i < size && k < listB.size();) {
        if (listA[i] == listB[k])
            common.push_back({i++, k++});
        else if (rows[k * words + wordOf(i)] & bitOf(i))
            ++i;
        else
            ++k;
    }
    return common;
}

class Comparison {
public:
    Comparison(const Tree& first, const Tree& second) : a(first), b(second) {}

    std::vector<Difference> differences;

    void compare(Index atA, Index atB)
    {
        const Node& nodeA = a.nodes()[atA];
        const Node& nodeB = b.nodes()[atB];
        if (bytesOf(a, nodeA) == bytesOf(b, nodeB) && nodeA.complete == nodeB.complete) return;
        if (!nodeA.wasRead() || !nodeB.wasRead()) return;
        if (nodeA.isGroup()) return compareMembers(atA, atB);
        if (nodeA.use && (nodeA.use->form == Form::fixedArray || nodeA.use->form == Form::variableArray)) {
            const Type& element = canonicalType(*nodeA.use->type);
            compareUnits(nodeA, nodeB, atB);
            return attributeOf(element).id ? compareAttributes(atA, atB, element) : compareElements(atA, atB);
        }
        if (nodeA.use && nodeA.use->form == Form::optional && hasValue(nodeA, atA) && hasValue(nodeB, atB)) {
            compareUnits(nodeA, nodeB, atB);
            return compare(atA + 1, atB + 1);
        }
        Json valueA = treeJson(a, atA), valueB = treeJson(b, atB);
        const bool isSame = valueA == valueB && !nodeA.isGroup();
        if (isSame) {
            valueA = hexJson(a, nodeA, nodeA.size);
            valueB = hexJson(b, nodeB, nodeB.size);
        }
        add(isSame ? Change::sameValue : Change::changed, b.pointer(atB), std::move(valueA), std::move(valueB));
    }

private:
    static std::string_view bytesOf(const Tree& tree, const Node& node)
    {
        const auto bytes = tree.bytes().subspan(node.offset, node.size);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    static Json hexJson(const Tree& tree, const Node& node, std::size_t size)
    {
        return {{"hex", hexDigits(tree.bytes().subspan(node.offset, size))}};
    }

    // Compares counts or presences whose bytes differ and decode to the same number.
    void compareUnits(const Node& nodeA, const Node& nodeB, Index atB)
    {
        constexpr std::size_t unitSize = 4;
        const bool wereRead = nodeA.size >= unitSize && nodeB.size >= unitSize;
        if (wereRead && nodeA.unit != nodeB.unit && nodeA.number == nodeB.number)
            add(Change::sameValue, b.pointer(atB), hexJson(a, nodeA, unitSize), hexJson(b, nodeB, unitSize));
    }

    static bool hasValue(const Node& optional, Index at) { return optional.end > at + 1; }

    void add(Change change, std::string path, Json valueA, Json valueB)
    {
        differences.push_back({change, std::move(path), std::move(valueA), std::move(valueB), attribute});
    }

    // A part of one message whose enclosing part of the other one, `around`, does not have it. If the reading of the
    // other one stopped there, it may have the part.
    void addRemoved(Index at, Index around)
    {
        if (b.nodes()[around].complete) add(Change::removed, a.pointer(at), treeJson(a, at), nullptr);
    }
    void addAdded(Index at, Index around)
    {
        if (a.nodes()[around].complete) add(Change::added, b.pointer(at), nullptr, treeJson(b, at));
    }

    static std::vector<Index> partsOf(const Tree& tree, Index at)
    {
        std::vector<Index> parts;
        for (Index i = Tree::first(at); i < tree.nodes()[at].end; i = tree.nodes()[i].end)
            if (tree.nodes()[i].wasRead()) parts.push_back(i);
        return parts;
    }

    // Members of a struct, or the discriminant and the arm of a union: two arms are two members. Both messages have
    // them in the order of the description.
    void compareMembers(Index atA, Index atB)
    {
        const std::vector<Index> membersA = partsOf(a, atA), membersB = partsOf(b, atB);
        const auto member = [](const Tree& tree, Index at) { return tree.nodes()[at].member; };
        std::vector<Index> added;
        auto other = membersB.begin();
        for (const Index i : membersA) {
            while (other != membersB.end() && member(b, *other) < member(a, i)) added.push_back(*other++);
            if (other != membersB.end() && member(b, *other) == member(a, i))
                compare(i, *other++);
            else
                addRemoved(i, atB);
        }
        added.insert(added.end(), other, membersB.end());
        for (const Index i : added) addAdded(i, atA);
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
                addRemoved(i, atB);
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
                addAdded(i, atA);
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
        std::size_t i = 0, k = 0;
        const auto compareUpTo = [&](std::size_t endA, std::size_t endB) {
            for (; i < endA && k < endB; ++i, ++k) compare(all[i], others[k]);
            for (; i < endA; ++i) addRemoved(all[i], atB);
            for (; k < endB; ++k) addAdded(others[k], atA);
        };
        for (const auto& [equalA, equalB] : commonElements(all, others)) {
            compareUpTo(equalA, equalB);
            i = equalA + 1;
            k = equalB + 1;
        }
        compareUpTo(all.size(), others.size());
    }

    // The positions of a longest common subsequence of equal elements.
    Positions commonElements(const std::vector<Index>& all, const std::vector<Index>& others) const
    {
        const auto areEqual = [&](std::size_t i, std::size_t k) {
            return bytesOf(a, a.nodes()[all[i]]) == bytesOf(b, b.nodes()[others[k]]);
        };
        Positions pairs;
        std::size_t begin = 0, endA = all.size(), endB = others.size();
        for (; begin < endA && begin < endB && areEqual(begin, begin); ++begin) pairs.push_back({begin, begin});
        while (endA > begin && endB > begin && areEqual(endA - 1, endB - 1)) --endA, --endB;
        std::map<std::string_view, std::uint32_t> known;
        std::vector<std::uint32_t> contentsA, contentsB;
        std::vector<std::size_t> inBoth;  // the positions of those elements of `others` that are also in `all`
        for (std::size_t i = begin; i < endA; ++i)
            contentsA.push_back(
                known.try_emplace(bytesOf(a, a.nodes()[all[i]]), static_cast<std::uint32_t>(known.size()))
                    .first->second);
        for (std::size_t k = begin; k < endB; ++k) {
            const auto found = known.find(bytesOf(b, b.nodes()[others[k]]));
            if (found == known.end()) continue;
            contentsB.push_back(found->second);
            inBoth.push_back(k);
        }
        if (contentsA.size() * contentsB.size() <= mostPairs)
            for (const auto& [i, k] : commonSubsequence(contentsA, contentsB)) pairs.push_back({begin + i, inBoth[k]});
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
