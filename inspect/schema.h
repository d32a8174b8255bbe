// The types as data: one JSON document about all of them, and JSON Schemas of their JSON form (json.h).
//
// The schema document is the source of reference pages, dissectors and bindings of other languages:
//
//   format          1; a change that old readers would misread raises it
//   longestMessage  bytes of the longest message
//   pointerSize     bytes of a pointer on the machine whose memory layout `size`, `alignment` and `offset` give
//   modules         [{name, file, doc}], by name
//   types           [type], by name, the built-in ones included
//
//   type: name, kind (as `quorvaxdr types --kind` takes it), module, file, line, doc, provisional (the reason),
//     provisionalMembers ([name]), size, alignment, leastOnWire, mostOnWire (null: longer than any message),
//     usedBy (["JobAVP.value", "JobAVPSeq"]), usedIndirectlyBy ([type name]); and by its kind:
//       enum          enumerators  [{name, value, doc}], by value
//       struct        fields       [member], with wireOffset where the bytes before the field are fixed
//       union         discriminant member;  arms [member with cases [value]];  hasDefault: other values have no member
//       other         target       {form, type, number, maximum}
//   member: name, form, type, number, maximum, offset, size, leastOnWire, mostOnWire, doc, provisional
//
// `form` is "single", "void", or a kind with a length. `type` is the element type; a string, an opaque and a void have
// none. `number` is the length of a fixed-length form, `maximum` that of a variable-length one. A void arm has neither
// name nor sizes. `size` and `offset` are bytes in memory, the `...OnWire` and `wireOffset` bytes in the message, where
// the arm of a union follows its discriminant. What does not apply is left out: no `doc` where there is no
// documentation, no `module` for a built-in type.
#pragma once

#include "catalogue.h"
#include "json.h"

namespace quorva::inspect {

// The schema document of all types.
Json schemaJson(const Catalogue& catalogue);

// The JSON Schema (2020-12) of the JSON form of a type, with the types that it needs as `$defs`.
//
// It accepts what `fromJson` accepts, and so everything that `objectJson` writes, with these differences, because JSON
// Schema counts characters and compares numbers by value:
// - a text with characters of several bytes may be longer than its bound, or shorter than a fixed-length opaque;
// - a whole number may have a fraction of zero, such as 7.0;
// - nesting is not bounded.
Json jsonSchemaOf(const Type& type);

// A JSON Schema with all these types as `$defs`, to refer to: {"$ref": "FILE#/$defs/JobAVP"}.
Json jsonSchemaOf(std::span<const Type* const> types);

}  // namespace quorva::inspect
