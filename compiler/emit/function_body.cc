// Statements, blocks and switch labels of generated functions.
#include "function_body.h"

#include "front/structure.h"
#include "text.h"

#include <algorithm>
#include <limits>

namespace quorva::compiler {

void FunctionBody::line(const std::string& text)
{
    lines += std::string(level * indentWidth, ' ') + text + "\n";
}

void FunctionBody::open(const std::string& head)
{
    blocks.push_back({lines.size(), head});
    line(head + " {");
    ++level;
}

void FunctionBody::close()
{
    --level;
    const auto [from, head] = blocks.back();
    blocks.pop_back();
    const std::size_t contents = lines.find('\n', from) + 1;
    if (!head.starts_with("switch") &&
        std::count(lines.begin() + static_cast<std::ptrdiff_t>(contents), lines.end(), '\n') == 1) {
        const std::string statement = lines.substr(contents);
        lines.resize(from);
        const std::size_t blanks = statement.find_first_not_of(' ');
        if (blanks + head.size() + statement.size() - blanks <= lineWidth)
            line(head + " " + statement.substr(blanks, statement.size() - blanks - 1));
        else
            lines += std::string(level * indentWidth, ' ') + head + "\n" + statement;
        return;
    }
    line("}");
}

void FunctionBody::label(const std::string& text)
{
    --level;
    line(text);
    ++level;
}

std::string FunctionBody::asLine() const
{
    std::string out;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = lines.find('\n', at);
        at = lines.find_first_not_of(' ', at);
        out += ' ' + lines.substr(at, end - at);
        at = end + 1;
    }
    return out;
}

std::string elementsOf(const Operand& operand)
{
    return "quorva::elementsOf(" + operand.expression + ")";
}

Operand elementOf(const Operand& array, const std::string& index)
{
    return {array.expression + "[" + index + "]", array.owner, array.member};
}

std::string number(std::uint64_t value)
{
    return std::to_string(value);
}

std::string number(const Value& value)
{
    return std::to_string(value.number) + (value.number > std::numeric_limits<std::int32_t>::max() ? "U" : "");
}

std::string indexName(std::size_t depth)
{
    return depth == 0 ? "i" : "i" + number(depth);
}

std::string loop(const std::string& index, std::uint64_t count)
{
    return "for (std::size_t " + index + " = 0; " + index + " < " + number(count) + "; ++" + index + ")";
}

std::string switchOn(const Definition& discriminatedUnion, const std::string& discriminant)
{
    return discriminantOf(discriminatedUnion).enumeration ? "static_cast<std::int32_t>(" + discriminant + ")"
                                                          : discriminant;
}

std::size_t armIndex(const Definition& discriminatedUnion, const Declaration& arm)
{
    const std::vector<Arm>& arms = discriminatedUnion.arms;
    const auto found =
        std::find_if(arms.begin(), arms.end(), [&](const Arm& each) { return &each.declaration == &arm; });
    return 1 + static_cast<std::size_t>(found - arms.begin());
}

void addArm(FunctionBody& out, const std::vector<const Value*>& cases, const FunctionBody& statements)
{
    for (const Value* value : cases) {
        const std::string text = number(*value);
        const std::string label = "case " + text + ":";
        const std::string name = value->text == text ? "" : "  // " + value->text;
        const std::string line = label + statements.asLine() + name;
        if (value == cases.back() && line.size() + indentWidth <= lineWidth) {
            out.label(line);
            return;
        }
        out.label(label + name);
    }
    out.add(statements.text());
}

}  // namespace quorva::compiler
