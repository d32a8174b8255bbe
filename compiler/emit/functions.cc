// Prints the plain functions of a module: encode, decode and release of each type, and its routine.
#include "emit.h"
#include "front/structure.h"
#include "names.h"
#include "plan/plan.h"
#include "text.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

std::string number(std::uint64_t value)
{
    return std::to_string(value);
}

// Lines of a function's body, with their indentation.
class Body {
public:
    explicit Body(std::size_t depth = 1) : depth_(depth) {}

    void line(const std::string& text) { text_ += std::string(depth_ * indentWidth, ' ') + text + "\n"; }
    // Begins and ends a block, which has no braces around a single statement.
    void open(const std::string& head)
    {
        blocks_.push_back({text_.size(), head});
        line(head + " {");
        ++depth_;
    }
    void close()
    {
        --depth_;
        const auto [from, head] = blocks_.back();
        blocks_.pop_back();
        const std::size_t contents = text_.find('\n', from) + 1;
        if (!head.starts_with("switch") &&
            std::count(text_.begin() + static_cast<std::ptrdiff_t>(contents), text_.end(), '\n') == 1) {
            const std::string statement = text_.substr(contents);
            text_.resize(from);
            const std::size_t blanks = statement.find_first_not_of(' ');
            if (blanks + head.size() + statement.size() - blanks <= lineWidth)
                line(head + " " + statement.substr(blanks, statement.size() - blanks - 1));
            else
                text_ += std::string(depth_ * indentWidth, ' ') + head + "\n" + statement;
            return;
        }
        line("}");
    }
    void label(const std::string& text)
    {
        --depth_;
        line(text);
        ++depth_;
    }
    void add(const std::string& lines) { text_ += lines; }
    std::size_t depth() const { return depth_; }
    const std::string& text() const { return text_; }
    // The statements one after the other, each after a blank.
    std::string asLine() const
    {
        std::string out;
        for (std::size_t at = 0; at < text_.size();) {
            const std::size_t end = text_.find('\n', at);
            at = text_.find_first_not_of(' ', at);
            out += ' ' + text_.substr(at, end - at);
            at = end + 1;
        }
        return out;
    }

private:
    struct Block {
        std::size_t from;  // in the text
        std::string head;
    };

    std::string text_;
    std::size_t depth_;
    std::vector<Block> blocks_;
};

// The place of a member: how the object's parts are spelled, and where a failure hands it over.
struct Place {
    std::string object;       // "value.id", "elements[i]"
    const Definition* owner;  // whose object `value` is
    std::size_t member = 0;   // index among the description's members
};

std::string elementsOf(const Place& place)
{
    return "quorva::elementsOf(" + place.object + ")";
}

// What the functions of every mode have in common.
class Printer {
public:
    Printer(Plans& plans, const std::string& stream) : plans_(plans), stream_(stream) {}

protected:
    // Hands the object over from the place's member on.
    std::string rest(const Place& place) const
    {
        return stream_ + ".rest(at, &value, " + description(*place.owner) + ", " + number(place.member) + ")";
    }
    void restIf(Body& out, const std::string& condition, const Place& place) const
    {
        out.line("if (" + stream_ + "." + condition + ") return " + rest(place) + ";");
    }
    // `at` moves to what `next` returns, and the function ends where that is null.
    static void advance(Body& out, const std::string& next, const std::string& otherwise = "nullptr")
    {
        out.line("if (!(at = " + next + ")) return " + otherwise + ";");
    }

    static std::string offset(std::uint64_t bytes) { return bytes == 0 ? "at" : "at + " + number(bytes); }

    static std::string index(std::size_t depth) { return depth == 0 ? "i" : "i" + number(depth); }
    static std::string loop(const std::string& index, const std::string& count)
    {
        return "for (std::size_t " + index + " = 0; " + index + " < " + count + "; ++" + index + ")";
    }

