// Lists the files first and sorts them, so that what is reported does not depend on the order in folders.
#include "other_modules.h"

#include "parser.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorva::compiler {

namespace {

namespace fs = std::filesystem;

// True if an import can have the word between two '/'. Hidden folders and most folders of build systems are not such.
bool canBeImported(std::string_view word)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    return !word.empty() && isLetter(word[0]) &&
           std::all_of(word.begin(), word.end(), [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

class OtherModules {
public:
    OtherModules(Program& readProgram, const SearchPath& searched);

    bool read();

private:
    struct Found {
        std::string module;
        std::string path;
    };

    std::vector<Found> filesBelow(const fs::path& folder);
    bool isCopyByName(const std::string& module, const fs::path& folder) const;
    bool isCopyByText(const std::string& text) const;
    void add(const Found& found);

    Program& program;
    const SearchPath& folders;
    std::vector<const Module*> requested;
    std::unordered_set<std::string> files;  // of the program, resolved
    std::unordered_set<std::string> names;  // of modules, the first of a name
    std::size_t entries = 0;
    std::size_t bytes = 0;
    bool complete = true;
};

OtherModules::OtherModules(Program& readProgram, const SearchPath& searched) : program(readProgram), folders(searched)
{
    for (const auto& module : program.modules) {
        files.insert(resolvedPath(module->source.path).string());
        names.insert(module->source.module);
        if (module->requested) requested.push_back(module.get());
    }
}

std::vector<OtherModules::Found> OtherModules::filesBelow(const fs::path& folder)
{
    std::vector<Found> found;
    std::error_code failed;
    fs::recursive_directory_iterator at(folder, fs::directory_options::skip_permission_denied, failed);
    for (; !failed && at != fs::recursive_directory_iterator(); at.increment(failed)) {
        if (++entries > mostFolderEntries) {
            complete = false;
            break;
        }
        std::error_code ignored;
        const fs::path path = at->path().lexically_normal();
        if (path.extension() == ".x" && canBeImported(path.stem().string()) && at->is_regular_file(ignored))
            found.push_back(
                {at->path().lexically_relative(folder).replace_extension().generic_string(), path.string()});
        if (!canBeImported(path.filename().string())) at.disable_recursion_pending();
    }
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.module < b.module; });
    return found;
}

// A build folder below the -I folder may hold an older copy.
bool OtherModules::isCopyByName(const std::string& module, const fs::path& folder) const
{
    return std::any_of(requested.begin(), requested.end(), [&](const Module* own) {
        return module.ends_with('/' + own->source.module) &&
               isInside(resolvedPath(own->source.path).lexically_relative(folder));
    });
}

bool OtherModules::isCopyByText(const std::string& text) const
{
    return std::any_of(requested.begin(), requested.end(), [&](const Module* own) { return own->source.text == text; });
}

void OtherModules::add(const Found& found)
{
    auto module = std::make_unique<Module>();
    module->source.path = found.path;
    module->source.module = found.module;
    if (readFile(found.path, module->source.text) || isCopyByText(module->source.text)) return;
    bytes += module->source.text.size();
    if (program.others.size() == mostOtherModules || bytes > mostOtherText) {
        complete = false;
        return;
    }
    Diagnostics errors;
    parse(*module, errors);
    if (errors.count() == 0) program.others.push_back(std::move(module));
}

bool OtherModules::read()
{
    for (std::size_t i = 0; i < folders.given().size() && complete; ++i) {
        for (const Found& found : filesBelow(folders.given()[i])) {
            if (!complete) break;
            if (files.contains(resolvedPath(found.path).string()) || isCopyByName(found.module, folders.absolute()[i]))
                continue;
            if (names.insert(found.module).second) add(found);
        }
    }
    return complete;
}

}  // namespace

bool readOtherModules(Program& program, const SearchPath& folders)
{
    return OtherModules(program, folders).read();
}

}  // namespace quorva::compiler
