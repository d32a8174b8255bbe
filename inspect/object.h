// One object of a type that is known only at run time.
#pragma once

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <memory>

namespace quorva::inspect {

// Owns a zeroed object and everything that is decoded into it. The destructor runs a release pass, so by then the
// object must be zero or in a state that a decode can leave.
class Object {
public:
    explicit Object(const Type& type) : described(&type), storage(std::make_unique<std::byte[]>(type.size)) {}
    ~Object()
    {
        if (storage) releaseContents(described->routine, storage.get());
    }
    Object(Object&&) noexcept = default;
    Object& operator=(Object&&) = delete;

    const Type& type() const { return *described; }

    // The address of the object; null after a move.
    std::byte* data() { return storage.get(); }
    const std::byte* data() const { return storage.get(); }

private:
    const Type* described;
    std::unique_ptr<std::byte[]> storage;  // aligned for every type that interface files can define
};

}  // namespace quorva::inspect