    // A value of fixed size at `at` and some bytes. `verb` is put or get.
    void fixed(Body& out, const std::string& verb, const Part& part, const std::string& object, const std::string& at,
               std::size_t depth = 0) const
    {
        switch (part.coding) {
        case Coding::number: return out.line("quorva::" + verb + "(" + at + ", " + object + ");");
        case Coding::fixedStruct: return out.line("quorva::plain::" + verb + "(" + at + ", " + object + ");");
        case Coding::fixedOpaque: return out.line("quorva::" + verb + "Opaque(" + at + ", " + object + ");");
        default: break;
        }
        const Part& element = part.element[0];
        if (element.isWord && part.bound > 1)
            return out.line("quorva::" + verb + "Units(" + at + ", " + object + ", " + number(part.bound) + ");");
        const std::string i = index(depth);
        out.open(loop(i, number(part.bound)));
        fixed(out, verb, element, object + "[" + i + "]", at + " + " + number(element.size) + " * " + i, depth + 1);
        out.close();
    }

    // The members from `run.first` on that form a run.
    void fixedMembers(Body& out, const std::string& verb, const Definition& structure, const Run& run)
    {
        restIf(out, "lacks(at, " + number(run.size) + ")", {"", &structure, run.first});
        std::uint64_t at = 0;
        for (std::size_t i = run.first; i < run.first + run.count; ++i) {
            const Declaration& field = structure.fields[i];
            const Part part = plans_.part(field);
            fixed(out, verb, part, "value." + field.name, offset(at));
            at += part.size;
        }
    }

    // The elements of a block, each of fixed size.
    void fixedElements(Body& out, const std::string& verb, const Part& element, const Place& place) const
    {
        if (element.isWord) {
            out.line("quorva::" + verb + "Units(at, " + place.object + ".elements, " + place.object + ".count);");
            out.line("at += 4 * std::size_t{" + place.object + ".count};");
            return;
        }
        out.open("for (auto& each : " + elementsOf(place) + ")");
        fixed(out, verb, element, "each", "at", 1);
        out.line("at += " + number(element.size) + ";");
        out.close();
    }

    // The labels of an arm and its statements, on one line where they fit.
    static void armOf(Body& out, const std::vector<const Value*>& cases, const Body& contents)
    {
        for (const Value* value : cases) {
            const std::string text = number(*value);
            const std::string label = "case " + text + ":";
            const std::string name = value->text == text ? "" : "  // " + value->text;
            const std::string line = label + contents.asLine() + name;
            if (value == cases.back() && line.size() + indentWidth <= lineWidth) {
                out.label(line);
                return;
            }
            out.label(label + name);
        }
        out.add(contents.text());
    }

    static std::string switchOn(const Definition& definition, const std::string& place)
    {
        return discriminantOf(definition).enumeration ? "static_cast<std::int32_t>(" + place + ")" : place;
    }

    static void voidArms(Body& out, const Definition& definition)
    {
        std::vector<const Value*> cases;
        for (const Arm& arm : definition.arms)
            if (arm.declaration.form == Form::nothing)
                for (const Value& value : arm.cases) cases.push_back(&value);
        Body contents(2);
        contents.line("return at;");
        if (!cases.empty()) armOf(out, cases, contents);
    }

    static std::string number(const Value& value)
    {
        return std::to_string(value.number) + (value.number > INT32_MAX ? "U" : "");
    }
    static std::string number(std::uint64_t value) { return std::to_string(value); }

    static std::size_t armIndex(const Definition& definition, const Declaration& declaration)
    {
        const auto found = std::find_if(definition.arms.begin(), definition.arms.end(),
                                        [&](const Arm& arm) { return &arm.declaration == &declaration; });
        return 1 + static_cast<std::size_t>(found - definition.arms.begin());
    }

    Plans& plans_;
    const std::string stream_;
};

// ---- Encode and decode ---------------------------------------------------------------------------------------------

// What encode() and decode() of a type have in common.
class ModePrinter : protected Printer {
public:
    // `function` is encode or decode, and `verb` put or get.
    ModePrinter(Plans& plans, const std::string& stream, const std::string& function, const std::string& verb)
        : Printer(plans, stream), function_(function), verb_(verb)
    {
    }
    virtual ~ModePrinter() = default;

    // A whole type: the statements that code `value`, which end with a return.
    std::string contents(const Definition& definition)
    {
        Body out;
        if (definition.kind == Kind::discriminated)
            unionContents(out, definition);
        else if (isCounted(definition))
            last(out, plans_.part(definition.target), {"value", &definition});
        else
            structContents(out, definition);
        return out.text();
    }

protected:
    // A block or an optional value; `at` is null or has moved on.
    virtual void array(Body& out, const Part& part, const Place& place) = 0;
    virtual void optional(Body& out, const Part& part, const Place& place) = 0;

