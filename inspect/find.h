// Finds types, members, arms, enumerators, remote procedures and documentation by a word or a number.
#pragma once

#include "catalogue.h"
#include "json.h"
#include "programs.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

enum class HitKind : std::uint8_t { type, member, arm, enumerator, procedure, text };

// The names of the kinds, in their order.
inline constexpr const char* hitKindNames[] = {"type", "member", "arm", "enumerator", "procedure", "text"};

// Something that a search found. The views live as long as the descriptions.
struct Hit {
    HitKind kind = HitKind::type;
    const Type* type = nullptr;           // the type itself, or the one that has the member, arm, enumerator or text;
                                          // null for a procedure
    std::string_view name = {};           // of the member, arm or enumerator; empty for a type and its text
    std::optional<std::int64_t> value{};  // of the enumerator or procedure, or the discriminant's that selects the arm
    std::string_view enumerator = {};     // the name of that value of the discriminant; may be empty
    std::string detail = {};              // the kind of the type, the declaration, or the line of the documentation
    std::optional<KnownProcedure> procedure{};
};

// The hits, the closest first: names and numbers that are equal, then names that begin with the word, then those that
// contain it, whatever the case of the letters. Among equally close ones in the order of `HitKind`, then of the types.
//
// 1. A word with `*` or `?` is a pattern of whole names.
// 2. A number, decimal or hexadecimal with 0x, finds the arms that it selects and the enumerators and procedures that
//    have it; as on the wire, so that 0xFFFFFFFF finds -1. A program's name or number finds its procedures.
// 3. An arm is found by its name and by the enumerator of its discriminant; each of its values is a hit.
// 4. Documentation is searched if `only` is `text`, or if it is not given and nothing else matches.
std::vector<Hit> findHits(std::string_view word, std::span<const Type* const> types,
                          std::optional<HitKind> only = std::nullopt);

// One line for each hit in columns: the kind, what it is, file and line, detail. More than `most` hits end with a line
// "and 120 more (--all)".
std::string hitsText(std::span<const Hit> hits, std::size_t most);

// An array of {"kind", "type", "program", "version", "name", "value", "enumerator", "file", "line", "detail"}, without
// what a hit has not.
Json hitsJson(std::span<const Hit> hits);

// "; did you mean X?" with the most similar names of types, members and enumerators; empty if there are none.
std::string suggestedName(std::string_view word, std::span<const Type* const> types);

}  // namespace quorva::inspect
