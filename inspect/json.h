// Objects as JSON and back, by their descriptions, without loss.
//
//   struct           {"id": 7, ...}, every field in order
//   union            {"kind": "AKowner", "owner": "Anna"}; the discriminant alone where no member follows
//   arrays           [ ... ]
//   optional         null or the value
//   string           "Anna"; {"hex": "e4"} if it is not UTF-8; null for a null pointer
//   opaque           {"text": "ABC"} if all bytes are printable ASCII, else {"hex": "0a"}
//   enumeration      "DSopen"; a number without an enumerator as a number
//   Boolean          true, false; 2 to 255 as numbers
//   Float            the shortest decimal number; {"bits": "7fc00001"} if it is not finite
//   other built-in   7
//
// `fromJson` also takes the number of an enumerator, and {"hex"} or {"text"} for any string or opaque.
#pragma once

#include "object.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

using Json = nlohmann::ordered_json;

// The errors of a JSON value that is not the JSON form of a type, at least one and at most twenty.
class JsonError : public std::runtime_error {
public:
    struct Entry {
        std::string path;      // JSON pointer, "/aValues/2/value/jobName"; empty for the whole value
        std::string sentence;  // what is wrong, and what was expected
    };

    explicit JsonError(std::vector<Entry> found);

    const std::vector<Entry> errors;
};

// Thrown where an object has no JSON form.
struct Refusal {
    std::string reason;
};

// The JSON form of an object in a state that a decode can leave. A variable-length array or opaque whose elements are
// null counts as empty. Throws Refusal if values nest deeper than `deepestNesting`.
Json toJson(const Type& type, const void* object);

// The object that has this JSON form. Throws JsonError.
Object fromJson(const Type& type, const Json& value);

// The JSON value of a text. Throws InputError if the text is not JSON; throws JsonError if an object names a field
// twice or values nest deeper than any object can.
Json parseJson(std::string_view text);

}  // namespace quorva::inspect