    // What a union returns whose discriminant selects no arm.
    virtual std::string refusal(const std::string& discriminant) const = 0;

    // An expression for the byte after a value that can fail by itself.
    std::string next(const Part& part, const std::string& object) const
    {
        const std::string head = stream_ + ".";
        const std::string value = "(at, " + object + ", ";
        switch (part.coding) {
        case Coding::foreign: return head + "foreign" + value + "Xdr" + part.type->name + ")";
        case Coding::string: return head + "string" + value + number(part.bound) + ")";
        case Coding::variableOpaque: return head + "opaque" + value + number(part.bound) + ")";
        default: return "quorva::plain::" + function_ + "(" + stream_ + ", at, " + object + ")";
        }
    }

    // A value whose size varies; `at` is null or has moved on.
    void varying(Body& out, const Part& part, const Place& place, std::size_t depth)
    {
        switch (part.coding) {
        case Coding::fixedArray: {
            const std::string i = index(depth);
            out.open(loop(i, number(part.bound)));
            varying(out, part.element[0], {place.object + "[" + i + "]", place.owner, place.member}, depth + 1);
            out.close();
            return;
        }
        case Coding::variableArray: return array(out, part, place);
        case Coding::optional: return optional(out, part, place);
        case Coding::interpreted:
            return advance(
                out, stream_ + ".member(at, &value, " + description(*place.owner) + ", " + number(place.member) + ")");
        default: return advance(out, next(part, place.object));
        }
    }

private:
    // The last value of a type.
    void last(Body& out, const Part& part, const Place& place)
    {
        const bool isExpression = part.coding == Coding::foreign || part.coding == Coding::string ||
                                  part.coding == Coding::variableOpaque || part.coding == Coding::function;
        if (isExpression) return out.line("return " + next(part, place.object) + ";");
        varying(out, part, place, 0);
        out.line("return at;");
    }

    void structContents(Body& out, const Definition& definition)
    {
        for (const Run& run : plans_.runsOf(definition)) {
            const bool isLast = run.first + run.count == definition.fields.size();
            if (run.size != 0) {
                fixedMembers(out, verb_, definition, run);
                out.line((isLast ? "return at + " : "at += ") + number(run.size) + ";");
                continue;
            }
            const Declaration& field = definition.fields[run.first];
            const Place place = {"value." + field.name, &definition, run.first};
            if (isLast)
                last(out, plans_.part(field), place);
            else
                varying(out, plans_.part(field), place, 0);
        }
    }

    // A union asks at once for the room of its discriminant and of an arm of one unit, if it has such arms: where there
    // is less, the interpreter decides.
    void unionContents(Body& out, const Definition& definition)
    {
        const std::vector<ArmMember> arms = armMembersOf(definition);
        const bool hasUnits = std::any_of(
            arms.begin(), arms.end(), [&](const ArmMember& arm) { return plans_.part(*arm.declaration).size == 4; });
        const std::string place = "value." + definition.discriminant.name;
        restIf(out, std::string("lacks(at, ") + (hasUnits ? "8" : "4") + ")", {"", &definition, 0});
        out.line("quorva::" + verb_ + "(at, " + place + ");");
        out.line("at += 4;");
        out.open("switch (" + switchOn(definition, place) + ")");
        for (const ArmMember& arm : arms) {
            const Place at = {"value." + arm.declaration->name, &definition, armIndex(definition, *arm.declaration)};
            const Part part = plans_.part(*arm.declaration);
            Body contents(2);
            if (part.size != 0) {
                if (part.size != 4) restIf(contents, "lacks(at, " + number(part.size) + ")", at);
                fixed(contents, verb_, part, at.object, "at");
                contents.line("return at + " + number(part.size) + ";");
            } else {
                last(contents, part, at);
            }
            armOf(out, arm.cases, contents);
        }
        voidArms(out, definition);
        if (definition.defaultArm) out.label("default: return at;");
        out.close();
        if (!definition.defaultArm) out.line("return " + refusal(place) + ";");
    }

