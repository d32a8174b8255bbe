// The sizes of types in memory, and how much they are made of.
#pragma once

#include "model.h"

#include <cstdint>
#include <unordered_map>

namespace quorva::compiler {

// What a type takes on a machine with 64-bit addresses, where it takes most.
struct Layout {
    std::uint64_t size = 0;
    std::uint64_t alignment = 1;

    // Fields and arms, with those of the types that they hold by value; a vector counts like one element.
    std::uint64_t members = 0;
};

// The layouts of a program's types. Types are added one by one, each after those that it holds by value; one that is
// missing then counts as empty.
class Layouts {
public:
    // The most bytes and members of a type. A type with more counts as one byte or member larger than that where others
    // hold it, so no product or sum leaves 64 bits. The first compiler that would suffer is g++, which visits each
    // member of each type, through all types in it.
    static constexpr std::uint64_t largest = std::uint64_t{64} << 20U;
    static constexpr std::uint64_t mostMembers = 65536;

    // Returns the layout of the type, with its true numbers however large these are.
    Layout add(const Definition& type);

    Layout of(const Declaration& declaration) const;

private:
    Layout of(const TypeRef& type) const;
    Layout of(const Definition& definition) const;

    std::unordered_map<const Definition*, Layout> known_;
};

}  // namespace quorva::compiler
