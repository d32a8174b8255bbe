// Emits the bodies of encode, decode, put and get.
#include "front/structure.h"
#include "function_body.h"
#include "names.h"

#include <algorithm>
#include <utility>

namespace quorva::compiler {

namespace {

std::string offset(std::uint64_t bytes)
{
    return bytes == 0 ? "at" : "at + " + number(bytes);
}

// A value of fixed size that is on the wire at the expression `at`. `verb` is put or get; `depth` counts the loops
// around the statements.
void codeFixed(FunctionBody& out, const std::string& verb, const ValuePlan& plan, const std::string& value,
               const std::string& at, std::size_t depth = 0)
{
    switch (plan.coding) {
    case Coding::number: return out.line("quorva::" + verb + "(" + at + ", " + value + ");");
    case Coding::fixedStruct: return out.line("quorva::plain::" + verb + "(" + at + ", " + value + ");");
    case Coding::fixedOpaque: return out.line("quorva::" + verb + "Opaque(" + at + ", " + value + ");");
    default: break;
    }
    const ValuePlan& element = plan.element[0];
    if (element.fillsUnit && plan.bound > 1)
        return out.line("quorva::" + verb + "Units(" + at + ", " + value + ", " + number(plan.bound) + ");");
    const std::string i = indexName(depth);
    out.open(loop(i, plan.bound));
    codeFixed(out, verb, element, value + "[" + i + "]", at + " + " + number(element.size) + " * " + i, depth + 1);
    out.close();
}

// Consecutive fields of fixed size, the first one at `at`.
void codeFields(FunctionBody& out, const std::string& verb, Plans& plans, const Definition& structure,
                std::size_t first, std::size_t count)
{
    std::uint64_t at = 0;
    for (std::size_t i = first; i < first + count; ++i) {
        const Declaration& field = structure.fields[i];
        const ValuePlan plan = plans.valuePlan(field);
        codeFixed(out, verb, plan, "value." + field.name, offset(at));
        at += plan.size;
    }
}

// Emits what the bodies of encode() and decode() share. In a body, `at` points to the next byte of the message.
class CodingEmitter {
public:
    // The names of the stream parameter, of the function (encode or decode), and of the verb (put or get).
    CodingEmitter(Plans& typePlans, std::string streamName, std::string functionName, std::string verbName)
        : plans(typePlans), stream(std::move(streamName)), function(std::move(functionName)), verb(std::move(verbName))
    {
    }
    virtual ~CodingEmitter() = default;

    // The statements that code the object `value` and return the byte after it.
    std::string body(const Definition& definition)
    {
        FunctionBody out;
        if (definition.kind == DefinitionKind::discriminatedUnion)
            unionContents(out, definition);
        else if (isCountedStruct(definition))
            last(out, plans.valuePlan(definition.target), {"value", &definition});
        else
            structContents(out, definition);
        return out.text();
    }

protected:
    // An expression that lets the interpreter code the object from the operand's member on.
    std::string rest(const Operand& operand) const
    {
        return stream + ".rest(at, &value, " + description(*operand.owner) + ", " + number(operand.member) + ")";
    }
    void restIf(FunctionBody& out, const std::string& condition, const Operand& operand) const
    {
        out.line("if (" + stream + "." + condition + ") return " + rest(operand) + ";");
    }
    // Sets `at` to `next`, and returns `otherwise` from the generated function if that is null.
    static void advance(FunctionBody& out, const std::string& next, const std::string& otherwise = "nullptr")
    {
        out.line("if (!(at = " + next + ")) return " + otherwise + ";");
    }

    // Elements of fixed size.
    void fixedElements(FunctionBody& out, const ValuePlan& element, const Operand& operand) const
    {
        if (element.fillsUnit) {
            out.line("quorva::" + verb + "Units(at, " + operand.expression + ".elements, " + operand.expression +
                     ".count);");
            out.line("at += 4 * std::size_t{" + operand.expression + ".count};");
            return;
        }
        out.open("for (auto& each : " + elementsOf(operand) + ")");
        codeFixed(out, verb, element, "each", "at", 1);
        out.line("at += " + number(element.size) + ";");
        out.close();
    }

    // A variable-length array, or an optional value.
    virtual void array(FunctionBody& out, const ValuePlan& plan, const Operand& operand) = 0;
    virtual void optional(FunctionBody& out, const ValuePlan& plan, const Operand& operand) = 0;

    // What a union returns if its discriminant selects no arm.
    virtual std::string refusal(const std::string& discriminant) const = 0;

