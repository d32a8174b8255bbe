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

// Columns of a line, in interface files and in generated code.
inline constexpr std::size_t lineWidth = 120;

// The -I folders, in the order in which they are searched.
class SearchPath {
public:
    // An empty list means the current folder.
    explicit SearchPath(std::vector<std::string> searched);

    // The name of the module in a file: its path below the first folder that contains it, without ".x"; for a file
    // elsewhere its stem.
    std::string moduleOf(const std::string& file) const;

    // The path of the module's file, in the first folder that has it; nullopt if none has.
    std::optional<std::string> find(const std::string& module) const;

    // The modules in the same folders as the module would be, for suggestions.
    std::vector<std::string> neighbours(const std::string& module) const;

    // The folders as messages list them.
    std::string describe() const;

    // The folders as given, and the same absolute and without links.
    const std::vector<std::string>& given() const { return folders; }
    const std::vector<std::filesystem::path>& absolute() const { return resolved; }

private:
    std::vector<std::string> folders;
    std::vector<std::filesystem::path> resolved;  // absolute, without links, in the same order
};

// The path, absolute and without links as far as it exists.
std::filesystem::path resolvedPath(const std::string& path);

// True if `relative`, a path from a folder to a file, leads into the folder.
bool isInside(const std::filesystem::path& relative);

// Reads a whole file into `text`, without a byte order mark at its start. Returns nullopt, or the reason of the
// failure; `text` is undefined then.
std::optional<std::string> readFile(const std::string& path, std::string& text);

// Reads and parses the files and everything that they import. Errors in the input go to `errors`; for each file that
// cannot be read, a sentence is added to `unreadable`.
Program readProgram(const std::vector<std::string>& files, const SearchPath& folders, Diagnostics& errors,
                    std::vector<std::string>& unreadable);

}  // namespace quorva::compiler
