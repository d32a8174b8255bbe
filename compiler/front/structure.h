// What plan and printers ask of the tree: which declarations a definition consists of, and in which order definitions
// can be printed.
#pragma once

#include "model.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

// A typedef of a list or of counted bytes: a structure of its own, while every other typedef is another name of a type.
bool isCounted(const Definition& definition);

// Whether the definition is a C++ type of its own: everything but constants and other names for a type.
bool isOwnType(const Definition& definition);

// Whether a pointer to the type can be declared ahead of the type's definition.
bool canBeForward(const Definition& definition);

// The definitions of the module without its constants, in the order of the file.
std::vector<const Definition*> typesOf(const Module& module);
std::vector<const Definition*> constantsOf(const Module& module);

// The documentation of a definition, a field or an arm, with its provisional mark.
std::string docOf(const Definition& definition);
std::string docOf(const Declaration& declaration);

// Everything that the definition declares: fields, or discriminant and arms, or the target of a typedef.
std::vector<const Declaration*> declarationsOf(const Definition& definition);

// What a union's discriminant is behind all aliases: a built-in type, or the enumeration.
struct Discriminant {
    Builtin builtin = Builtin::none;
    const Definition* enumeration = nullptr;
};
Discriminant discriminantOf(const Definition& discriminated);

// An arm with data as memory and headers know it: one member, selected by the cases of every arm that declares it.
struct ArmMember {
    const Declaration* declaration = nullptr;  // the first of them
    std::vector<const Value*> cases;
    std::string doc;
};
std::vector<ArmMember> armMembersOf(const Definition& discriminated);

// The arms that carry nothing, without the default arm, in the same shape: those without documentation are one.
std::vector<ArmMember> voidArmsOf(const Definition& discriminated);

// The definitions in an order in which each stands behind those that it uses, as near to the given order as that
// allows. In a circle of types that refer to each other, a type stands behind those that it holds by value and behind
// the typedefs that it names; what else it names has to be declared ahead of it.
std::vector<const Definition*> declarationOrder(const std::vector<const Definition*>& definitions);

}  // namespace quorva::compiler
