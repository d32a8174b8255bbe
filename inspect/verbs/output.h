// What all verbs print with: standard output, errors and notes.
#pragma once

#include "inspect/json.h"

#include <string>
#include <string_view>

namespace quorva::inspect {

// Prints to standard output. Throws ClosedPipe if its reader is gone, and Stop for any other failure.
void print(std::string_view text);

// Prints the value with an indentation of two, and a line break.
void printJson(const Json& json);

// Prints the message to standard error, each line after the name of the program, and then the details as they are.
void printError(std::string_view message, std::string_view details = {});

// True if standard output is a terminal that shows colours, and NO_COLOR is not set.
bool usesColour();

// Thrown where standard output is a pipe whose reader is gone, as in `quorvaxdr types | head`: the program ends,
// quietly.
struct ClosedPipe {};

}  // namespace quorva::inspect
