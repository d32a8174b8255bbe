// The state of one comparison of two programs. Only the files that implement compare() include this header.
#pragma once

#include "compare.h"
#include "findings.h"
#include "matching.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorva::compiler {

// A remote program, version or procedure.
struct RemoteMember {
    std::string owner;  // the key of the program of a version, or of the version of a procedure
    std::string what;   // "procedure 'CREATE'"
    Span at;
    std::int64_t number = 0;
    std::optional<TypeRef> argument;
    std::optional<TypeRef> result;
};

// Compares the paired definitions of two programs: fields by position and name, enumerators by name and value, arms by
// case. A change is reported at the changed definition, not at every type that holds it.
class Comparison {
public:
    Comparison(const InterfaceVersion& before, const InterfaceVersion& after)
        : oldIndex(before.program, before.isFolder),
          newIndex(after.program, after.isFolder),
          pairs(oldIndex, newIndex),
          types(pairs)
    {
    }

    // Compares everything, and returns the findings.
    std::vector<Finding> run();

private:
    // Adds a finding.
    void add(Impact impact, const Span& before, const Span& after, std::string sentence);

    // Adds a change within the pair under comparison.
    void change(Impact impact, const Span& before, const Span& after, const std::string& what);

    // Adds a change of a member. It breaks nothing if the old member was provisional.
    void change(Impact impact, const Declaration& before, const Span& after, const std::string& what);

    // Adds a finding if a member lost its provisional mark and is otherwise the same, or if it got one. Marks within a
    // provisional type do not count.
    void mark(const std::string& subject, const Declaration& before, const Declaration& after, bool isChanged);

    // Adds a finding if the type of `subject`, a field or an arm, changed. An empty subject means the typedef itself.
    void type(const std::string& subject, const Declaration& before, const Declaration& after);

    // Modules and definitions
    void modules();
    void removed(const Definition& before);
    void added(const Definition& after);
    void definition(const Definition& before, const Definition& after);
    void nameAndModule(const Definition& before, const Definition& after);
    void content(const Definition& before, const Definition& after);

    // Structs
    void structure(const Definition& before, const Definition& after);
    void fieldOrder(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after,
                    const std::vector<bool>& stays);
    void replacedFields(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after);

    // Enumerations
    void enumeration(const Definition& before, const Definition& after);

    // Unions
    struct ArmCase {
        const Value* value = nullptr;
        const Declaration* declaration = nullptr;
    };
    void discriminatedUnion(const Definition& before, const Definition& after);
    void arms(const Definition& before, const Definition& after);
    void arm(const ArmCase& before, const ArmCase& after);
    void removedArm(const ArmCase& before);
    void addedArm(const ArmCase& after);

    // `program` blocks
    void remotePrograms();
    void remoteType(const std::string& what, const RemoteMember& before, const RemoteMember& after,
                    std::optional<TypeRef> RemoteMember::*type);

    InterfaceIndex oldIndex;
    InterfaceIndex newIndex;
    Pairs pairs;
    TypeComparison types;
    std::vector<Finding> findings;
    const Definition* oldDefinition = nullptr;  // the pair under comparison
    const Definition* newDefinition = nullptr;
    std::optional<std::size_t> holderCount;  // of oldDefinition, once counted
};

// The impact of a difference between types.
Impact impactOf(const Difference& difference);

// The type of a declaration, without its name: "LockerId<6>".
std::string typeText(const Declaration& declaration);

}  // namespace quorva::compiler
