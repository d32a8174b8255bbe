// One object of a type that is known only at run time, and passes over it.
#pragma once

#include "runtime/interpreter.h"

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <memory>
#include <span>

namespace quorva::inspect {

// Runs one pass over an object and the first 65535 bytes of `buffer`. The interpreter codes the object, because a type
// that is described at run time has no routine.
inline Pass codeObject(Mode mode, const Type& type, void* object, std::span<unsigned char> buffer)
{
    const auto code = [&type](Xdr* xdrs, void* at) { return interpret(xdrs, at, type); };
    return runPass(mode, code, object, buffer);
}

// The same, and adds the trace to `trace`, inside an element with the name of the type.
template <Traceable Stream = Xdr>
Pass traceObject(Mode mode, const Type& type, void* object, std::span<unsigned char> buffer,
                 typename Stream::Trace& trace)
{
    const auto code = [&type](Xdr* xdrs, void* at) { return interpret(xdrs, at, type); };
    return runTraced<Stream>(mode, code, type.name, object, buffer, trace);
}

// Owns a zeroed object and everything that is decoded into it. The destructor runs a release pass, so by then the
// object must be zero or in a state that a decode can leave.
class Object {
public:
    explicit Object(const Type& type) : described(&type), storage(std::make_unique<std::byte[]>(type.size)) {}
    ~Object()
    {
        if (storage) codeObject(Mode::release, *described, storage.get(), {});
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
