// Sizes of types and declarations on the wire, by their descriptions alone.
#pragma once

#include <quorvapixdr/description.h>

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// Bytes of a value on the wire, padding included.
struct WireSize {
    std::uint64_t least = 0;
    std::uint64_t most = 0;  // `WireSizes::unbounded` where a type contains itself

    bool isFixed() const { return least == most; }
};

// Computes each type once. May be used by one thread at a time.
class WireSizes {
public:
    static constexpr std::uint64_t unbounded = UINT64_MAX;  // also for sums that exceed 64 bits

    // A foreign type can have any size.
    WireSize of(const Type& type) const;
    WireSize of(const Use& use) const;

    // For each member of the type, the number of bytes before it on the wire; nullopt where it varies. The arms of a
    // union follow its discriminant.
    std::vector<std::optional<std::uint64_t>> offsetsIn(const Type& type) const;

private:
    enum End { least, most };

    std::uint64_t sizeOf(const Type& type, End end) const;
    std::uint64_t sumOf(const Type& type, End end) const;
    std::uint64_t knownOf(const Type& type, End end) const;
    std::uint64_t knownOf(const Use& use, End end) const;

    // For each end; nullopt while the types of the members are computed.
    mutable std::unordered_map<const Type*, std::optional<std::uint64_t>> known[2];
};

}  // namespace quorva::inspect
