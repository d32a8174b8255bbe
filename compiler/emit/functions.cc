// Prints the plain functions of a module: encode, decode and release of each type, and its routine.
#include "emit.h"
#include "names.h"
#include "plan/plan.h"
#include "plan/structure.h"
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
    void line(const std::string& text) { text_ += std::string(depth_ * indentWidth, ' ') + text + "\n"; }
    // Begins and ends a block; an empty head is a block of its own.
    void open(const std::string& head)
    {
        line(head.empty() ? "{" : head + " {");
        ++depth_;
    }
    void close(const std::string& tail = "")
    {
        --depth_;
        line("}" + tail);
    }
    void label(const std::string& text)
    {
        --depth_;
        line(text);
        ++depth_;
    }
    const std::string& text() const { return text_; }

private:
    std::string text_;
    std::size_t depth_ = 1;
};

// The place of a member: how the object's parts are spelled, and where a failure hands it over.
struct Place {
    std::string object;         // "value.id", "elements[i]"
    const Definition* owner;    // whose object `value` is
    std::size_t member = 0;     // index among the description's members
    bool isBlock = false;       // the object itself is the counted block
};

std::string countOf(const Place& place)
{
    return place.object + ".count";
}

std::string elementsOf(const Place& place)
{
    return place.object + ".elements";
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
    void stopIfRefused(Body& out) const { out.line("if (!at) return nullptr;"); }

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

    // The members from `step.first` on that form a run.
    void run(Body& out, const std::string& verb, const Definition& structure, const Step& step)
    {
        restIf(out, "lacks(at, " + number(step.size) + ")", {"", &structure, step.first});
        std::uint64_t at = 0;
        for (std::size_t i = step.first; i < step.first + step.count; ++i) {
            const Declaration& field = structure.fields[i];
            const Part part = plans_.part(field);
            fixed(out, verb, part, "value." + field.name, offset(at));
            at += part.size;
        }
    }

    // Elements of fixed size behind each other, `count` of them.
    void fixedElements(Body& out, const std::string& verb, const Part& element) const
    {
        if (element.isWord) {
            out.line("quorva::" + verb + "Units(at, elements, count);");
            out.line("at += 4 * count;");
            return;
        }
        out.open("for (std::size_t i = 0; i < count; ++i, at += " + number(element.size) + ")");
        fixed(out, verb, element, "elements[i]", "at", 1);
        out.close();
    }

    // A whole type: the statements that code `value`, which end with a return.
    template <class Mode>
    std::string contents(Mode& mode, const Definition& definition, const std::string& verb)
    {
        Body out;
        const TypePlan plan = plans_.of(definition);
        if (definition.kind == Kind::discriminated) {
            unionContents(mode, out, definition, verb);
        } else if (isCounted(definition)) {
            mode.varying(out, plans_.part(definition.target), {"value", &definition, 0, true}, 0);
            out.line("return at;");
        } else if (plan.size != 0) {
            restIf(out, "lacks(at, " + number(plan.size) + ")", {"", &definition, 0});
            out.line("quorva::plain::" + verb + "(at, value);");
            out.line("return at + " + number(plan.size) + ";");
        } else {
            structContents(mode, out, definition, verb);
        }
        return out.text();
    }

    template <class Mode>
    void structContents(Mode& mode, Body& out, const Definition& definition, const std::string& verb)
    {
        for (const Step& step : plans_.stepsOf(definition)) {
            const bool isLast = step.first + step.count == definition.fields.size();
            if (step.size != 0) {
                run(out, verb, definition, step);
                out.line((isLast ? "return at + " : "at += ") + number(step.size) + ";");
                continue;
            }
            const Declaration& field = definition.fields[step.first];
            mode.varying(out, plans_.part(field), {"value." + field.name, &definition, step.first}, 0);
            if (isLast) out.line("return at;");
        }
    }

    template <class Mode>
    void unionContents(Mode& mode, Body& out, const Definition& definition, const std::string& verb)
    {
        const Declaration& discriminant = definition.discriminant;
        const std::string place = "value." + discriminant.name;
        restIf(out, "lacks(at, 4)", {"", &definition, 0});
        out.line("quorva::" + verb + "(at, " + place + ");");
        out.line("at += 4;");
        out.open("switch (" + switchOn(definition, place) + ")");
        for (const ArmMember& arm : armMembersOf(definition)) {
            labels(out, arm);
            const Place at = {"value." + arm.declaration->name, &definition, armIndex(definition, *arm.declaration)};
            const Part part = plans_.part(*arm.declaration);
            if (part.size != 0) {
                restIf(out, "lacks(at, " + number(part.size) + ")", at);
                fixed(out, verb, part, at.object, "at");
                out.line("return at + " + number(part.size) + ";");
            } else {
                mode.arm(out, part, at);
            }
        }
        voidArms(out, definition);
        if (definition.defaultArm) out.label("default:");
        if (definition.defaultArm) out.line("return at;");
        out.close();
        if (!definition.defaultArm) out.line("return " + mode.refusal(place) + ";");
    }

    static std::string switchOn(const Definition& definition, const std::string& place)
    {
        return discriminantOf(definition).enumeration ? "static_cast<std::int32_t>(" + place + ")" : place;
    }

    static void label(Body& out, const Value& value)
    {
        const std::string text = number(value);
        out.label("case " + text + ":" + (value.text == text ? "" : "  // " + value.text));
    }
    static void labels(Body& out, const ArmMember& arm)
    {
        for (const Value* value : arm.cases) label(out, *value);
    }
    void voidArms(Body& out, const Definition& definition, const std::string& result = "at") const
    {
        bool any = false;
        for (const Arm& arm : definition.arms) {
            if (arm.declaration.form != Form::nothing) continue;
            any = any || !arm.cases.empty();
            for (const Value& value : arm.cases) label(out, value);
        }
        if (any) out.line("return " + result + ";");
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

// ---- Encode --------------------------------------------------------------------------------------------------------

class EncodePrinter : Printer {
public:
    explicit EncodePrinter(Plans& plans) : Printer(plans, "out") {}

    std::string contents(const Definition& definition) { return Printer::contents(*this, definition, "put"); }

    // An expression for the byte after a value that can fail by itself.
    std::string next(const Part& part, const std::string& object) const
    {
        switch (part.coding) {
        case Coding::foreign: return "out.foreign(at, &" + object + ", Xdr" + part.type->name + ")";
        case Coding::string: return "out.string(at, " + object + ", " + number(part.bound) + ")";
        case Coding::variableOpaque:
            return "out.opaque(at, " + object + ".elements, " + object + ".count, " + number(part.bound) + ")";
        default: return "quorva::plain::encode(out, at, " + object + ")";
        }
    }

    void arm(Body& out, const Part& part, const Place& place)
    {
        if (isSimple(part)) return out.line("return " + next(part, place.object) + ";");
        out.open("");
        varying(out, part, place, 0);
        out.line("return at;");
        out.close();
    }

    static std::string refusal(const std::string&) { return "out.refuse(at)"; }

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
            out.line("at = out.member(at, &value, " + description(*place.owner) + ", " + number(place.member) + ");");
            break;
        default: out.line("at = " + next(part, place.object) + ";");
        }
        stopIfRefused(out);
    }

    static bool isSimple(const Part& part)
    {
        return part.coding == Coding::foreign || part.coding == Coding::string || part.coding == Coding::variableOpaque ||
               part.coding == Coding::function;
    }

private:
    void array(Body& out, const Part& part, const Place& place)
    {
        const Part& element = part.element[0];
        out.open("");
        out.line("const std::uint32_t count = " + countOf(place) + ";");
        out.line("const auto* const elements = " + elementsOf(place) + ";");
        restIf(out, "lacksArray(at, count, elements, " + number(part.bound) + ", " + number(element.size) + ")", place);
        out.line("quorva::putUnit(at, " + countOf(place) + ");");
        out.line("at += 4;");
        if (element.size != 0) {
            fixedElements(out, "put", element);
        } else {
            out.open(loop("i", "count"));
            varying(out, element, {"elements[i]", place.owner, place.member}, 1);
            out.close();
        }
        out.close();
    }

    void optional(Body& out, const Part& part, const Place& place)
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

// ---- Decode --------------------------------------------------------------------------------------------------------

class DecodePrinter : Printer {
public:
    explicit DecodePrinter(Plans& plans) : Printer(plans, "in") {}

    std::string contents(const Definition& definition) { return Printer::contents(*this, definition, "get"); }

    std::string next(const Part& part, const std::string& object) const
    {
        switch (part.coding) {
        case Coding::foreign: return "in.foreign(at, &" + object + ", sizeof " + object + ", Xdr" + part.type->name + ")";
        case Coding::string: return "in.string(at, " + object + ", " + number(part.bound) + ")";
        case Coding::variableOpaque:
            return "in.opaque(at, " + object + ".elements, " + object + ".count, " + number(part.bound) + ")";
        default: return "quorva::plain::decode(in, at, " + object + ")";
        }
    }

    void arm(Body& out, const Part& part, const Place& place)
    {
        if (EncodePrinter::isSimple(part)) return out.line("return " + next(part, place.object) + ";");
        out.open("");
        varying(out, part, place, 0);
        out.line("return at;");
        out.close();
    }

    static std::string refusal(const std::string& discriminant) { return "in.refuse(at, &" + discriminant + " + 1)"; }

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
            out.line("at = in.member(at, &value, " + description(*place.owner) + ", " + number(place.member) + ");");
            break;
        default: out.line("at = " + next(part, place.object) + ";");
        }
        stopIfRefused(out);
    }