    const std::string function_;
    const std::string verb_;
};

class EncodePrinter : public ModePrinter {
public:
    explicit EncodePrinter(Plans& plans) : ModePrinter(plans, "out", "encode", "put") {}

private:
    std::string refusal(const std::string&) const override { return "out.refuse(at)"; }

    void array(Body& out, const Part& part, const Place& place) override
    {
        const Part& element = part.element[0];
        restIf(out, "lacksArray(at, " + place.object + ", " + number(part.bound) + ", " + number(element.size) + ")",
               place);
        out.line("quorva::putUnit(at, " + place.object + ".count);");
        out.line("at += 4;");
        if (element.size != 0) return fixedElements(out, "put", element, place);
        out.open("for (auto& each : " + elementsOf(place) + ")");
        varying(out, element, {"each", place.owner, place.member}, 1);
        out.close();
    }

    void optional(Body& out, const Part& part, const Place& place) override
    {
        const Part& held = part.element[0];
        const std::string size = held.size == 0 ? "4" : place.object + " ? " + number(4 + held.size) + " : 4";
        restIf(out, "lacks(at, " + size + ")", place);
        out.line("quorva::putUnit(at, " + place.object + " != nullptr);");
        out.line("at += 4;");
        out.open("if (" + place.object + ")");
        if (held.size != 0) {
            fixed(out, "put", held, "(*" + place.object + ")", "at");
            out.line("at += " + number(held.size) + ";");
        } else {
            varying(out, held, {"(*" + place.object + ")", place.owner, place.member}, 0);
        }
        out.close();
    }
};

class DecodePrinter : public ModePrinter {
public:
    explicit DecodePrinter(Plans& plans) : ModePrinter(plans, "in", "decode", "get") {}

private:
    std::string refusal(const std::string& discriminant) const override
    {
        return "in.refuse(at, &" + discriminant + " + 1)";
    }

    void array(Body& out, const Part& part, const Place& place) override
    {
        const Part& element = part.element[0];
        restIf(out, "lacksArray(at, " + number(part.bound) + ", " + number(element.size) + ")", place);
        advance(out, "in.allocate(at, " + place.object + ")");
        if (element.size != 0) return fixedElements(out, "get", element, place);
        out.open("if (" + place.object + ".count != 0)");
        out.line("const bool outer = in.enter();");
        out.open("for (auto& each : " + elementsOf(place) + ")");
        within(out, element, "each", place, 1);
        out.close();
        out.line("in.leave(outer);");
        out.close();
    }

    void optional(Body& out, const Part& part, const Place& place) override
    {
        const Part& held = part.element[0];
        restIf(out, "lacksOptional(at, " + number(held.size) + ")", place);
        advance(out, "in.optional(at, " + place.object + ")");
        out.open("if (" + place.object + ")");
        if (held.size != 0) {
            fixed(out, "get", held, "(*" + place.object + ")", "at");
            out.line("at += " + number(held.size) + ";");
        } else {
            out.line("const bool outer = in.enter();");
            within(out, held, "(*" + place.object + ")", place, 0);
            out.line("in.leave(outer);");
        }
        out.close();
    }

    // A value inside of a block that this pass allocated.
    void within(Body& out, const Part& part, const std::string& object, const Place& place, std::size_t depth)
    {
        if (part.coding == Coding::fixedArray) {
            const std::string i = index(depth);
            out.open(loop(i, number(part.bound)));
            within(out, part.element[0], object + "[" + i + "]", place, depth + 1);
            out.close();
            return;
        }
        advance(out, next(part, object), "in.abandon(outer, " + place.object + ")");
    }
};

// ---- Release -------------------------------------------------------------------------------------------------------

class ReleasePrinter : Printer {
public:
    explicit ReleasePrinter(Plans& plans) : Printer(plans, "") {}

