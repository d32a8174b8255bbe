// Names, parts and labels as the codec's units spell them.
#include "words.h"

#include "text.h"

#include <algorithm>
#include <iterator>

namespace quorva::compiler {

namespace {

// Words of the bodies and routines. A few more are refused as names of types.
bool isTaken(const std::string& name)
{
    static constexpr const char* words[] = {
        "Arm", "At", "Block", "Callee", "Calls", "Decimal", "Decoding", "Element", "Elements", "Encoding", "Field",
        "Line", "List", "Name", "NameOf", "NameText", "NamedValue", "Names", "Optional", "Packing", "Pass",
        "Program", "Releasing", "Show", "Step", "Text", "Tracing", "armLine", "armLines", "armOf", "at", "bytes",
        "bytesLine", "callLine", "close", "closeLine", "enumeration", "field", "line", "lines", "list", "nameAmong",
        "noLines", "obj", "object", "objectAt", "open", "openLine", "optional", "parts", "pass", "refuse", "run",
        "show", "showArm", "showLines", "text", "textLine", "tracePart", "untagged", "values", "vector", "xdrs",
    };
    return std::find(std::begin(words), std::end(words), name) != std::end(words);
}

// The word for a part of this form.
std::string wordOf(Form form)
{
    switch (form) {
    case Form::single: return "field";
    case Form::vector: return "vector";
    case Form::list: return "list";
    case Form::optional: return "optional";
    case Form::string: return "text";
    case Form::bytes: return "bytes";
    case Form::opaque: return "opaque";
    case Form::nothing: break;
    }
    return "";
}

bool takesBound(Form form)
{
    return form == Form::list || form == Form::string || form == Form::bytes;
}

bool takesCoder(Form form)
{
    return form == Form::single || form == Form::vector || form == Form::list || form == Form::optional;
}

}  // namespace

std::string Spelling::word(const std::string& name) const
{
    return !isAmongWords_ && visible_.contains(name) ? "quorva::walk::" + name : name;
}

std::string Spelling::global(const std::string& name) const
{
    return isAmongWords_ || isTaken(name) ? "::" + name : name;
}

std::string Spelling::coder(const std::string& name) const
{
    return (!isAmongWords_ && visible_.contains("coder") ? "quorva::coder::" : "coder::") + name;
}

Spelling Spelling::amongWords() const
{
    Spelling other = *this;
    other.isAmongWords_ = true;
    return other;
}

bool hasBody(const Definition& definition)
{
    return definition.kind == Kind::record || definition.kind == Kind::discriminated || isCounted(definition);
}

std::string bound(const Declaration& declaration, const Spelling& spelling)
{
    const auto& written = declaration.written;
    if (written && written->owner && written->owner->kind == Kind::constant) return spelling.global(written->text);
    return std::to_string(declaration.bound);
}

std::string part(std::size_t indent, const std::string& before, const Declaration& declaration, const std::string& tag,
                 const std::string& place, const std::string& after, const Spelling& spelling)
{
    std::vector<std::string> arguments = {tag, place};
    if (takesBound(declaration.form)) arguments.push_back(bound(declaration, spelling));
    if (takesCoder(declaration.form)) arguments.push_back(spelling.coder(declaration.type.name));
    return argumentList(indent, before + spelling.word(wordOf(declaration.form)) + "(", arguments, ")" + after);
}

std::string Labels::of(const Value& value) const
{
    const std::string label =
        enumeration_ ? spelling_.global(enumeration_->name) + "::" + enumerator(value.number) : std::to_string(value.number);
    return "    case " + label + ":\n";
}

std::string Labels::enumerator(std::int64_t number) const
{
    const auto& all = enumeration_->enumerators;
    const auto found =
        std::find_if(all.begin(), all.end(), [number](const auto& each) { return each.value.number == number; });
    return found == all.end() ? "" : found->name;
}

}  // namespace quorva::compiler
