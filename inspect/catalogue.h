// The known types by name: find one, suggest names for a wrong one, and name kinds, forms and declarations.
#pragma once

#include <quorvapixdr/description.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// Everything that `kindName` returns, in the order of the summary.
inline constexpr const char* kindNames[] = {"built-in",
                                            "enum",
                                            "struct",
                                            "union",
                                            "typedef",
                                            "variable-length-array",
                                            "fixed-length-array",
                                            "optional",
                                            "string",
                                            "fixed-length-opaque",
                                            "variable-length-opaque",
                                            "foreign"};

// The kind of a type in the words of RFC 4506. A typedef is a "typedef" where it gives a type another name; any other
// has the name of its form. "foreign" is a type of another library.
const char* kindName(const Type& type);

// Where the type is defined: "jobs/job.x:199", or "built in".
std::string placeOf(const Type& type);

// How a declaration holds its type: "single", "void", or one of the forms among `kindNames`.
const char* formName(Form form);

// The declaration as an interface file writes it: "LockerId id", "ShortNatural code[10]", "string label<40>". With an
// empty name only the type: "ShortNatural[10]".
std::string declaration(const Use& use, std::string_view name);

// For each arm of a union, in the order of the file, the values of the discriminant that select it, ascending.
std::vector<std::vector<std::int64_t>> casesByArm(const Type& discriminatedUnion);

// True if the name matches the pattern, whatever the case of the letters. A pattern with `*` (any characters) or `?`
// (one character) matches the whole name; any other pattern matches each name that contains it.
bool matches(std::string_view pattern, std::string_view name);

// "; did you mean X, Y or Z?" with up to three candidates, the best one first: those within a few edits of the word,
// or else those that contain it. Empty if there are none.
std::string didYouMean(std::string_view word, std::span<const std::string_view> candidates);

// All types of the known modules, and the built-in ones. A type hides those of the same name in earlier modules.
class Catalogue {
public:
    Catalogue();

    // Ordered by name.
    std::span<const Type* const> types() const { return ordered; }

    // The type with exactly this name, or null.
    const Type* find(std::string_view name) const;

    // The free function `didYouMean`, with the names of all types as candidates.
    std::string didYouMean(std::string_view name) const;

private:
    std::vector<const Type*> ordered;
    std::unordered_map<std::string_view, const Type*> byName;
};

}  // namespace quorva::inspect
