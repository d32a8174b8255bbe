// What the public headers of C++ and of C have in common: comments, and the assertions of the layouts.
#pragma once

#include "front/model.h"
#include "text.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quorva::compiler {

// The comment at the start of a public header, with the documentation of the module.
std::string headerBanner(const Module& module);

// The number of elements, characters or bytes of a declaration.
std::string bound(const Declaration& declaration);

// What the declaration in a header does not tell: bounds, and what null means.
std::string limitOf(const Declaration& declaration);

// "case A", or "cases A, B".
std::string casesOf(const std::vector<const Value*>& values);

// Adds comments that say which cases of the union have no data.
void addVoidArms(std::vector<BodyLine>& lines, const Definition& discriminatedUnion, std::size_t indent);

// How a language spells an assertion.
struct AssertionSpelling {
    std::string keyword;
    std::string qualifier;  // of a type
    std::string choice;     // the function of two numbers that chooses by the size of an address
    std::string message;    // ends the arguments
};

// Assertions of the layouts of the module's structs, unions and sequences; empty if it has none.
std::string layoutAssertions(const Module& module, const AssertionSpelling& spelling);

}  // namespace quorva::compiler
