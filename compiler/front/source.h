// Finds interface files, reads them, and follows their imports.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorva::compiler {

// Columns of a line, in interface files and in what is generated.
inline constexpr std::size_t lineWidth = 120;

// The -I folders, in the order in which they are searched.
class SearchPath {
public:
    // The current folder stands for an empty list.
    explicit SearchPath(std::vector<std::string> folders);

    // The module that a file is: its path below the first folder that holds it, without ".x"; for a file elsewhere its
    // bare name.
    std::string moduleOf(const std::string& file) const;

    // The file of a module, as folder and module name make it.
    std::optional<std::string> find(const std::string& module) const;

    // The modules whose files stand where the module's own would be.
    std::vector<std::string> neighbours(const std::string& module) const;

    // The folders as messages list them.
    std::string described() const;

private:
    std::vector<std::string> folders_;
    std::vector<std::filesystem::path> resolved_;  // absolute, without links, in the same order
};

// Reads a whole file into `text`. On failure the result is the reason in words and `text` is undefined.
std::optional<std::string> readFile(const std::string& path, std::string& text);

// Reads and parses the files and everything that they import. Faults of the input go to `faults`, files that cannot be
// read to `unreadable`, one sentence each. The modules come out as Program demands.
Program readProgram(const std::vector<std::string>& files, const SearchPath& folders, Diagnostics& faults,
                    std::vector<std::string>& unreadable);

}  // namespace quorva::compiler
