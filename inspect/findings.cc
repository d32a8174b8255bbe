// Examines a tree.

#include "findings.h"

#include "explain/layout.h"
#include "input.h"
#include "sizes.h"
#include "support/text.h"

#include <algorithm>

namespace quorva::inspect {

namespace {

class Examination {
public:
    explicit Examination(const Tree& examined) : tree(examined) {}

    std::vector<Finding> findings;

    void examine(std::uint32_t at)
    {
        const Node& node = tree.nodes()[at];
        if (node.size == 0) return;
        if (node.type && isNumber(*node.type)) examineNumber(at, node);
        if (node.type && node.type->kind == TypeKind::structure) examineAttribute(at, node);
        if (!node.use) return;
        switch (node.use->form) {
        case Form::optional:
            if (node.unit > 1)
                add(FindingCode::booleanNotZeroOrOne, at, node.offset,
                    "the presence is " + std::to_string(node.unit) + ", decoded as " + (node.number ? "1" : "0"));
            break;
        case Form::variableArray:
        case Form::variableOpaque:
            if (node.unit > 0xFFFF)
                add(FindingCode::countCut, at, node.offset,
                    "count " + grouped(node.unit) + ", decoded as " + grouped(node.unit & 0xFFFF));
            break;
        default: break;
        }
        if (node.contentsSize > 0) examineContents(at, node);
    }

    void examineRest()
    {
        const std::size_t rest = tree.bytes().size() - tree.length();
        if (tree.stopped() || rest == 0) return;
        add(FindingCode::leftOver, 0, tree.length(),
            grouped(rest) + (rest == 1 ? " byte is" : " bytes are") + " left over after " + tree.type().name);
    }

private:
    static bool isNumber(const Type& type)
    {
        return type.kind == TypeKind::builtin || type.kind == TypeKind::enumeration;
    }

    void add(FindingCode code, std::uint32_t node, std::size_t offset, std::string sentence)
    {
        findings.push_back({code, offset, {}, std::move(sentence), node});
    }

    void examineNumber(std::uint32_t at, const Node& node)
    {
        const Type& type = *node.type;
        if (type.kind == TypeKind::enumeration && !enumeratorName(type, node.number))
            add(FindingCode::unknownEnumerator, at, node.offset,
                std::to_string(node.number) + " is not an enumerator of " + type.name);
        if (type.builtin == Builtin::Boolean) {
            if (node.unit > 1)
                add(FindingCode::booleanNotZeroOrOne, at, node.offset,
                    std::to_string(node.unit) +
                        (node.unit > 0xFF ? ", decoded as " + numberText(type, node.number) : ""));
        } else if (toUnit(type, node.number) != node.unit) {
            add(FindingCode::valueCut, at, node.offset, cutText(type, node));
        }
    }

    static std::string cutText(const Type& type, const Node& node)
    {
        const Range range = rangeOf(type);
        const std::string decoded = ", decoded as " + std::to_string(node.number);
        if (wireNumber(type, node.unit) == node.number)  // other bits in front: ShortInteger has zeros there
            return unitText(node.unit) + decoded + ", which an encode writes as " + unitText(toUnit(type, node.number));
        return std::to_string(wireNumber(type, node.unit)) + decoded + ": a " + type.name + " holds " +
               std::to_string(range.least) + " to " + std::to_string(range.most);
    }

    // The unit as a number, signed if the type is.
    static std::int64_t wireNumber(const Type& type, std::uint32_t unit)
    {
        return rangeOf(type).least < 0 ? std::int64_t{static_cast<std::int32_t>(unit)} : std::int64_t{unit};
    }

    // "000000ff"
    static std::string unitText(std::uint32_t unit)
    {
        const unsigned char bytes[] = {static_cast<unsigned char>(unit >> 24), static_cast<unsigned char>(unit >> 16),
                                       static_cast<unsigned char>(unit >> 8), static_cast<unsigned char>(unit)};
        return hexDigits(bytes);
    }

    void examineAttribute(std::uint32_t at, const Node& node)
    {
        const Attribute attribute = attributeOf(*node.type);
        if (!attribute.id) return;
        const auto id = tree.memberOf(at, *attribute.id);
        const auto value = tree.memberOf(at, *attribute.value);
        if (!id || !value || tree.nodes()[*value].end == *value + 1 || !tree.nodes()[*value + 1].complete) return;
        const Node& named = tree.nodes()[*id];
        const Node& discriminant = tree.nodes()[*value + 1];
        if (named.number == discriminant.number) return;
        add(FindingCode::attributeMismatch, *id, named.offset,
            std::string(attribute.id->name) + ' ' + numberText(*named.type, named.number) + ", but the union has " +
                discriminant.member->name + ' ' + numberText(*named.type, discriminant.number));
    }

    void examineContents(std::uint32_t at, const Node& node)
    {
        const auto contents = tree.contents(node);
        const auto begin = static_cast<std::size_t>(contents.data() - tree.bytes().data());
        const std::string_view text(reinterpret_cast<const char*>(contents.data()), contents.size());
        if (node.use->form == Form::string) {
            const std::size_t zero = text.find('\0');
            if (zero != std::string_view::npos)
                add(FindingCode::textHoldsZero, at, begin + zero,
                    "the string has " + grouped(text.size()) + " bytes, decoded up to the zero byte at " +
                        grouped(zero));
            else if (!support::isUtf8(text))
                add(FindingCode::textNotValid, at, begin + firstNotUtf8(text), "the string is not UTF-8");
        }
        if (!node.complete) return;  // the message ends within the padding
        const auto padding = tree.bytes().subspan(begin + contents.size(), padded(contents.size()) - contents.size());
        if (std::ranges::any_of(padding, [](unsigned char byte) { return byte != 0; }))
            add(FindingCode::paddingNotZero, at, begin + contents.size(), "the padding is " + hexDigits(padding));
    }

