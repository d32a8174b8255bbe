// Emits the bodies of release.
#include "front/structure.h"
#include "function_body.h"
#include "names.h"
#include "text.h"

namespace quorva::compiler {

namespace {

class ReleaseEmitter {
public:
    explicit ReleaseEmitter(Plans& typePlans) : plans(typePlans) {}

    // The statements that release the object `value` and return true, or false if the release is refused.
    std::string body(const Definition& definition)
    {
        FunctionBody out;
        if (definition.kind == DefinitionKind::discriminatedUnion) {
            arms(out, definition);
        } else {
            if (isCountedStruct(definition)) {
                release(out, plans.valuePlan(definition.target), {"value", &definition, 0}, 0);
            } else {
                for (std::size_t i = 0; i < definition.fields.size(); ++i)
                    release(out, plans.valuePlan(definition.fields[i]),
                            {"value." + definition.fields[i].name, &definition, i}, 0);
            }
            out.line("return true;");
        }
        return out.text();
    }

private:
    // Statements that release what the value owns, and return false if that is refused.
    void release(FunctionBody& out, const ValuePlan& plan, const Operand& operand, std::size_t depth)
    {
        if (!plan.owns) return;
        switch (plan.coding) {
        case Coding::string: return out.line("quorva::releaseBlock(" + operand.expression + ");");
        case Coding::variableOpaque: refuseCount(out, plan, operand); return releaseBlock(out, operand);
        case Coding::fixedArray: {
            const std::string i = indexName(depth);
            out.open(loop(i, plan.bound));
            release(out, plan.element[0], elementOf(operand, i), depth + 1);
            out.close();
            return;
        }
        case Coding::variableArray: return array(out, plan, operand);
        case Coding::optional: return optional(out, plan, operand);
        case Coding::number: return out.line("quorva::printFloat();");
        default: return out.line("if (!" + released(plan, operand) + ") return false;");
        }
    }

    // An expression that releases a value with a function of its own, and is false if that is refused.
    std::string released(const ValuePlan& plan, const Operand& operand) const
    {
        switch (plan.coding) {
        case Coding::foreign:
            return "quorva::releaseForeign(xdrs, " + operand.expression + ", Xdr" + plan.type->name + ")";
        case Coding::interpreted:
            return "quorva::releaseMember(xdrs, &value, " + description(*operand.owner) + ", " +
                   number(operand.member) + ")";
        default: return "quorva::plain::release(xdrs, " + operand.expression + ")";
        }
    }

    // Refuses a count beyond the maximum.
    static void refuseCount(FunctionBody& out, const ValuePlan& plan, const Operand& operand)
    {
        if (plan.bound < mostElements)
            out.line("if (" + operand.expression + ".count > " + number(plan.bound) + ") return false;");
    }
    static void releaseBlock(FunctionBody& out, const Operand& operand)
    {
        out.line("if (" + operand.expression + ".count != 0) quorva::releaseBlock(" + operand.expression +
                 ".elements);");
    }

    void array(FunctionBody& out, const ValuePlan& plan, const Operand& operand)
    {
        refuseCount(out, plan, operand);
        if (!plan.element[0].owns) return releaseBlock(out, operand);
        elements(out, plan.element[0], elementsOf(operand), operand);
    }

    void optional(FunctionBody& out, const ValuePlan& plan, const Operand& operand)
    {
        if (!plan.element[0].owns) return out.line("quorva::releaseBlock(" + operand.expression + ");");
        elements(out, plan.element[0], "std::span(" + operand.expression + ", " + operand.expression + " ? 1 : 0)",
                 operand);
    }

    // The elements, then their memory, even if the release of an element is refused.
    void elements(FunctionBody& out, const ValuePlan& element, const std::string& all, const Operand& operand)
    {
        FunctionBody contents(out.depth() + 1);
        const Operand each = {"each", operand.owner, operand.member};
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

    void arms(FunctionBody& out, const Definition& definition)
    {
        const std::string discriminant = "value." + definition.discriminant.name;
        out.open("switch (" + switchOn(definition, discriminant) + ")");
        std::vector<const Value*> unowned;
        for (const ArmMember& arm : armMembersOf(definition)) {
            const ValuePlan plan = plans.valuePlan(*arm.declaration);
            if (!plan.owns) {
                unowned.insert(unowned.end(), arm.cases.begin(), arm.cases.end());
                continue;
            }
            const Operand at = {"value." + arm.declaration->name, &definition, armIndex(definition, *arm.declaration)};
            FunctionBody contents(2);
            if (plan.coding == Coding::function || plan.coding == Coding::fixedStruct ||
                plan.coding == Coding::foreign || plan.coding == Coding::interpreted) {
                contents.line("return " + released(plan, at) + ";");
            } else {
                release(contents, plan, at, 0);
                contents.line("return true;");
            }
            addArm(out, arm.cases, contents);
        }
        for (const Arm& arm : definition.arms)
            if (arm.declaration.form == Form::none)
                for (const Value& value : arm.cases) unowned.push_back(&value);
        if (!unowned.empty()) {
            std::vector<std::string> labels;
            for (const Value* value : unowned) labels.push_back("case " + number(*value) + ":");
            out.add(filledLines(labels, indentWidth) + std::string(2 * indentWidth, ' ') + "return true;\n");
        }
        if (definition.defaultArm) out.label("default: return true;");
        out.close();
        if (!definition.defaultArm) out.line("return false;");
    }

    Plans& plans;
};

}  // namespace

std::string releaseBody(Plans& plans, const Definition& definition)
{
    return ReleaseEmitter(plans).body(definition);
}

}  // namespace quorva::compiler
