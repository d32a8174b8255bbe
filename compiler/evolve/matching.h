// Two programs side by side: which definition of the one is which of the other, and what parts two declared types.
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

// One of the two programs, with its tables.
class Library {
public:
    // The program must outlive its tables. `isFolder`: its files are those below a folder.
    Library(const Program& program, bool isFolder);

    const Contents& contents() const { return contents_; }
    const Definition* find(const std::string& name) const;  // null where there is none

    // Whether the names of modules say anything; those of a plain file say where it happens to lie.
    bool knowsModules() const { return knowsModules_; }

    // The module of one of the program's definitions.
    const std::string& homeOf(const Definition& definition) const { return *homes_.at(&definition); }

    // Where the module begins; no source where there is no such module.
    Span place(const std::string& module) const;

    // Whether who includes the header of one module gets the definitions of the other.
    bool reaches(const std::string& from, const std::string& to) const;

    // The number of types that hold the type, directly or within others, up to mostHolders.
    static constexpr std::size_t mostHolders = 1000;
    std::size_t holdersOf(const Definition& type) const;

private:
    const Program& program_;
    Contents contents_;
    bool knowsModules_ = false;
    std::unordered_map<std::string_view, const Definition*> byName_;
    std::unordered_map<const Definition*, const std::string*> homes_;
    std::unordered_map<const Definition*, std::vector<const Definition*>> users_;
};

// Which definition of the one program is which of the other: those of the same name, and those that only got another.
class Pairs {
public:
    Pairs(const Library& before, const Library& after);

    // The partner in the later program, or null.
    const Definition* of(const Definition* before) const;
    bool isPaired(const Definition* after) const { return taken_.contains(after); }

private:
    void pair(const Definition& before, const Definition& after);
    bool pairRenamed(const Library& before, const Library& after);
    std::string content(const Definition& definition, bool isBefore) const;
    std::string typeName(const TypeRef& type, const Definition& within, bool isBefore) const;

    std::unordered_map<const Definition*, const Definition*> pairs_;
    std::unordered_set<const Definition*> taken_;
};

// What it takes to get from one declared type to another.
struct Difference {
    bool wire = false;         // other bytes, or other values for the same bytes
    bool source = false;       // another type in C++
    bool trace = false;        // another text for the same value
    bool provisional = false;  // what was left for another type was provisional

    bool any() const { return wire || source || trace; }
};

// A declaration of one value of the type.
Declaration singleOf(const TypeRef& type);
Declaration singleOf(const Definition& definition);

// Compares declared types behind their typedefs. Paired definitions count as the same: where one of them changed, that
// is reported there.
class Types {
public:
    explicit Types(const Pairs& pairs) : pairs_(pairs) {}

    // What becomes of a field, an arm or a typedef; names are not compared.
    Difference difference(const Declaration& before, const Declaration& after) const;

private:
    // Structures that have to carry the same units for the types that hold them to do so.
    using Open = std::vector<std::pair<const Definition*, const Definition*>>;

    Difference surface(Declaration before, Declaration after, Open& open) const;
    Difference values(const TypeRef& before, const TypeRef& after, Open& open) const;
    bool sameUnits(const Definition& before, const Definition& after, Open& open) const;
    bool sameUnits(Open& open) const;
    bool isSame(const TypeRef& before, const TypeRef& after) const;

    const Pairs& pairs_;
};

}  // namespace quorva::compiler
