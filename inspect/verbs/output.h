// What all verbs print with: standard output, errors and notes.
#pragma once

#include "inspect/json.h"

#include <chrono>
#include <cstdint>
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

// Shows on standard error how many things are done, once that takes more than a second. It shows nothing unless
// standard error is a terminal, and nothing if standard output is one, where the output itself shows the progress. At
// most one object exists at a time.
class Progress {
public:
    // `things` is a plural, such as "messages"; it must outlive the object.
    explicit Progress(const char* things);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // One thing more is done.
    void advance();

private:
    const char* things;
    bool isTerminal;
    std::uint64_t done = 0;
    std::chrono::steady_clock::time_point next;
};

// Thrown where standard output is a pipe whose reader is gone, as in `quorvaxdr types | head`: the program ends,
// quietly.
struct ClosedPipe {};

}  // namespace quorva::inspect
