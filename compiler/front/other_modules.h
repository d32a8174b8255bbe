// Finds the modules that a program may link beside those that it imports.
#pragma once

#include "model.h"
#include "source.h"

#include <cstddef>

namespace quorva::compiler {

// What is looked at below an -I folder.
inline constexpr std::size_t mostFolderEntries = 65536;
inline constexpr std::size_t mostOtherModules = 4096;
inline constexpr std::size_t mostOtherText = std::size_t{4} << 20U;  // bytes

// Reads into `program.others` the modules below the folders that can be imported and that `program` does not have. Left
// out are folders that are links, files with errors, a module that an earlier folder has under the same name, output of
// the compiler, and copies of a requested module: files with its text, and those below the same -I folder whose names
// end with its name. Returns false if there is more than the limits above, so that some modules are missing.
bool readOtherModules(Program& program, const SearchPath& folders);

}  // namespace quorva::compiler