private:
    void array(Body& out, const Part& part, const Place& place)
    {
        const Part& element = part.element[0];
        restIf(out, "lacksArray(at, " + number(part.bound) + ", " + number(element.size) + ")", place);
        out.line("at = in.block(at, " + countOf(place) + ", " + elementsOf(place) + ");");
        stopIfRefused(out);
        out.open("");
        out.line("const std::uint32_t count = " + countOf(place) + ";");
        out.line("auto* const elements = " + elementsOf(place) + ";");
        if (element.size != 0) {
            fixedElements(out, "get", element);
        } else {
            out.line("const bool outer = in.enter();");
            out.open(loop("i", "count"));
            within(out, element, "elements[i]", "elements + count", place, 1);
            out.close();
            out.line("in.leave(outer);");
        }
        out.close();
    }

    void optional(Body& out, const Part& part, const Place& place)
    {
        const Part& held = part.element[0];
        restIf(out, "lacksOptional(at, " + number(held.size) + ")", place);
        out.line("at = in.optional(at, " + place.object + ");");
        stopIfRefused(out);
        out.open("if (" + place.object + ")");
        if (held.size != 0) {
            fixed(out, "get", held, "(*" + place.object + ")", "at");
            out.line("at += " + number(held.size) + ";");
        } else {
            out.line("const bool outer = in.enter();");
            within(out, held, "(*" + place.object + ")", place.object + " + 1", place, 0);
            out.line("in.leave(outer);");
        }
        out.close();
    }

    // A value inside of a block that this pass allocated.
    void within(Body& out, const Part& part, const std::string& object, const std::string& blockEnd, const Place& place,
                std::size_t depth)
    {
        if (part.coding == Coding::fixedArray) {
            const std::string i = index(depth);
            out.open(loop(i, number(part.bound)));
            within(out, part.element[0], object + "[" + i + "]", blockEnd, place, depth + 1);
            out.close();
            return;
        }
        out.line("at = " + next(part, object) + ";");
        out.line("if (!at) return in.abandon(outer, " + blockEnd + ", &" + place.object + " + 1);");
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
                release(out, plans_.part(definition.target), {"value", &definition, 0, true}, 0);
            } else {
                for (std::size_t i = 0; i < definition.fields.size(); ++i)
                    release(out, plans_.part(definition.fields[i]), {"value." + definition.fields[i].name, &definition, i}, 0);
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
        case Coding::variableOpaque:
            refuseCount(out, part, place);
            return out.line("if (" + countOf(place) + " != 0) quorva::releaseBlock(" + elementsOf(place) + ");");
        case Coding::fixedArray: {
            const std::string i = index(depth);
            out.open(loop(i, number(part.bound)));
            release(out, part.element[0], {place.object + "[" + i + "]", place.owner, place.member}, depth + 1);
            out.close();
            return;
        }
        case Coding::variableArray: return array(out, part, place);
        case Coding::optional: return optional(out, part, place);
        case Coding::number: return out.line("quorva::releaseFloat();");
        default: return out.line("if (!" + released(part, place) + ") return false;");
        }
    }

    std::string released(const Part& part, const Place& place) const
    {
        switch (part.coding) {
        case Coding::foreign: return "quorva::releaseForeign(xdrs, &" + place.object + ", Xdr" + part.type->name + ")";
        case Coding::interpreted:
            return "quorva::releaseMember(xdrs, &value, " + description(*place.owner) + ", " + number(place.member) + ")";
        default: return "quorva::plain::release(xdrs, " + place.object + ")";
        }
    }

    static void refuseCount(Body& out, const Part& part, const Place& place)
    {
        if (part.bound < mostElements) out.line("if (" + countOf(place) + " > " + number(part.bound) + ") return false;");
    }

    // A block goes whether its elements could be released or not.
    void array(Body& out, const Part& part, const Place& place)
    {
        refuseCount(out, part, place);
        if (!part.element[0].owns)
            return out.line("if (" + countOf(place) + " != 0) quorva::releaseBlock(" + elementsOf(place) + ");");
        out.open("if (" + countOf(place) + " != 0 && " + elementsOf(place) + ")");
        out.line("const std::uint32_t count = " + countOf(place) + ";");
        out.line("auto* const elements = " + elementsOf(place) + ";");
        block(out, part.element[0], "count", "elements", place);
        out.close();
    }

    void optional(Body& out, const Part& part, const Place& place)
    {
        if (!part.element[0].owns) return out.line("quorva::releaseBlock(" + place.object + ");");
        out.open("if (" + place.object + ")");
        block(out, part.element[0], "", place.object, place);
        out.close();
    }

    // The elements of a block, then the block.
    void block(Body& out, const Part& element, const std::string& count, const std::string& elements, const Place& place)
    {
        const std::string object = count.empty() ? "(*" + elements + ")" : elements + "[i]";
        out.open("const auto releaseElements = [&]");
        if (!count.empty()) out.open(loop("i", count));
        release(out, element, {object, place.owner, place.member}, 1);
        if (!count.empty()) out.close();
        out.line("return true;");
        out.close(";");
        out.line("const bool released = releaseElements();");
        out.line("quorva::releaseBlock(" + elements + ");");
        out.line("if (!released) return false;");
    }

    void arms(Body& out, const Definition& definition)
    {
        const std::string place = "value." + definition.discriminant.name;
        out.open("switch (" + switchOn(definition, place) + ")");
        std::vector<const ArmMember*> unowned;
        const std::vector<ArmMember> members = armMembersOf(definition);
        for (const ArmMember& arm : members) {
            const Part part = plans_.part(*arm.declaration);
            if (!part.owns) {
                unowned.push_back(&arm);
                continue;
            }
            labels(out, arm);
            const Place at = {"value." + arm.declaration->name, &definition, armIndex(definition, *arm.declaration)};
            if (part.coding == Coding::function || part.coding == Coding::fixedStruct || part.coding == Coding::foreign ||
                part.coding == Coding::interpreted) {
                out.line("return " + released(part, at) + ";");
            } else {
                out.open("");
                release(out, part, at, 0);
                out.line("return true;");
                out.close();
            }
        }
        for (const ArmMember* arm : unowned) labels(out, *arm);
        bool anyVoid = false;
        for (const Arm& arm : definition.arms) {
            if (arm.declaration.form != Form::nothing) continue;
            for (const Value& value : arm.cases) label(out, value);
            anyVoid = true;
        }
        if (!unowned.empty() || anyVoid) out.line("return true;");
        if (definition.defaultArm) out.label("default:");
        if (definition.defaultArm) out.line("return true;");
        out.close();
        if (!definition.defaultArm) out.line("return false;");
    }

    static constexpr std::uint32_t mostElements = 65535;
};

