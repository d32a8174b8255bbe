// What a decode accepts in silence, and why a message that it refuses may be damaged.
#pragma once

#include "json.h"
#include "tree.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quorva::inspect {

enum class FindingCode : std::uint8_t {
    unknownEnumerator,
    booleanNotZeroOrOne,
    paddingNotZero,
    valueCut,
    countCut,
    textHoldsZero,
    textNotValid,
    attributeMismatch,
    leftOver,
    refused,
};

// The code as `validate` prints it: "unknown-enumerator".
const char* codeName(FindingCode code);

struct Finding {
    FindingCode code;
    std::size_t offset;    // of the byte in question
    std::string path;      // JSON Pointer; empty for the outermost value
    std::string sentence;  // "id 13, but the union has attribute 8"
    std::uint32_t node;    // of the tree
};

// What is wrong with the message, in the order of its bytes; a refusal is the last one. A message without findings
// decodes, and an encode of the decoded object writes the same bytes.
std::vector<Finding> findingsOf(const Tree& tree);

// The likely cause of the place where the tree stops: "count 65535 of /aValues needs at least 786,420 bytes, 228 are
// left". Empty if the tree did not stop, or if the place itself says all.
std::string likelyCause(const Tree& tree);

// "cancel.hex: byte 20: /1/id: attribute-mismatch: id 13, but the union has attribute 8"
std::string findingText(const Finding& finding, const std::string& file);

// {"code", "offset", "path", "sentence"}
Json findingJson(const Finding& finding);

// A number with commas between groups of three digits: "786,420".
std::string grouped(std::uint64_t number);

}  // namespace quorva::inspect
