// What the public headers of C++ and of C have in common: structs, comments, and the assertions of the layouts.
#pragma once

#include "front/model.h"

#include <string>

namespace quorva::compiler {

// The comment at the start of a public header, with the documentation of the module.
std::string headerBanner(const Module& module);

// The number of elements, characters or bytes of a declaration.
std::string bound(const Declaration& declaration);

// What the declaration in a header does not tell: bounds, and what null means.
std::string limitOf(const Declaration& declaration);

// The declaration of a field, a discriminant or an arm, in one of the languages.
using MemberText = std::string (*)(const Declaration& member);

// The struct that a struct of the interface is, or a union: the discriminant and a union of the arms, with comments
// that say which cases have no data.
std::string structText(const Definition& structure, MemberText member);
std::string unionText(const Definition& discriminatedUnion, MemberText member);

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
