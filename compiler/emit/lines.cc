// Prints what types show in the trace: lines, of which <quorvapixdr/tracing.h> makes constants.
#include "text.h"
#include "words.h"
#include "front/resolve.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

constexpr std::size_t mostLines = 32;  // that make one constant
constexpr std::size_t mostInside = 8;  // of a record that is shown among the lines of another

// The lines of an object, or of an arm of a union.
class Lines {
public:
    Lines(const Definition& object, LineCounts& counts, WireShapes& shapes, const Spelling& spelling)
        : object_(spelling.global(object.name)), counts_(counts), shapes_(shapes), spelling_(spelling)
    {
    }

    void addContents(const Definition& definition, const std::string& path = "")
    {
        if (definition.kind == Kind::discriminated) {
            const std::string name = literal(definition.name + "Union");
            add(definition.discriminant, inside(path, definition.discriminant.name));
            line("openLine", {name});
            line("armLine", {offset(path)}, callee("showArm", definition));
            line("closeLine", {name});
        } else if (definition.kind == Kind::record && (path.empty() || counts_.of(definition) <= mostInside)) {
            for (const Declaration& field : definition.fields) add(field, inside(path, field.name));
        } else {
            line("callLine", {offset(path)}, callee("show", definition));
        }
    }

    void add(const Declaration& declaration, const std::string& path)
    {
        const std::string name = literal(declaration.name);
        switch (declaration.form) {
        case Form::single: addSingle(declaration, path, name); break;
        case Form::string: line("textLine", {name, offset(path), bound(declaration, spelling_)}); break;
        case Form::bytes: line("bytesLine", {name, offset(path), bound(declaration, spelling_)}); break;
        default: addPart(declaration, path);
        }
    }

    void addEmpty(const std::string& name)
    {
        line("openLine", {literal(name)});
        line("closeLine", {literal(name)});
    }

    // The statements that show them all.
    std::string shown(const std::string& margin) const
    {
        std::string out = parts(margin);
        for (std::size_t from = 0; from < lines_.size(); from += mostLines) {
            const std::size_t to = std::min(lines_.size(), from + mostLines);
            const std::string name = "lines" + (lines_.size() <= mostLines ? "" : std::to_string(from / mostLines + 1));
            out += array(margin, name, from, to);
            std::vector<std::string> arguments = {"pass", "at", "object"};
            for (std::size_t i = from; i < to; ++i)
                if (!lines_[i].callee.empty()) arguments.push_back(lines_[i].callee);
            const std::string head = to == lines_.size() ? "return " : "at = ";
            out += argumentList(margin.size(), head + "showLines<" + name + ">(", arguments, ");\n");
            if (to < lines_.size()) out += margin + "if (!at) return at;\n";
        }
        return out;
    }

    // The statements that select them.
    std::string selected(const std::string& margin) const
    {
        std::string callee;
        std::size_t callees = 0;
        for (const Entry& each : lines_) {
            if (each.callee.empty()) continue;
            callee = ", " + each.callee;
            ++callees;
        }
        const std::string head = margin + "return armLines";
        if (callees < 2)
            return parts(margin) + array(margin, "lines", 0, lines_.size()) + head + "<lines>(callee" + callee + ");\n";
        return margin + "const auto all = " + function() + shown(margin + step()) + margin + "};\n" + margin +
               "static constexpr Line call[] = {callLine(0)};\n" + head + "<call>(callee, all);\n";
    }

private:
    struct Entry {
        std::string word;
        std::vector<std::string> arguments;
        std::string callee;
    };
    struct Part {
        const Declaration* declaration;
        std::string path;
    };

    void addSingle(const Declaration& declaration, const std::string& path, const std::string& name)
    {
        const Definition* definition = behindAliases(declaration.type).definition;
        const WireShape shape = shapes_.of(declaration.type);
        const bool isFloat = shape.kind == WireShape::Kind::number && shape.owns;
        if (isFloat || shape.kind == WireShape::Kind::routine) {
            addPart(declaration, path);
        } else if (shape.kind == WireShape::Kind::number || shape.kind == WireShape::Kind::text) {
            line("line", {name, offset(path), spelling_.coder(declaration.type.name)},
                 definition && definition->kind == Kind::enumeration ? spelling_.global(definition->name + "String") : "");
        } else {
            line("openLine", {name});
            addContents(*definition, path);
            line("closeLine", {name});
        }
    }

    void addPart(const Declaration& declaration, const std::string& path)
    {
        parts_.push_back({&declaration, path});
        line("callLine", {"0"}, "part" + std::to_string(parts_.size()));
    }

    void line(const std::string& word, const std::vector<std::string>& arguments, const std::string& callee = "")
    {
        lines_.push_back({word, arguments, callee});
    }

