// The bytes of a message with names and values beside them.
#pragma once

#include "json.h"
#include "tree.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

// A line of an annotation. Each byte of the message is in one line.
struct AnnotatedLine {
    std::size_t offset = 0;
    std::size_t size = 0;   // bytes, at most four
    std::size_t level = 0;  // of the name
    std::string name;
    std::string value;
};

// The lines of the whole message: its parts, the bytes after the value or after the place of a failure, and the end.
std::vector<AnnotatedLine> annotatedLines(const Tree& tree);

// The lines as text, with the bytes and a column for the values. The place of a failure is the line
// "! refused: <reason>".
std::string annotationText(const Tree& tree);

// A failed decode on one screen: the last parts that were decoded, the bytes around the place with a mark, and the
// likely cause. Empty if the tree did not stop.
std::string failureText(const Tree& tree);

// Prints the annotation as one JSON object in indented lines, a block of them at a time:
//   "type", "size"   of the message
//   "nodes"          its parts in the order of the message, each {"path", "depth", "name", "kind", "type", "offset",
//                    "size", "value", "text"}; "value" is the JSON form of a number, string or opaque; "text" is what
//                    the annotation shows beside the bytes
//   "refused"        {"path", "offset", "reason", "cause"}, only after a failure
//   "leftOver"       {"offset", "size"}, only if bytes follow the value
void printAnnotationJson(const Tree& tree, const std::function<void(std::string_view)>& print);

// The innermost part that holds the byte at `offset`, or the part at a JSON Pointer; nullopt if there is none.
std::optional<std::uint32_t> partAt(const Tree& tree, std::size_t offset);
std::optional<std::uint32_t> partAt(const Tree& tree, std::string_view pointer);

// "/jobId/job  bytes 8..11  LongNatural  231"
std::string partText(const Tree& tree, std::uint32_t part);

// A part's object as in `printAnnotationJson`.
Json partJson(const Tree& tree, std::uint32_t part);

}  // namespace quorva::inspect
