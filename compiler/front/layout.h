// Computes the sizes of types in memory.
#pragma once

#include "model.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quorva::compiler {

// The memory that a type takes.
struct Layout {
    std::uint64_t size = 0;       // bytes
    std::uint64_t alignment = 1;  // bytes

    // Fields and arms, including those of the types that they hold by value; a fixed-length array counts as one
    // element.
    std::uint64_t members = 0;
};

// The layouts of a program's types. Types are added one by one, each after the types that it holds by value. A typedef
// that was not added has the layout of its target; any other type that was not added counts as empty.
class Layouts {
public:
    // The most bytes and members that a type may have; g++ becomes slow beyond, as it visits all members of all nested
    // types. Within other types a larger type counts as one more than the limit, so that no sum exceeds 64 bits.
    static constexpr std::uint64_t mostBytes = std::uint64_t{64} << 20U;
    static constexpr std::uint64_t mostMembers = 65536;

    // `bytes` is the size of an address on the machine in question. Types take most where it is 8.
    explicit Layouts(std::uint64_t bytes = 8) : address(bytes) {}

    // Adds the type and returns its layout, which may exceed the limits.
    Layout add(const Definition& type);

    // The layout of one member; zero bytes for void.
    Layout of(const Declaration& declaration) const;

    // The layout of a type. The types that it holds by value must be added.
    Layout of(const Definition& definition) const;

    // The offset of each of `declarationsOf(type)` in an object of the type; 0 for a void arm. The types that the type
    // holds by value must be added.
    std::vector<std::uint64_t> offsetsIn(const Definition& type) const;

private:
    Layout ofArms(const Definition& discriminatedUnion) const;
    Layout of(const TypeRef& type) const;

    std::uint64_t address;
    std::unordered_map<const Definition*, Layout> known;
};

// The layouts of the types, in any order, on a machine whose addresses have `bytes` bytes. The types that they hold by
// value must be among them.
Layouts layoutsOf(const std::vector<const Definition*>& types, std::uint64_t bytes = 8);

}  // namespace quorva::compiler
