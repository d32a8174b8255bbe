// What the values of options can be: one table for the help, the completions and the errors.
//
// The shown name of a value tells its kind: "raw|hex" is a choice of words; "BYTES" and other capitals name a value.
#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace quorva::inspect {

// The option takes one of these words. Returns the option.
CLI::Option* takeOneOf(CLI::Option* option, const std::vector<std::string>& words);

// The option takes a decimal number, or a hexadecimal one after 0x. `name` is shown for it. Returns the option.
CLI::Option* takeNumber(CLI::Option* option, std::uint64_t least, std::uint64_t most, const char* name);

// The words that the option takes; none if it takes anything else.
std::vector<std::string> wordsOf(const CLI::Option& option);

// True if the option needs a value.
bool takesValue(const CLI::Option& option);

// "raw, hex or json"
std::string alternatives(const std::vector<std::string>& words);

}  // namespace quorva::inspect
