// A verb: the first word of a command line, with its options and its work. command_line.cc lists the verbs.
#pragma once

#include "inspect/interface.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace quorva::inspect {

// The exit statuses of the program. command_line.cc describes them to users.
enum Status { success = 0, found = 1, usageError = 2, codingError = 3, inputError = 4, systemError = 5 };

// Thrown to end the program with this status and message. A message has one line for each error. The details are
// printed after it as they are.
struct Stop {
    Status status;
    std::string message;
    std::string details = {};
};

// A verb owns the values of its options.
class Verb {
public:
    Verb(const char* verbName, const char* verbSummary, const char* verbExamples)
        : name(verbName), summary(verbSummary), examples(verbExamples)
    {
    }
    virtual ~Verb() = default;
    Verb(const Verb&) = delete;
    Verb& operator=(const Verb&) = delete;

    // Adds the options and positional arguments to the parser, which stores their values in this object.
    virtual void declare(CLI::App& app) = 0;

    // Does the work with the values that the parser stored. Returns the exit status; throws Stop.
    virtual int run() = 0;

    // The options --interface and -I, which command_line.cc declares for every verb.
    InterfaceFiles interfaces;

    const char* const name;
    const char* const summary;   // one line for the list of verbs
    const char* const examples;  // command lines, each on a line of its own
};

std::unique_ptr<Verb> makeAnnotate();
std::unique_ptr<Verb> makeDecode();
std::unique_ptr<Verb> makeDescribe();
std::unique_ptr<Verb> makeDiff();
std::unique_ptr<Verb> makeEncode();
std::unique_ptr<Verb> makeFind();
std::unique_ptr<Verb> makeGuess();
std::unique_ptr<Verb> makeOpen();
std::unique_ptr<Verb> makeSample();
std::unique_ptr<Verb> makeSchema();
std::unique_ptr<Verb> makeTypes();
std::unique_ptr<Verb> makeValidate();

}  // namespace quorva::inspect
