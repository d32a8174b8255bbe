// Ways from a type to the unions that an arm choice names.
#pragma once

#include "sample.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// One arm choice, resolved against the type of the message. The way to the next union that the choice fits is the one
// with the shortest message; a JSON Pointer is its own way.
class ArmGoal {
public:
    // `types` are those of the message, each after one that contains it. Throws ArmError if no union has the choice's
    // name. The arguments must outlive the goal.
    ArmGoal(std::span<const Type* const> types, const ArmChoice& choice, LeastSizes& sizes);

    // Finds the way from the root; `next`, `valueAt` and `bytes` come after it. Throws ArmError if no union can take
    // the choice.
    void findWay();

    // Bytes that the shortest message with the choice has beyond the shortest message of the type.
    std::size_t bytes() const { return needed; }

    // True if the choice names one place, with a JSON Pointer.
    bool isPlace() const { return choice.name.starts_with('/'); }

    // The discriminant that the union takes wherever it is; nullopt if the choice does not fit it.
    std::optional<std::int64_t> valueFor(const Type& discriminatedUnion) const;

    // The discriminant that the union takes at the place after `step` parts of the pointer; nullopt if the way goes on.
    std::optional<std::int64_t> valueAt(const Type& discriminatedUnion, std::size_t step) const;

    // The member of the struct or the arm of the union that the way takes; null if there is no way.
    const Member* next(const Type& type, std::size_t step) const;

    // The index of the element that the way takes; nullopt if every element will do.
    std::optional<std::uint32_t> element(std::size_t step) const;

    // "attribute=8"
    std::string text() const { return choice.name + '=' + choice.value; }

    bool applied = false;

private:
    void findPlace();
    bool shorten(const Type& type);
    std::size_t cost(const Use& use) const;
    std::optional<std::int64_t> parsed(const Type& discriminatedUnion) const;
    [[noreturn]] void refuseValue(const std::vector<const Type*>& unions) const;

    std::span<const Type* const> types;
    const ArmChoice& choice;
    LeastSizes& sizes;
    std::vector<const Type*> candidates;                   // the unions with the choice's name
    std::unordered_map<const Type*, std::int64_t> values;  // the discriminants of those that can take it
    std::unordered_map<const Type*, std::size_t> ways;     // bytes from the type to the next union
    std::vector<std::string> steps;                        // the parts of the pointer
    std::size_t needed = 0;
};

// The type and all types that its values can contain; each one comes once.
std::vector<const Type*> reachableFrom(const Type& root);

// The goals of the choices for messages with these types, with their ways. The sizes count the chosen arms from now on.
// The arguments must outlive the goals. Throws ArmError.
std::vector<ArmGoal> goalsOf(std::span<const Type* const> types, const std::vector<ArmChoice>& choices,
                             LeastSizes& sizes);

}  // namespace quorva::inspect
