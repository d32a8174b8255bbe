// The help and the manual page, made from the parsers of the program and its verbs.
//
// A footer of a parser is text in paragraphs, one a line. A line "Examples:" is a heading, and indented lines are shown
// as they are.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace quorva::inspect {

// Options of this group are in the manual page once, after the verbs.
inline constexpr const char* interfaceGroup = "Options for interface files";

// The text of --help for the program or a verb, in lines of at most 100 columns.
std::string helpText(const CLI::App& app);

// The manual page quorvaxdr.1, in roff.
std::string manualPage(const CLI::App& program, const std::string& version);

// "quorvaxdr decode TYPE [INPUT] [OPTION]..."
std::string usageOf(const CLI::App& app);

}  // namespace quorva::inspect