// ---- Functions -----------------------------------------------------------------------------------------------------

std::string encodeHead(const Definition& definition)
{
    return "unsigned char* quorva::plain::encode(quorva::Encoder& out, unsigned char* at, const " + typeName(definition) + "& value)";
}

std::string decodeHead(const Definition& definition)
{
    return "unsigned char* quorva::plain::decode(quorva::Decoder& in, unsigned char* at, " + typeName(definition) + "& value)";
}

// Names the parameters that the contents mention.
std::string releaseHead(const Definition& definition, const std::string& contents)
{
    const auto named = [&](const std::string& name) { return contents.find(name) == std::string::npos ? "" : " " + name; };
    return "bool quorva::plain::release(Xdr*" + named("xdrs") + ", " + typeName(definition) + "&" + named("value") + ")";
}

std::string putHead(const Definition& definition)
{
    return "void quorva::plain::put(unsigned char* at, const " + typeName(definition) + "& value)";
}

std::string getHead(const Definition& definition)
{
    return "void quorva::plain::get(const unsigned char* at, " + typeName(definition) + "& value)";
}

std::string function(const std::string& comment, bool isInline, const std::string& head, const std::string& contents)
{
    return comment + "template <>\n" + (isInline ? "inline " : "") + head + "\n{\n" + contents + "}\n";
}

