// Decides how plain functions code each type: which members form a run of fixed size, what owns memory, what is
// inlined.
#pragma once

#include "front/model.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

// How plain functions code one value.
enum class Coding {
    none,            // a void arm
    number,          // one unit
    fixedStruct,     // put() and get() of a struct whose size is fixed
    fixedOpaque,     // opaque data of a fixed length
    fixedArray,      // elements in place
    function,        // the plain functions of a type whose size varies
    foreign,         // the exported routine of another library's type
    string,          // a length and characters
    variableOpaque,  // a length and bytes
    variableArray,   // a count and elements
    optional,        // a presence unit and perhaps a value
    interpreted,     // by the interpreter: nested forms that are too rare for code of their own
};

// The plan of one value. Typedefs without a C++ type of their own are resolved.
struct ValuePlan {
    Coding coding = Coding::none;
    const Definition* type = nullptr;     // of fixedStruct, function and foreign
    std::uint64_t size = 0;               // bytes on the wire; 0 if that varies
    bool owns = false;                    // the release pass has memory to release or a count to check
    bool fillsUnit = false;               // number: 32 bits in memory, so arrays are swapped as whole units
    bool isFloat = false;                 // number: every pass makes the platform's diagnostic print
    std::uint32_t bound = 0;              // elements or bytes of a fixed form, maximum of a variable one
    std::vector<ValuePlan> element = {};  // one plan: of the elements of an array, or of what an optional holds
};

// Members of a struct that are coded together: a run of fixed size, or one member whose size varies.
struct Run {
    std::size_t first = 0;  // index among the members
    std::size_t count = 0;
    std::uint64_t size = 0;  // bytes on the wire; 0 for a member whose size varies
};

// The plain functions of one type.
struct TypePlan {
    bool hasFunctions = false;  // encode() and decode(), or put() and get(); release() if it owns memory
    std::uint64_t size = 0;     // bytes on the wire; 0 if that varies. A struct with a size has put() and get()
    bool owns = false;          // as in ValuePlan, of any member
    bool isInline = false;      // the functions are small enough to be inlined into callers
};

// The plans of the types that a module and its imports define. The modules must outlive them. Each type is planned
// once, so the time is proportional to the number of types, however they nest.
class Plans {
public:
    explicit Plans(const Module& module);

    TypePlan of(const Definition& definition);

    // The plan of a field, an arm or the target of a typedef.
    ValuePlan valuePlan(const Declaration& declaration);

    // The members of a struct, in order, divided into runs.
    std::vector<Run> runsOf(const Definition& structure);

    // True if the definition is compiled into another library.
    bool isForeign(const Definition& definition) const { return foreign.contains(definition.at.source); }

private:
    void add(const Module& module, const Module& user, std::unordered_set<const Module*>& seen);
    ValuePlan valuePlan(const TypeRef& type);
    ValuePlan pointee(const TypeRef& type);
    ValuePlan array(ValuePlan element, std::uint32_t count) const;
    TypePlan structure(const Definition& definition);

    std::unordered_set<const Source*> foreign;
    std::unordered_map<const Definition*, TypePlan> typePlans;
};

// True if the definition has plain functions: a struct, a union, or a typedef that C++ declares as a counted struct.
bool hasFunctions(const Definition& definition);

}  // namespace quorva::compiler