    std::string contents(const Definition& definition)
    {
        Body out;
        if (definition.kind == Kind::discriminated) {
            arms(out, definition);
        } else {
            if (isCounted(definition)) {
                release(out, plans_.part(definition.target), {"value", &definition, 0}, 0);
            } else {
                for (std::size_t i = 0; i < definition.fields.size(); ++i)
                    release(out, plans_.part(definition.fields[i]),
                            {"value." + definition.fields[i].name, &definition, i}, 0);
            }
            out.line("return true;");
        }
        return out.text();
    }

private:
    // Statements that release what the value owns, and return false where a release is refused.
    void release(Body& out, const Part& part, const Place& place, std::size_t depth)
    {
        if (!part.owns) return;
        switch (part.coding) {
        case Coding::string: return out.line("quorva::releaseBlock(" + place.object + ");");
        case Coding::variableOpaque: refuseCount(out, part, place); return releaseBlock(out, place);
        case Coding::fixedArray: {
            const std::string i = index(depth);
            out.open(loop(i, number(part.bound)));
            release(out, part.element[0], {place.object + "[" + i + "]", place.owner, place.member}, depth + 1);
            out.close();
            return;
        }
        case Coding::variableArray: return array(out, part, place);
        case Coding::optional: return optional(out, part, place);
        case Coding::number: return out.line("quorva::printFloat();");
        default: return out.line("if (!" + released(part, place) + ") return false;");
        }
    }

    std::string released(const Part& part, const Place& place) const
    {
        switch (part.coding) {
        case Coding::foreign: return "quorva::releaseForeign(xdrs, " + place.object + ", Xdr" + part.type->name + ")";
        case Coding::interpreted:
            return "quorva::releaseMember(xdrs, &value, " + description(*place.owner) + ", " + number(place.member) +
                   ")";
        default: return "quorva::plain::release(xdrs, " + place.object + ")";
        }
    }

    static void refuseCount(Body& out, const Part& part, const Place& place)
    {
        if (part.bound < mostElements)
            out.line("if (" + place.object + ".count > " + number(part.bound) + ") return false;");
    }
    static void releaseBlock(Body& out, const Place& place)
    {
        out.line("if (" + place.object + ".count != 0) quorva::releaseBlock(" + place.object + ".elements);");
    }

    void array(Body& out, const Part& part, const Place& place)
    {
        refuseCount(out, part, place);
        if (!part.element[0].owns) return releaseBlock(out, place);
        elements(out, part.element[0], elementsOf(place), place);
    }

    void optional(Body& out, const Part& part, const Place& place)
    {
        if (!part.element[0].owns) return out.line("quorva::releaseBlock(" + place.object + ");");
        elements(out, part.element[0], "std::span(" + place.object + ", " + place.object + " ? 1 : 0)", place);
    }

    // The elements of a block, then the block, whether its elements could be released or not.
    void elements(Body& out, const Part& element, const std::string& all, const Place& place)
    {
        Body contents(out.depth() + 1);
        const Place each = {"each", place.owner, place.member};
        if (element.coding == Coding::function || element.coding == Coding::fixedStruct ||
            element.coding == Coding::foreign) {
            contents.line("return " + released(element, each) + ";");
        } else {
            release(contents, element, each, 1);
            contents.line("return true;");
        }
        const bool isNamed = contents.text().find("each") != std::string::npos;
        out.line("if (!quorva::releaseElements(" + all + ", [&](auto&" + (isNamed ? " each" : "") + ") {");
        out.add(contents.text());
        out.line("})) return false;");
    }

    void arms(Body& out, const Definition& definition)
    {
        const std::string place = "value." + definition.discriminant.name;
        out.open("switch (" + switchOn(definition, place) + ")");
        std::vector<const Value*> unowned;
        for (const ArmMember& arm : armMembersOf(definition)) {
            const Part part = plans_.part(*arm.declaration);
            if (!part.owns) {
                unowned.insert(unowned.end(), arm.cases.begin(), arm.cases.end());
                continue;
            }
            const Place at = {"value." + arm.declaration->name, &definition, armIndex(definition, *arm.declaration)};
            Body contents(2);
            if (part.coding == Coding::function || part.coding == Coding::fixedStruct ||
                part.coding == Coding::foreign || part.coding == Coding::interpreted) {
                contents.line("return " + released(part, at) + ";");
            } else {
                release(contents, part, at, 0);
                contents.line("return true;");
            }
            armOf(out, arm.cases, contents);
        }
        for (const Arm& arm : definition.arms)
            if (arm.declaration.form == Form::nothing)
                for (const Value& value : arm.cases) unowned.push_back(&value);
        if (!unowned.empty()) out.add(wrappedCases(unowned) + std::string(2 * indentWidth, ' ') + "return true;\n");
        if (definition.defaultArm) out.label("default: return true;");
        out.close();
        if (!definition.defaultArm) out.line("return false;");
    }

