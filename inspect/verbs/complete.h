// Completions of a command line for shells, made from the parsers of the program and its verbs.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace quorva::inspect {

// The completions of the last word, which may be empty. The words begin with the verb. Each completion is a line, with
// its description after a tab. The line ":files" or ":folders" stands for the names of files or folders.
std::string completions(const CLI::App& program, std::vector<std::string> words);

// The script that makes a shell ask the program for completions: "bash", "zsh" or "fish".
std::string completionScript(const std::string& shell);

// For `--complete`, the option that the scripts call.
inline constexpr const char* completeOption = "--complete";

}  // namespace quorva::inspect
