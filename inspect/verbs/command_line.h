// The command line of the program: its verbs and options, and a sentence for each thing that is wrong with it.
#pragma once

#include "verb.h"

#include <memory>
#include <string>
#include <vector>

namespace quorva::inspect {

class CommandLine {
public:
    CommandLine();

    // Reads the words after the program's name. Returns the verb to run, with the values of its options; null if the
    // command line asks for the text that `reference` returns. Throws Stop if it is wrong.
    Verb* read(const std::vector<std::string>& words);

    // The help, the manual page, the version or the completions.
    const std::string& reference() const { return text; }

private:
    struct Entry {
        std::unique_ptr<Verb> verb;
        CLI::App* parser;
    };

    void add(std::unique_ptr<Verb> verb, const char* group, const std::string& statuses);
    void checkFirst(const std::vector<std::string>& words) const;
    bool isVerb(const std::string& word) const;

    CLI::App program;
    std::vector<Entry> entries;
    bool wantsManual = false;
    std::string shell;
    std::string text;
};

}  // namespace quorva::inspect