    // Labels of arms that own nothing, many a line.
    static std::string wrappedCases(const std::vector<const Value*>& cases)
    {
        std::string out, line;
        for (const Value* value : cases) {
            const std::string next = "case " + number(*value) + ":";
            if (indentWidth + line.size() + 1 + next.size() > lineWidth) {
                out += std::string(indentWidth, ' ') + line + "\n";
                line.clear();
            }
            line += (line.empty() ? "" : " ") + next;
        }
        return out + std::string(indentWidth, ' ') + line + "\n";
    }

    static constexpr std::uint32_t mostElements = 65535;
};

// ---- Functions -----------------------------------------------------------------------------------------------------

std::string encodeHead(const Definition& definition)
{
    return "unsigned char* quorva::plain::encode(quorva::Encoder& out, unsigned char* at, const " +
           typeName(definition) + "& value)";
}

std::string decodeHead(const Definition& definition)
{
    return "unsigned char* quorva::plain::decode(quorva::Decoder& in, unsigned char* at, " + typeName(definition) +
           "& value)";
}

// Names the parameters that the contents use: the stream is always the first argument of a call.
std::string releaseHead(const Definition& definition, const std::string& contents)
{
    const bool usesStream = contents.find("(xdrs, ") != std::string::npos;
    const bool usesValue = contents.find("value") != std::string::npos;
    return std::string("bool quorva::plain::release(Xdr*") + (usesStream ? " xdrs, " : ", ") + typeName(definition) +
           "&" + (usesValue ? " value)" : ")");
}

std::string putHead(const Definition& definition)
{
    return "void quorva::plain::put(unsigned char* at, const " + typeName(definition) + "& value)";
}

std::string getHead(const Definition& definition)
{
    return "void quorva::plain::get(const unsigned char* at, " + typeName(definition) + "& value)";
}

// On one line where it fits.
std::string specialisation(bool isInline, const std::string& head, const std::string& tail = "")
{
    const std::string rest = (isInline ? "inline " : "") + head + tail;
    const std::string line = "template <> " + rest;
    return (line.size() <= lineWidth ? line : "template <>\n" + rest) + "\n";
}

std::string function(const std::string& comment, bool isInline, const std::string& head, const std::string& contents)
{
    return comment + specialisation(isInline, head) + "{\n" + contents + "}\n";
}

class FunctionPrinter : Printer {
public:
    explicit FunctionPrinter(Plans& plans) : Printer(plans, ""), encode_(plans), decode_(plans), release_(plans) {}

    // All functions of a type, with a comment above the first.
    std::string of(const Definition& definition, const std::string& comment)
    {
        const TypePlan plan = plans_.of(definition);
        std::string out;
        if (plan.size != 0) {
            out = function(comment, plan.isInline, putHead(definition), fields(definition, "put")) + "\n" +
                  function("", plan.isInline, getHead(definition), fields(definition, "get"));
        } else {
            out = function(comment, plan.isInline, encodeHead(definition), encode_.contents(definition)) + "\n" +
                  function("", plan.isInline, decodeHead(definition), decode_.contents(definition));
        }
        if (!plan.owns) return out;
        const std::string contents = release_.contents(definition);
        return out + "\n" + function("", plan.isInline, releaseHead(definition, contents), contents);
    }

    // Their declarations.
    std::string declared(const Definition& definition)
    {
        const TypePlan plan = plans_.of(definition);
        const auto declare = [&](const std::string& head) { return specialisation(plan.isInline, head, ";"); };
        return (plan.size != 0 ? declare(putHead(definition)) + declare(getHead(definition))
                               : declare(encodeHead(definition)) + declare(decodeHead(definition))) +
               (plan.owns ? declare(releaseHead(definition, "(xdrs, value)")) : "");
    }

private:
    std::string fields(const Definition& definition, const std::string& verb)
    {
        Body out;
        std::uint64_t at = 0;
        for (const Declaration& field : definition.fields) {
            const Part part = plans_.part(field);
            fixed(out, verb, part, "value." + field.name, offset(at));
            at += part.size;
        }
        return out.text();
    }

