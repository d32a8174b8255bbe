// Bytes of the shortest messages.
#pragma once

#include <quorvapixdr/description.h>

#include <cstddef>
#include <unordered_map>

namespace quorva::inspect {

// Knows the bytes of the shortest value of a type: empty strings and arrays, absent optionals, the shortest arms.
class LeastSizes {
public:
    std::size_t of(const Type& type);
    std::size_t of(const Use& use);

    // Bytes of the union's shortest value with this arm, beyond those of its shortest value. A null arm is void.
    std::size_t extra(const Type& discriminatedUnion, const Member* arm);

    // From now on the union's shortest value is the shortest one with this arm. Comes before any call of `of`.
    void fix(const Type& discriminatedUnion, const Member* arm) { fixed[&discriminatedUnion] = arm; }

private:
    std::unordered_map<const Type*, std::size_t> known;
    std::unordered_map<const Type*, const Member*> fixed;
};

}  // namespace quorva::inspect
