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

// How one value is coded.
enum class Coding {
    nothing,         // a void arm
    number,          // one unit
    fixedStruct,     // put() and get() of a struct that always takes the same number of bytes
    fixedOpaque,     // opaque data of a fixed length
    fixedArray,      // elements in place
    function,        // the plain functions of a type whose size varies
    foreign,         // the exported routine of another library's type
    string,          // a length and characters
    variableOpaque,  // a length and bytes
    variableArray,   // a count and elements
    optional,        // a presence unit and perhaps a value
    interpreted,     // forms within forms that are too rare for code of their own
};

// The plan of one value. Typedefs that have no C++ type of their own are resolved.
struct Part {
    Coding coding = Coding::nothing;
    const Definition* type = nullptr;  // of fixedStruct, function and foreign
    std::uint64_t size = 0;            // bytes on the wire; 0 where that varies
    bool owns = false;                 // a release pass has something to do, or to refuse
    bool isWord = false;               // number: 32 bits in memory, so that many of them are swapped at once
    bool isFloat = false;              // number: each pass makes the platform's diagnostic print
    std::uint32_t bound = 0;           // elements or bytes of a fixed form, maximum of a variable one
    std::vector<Part> element = {};    // the one element of an array, or what an optional holds
};

// Members of a struct that are coded together: a run of fixed size, or one member whose size varies.
struct Run {
    std::size_t first = 0;  // index among the members
    std::size_t count = 0;
    std::uint64_t size = 0;  // bytes of a run on the wire; 0 of a member whose size varies
};

// What plain functions a type has.
struct TypePlan {
    bool hasFunctions = false;  // it has encode(), decode() and release()
    std::uint64_t size = 0;  // bytes on the wire; 0 where that varies. A struct with a size has put() and get() as well
    bool owns = false;
    bool isInline = false;  // its functions are small enough to be inlined into callers
};

// Plans for the types that a module and its imports define. Each is made once, so that types that hold each other in
// many ways cost no more than their number.
class Plans {
public:
    explicit Plans(const Module& module);

    TypePlan of(const Definition& definition);
    Part part(const Declaration& declaration);
    std::vector<Run> runsOf(const Definition& structure);

    // True if the definition is compiled into another library.
    bool isForeign(const Definition& definition) const { return foreign_.contains(definition.at.source); }

private:
    void add(const Module& module, const Module& user, std::unordered_set<const Module*>& seen);
    Part part(const TypeRef& type);
    Part pointedTo(const TypeRef& type);
    Part array(Part element, std::uint32_t count) const;
    TypePlan structure(const Definition& definition);

    std::unordered_set<const Source*> foreign_;
    std::unordered_map<const Definition*, TypePlan> plans_;
};

// True if the type is a struct, a union or a sequence.
bool hasFunctions(const Definition& definition);

}  // namespace quorva::compiler