    EncodePrinter encode_;
    DecodePrinter decode_;
    ReleasePrinter release_;
};

// The first line of the definition's documentation, and where it is.
std::string heading(const Definition& definition, const Module& module)
{
    const std::string place = module.source.module + ".x:" + number(definition.at.line);
    const std::string doc = definition.doc.substr(0, definition.doc.find('\n'));
    if (doc.empty()) return lineComment(place);
    const std::string together = doc + "   " + place;
    return lineComment(wrapped(together, lineWidth - 3).size() == 1 ? together : doc + "\n" + place);
}

std::string nameFunction(const Definition& definition)
{
    std::vector<const Enumerator*> ascending;
    for (const Enumerator& each : definition.enumerators) ascending.push_back(&each);
    std::ranges::sort(ascending, {}, [](const Enumerator* each) { return each->value.number; });
    std::string out = "const char* " + definition.name + "String(int value)\n{\n    switch (value) {\n";
    for (const Enumerator* each : ascending)
        out += "    case " + std::to_string(each->value.number) + ": return " + literal(each->name) + ";\n";
    return out + "    }\n    return \"Error_in_Function\";\n}\n";
}

std::string routine(const Definition& definition, Plans& plans)
{
    const TypePlan plan = hasFunctions(definition) ? plans.of(definition) : TypePlan{};
    const std::string owns = plan.owns ? "true" : "false";
    const std::string body = !plan.hasFunctions ? "interpret"
                             : plan.size != 0
                                 ? "codeFixed<" + typeName(definition) + ", " + number(plan.size) + ", " + owns + ">"
                                 : "code<" + typeName(definition) + ", " + owns + ">";
    const std::string head = "int Xdr" + definition.name + "(Xdr* xdrs, void* object)";
    const std::string call = "return quorva::" + body + "(xdrs, object, " + description(definition) + ");";
    const std::string line = head + " { " + call + " }\n";
    return line.size() <= lineWidth + 1 ? line : head + "\n{\n    " + call + "\n}\n";
}

}  // namespace

std::string emitUnit(const Module& module)
{
    Plans plans(module);
    FunctionPrinter printer(plans);
    std::vector<std::string> parts = {madeFrom(module) + "#include <" + privateHeader(module.source.module) + ">\n"};
    std::string routines;
    for (const Definition* definition : typesOf(module)) {
        if (definition->kind == Kind::enumeration)
            parts.push_back(heading(*definition, module) + nameFunction(*definition));
        if (hasFunctions(*definition) && !plans.of(*definition).isInline)
            parts.push_back(printer.of(*definition, heading(*definition, module)));
        routines += routine(*definition, plans);
    }
    parts.push_back(routines.empty() ? "" : "// The coding routines.\n" + routines);
    return sections(parts);
}

std::string emitPrivateHeader(const Module& module)
{
    Plans plans(module);
    FunctionPrinter printer(plans);
    std::string includes = "#include <" + publicHeader(module.source.module) + ">\n";
    for (const Import& import : module.imports) {
        const bool isForeign = import.module && !import.module->requested;
        if (!isForeign) includes += "#include <" + privateHeader(import.name) + ">\n";
    }
    std::string declared, descriptions;
    std::vector<std::string> inlined;
    for (const Definition* definition : declarationOrder(typesOf(module))) {
        if (!hasFunctions(*definition)) continue;
        declared += printer.declared(*definition);
        if (plans.of(*definition).isInline) inlined.push_back(printer.of(*definition, heading(*definition, module)));
    }
    for (const Definition* definition : typesOf(module))
        descriptions += "extern const ::quorva::Type " + definition->name + ";\n";
    std::vector<std::string> parts = {
        madeFrom(module) +
            "// What the units of one library need of each other; no part of its interface.\n#pragma once\n",
        includes + "\n#include <quorvaruntime/plain.h>\n\n#include <cstddef>\n#include <cstdint>\n#include <span>\n",
        descriptions.empty() ? "" : "namespace quorva::types {\n" + descriptions + "}  // namespace quorva::types\n",
        declared};
    parts.insert(parts.end(), inlined.begin(), inlined.end());
    return sections(parts);
}

}  // namespace quorva::compiler