class FunctionPrinter : Printer {
public:
    explicit FunctionPrinter(Plans& plans) : Printer(plans, ""), encode_(plans), decode_(plans), release_(plans) {}

    std::vector<std::string> of(const Definition& definition, const std::string& comment)
    {
        const TypePlan plan = plans_.of(definition);
        std::vector<std::string> out;
        const bool isFixed = plan.size != 0;
        const bool isInline = plan.isInline && !isFixed;
        out.push_back(function(comment, isInline, encodeHead(definition), encode_.contents(definition)));
        out.push_back(function("", isInline, decodeHead(definition), decode_.contents(definition)));
        if (!plan.owns) return out;
        const std::string contents = release_.contents(definition);
        out.push_back(function("", isInline, releaseHead(definition, contents), contents));
        return out;
    }

    // put() and get() of a type of fixed size.
    std::vector<std::string> fixedOf(const Definition& definition, const std::string& comment)
    {
        const bool isInline = plans_.of(definition).isInline;
        return {function(comment, isInline, putHead(definition), fields(definition, "put")),
                function("", isInline, getHead(definition), fields(definition, "get"))};
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
    const std::string head = "int Xdr" + definition.name + "(Xdr* xdrs, void* object)\n{\n    return quorva::";
    const std::string tail = "(xdrs, object, " + description(definition) + ");\n}\n";
    if (!hasFunctions(definition)) return head + "interpret" + tail;
    return head + "code<" + typeName(definition) + ", " + (plans.of(definition).owns ? "true" : "false") + ">" + tail;
}

}  // namespace

