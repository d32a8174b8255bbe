// Objects as JSON and back, by their descriptions, without loss.
//
//   record        {"id": 7, ...} every field, in order     enumeration   "DSopen"; its number where it has no name
//   union         {"kind": "AKowner", "owner": "Anna"}     Boolean       true, false; 2 and more as numbers
//                 the discriminant alone without an arm    other numbers 7; a float shortest, or {"bits": "7fc00001"}
//   list, vector  [ ... ]                                  string        "Anna"; {"hex": "e4"} where it is not UTF-8
//   optional      null or the value                        bytes         {"text": "ABC"} if printable, else {"hex":
//   "0a"}
//
// A null text is null. Reading also takes the number of an enumerator that has a name, and {"hex"} and {"text"}
// wherever there are bytes or a string.
#pragma once

#include "object.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

using Json = nlohmann::ordered_json;

// One thing that is wrong in a JSON text: where ("/aValues/2/value/jobName", empty for the whole) and in a sentence.
struct JsonFault {
    std::string path;
    std::string sentence;
};

// All that is wrong, at least one fault; after the first twenty nobody counts.
class JsonError : public std::runtime_error {
public:
    explicit JsonError(std::vector<JsonFault> found);

    const std::vector<JsonFault> faults;
};

// The JSON form of an object that is as a decode leaves it. A list without its block counts as empty. Throws Refusal
// when values are nested deeper than `deepestNesting`.
Json toJson(const Type& type, const void* object);

// The object that a JSON value describes. Throws JsonError.
Object fromJson(const Type& type, const Json& value);

// JSON text to value. Throws InputError where it is no JSON, and JsonError where an object names a field twice or
// values are nested deeper than any object can be.
Json parseJson(std::string_view text);

}  // namespace quorva::inspect
