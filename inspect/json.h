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
// `fromJson` also takes members in any order, the number of an enumerator, and {"hex"} or {"text"} for any string or
// opaque.
#pragma once

#include "object.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

using Json = nlohmann::ordered_json;

// The errors of a JSON text that is not the JSON form of a type, at least one and at most twenty.
class JsonError : public std::runtime_error {
public:
    struct Entry {
        // JSON Pointer, "/aValues/2/value/jobName"; empty for the whole value. An unknown or missing field is an error
        // of its object.
        std::string path;
        std::string sentence;  // what is wrong, and what was expected
        // Place of the value in the text, or that of the name of an unknown or repeated field. They count from 1; a
        // column is a byte.
        std::size_t line;
        std::size_t column;

        // "3:14: /aValues/2/value/jobName: expected ..."
        std::string text() const;
    };

    explicit JsonError(std::vector<Entry> found);

    const std::vector<Entry> errors;
};

// Thrown where an object has no JSON form.
struct Refusal {
    std::string reason;
};

// The JSON form of an object in a state that a decode can leave. A variable-length array or opaque whose elements are
// null counts as empty. Throws Refusal if values nest deeper than `fromJson` reads.
Json toJson(const Type& type, const void* object);

// The object that has this JSON form. Takes linear time, and memory in proportion to the text. Throws InputError if the
// text is not JSON or its values nest too deeply, and JsonError for other errors.
Object fromJson(const Type& type, std::string_view text);

// ---- The JSON form of single values --------------------------------------------------------------------------------

// A number of a built-in type or an enumeration, as `loadNumber` returns it.
Json numberJson(const Type& scalar, std::int64_t number);

Json stringJson(std::string_view contents);

Json opaqueJson(std::span<const unsigned char> contents);

}  // namespace quorva::inspect