    static std::size_t firstNotUtf8(std::string_view text)
    {
        std::size_t at = 0;
        while (at < text.size()) {
            const std::size_t length = support::utf8SequenceLength(text.substr(at));
            if (length == 0) break;
            at += length;
        }
        return at;
    }

    const Tree& tree;
};

// The outermost open array whose elements cannot fit in the message, and a sentence about it.
struct ImpossibleCount {
    std::size_t offset = 0;
    std::string sentence;  // empty if there is none
};
ImpossibleCount impossibleCount(const Tree& tree)
{
    ImpossibleCount found;
    const WireSizes sizes;
    for (std::uint32_t at = tree.stopped()->node;; at = tree.nodes()[at].parent) {
        const Node& node = tree.nodes()[at];
        if (node.use && node.use->form == Form::variableArray && node.size > 0) {
            const std::uint64_t needed = static_cast<std::uint64_t>(node.number) * sizes.of(*node.use->type).least;
            const std::size_t left = tree.bytes().size() - node.offset - 4;
            const std::string path = tree.pointer(at);
            if (needed > left)
                found = {node.offset, "count " + grouped(static_cast<std::uint64_t>(node.number)) +
                                          (path.empty() ? "" : " of " + path) + " needs at least " + grouped(needed) +
                                          " bytes, " + grouped(left) + " are left"};
        }
        if (at == 0) return found;
    }
}

// Paths are left out because those of deeply nested values are long.
std::vector<Finding> findingsWithoutPaths(const Tree& tree)
{
    Examination examination(tree);
    for (std::uint32_t at = 0; at < tree.nodes().size(); ++at) examination.examine(at);
    examination.examineRest();
    std::ranges::stable_sort(examination.findings, {}, &Finding::offset);
    return std::move(examination.findings);
}

}  // namespace

const char* codeName(FindingCode code)
{
    switch (code) {
    case FindingCode::unknownEnumerator: return "unknown-enumerator";
    case FindingCode::booleanNotZeroOrOne: return "boolean-not-0-1";
    case FindingCode::paddingNotZero: return "padding-not-zero";
    case FindingCode::valueCut: return "value-cut";
    case FindingCode::countCut: return "count-cut";
    case FindingCode::textHoldsZero: return "text-holds-zero";
    case FindingCode::textNotValid: return "text-not-valid";
    case FindingCode::attributeMismatch: return "attribute-mismatch";
    case FindingCode::leftOver: return "left-over";
    case FindingCode::refused: break;
    }
    return "refused";
}

std::vector<Finding> findingsOf(const Tree& tree)
{
    std::vector<Finding> findings = findingsWithoutPaths(tree);
    for (Finding& finding : findings) finding.path = tree.pointer(finding.node);
    if (const auto& stopped = tree.stopped())
        findings.push_back({FindingCode::refused, stopped->failure.offset, stopped->failure.path,
                            stopped->failure.reason, stopped->node});
    return findings;
}

std::string likelyCause(const Tree& tree)
{
    if (!tree.stopped()) return {};
    const std::vector<Finding> findings = findingsWithoutPaths(tree);
    // A wrong length shifts all that follows: a count after it is a number from another place.
    const auto isShift = [](const Finding& finding) {
        return finding.code == FindingCode::textHoldsZero || finding.code == FindingCode::paddingNotZero;
    };
    const ImpossibleCount count = impossibleCount(tree);
    const bool isShiftedBefore =
        !findings.empty() && isShift(findings.front()) && findings.front().offset < count.offset;
    if (!count.sentence.empty() && !isShiftedBefore) return count.sentence;
    if (!findings.empty()) {
        const Finding& first = findings.front();
        const std::string path = tree.pointer(first.node);
        const bool isLength = isShift(first);
        return "byte " + std::to_string(first.offset) + ": " + (path.empty() ? "" : path + ": ") + first.sentence +
               (isLength ? "; the length before it may be wrong" : "");
    }
    const Cause why = tree.stopped()->why.cause;
    if (why != Cause::messageEndsInUnit && why != Cause::messageEndsInContents && why != Cause::messageEndsInPadding)
        return {};
    const std::uint64_t least = WireSizes().of(tree.type()).least;
    if (least <= tree.bytes().size()) return "the message may have been cut";
    return std::string("the message may have been cut: a ") + tree.type().name + " has at least " + grouped(least) +
           " bytes";
}

std::string findingText(const Finding& finding, const std::string& file)
{
    return file + ": byte " + std::to_string(finding.offset) + ": " +
           (finding.path.empty() ? "" : finding.path + ": ") + codeName(finding.code) + ": " + finding.sentence;
}

Json findingJson(const Finding& finding)
{
    return {{"code", codeName(finding.code)},
            {"offset", finding.offset},
            {"path", finding.path},
            {"sentence", finding.sentence}};
}

std::string grouped(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ',');
    return digits;
}

}  // namespace quorva::inspect
