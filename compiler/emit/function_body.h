// The text of one generated function body, and the expressions that encode, decode and release share.
#pragma once

#include "front/model.h"
#include "plan/plan.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quorva::compiler {

// Collects statements, indented by their depth.
class FunctionBody {
public:
    // `depth` counts levels of indentation.
    explicit FunctionBody(std::size_t depth = 1) : level(depth) {}

    void line(const std::string& text);

    // Begins and ends a block after `head`, such as "if (...)". close() removes the braces around a single statement.
    void open(const std::string& head);
    void close();

    // A line that is one level less indented.
    void label(const std::string& text);

    // Appends lines that are indented already.
    void add(const std::string& indented) { lines += indented; }

    std::size_t depth() const { return level; }
    const std::string& text() const { return lines; }

    // The statements on one line, each preceded by a blank.
    std::string asLine() const;

private:
    struct Block {
        std::size_t from;  // offset in the text
        std::string head;
    };

    std::string lines;
    std::size_t level;
    std::vector<Block> blocks;  // the open ones
};

// A value that generated code works on, and the member to which it belongs: the interpreter resumes there if the plain
// function cannot continue.
struct Operand {
    std::string expression;   // "value.id", "each"
    const Definition* owner;  // the type of `value`
    std::size_t member = 0;   // index among the members in the owner's description
};

// The elements of a counted array as a range.
std::string elementsOf(const Operand& operand);

// The element `index` of a fixed-length array.
Operand elementOf(const Operand& array, const std::string& index);

std::string number(std::uint64_t value);

// The value of a case as a literal.
std::string number(const Value& value);

// The index variable of a loop within `depth` others, and the head of a loop over `count` elements.
std::string indexName(std::size_t depth);
std::string loop(const std::string& index, std::uint64_t count);

// The expression to switch on for the discriminant.
std::string switchOn(const Definition& discriminatedUnion, const std::string& discriminant);

// The index of the arm among the members in the union's description.
std::size_t armIndex(const Definition& discriminatedUnion, const Declaration& arm);

// Appends the case labels of an arm and its statements, on one line if they fit.
void addArm(FunctionBody& out, const std::vector<const Value*>& cases, const FunctionBody& statements);

// The bodies of the plain functions of a type. The plans must have the type.
std::string encodeBody(Plans& plans, const Definition& definition);
std::string decodeBody(Plans& plans, const Definition& definition);
std::string releaseBody(Plans& plans, const Definition& definition);

// The bodies of put() and get() of a struct of fixed size.
std::string putBody(Plans& plans, const Definition& structure);
std::string getBody(Plans& plans, const Definition& structure);

}  // namespace quorva::compiler
