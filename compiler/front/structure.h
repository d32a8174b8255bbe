// Queries of the tree for plan, emitters and comparison: what a definition declares, and in which order definitions can
// be printed.
#pragma once

#include "model.h"

#include <string>
#include <vector>

namespace quorva::compiler {

// True if the definition is a typedef of a variable-length array or variable-length opaque. C++ declares it as a struct
// of count and elements; every other typedef is another name of a type.
bool isCountedStruct(const Definition& definition);

// True if the definition is a distinct C++ type, and neither a constant nor another name of a type.
bool isDistinctType(const Definition& definition);

// True if C++ can declare the type before its definition, so that pointers to it can precede it.
bool canBeForwardDeclared(const Definition& definition);

// The definitions of the module without its constants, or its constants alone, in the order of the file.
std::vector<const Definition*> typesOf(const Module& module);
std::vector<const Definition*> constantsOf(const Module& module);

// The module, and the modules that it imports, directly or through others, in no particular order. Imports that could
// not be read are left out.
std::vector<const Module*> importClosure(const Module& module);

// The enumerators in ascending order of value.
std::vector<const Enumerator*> enumeratorsByValue(const Definition& enumeration);

// The documentation of a definition, a field or an arm, followed by "Provisional: ..." if it is provisional.
std::string docOf(const Definition& definition);
std::string docOf(const Declaration& declaration);

// What the definition declares: the fields, or the discriminant and the arms without the default arm, or the target of
// a typedef; nothing for constants and enumerations.
std::vector<const Declaration*> declarationsOf(const Definition& definition);

// The canonical type of a union's discriminant: a built-in type, or else the enumeration.
struct Discriminant {
    Builtin builtin = Builtin::none;
    const Definition* enumeration = nullptr;
};
Discriminant discriminantOf(const Definition& discriminatedUnion);

// One member of the C++ union. Arms with the same name and type share it, so several cases may select it.
struct ArmMember {
    const Declaration* declaration = nullptr;  // of the first such arm
    std::vector<const Value*> cases;           // of all such arms
    std::string doc;                           // of all such arms
};
std::vector<ArmMember> armMembersOf(const Definition& discriminatedUnion);

// The void arms without the default arm: each documented arm by itself, then the others as one.
std::vector<ArmMember> voidArmsOf(const Definition& discriminatedUnion);

// A typedef of a variable-length array can be forward-declared in C++, where it is a struct, but not in C.
enum class Language { c, cpp };

// The definitions in an order in which each follows those that it uses, as near to the given order as that allows. In a
// cycle of types, a type follows those that it holds by value and the typedefs that it names; the other types that it
// names have to be forward-declared.
std::vector<const Definition*> declarationOrder(const std::vector<const Definition*>& definitions,
                                                Language language = Language::cpp);

}  // namespace quorva::compiler
