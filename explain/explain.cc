// Follows a message or an object up to the place where a pass over it fails.

#include <quorvapixdr/explain.h>

#include "sources.h"

namespace quorva {

namespace {

template <class Source>
std::optional<Failure> failureOf(Source source, const Type& type, const void* object)
{
    inspect::Path path;
    inspect::Traversal traversal(source, path);
    if (traversal.run(type, static_cast<const std::byte*>(object))) return std::nullopt;
    return Failure{traversal.pointer(), traversal.stoppedAt(), traversal.refused().sentence(), source.offset()};
}

}  // namespace

std::optional<Failure> explain(const Type& type, std::span<const unsigned char> message)
{
    return failureOf(inspect::MessageSource(message), type, nullptr);
}

std::optional<Failure> explain(const Type& type, const void* object, std::size_t limit)
{
    return failureOf(inspect::ObjectSource(limit), type, object);
}

}  // namespace quorva
