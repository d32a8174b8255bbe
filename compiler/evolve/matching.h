// Matches the definitions of two programs, and compares declared types.
#pragma once

#include "flatten.h"
#include "front/model.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorva::compiler {

// A program with tables for lookups. The program must outlive it.
class InterfaceIndex {
public:
    // `isFolder` tells that the program consists of all files below a folder.
    InterfaceIndex(const Program& indexed, bool isFolder);

    const DefinitionsByModule& contents() const { return byModule; }

    // The modules as they were read.
    const Program& everything() const { return program; }

    // The definition of that name, or null.
    const Definition* find(const std::string& name) const;

    // True if the names of modules belong to the interface: the files are below a folder, or flattened.
    bool knowsModules() const { return hasModules; }

    // The module of one of the program's definitions.
    const std::string& moduleOf(const Definition& definition) const { return *moduleNames.at(&definition); }

    // The start of the module; a span without a source if the program has no such module.
    Span startOf(const std::string& module) const;

    // True if the header of the module `from` includes the header of the module `to`, directly or through others.
    bool reaches(const std::string& from, const std::string& to) const;

    // The number of types that hold the type, directly or within others; counting stops at mostHolders.
    static constexpr std::size_t mostHolders = 1000;
    std::size_t holdersOf(const Definition& type) const;

private:
    const Program& program;
    DefinitionsByModule byModule;
    bool hasModules = false;
    std::unordered_map<std::string_view, const Definition*> byName;
    std::unordered_map<const Definition*, const std::string*> moduleNames;
    std::unordered_map<const Definition*, std::vector<const Definition*>> usersOf;
};

// Matches each definition of the earlier program with the one of the same name in the later program, or with the one
// that has only been renamed. Both programs must outlive it.
class Pairs {
public:
    Pairs(const InterfaceIndex& before, const InterfaceIndex& after);

    // The partner of an earlier definition, or null.
    const Definition* of(const Definition* before) const;

    // True if the later definition has a partner.
    bool isPaired(const Definition* after) const { return paired.contains(after); }

private:
    void pair(const Definition& before, const Definition& after);
    bool pairRenamed(const InterfaceIndex& before, const InterfaceIndex& after);
    std::string content(const Definition& definition, bool isBefore) const;
    std::string typeName(const TypeRef& type, const Definition& within, bool isBefore) const;

    std::unordered_map<const Definition*, const Definition*> partners;
    std::unordered_set<const Definition*> paired;  // later definitions
};

// What a change from one declared type to another affects.
struct Difference {
    bool wire = false;         // other bytes, or other values for the same bytes
    bool source = false;       // another type in C++
    bool trace = false;        // another text for the same value
    bool provisional = false;  // the earlier type was provisional

    bool any() const { return wire || source || trace; }
};

// A declaration of one value of the type.
Declaration singleOf(const TypeRef& type);
Declaration singleOf(const Definition& definition);

// Compares declared types with their typedefs resolved. Paired definitions count as the same type, because a change of
// them is reported at the definition. The pairs must outlive it.
class TypeComparison {
public:
    explicit TypeComparison(const Pairs& matched) : pairs(matched) {}

    // The difference between two fields, arms or targets of typedefs. Their names are not compared.
    Difference difference(const Declaration& before, const Declaration& after) const;

private:
    // Structs and unions that must have the same wire format if the types that hold them have.
    using PendingPairs = std::vector<std::pair<const Definition*, const Definition*>>;

    Difference declared(Declaration before, Declaration after, PendingPairs& pending) const;
    Difference values(const TypeRef& before, const TypeRef& after, PendingPairs& pending) const;
    bool haveSameWire(const Definition& before, const Definition& after, PendingPairs& pending) const;
    bool haveSameWire(PendingPairs& pending) const;
    bool isSame(const TypeRef& before, const TypeRef& after) const;

    const Pairs& pairs;
};

}  // namespace quorva::compiler