    // An expression that codes the value and returns the byte after it, or null on failure.
    std::string next(const ValuePlan& plan, const std::string& object) const
    {
        const std::string head = stream + ".";
        const std::string value = "(at, " + object + ", ";
        switch (plan.coding) {
        case Coding::foreign: return head + "foreign" + value + "Xdr" + plan.type->name + ")";
        case Coding::string: return head + "string" + value + number(plan.bound) + ")";
        case Coding::variableOpaque: return head + "opaque" + value + number(plan.bound) + ")";
        default: return "quorva::plain::" + function + "(" + stream + ", at, " + object + ")";
        }
    }

    // Statements for a value whose size varies; `depth` counts the loops around them.
    void varying(FunctionBody& out, const ValuePlan& plan, const Operand& operand, std::size_t depth)
    {
        switch (plan.coding) {
        case Coding::fixedArray: {
            const std::string i = indexName(depth);
            out.open(loop(i, plan.bound));
            varying(out, plan.element[0], elementOf(operand, i), depth + 1);
            out.close();
            return;
        }
        case Coding::variableArray: return array(out, plan, operand);
        case Coding::optional: return optional(out, plan, operand);
        case Coding::interpreted:
            return advance(out, stream + ".member(at, &value, " + description(*operand.owner) + ", " +
                                    number(operand.member) + ")");
        default: return advance(out, next(plan, operand.expression));
        }
    }

private:
    // The fields of a run of fixed size.
    void fixedMembers(FunctionBody& out, const Definition& structure, const Run& run)
    {
        restIf(out, "lacks(at, " + number(run.size) + ")", {"", &structure, run.first});
        codeFields(out, verb, plans, structure, run.first, run.count);
    }

    static void voidArms(FunctionBody& out, const Definition& definition)
    {
        std::vector<const Value*> cases;
        for (const Arm& arm : definition.arms)
            if (arm.declaration.form == Form::none)
                for (const Value& value : arm.cases) cases.push_back(&value);
        FunctionBody statements(2);
        statements.line("return at;");
        if (!cases.empty()) addArm(out, cases, statements);
    }

    // Statements for the last member of a type, which end with a return.
    void last(FunctionBody& out, const ValuePlan& plan, const Operand& operand)
    {
        const bool isExpression = plan.coding == Coding::foreign || plan.coding == Coding::string ||
                                  plan.coding == Coding::variableOpaque || plan.coding == Coding::function;
        if (isExpression) return out.line("return " + next(plan, operand.expression) + ";");
        varying(out, plan, operand, 0);
        out.line("return at;");
    }

    void structContents(FunctionBody& out, const Definition& definition)
    {
        for (const Run& run : plans.runsOf(definition)) {
            const bool isLast = run.first + run.count == definition.fields.size();
            if (run.size != 0) {
                fixedMembers(out, definition, run);
                out.line((isLast ? "return at + " : "at += ") + number(run.size) + ";");
                continue;
            }
            const Declaration& field = definition.fields[run.first];
            const Operand operand = {"value." + field.name, &definition, run.first};
            if (isLast)
                last(out, plans.valuePlan(field), operand);
            else
                varying(out, plans.valuePlan(field), operand, 0);
        }
    }

    // The first check covers the discriminant, and an arm of one unit if the union has such arms. If fewer bytes are
    // left, the interpreter decides.
    void unionContents(FunctionBody& out, const Definition& definition)
    {
        const std::vector<ArmMember> arms = armMembersOf(definition);
        const bool hasUnits = std::any_of(arms.begin(), arms.end(), [&](const ArmMember& arm) {
            return plans.valuePlan(*arm.declaration).size == 4;
        });
        const std::string discriminant = "value." + definition.discriminant.name;
        restIf(out, std::string("lacks(at, ") + (hasUnits ? "8" : "4") + ")", {"", &definition, 0});
        out.line("quorva::" + verb + "(at, " + discriminant + ");");
        out.line("at += 4;");
        out.open("switch (" + switchOn(definition, discriminant) + ")");
        for (const ArmMember& arm : arms) {
            const Operand at = {"value." + arm.declaration->name, &definition, armIndex(definition, *arm.declaration)};
            const ValuePlan plan = plans.valuePlan(*arm.declaration);
            FunctionBody statements(2);
            if (plan.size != 0) {
                if (plan.size != 4) restIf(statements, "lacks(at, " + number(plan.size) + ")", at);
                codeFixed(statements, verb, plan, at.expression, "at");
                statements.line("return at + " + number(plan.size) + ";");
            } else {
                last(statements, plan, at);
            }
            addArm(out, arm.cases, statements);
        }
        voidArms(out, definition);
        if (definition.defaultArm) out.label("default: return at;");
        out.close();
        if (!definition.defaultArm) out.line("return " + refusal(discriminant) + ";");
    }

