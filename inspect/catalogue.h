// The types of the library by name: finding, suggesting, and saying in words what one is.
#pragma once

#include <quorvapixdr/description.h>

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// What people call a kind of type: "enum", "record", "union", "builtin", and for typedefs by what they stand for
// "alias", "sequence", "vector", "optional", "string" or "bytes"; "foreign" for a type of another library.
inline constexpr const char* kindNames[] = {"builtin", "enum",     "record", "union", "alias",  "sequence",
                                            "vector",  "optional", "string", "bytes", "foreign"};
const char* kindName(const Type& type);

// A declaration as an interface file has it: "LockerId id", "ShortNatural code[10]", "string label<40>"; with an empty
// name just the type: "ShortNatural[10]".
std::string declaration(const Use& use, std::string_view name);

// Whether a name fits a pattern: with `*` (any characters) or `?` (one) as a whole, otherwise anywhere within. Capitals
// do not matter.
bool matches(std::string_view pattern, std::string_view name);

// "; did you mean X, Y or Z?" with up to three candidates, best first: those that a slip of the finger or two
// turns into the word, else those that contain it; empty if there are none.
std::string didYouMean(std::string_view word, std::span<const std::string_view> candidates);

// All types of the library, the built-in ones included, by name.
class Catalogue {
public:
    Catalogue();

    std::span<const Type* const> types() const { return ordered; }
    const Type* find(std::string_view name) const;  // null if there is none
    std::string didYouMean(std::string_view name) const;

    // Where the type is used: "JobAVP.value", "JobAVPSeq"; by name.
    std::vector<std::string> usersOf(const Type& type) const;

private:
    std::vector<const Type*> ordered;
    std::unordered_map<std::string_view, const Type*> byName;
};

}  // namespace quorva::inspect
