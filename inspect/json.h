// Objects as JSON and back, by their descriptions, without loss. <quorvapixdr/json.h> has the forms and the errors.
#pragma once

#include "object.h"

#include <quorvapixdr/json.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorva::inspect {

using Json = nlohmann::ordered_json;

// Thrown where an object has no JSON form.
struct Refusal : std::domain_error {
    using std::domain_error::domain_error;
};

// The JSON form of an object in a state that a decode can leave. A variable-length array or opaque whose elements are
// null counts as empty. Throws Refusal if values nest deeper than `fromJson` reads, or if the type
// contains a type of another library without a description.
Json objectJson(const Type& type, const void* object);

// The object that has this JSON form. Takes linear time, and memory in proportion to the text. Throws JsonError.
Object fromJson(const Type& type, std::string_view text);

// ---- The JSON form of single values --------------------------------------------------------------------------------

// A number of a built-in type or an enumeration, as `loadNumber` returns it.
Json numberJson(const Type& scalar, std::int64_t number);

Json stringJson(std::string_view contents);

Json opaqueJson(std::span<const unsigned char> contents);

}  // namespace quorva::inspect