std::string emitUnit(const Module& module)
{
    Plans plans(module);
    FunctionPrinter printer(plans);
    std::vector<std::string> parts = {madeFrom(module) + "#include <" + privateHeader(module.source.module) + ">\n"};
    for (const Definition* definition : typesOf(module)) {
        std::string comment = heading(*definition, module);
        if (definition->kind == Kind::enumeration) parts.push_back(comment + nameFunction(*definition));
        if (hasFunctions(*definition)) {
            const TypePlan plan = plans.of(*definition);
            std::vector<std::string> functions;
            if (plan.size != 0 && !plan.isInline) functions = printer.fixedOf(*definition, comment);
            if (plan.size != 0 || !plan.isInline) {
                const auto more = printer.of(*definition, functions.empty() ? comment : "");
                functions.insert(functions.end(), more.begin(), more.end());
            }
            if (!functions.empty()) comment.clear();
            parts.insert(parts.end(), functions.begin(), functions.end());
        }
        parts.push_back((definition->kind == Kind::enumeration || comment.empty() ? "" : comment) + routine(*definition, plans));
    }
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
    std::string declared;
    std::vector<std::string> inlined;
    for (const Definition* definition : declarationOrder(typesOf(module))) {
        if (!hasFunctions(*definition)) continue;
        const TypePlan plan = plans.of(*definition);
        const auto declare = [&](const std::string& head) {
            declared += "template <>\n" + std::string(plan.isInline ? "inline " : "") + head + ";\n";
        };
        if (plan.size != 0) {
            declare(putHead(*definition));
            declare(getHead(*definition));
        }
        const auto declareFunction = [&](const std::string& head) {
            declared += "template <>\n" + std::string(plan.isInline && plan.size == 0 ? "inline " : "") + head + ";\n";
        };
        declareFunction(encodeHead(*definition));
        declareFunction(decodeHead(*definition));
        if (plan.owns) declareFunction(releaseHead(*definition, "xdrs value"));
        if (!plan.isInline) continue;
        const auto functions = plan.size != 0 ? printer.fixedOf(*definition, heading(*definition, module))
                                              : printer.of(*definition, heading(*definition, module));
        inlined.insert(inlined.end(), functions.begin(), functions.end());
    }
    std::string descriptions;
    for (const Definition* definition : typesOf(module)) descriptions += "extern const ::quorva::Type " + definition->name + ";\n";
    std::vector<std::string> parts = {
        madeFrom(module) + "// What the units of one library need of each other; no part of its interface.\n#pragma once\n",
        includes + "\n#include <quorvaruntime/plain.h>\n\n#include <cstddef>\n#include <cstdint>\n",
        descriptions.empty() ? "" : "namespace quorva::types {\n" + descriptions + "}  // namespace quorva::types\n", declared};
    parts.insert(parts.end(), inlined.begin(), inlined.end());
    return sections(parts);
}

}  // namespace quorva::compiler