    std::string array(const std::string& margin, const std::string& name, std::size_t from, std::size_t to) const
    {
        std::string out = margin + "static constexpr Line " + name + "[] = {\n";
        for (std::size_t i = from; i < to; ++i)
            out += argumentList(margin.size() + indentWidth, lines_[i].word + "(", lines_[i].arguments, "),\n");
        return out + margin + "};\n";
    }

    // The functions for what no line shows.
    std::string parts(const std::string& margin) const
    {
        std::string out;
        for (std::size_t i = 0; i < parts_.size(); ++i)
            out += margin + "const auto part" + std::to_string(i + 1) + " = " + function() + margin + step() +
                   "auto& obj = *static_cast<" + object_ + "*>(object);\n" +
                   part(margin.size() + indentWidth, "return tracePart(pass, at, ", *parts_[i].declaration,
                        literal(parts_[i].declaration->name), "obj." + parts_[i].path, ");", spelling_) +
                   "\n" + margin + "};\n";
        return out;
    }

    std::string function() const
    {
        return "[](Tracing& pass, At at, void* object) {\n";
    }
    std::string callee(const std::string& word, const Definition& definition) const
    {
        return word + "<" + spelling_.global(definition.name) + ">";
    }
    std::string offset(const std::string& path) const
    {
        return path.empty() ? "0" : "offsetof(" + object_ + ", " + path + ")";
    }
    static std::string inside(const std::string& path, const std::string& name)
    {
        return path.empty() ? name : path + "." + name;
    }
    static std::string step() { return std::string(indentWidth, ' '); }

    std::string object_;
    LineCounts& counts_;
    WireShapes& shapes_;
    const Spelling& spelling_;
    std::vector<Entry> lines_;
    std::vector<Part> parts_;
};

std::string showFunction(const Definition& definition, LineCounts& counts, WireShapes& shapes, const Spelling& spelling)
{
    const std::string type = spelling.global(definition.name);
    const std::string out = "template <>\nAt show<" + type + ">(Tracing& pass, At at, void* object)\n{\n";
    if (isCounted(definition))
        return out + "    auto& obj = *static_cast<" + type + "*>(object);\n" +
               part(indentWidth, "return tracePart(pass, at, ", definition.target, "untagged", "obj", ");", spelling) +
               "\n}\n";
    Lines lines(definition, counts, shapes, spelling);
    lines.addContents(definition);
    return out + lines.shown(std::string(indentWidth, ' ')) + "}\n";
}

std::string armFunction(const Definition& definition, LineCounts& counts, WireShapes& shapes, const Spelling& spelling)
{
    const std::string type = spelling.global(definition.name);
    const std::string margin(2 * indentWidth, ' ');
    const Labels labels(definition, spelling);
    std::string out = "template <>\nconst Step* showArm<" + type +
                      ">(const void* object, [[maybe_unused]] Callee& callee)\n{\n"
                      "    switch (static_cast<const " + type + "*>(object)->" + definition.discriminant.name + ") {\n";
    for (const Arm& each : definition.arms) {
        for (const Value& value : each.cases) out += labels.of(value);
        if (each.declaration.form == Form::nothing) {
            out += margin + "return &noLines;\n";
            continue;
        }
        out.insert(out.size() - 1, " {");
        Lines lines(definition, counts, shapes, spelling);
        lines.add(each.declaration, each.declaration.name);
        out += lines.selected(margin) + "    }\n";
    }
    if (!definition.defaultArm) return out + "    default: return nullptr;\n    }\n}\n";
    Lines lines(definition, counts, shapes, spelling);
    lines.addEmpty("default");
    return out + "    default: {\n" + lines.selected(margin) + "    }\n    }\n}\n";
}

}  // namespace

std::size_t LineCounts::of(const Definition& definition)
{
    if (definition.kind == Kind::discriminated) return 4;
    if (definition.kind != Kind::record) return 1;
    if (const auto known = counts_.find(&definition); known != counts_.end()) return known->second;
    std::size_t all = 0;
    for (const Declaration& field : definition.fields) {
        const Definition* inside = field.form == Form::single ? behindAliases(field.type).definition : nullptr;
        const std::size_t count = inside && hasBody(*inside) ? of(*inside) : 0;
        all += count == 0 ? 1 : 2 + (count > mostInside ? 1 : count);
    }
    return counts_[&definition] = all;
}

std::string TraceLines::of(const Definition& definition)
{
    if (!hasBody(definition)) return "";
    std::string out = showFunction(definition, counts_, shapes_, spelling_);
    if (definition.kind == Kind::discriminated) out += "\n" + armFunction(definition, counts_, shapes_, spelling_);
    return out;
}

}  // namespace quorva::compiler
