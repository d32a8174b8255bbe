// Prints a tree beside its bytes.

#include "annotate.h"

#include "catalogue.h"
#include "explain/layout.h"
#include "findings.h"
#include "input.h"
#include "support/text.h"
#include "tree_json.h"

#include <algorithm>
#include <utility>

namespace quorva::inspect {

namespace {

constexpr std::size_t rowSize = 4;       // bytes of a line
constexpr std::size_t widestName = 40;   // of the column of names; longer names push their values to the right
constexpr std::size_t longestText = 72;  // bytes of a string that are shown
constexpr std::size_t mostFields = 9;    // of a part's JSON object
constexpr std::size_t mostWaiting = std::size_t{16} << 10;  // bytes of JSON that are printed at once

// "4 bytes", "1 element of at most 6"; the maximum is left out where it is the largest possible one.
std::string amount(std::int64_t number, const char* what, std::uint32_t bound)
{
    std::string text = grouped(static_cast<std::uint64_t>(number)) + ' ' + what + (number == 1 ? "" : "s");
    if (bound > 0 && bound < 65535) text += " of at most " + grouped(bound);
    return text;
}

// A string in quotes, with every byte but printable ASCII and UTF-8 as \xHH, cut where it is long.
std::string quotedText(std::span<const unsigned char> bytes)
{
    const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::string text = "\"";
    std::size_t at = 0;
    while (at < all.size() && at < longestText) {
        const std::size_t length = support::utf8SequenceLength(all.substr(at));
        const auto byte = bytes[at];
        if (length > 1 || (length == 1 && byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\')) {
            text += all.substr(at, length);
            at += length;
        } else {
            text += "\\x" + hexDigits(bytes.subspan(at, 1));
            ++at;
        }
    }
    return text + (at < all.size() ? "\"..." : "\"");
}

// What the annotation shows beside the first bytes of a number, array, optional, string or opaque.
std::string valueText(const Node& node)
{
    if (node.size == 0 || node.isGroup()) return {};
    if (node.type) {
        const bool isUnknown = node.type->kind == TypeKind::enumeration && !enumeratorName(*node.type, node.number);
        return numberText(*node.type, node.number) + (isUnknown ? " (unknown)" : "");
    }
    if (!node.use) return {};
    switch (node.use->form) {
    case Form::fixedArray: return amount(node.use->bound, "element", 0);
    case Form::variableArray: return amount(node.number, "element", node.use->bound);
    case Form::optional: return node.number ? "present" : "absent";
    case Form::string:
    case Form::variableOpaque:
        return amount(node.use->form == Form::string ? node.number : node.number & 0xFFFF, "byte", node.use->bound);
    case Form::fixedOpaque: return amount(node.use->bound, "byte", 0);
    default: return {};
    }
}

bool hasUnit(const Node& node)
{
    if (node.type) return !node.isGroup();
    return node.use && node.use->form != Form::fixedArray && node.use->form != Form::fixedOpaque;
}

class Annotator {
public:
    explicit Annotator(const Tree& annotated) : tree(annotated) {}

    std::vector<AnnotatedLine> lines;

    void annotate()
    {
        levels.resize(tree.nodes().size());
        for (std::uint32_t at = 0; at < tree.nodes().size(); ++at) annotate(at);
        const std::size_t length = tree.length();
        if (const auto& stopped = tree.stopped()) {
            add(length, 0, levels[stopped->node] + 1, "! refused: " + stopped->failure.reason, "");
            addBytes(length, tree.bytes().size() - length, 0, "not decoded", "");
            return;
        }
        add(length, 0, 0, std::string("end of ") + tree.type().name, "");
        addBytes(length, tree.bytes().size() - length, 0, "left over", "");
    }

private:
    void add(std::size_t offset, std::size_t size, std::size_t level, std::string name, std::string value)
    {
        lines.push_back({offset, size, level, std::move(name), std::move(value)});
    }

    // Lines of bytes; the first one has the name and the value.
    void addBytes(std::size_t offset, std::size_t size, std::size_t level, std::string name, std::string value)
    {
        for (std::size_t at = 0; at < size; at += rowSize) {
            add(offset + at, std::min(rowSize, size - at), level, std::move(name), std::move(value));
            name.clear();
            value.clear();
        }
    }

    void annotate(std::uint32_t at)
    {
        const Node& node = tree.nodes()[at];
        const bool isValue = tree.isOptionalValue(node);
        if (at == 0 && node.isGroup()) return;  // its members begin at the margin
        const bool parentHasLine = node.parent != 0 || !tree.nodes()[0].isGroup();
        levels[at] = at == 0 || !parentHasLine ? 0 : levels[node.parent] + 1;
        if (isValue && node.isGroup()) {
            levels[at] = levels[node.parent];
            return;
        }
        std::string name = at == 0                ? tree.type().name
                           : isValue              ? "value"
                           : tree.isElement(node) ? '[' + std::to_string(node.index) + ']'
                                                  : node.member->name;
        if (node.size == 0 && !node.complete) return;  // refused before its first byte
        const bool isFixed = node.use && node.use->form == Form::fixedOpaque;
        add(node.offset, hasUnit(node) ? 4 : 0, levels[at], std::move(name), valueText(node));
        if (node.contentsSize == 0) return;
        const auto contents = tree.contents(node);
        const std::size_t begin = node.offset + (isFixed ? 0u : 4u);
        const std::string_view text(reinterpret_cast<const char*>(contents.data()), contents.size());
        const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
        const bool isText =
            node.use->form == Form::string || (support::isUtf8(text) && std::ranges::none_of(contents, isControl));
        addBytes(begin, contents.size(), levels[at], "", isText ? quotedText(contents) : "");
        const std::size_t padding = padded(contents.size()) - contents.size();
        if (padding > 0 && node.complete) add(begin + contents.size(), padding, levels[at] + 1, "padding", "");
    }

    const Tree& tree;
    std::vector<std::size_t> levels;
};

std::size_t nameColumns(std::span<const AnnotatedLine> lines)
{
    std::size_t columns = 0;
    for (const AnnotatedLine& line : lines)
        if (!line.value.empty()) columns = std::max(columns, 2 * line.level + line.name.size());
    return std::min(columns, widestName);
}

std::string lineText(const Tree& tree, const AnnotatedLine& line, std::size_t columns)
{
    std::string offset = std::to_string(line.offset);
    offset.insert(0, offset.size() < 6 ? 6 - offset.size() : 0, ' ');
    std::string bytes;
    for (const unsigned char byte : tree.bytes().subspan(line.offset, line.size))
        bytes += (bytes.empty() ? "" : " ") + hexDigits({&byte, 1});
    bytes.resize(3 * rowSize - 1, ' ');
    std::string name = std::string(2 * line.level, ' ') + line.name;
    if (name.size() < columns) name.resize(columns, ' ');
    std::string text = offset + "  " + bytes + "  " + name + (line.value.empty() ? "" : "  " + line.value);
    text.erase(text.find_last_not_of(' ') + 1);
    return text + '\n';
}

std::string typeName(const Node& node)
{
    if (node.declared) return node.declared->name;
    return node.use ? formName(node.use->form) : "";
}

}  // namespace

std::vector<AnnotatedLine> annotatedLines(const Tree& tree)
{
    Annotator annotator(tree);
    annotator.annotate();
    return std::move(annotator.lines);
}

std::string annotationText(const Tree& tree)
{
    const std::vector<AnnotatedLine> lines = annotatedLines(tree);
    const std::size_t columns = nameColumns(lines);
    std::string text;
    for (const AnnotatedLine& line : lines) text += lineText(tree, line, columns);
    return text;
}

std::string failureText(const Tree& tree)
{
    if (!tree.stopped()) return {};
    constexpr std::size_t around = 8;     // bytes before and after the place
    constexpr std::size_t lastParts = 3;  // decoded parts before those bytes
    const std::size_t place = tree.stopped()->failure.offset;
    const std::vector<AnnotatedLine> all = annotatedLines(tree);
    const auto isRefusal = [](const AnnotatedLine& line) { return line.name.starts_with("! "); };
    const auto refusal = std::ranges::find_if(all, isRefusal);
    auto from = std::ranges::find_if(
        all, [&](const AnnotatedLine& line) { return line.size > 0 && line.offset + line.size + around > place; });
    from = std::min(from, refusal);
    for (std::size_t named = 0; from != all.begin() && named < lastParts;) named += !(--from)->value.empty();
    auto to = refusal;
    while (to != all.end() && (to == refusal || to->offset < place + around)) ++to;

    const std::span<const AnnotatedLine> lines(from, to);
    const std::size_t columns = nameColumns(lines);
    // Long contents would fill the screen.
    const auto isLeftOut = [&](const AnnotatedLine& line) {
        const bool isNear = line.offset + line.size + around > place && line.offset < place + around;
        return !isNear && line.name.empty() && line.value.empty();
    };
    std::string text;
    bool isMarked = false, skips = false;
    for (const AnnotatedLine& line : lines) {
        if (isLeftOut(line)) {
            if (!std::exchange(skips, true)) text += "   ...\n";
            continue;
        }
        skips = false;
        text += lineText(tree, line, columns);
        if (isMarked || isRefusal(line) || place < line.offset || place >= line.offset + line.size) continue;
        text += std::string(8 + 3 * (place - line.offset), ' ') + "^^ byte " + std::to_string(place) + '\n';
        isMarked = true;
    }
    const std::string cause = likelyCause(tree);
    return cause.empty() ? text : text + "likely cause: " + cause + '\n';
}

Json partJson(const Tree& tree, std::uint32_t at)
{
    const Node& node = tree.nodes()[at];
    Json json = Json::object();
    auto& fields = json.get_ref<Json::object_t&>();  // `json[...]` would compare the names of all fields
    fields.reserve(mostFields);
    fields.emplace_back("path", tree.pointer(at));
    std::size_t depth = 0;
    for (std::uint32_t i = at; i != 0; i = tree.nodes()[i].parent) ++depth;
    fields.emplace_back("depth", depth);
    fields.emplace_back("name", at == 0                      ? tree.type().name
                                : tree.isOptionalValue(node) ? "value"
                                : tree.isElement(node)       ? '[' + std::to_string(node.index) + ']'
                                                             : std::string(node.member->name));
    fields.emplace_back("kind", node.type ? kindName(*node.type) : node.use ? formName(node.use->form) : "");
    if (node.declared) fields.emplace_back("type", node.declared->name);
    fields.emplace_back("offset", node.offset);
    fields.emplace_back("size", node.size);
    const bool isValue = !node.isGroup() && !(node.use && node.use->type);
    if (isValue && node.complete) fields.emplace_back("value", treeJson(tree, at));
    const std::string text = valueText(node);
    if (!text.empty()) fields.emplace_back("text", text);
    if (!node.complete) fields.emplace_back("complete", false);
    return json;
}

void printAnnotationJson(const Tree& tree, const std::function<void(std::string_view)>& print)
{
    Json json = {{"type", tree.type().name}, {"size", tree.bytes().size()}, {"nodes", Json::array()}};
    if (const auto& stopped = tree.stopped()) {
        json["refused"] = {
            {"path", stopped->failure.path}, {"offset", stopped->failure.offset}, {"reason", stopped->failure.reason}};
        if (const std::string cause = likelyCause(tree); !cause.empty()) json["refused"]["cause"] = cause;
    } else if (tree.length() < tree.bytes().size()) {
        json["leftOver"] = {{"offset", tree.length()}, {"size", tree.bytes().size() - tree.length()}};
    }
    const std::string whole = json.dump(2);
    const std::size_t inNodes = whole.find("[]") + 1;  // the name of a type has no brackets
    std::string text = whole.substr(0, inNodes);
    for (std::uint32_t at = 0; at < tree.nodes().size(); ++at) {
        text += at == 0 ? "\n    " : ",\n    ";
        for (const char c : partJson(tree, at).dump(2)) {
            text += c;
            if (c == '\n') text += "    ";  // strings have their line breaks escaped
        }
        if (text.size() < mostWaiting) continue;
        print(text);
        text.clear();
    }
    print(text + "\n  " + whole.substr(inNodes) + '\n');
}

std::optional<std::uint32_t> partAt(const Tree& tree, std::size_t offset)
{
    std::optional<std::uint32_t> found;
    for (std::uint32_t at = 0; at < tree.nodes().size(); ++at) {
        const Node& node = tree.nodes()[at];
        if (offset >= node.offset && offset - node.offset < node.size) found = at;  // the last one is the innermost
    }
    return found;
}

std::optional<std::uint32_t> partAt(const Tree& tree, std::string_view pointer)
{
    std::uint32_t at = 0;
    while (true) {
        if (pointer.empty()) return at;
        if (pointer.front() != '/') return std::nullopt;
        const std::size_t end = std::min(pointer.find('/', 1), pointer.size());
        const std::string_view token = pointer.substr(1, end - 1);
        pointer.remove_prefix(end);
        const Use* use = tree.nodes()[at].use;
        while (use && use->form == Form::optional && tree.nodes()[at].end > at + 1) use = tree.nodes()[++at].use;
        std::optional<std::uint32_t> next;
        for (std::uint32_t i = Tree::first(at); i < tree.nodes()[at].end && !next; i = tree.nodes()[i].end) {
            const Node& node = tree.nodes()[i];
            if (tree.isElement(node) ? token == std::to_string(node.index) : node.member && token == node.member->name)
                next = i;
        }
        if (!next) return std::nullopt;
        at = *next;
    }
}

std::string partText(const Tree& tree, std::uint32_t at)
{
    const Node& node = tree.nodes()[at];
    const std::string path = tree.pointer(at);
    std::string text = (path.empty() ? "the whole value" : path) + "  bytes " + std::to_string(node.offset) + ".." +
                       std::to_string(node.offset + node.size - 1) + "  " + typeName(node);
    const bool isText = node.use && (node.use->form == Form::string || node.use->form == Form::variableOpaque ||
                                     node.use->form == Form::fixedOpaque);
    const std::string value =
        isText ? treeJson(tree, at).dump(-1, ' ', false, Json::error_handler_t::replace) : valueText(node);
    return value.empty() ? text : text + "  " + value;
}

}  // namespace quorva::inspect
