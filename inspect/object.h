// One object of a type that is only known at run time, and what it owns.
#pragma once

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <memory>

namespace quorva::inspect {

// Zeroed storage for one object. A release pass runs over it when it goes, so whatever the object holds by then has to
// be zero or as a decode leaves it.
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
    std::byte* data() { return storage.get(); }
    const std::byte* data() const { return storage.get(); }

private:
    const Type* described;
    std::unique_ptr<std::byte[]> storage;  // aligned for every type that interface files can define
};

}  // namespace quorva::inspect