    Plans& plans;
    const std::string stream;
    const std::string function;
    const std::string verb;
};

class EncodeEmitter : public CodingEmitter {
public:
    explicit EncodeEmitter(Plans& typePlans) : CodingEmitter(typePlans, "out", "encode", "put") {}

private:
    std::string refusal(const std::string&) const override { return "out.refuse(at)"; }

    void array(FunctionBody& out, const ValuePlan& plan, const Operand& operand) override
    {
        const ValuePlan& element = plan.element[0];
        restIf(out,
               "lacksArray(at, " + operand.expression + ", " + number(plan.bound) + ", " + number(element.size) + ")",
               operand);
        out.line("quorva::putUnit(at, " + operand.expression + ".count);");
        out.line("at += 4;");
        if (element.size != 0) return fixedElements(out, element, operand);
        out.open("for (auto& each : " + elementsOf(operand) + ")");
        varying(out, element, {"each", operand.owner, operand.member}, 1);
        out.close();
    }

    void optional(FunctionBody& out, const ValuePlan& plan, const Operand& operand) override
    {
        const ValuePlan& held = plan.element[0];
        const std::string size = held.size == 0 ? "4" : operand.expression + " ? " + number(4 + held.size) + " : 4";
        restIf(out, "lacks(at, " + size + ")", operand);
        out.line("quorva::putUnit(at, " + operand.expression + " != nullptr);");
        out.line("at += 4;");
        out.open("if (" + operand.expression + ")");
        if (held.size != 0) {
            codeFixed(out, "put", held, "(*" + operand.expression + ")", "at");
            out.line("at += " + number(held.size) + ";");
        } else {
            varying(out, held, {"(*" + operand.expression + ")", operand.owner, operand.member}, 0);
        }
        out.close();
    }
};

class DecodeEmitter : public CodingEmitter {
public:
    explicit DecodeEmitter(Plans& typePlans) : CodingEmitter(typePlans, "in", "decode", "get") {}

private:
    std::string refusal(const std::string& discriminant) const override
    {
        return "in.refuse(at, &" + discriminant + " + 1)";
    }

    void array(FunctionBody& out, const ValuePlan& plan, const Operand& operand) override
    {
        const ValuePlan& element = plan.element[0];
        restIf(out, "lacksArray(at, " + number(plan.bound) + ", " + number(element.size) + ")", operand);
        advance(out, "in.allocate(at, " + operand.expression + ")");
        if (element.size != 0) return fixedElements(out, element, operand);
        out.open("if (" + operand.expression + ".count != 0)");
        out.line("const bool outer = in.enter();");
        out.open("for (auto& each : " + elementsOf(operand) + ")");
        within(out, element, "each", operand, 1);
        out.close();
        out.line("in.leave(outer);");
        out.close();
    }

    void optional(FunctionBody& out, const ValuePlan& plan, const Operand& operand) override
    {
        const ValuePlan& held = plan.element[0];
        restIf(out, "lacksOptional(at, " + number(held.size) + ")", operand);
        advance(out, "in.optional(at, " + operand.expression + ")");
        out.open("if (" + operand.expression + ")");
        if (held.size != 0) {
            codeFixed(out, "get", held, "(*" + operand.expression + ")", "at");
            out.line("at += " + number(held.size) + ";");
        } else {
            out.line("const bool outer = in.enter();");
            within(out, held, "(*" + operand.expression + ")", operand, 0);
            out.line("in.leave(outer);");
        }
        out.close();
    }

    // A value whose size varies, within a block that this pass allocated.
    void within(FunctionBody& out, const ValuePlan& plan, const std::string& object, const Operand& operand,
                std::size_t depth)
    {
        if (plan.coding == Coding::fixedArray) {
            const std::string i = indexName(depth);
            out.open(loop(i, plan.bound));
            within(out, plan.element[0], object + "[" + i + "]", operand, depth + 1);
            out.close();
            return;
        }
        advance(out, next(plan, object), "in.abandon(outer, " + operand.expression + ")");
    }
};

std::string fieldsBody(Plans& plans, const Definition& structure, const std::string& verb)
{
    FunctionBody out;
    codeFields(out, verb, plans, structure, 0, structure.fields.size());
    return out.text();
}

}  // namespace

std::string encodeBody(Plans& plans, const Definition& definition)
{
    return EncodeEmitter(plans).body(definition);
}

std::string decodeBody(Plans& plans, const Definition& definition)
{
    return DecodeEmitter(plans).body(definition);
}

std::string putBody(Plans& plans, const Definition& structure)
{
    return fieldsBody(plans, structure, "put");
}

std::string getBody(Plans& plans, const Definition& structure)
{
    return fieldsBody(plans, structure, "get");
}

}  // namespace quorva::compiler
