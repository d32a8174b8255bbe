// File access, the search below the -I folders, and the graph of imports.
#include "source.h"

#include "cycles.h"
#include "parser.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <unordered_map>

namespace quorva::compiler {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestFile = std::size_t{4} << 20U;  // bytes; also stops the reading of an endless device

}  // namespace

fs::path resolvedPath(const std::string& path)
{
    std::error_code ignored;
    fs::path resolved = fs::weakly_canonical(path, ignored);
    return resolved.empty() ? fs::path(path).lexically_normal() : resolved;
}

bool isInside(const fs::path& relative)
{
    return !relative.empty() && *relative.begin() != ".." && *relative.begin() != "." && !relative.is_absolute();
}

SearchPath::SearchPath(std::vector<std::string> searched) : folders(std::move(searched))
{
    if (folders.empty()) folders.emplace_back(".");
    for (const std::string& folder : folders) resolved.push_back(resolvedPath(folder));
}

std::string SearchPath::moduleOf(const std::string& file) const
{
    const fs::path path = resolvedPath(file);
    for (const fs::path& folder : resolved) {
        const fs::path below = path.lexically_relative(folder);
        if (isInside(below)) return fs::path(below).replace_extension().generic_string();
    }
    return path.stem().string();
}

std::optional<std::string> SearchPath::find(const std::string& module) const
{
    for (const std::string& folder : folders) {
        std::string path = (folder == "." ? fs::path() : fs::path(folder)) / (module + ".x");
        std::error_code ignored;
        if (fs::exists(path, ignored)) return path;
    }
    return std::nullopt;
}

std::vector<std::string> SearchPath::neighbours(const std::string& module) const
{
    std::vector<std::string> modules;
    for (const std::string& folder : folders) {
        std::error_code failed;
        fs::directory_iterator files((fs::path(folder) / module).parent_path(), failed);
        for (; !failed && files != fs::directory_iterator(); files.increment(failed)) {
            if (files->path().extension() != ".x") continue;
            modules.push_back(files->path().lexically_relative(folder).replace_extension().generic_string());
        }
    }
    return modules;
}

std::string SearchPath::describe() const
{
    std::string list;
    for (const std::string& folder : folders) list += (list.empty() ? "" : ", ") + inQuotes(folder);
    return list;
}

std::optional<std::string> readFile(const std::string& path, std::string& text)
{
    std::error_code status;
    if (fs::is_directory(path, status)) return "it is a folder";
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::string(std::strerror(errno));
    text.clear();
    char block[1 << 14];
    do {
        file.read(block, sizeof block);
        text.append(block, static_cast<std::size_t>(file.gcount()));
    } while (file && text.size() <= largestFile);
    if (file.bad()) return std::string(errno != 0 ? std::strerror(errno) : "reading failed");
    if (text.size() > largestFile) return "it is larger than " + std::to_string(largestFile >> 20U) + " MiB";
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    return std::nullopt;
}

namespace {

// Modules are numbered in the order in which they are found.
class Reader {
public:
    Reader(const SearchPath& searched, Diagnostics& diagnostics, std::vector<std::string>& unreadableFiles)
        : folders(searched), errors(diagnostics), unreadable(unreadableFiles)
    {
    }

    Program read(const std::vector<std::string>& files);

private:
    // The module in the file, which is read unless it is known; `none` if it is unreadable.
    std::size_t load(const std::string& path, const std::string& name);
    void followImports(std::size_t at);
    void order(Program& program);

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    const SearchPath& folders;
    Diagnostics& errors;
    std::vector<std::string>& unreadable;
    std::vector<std::unique_ptr<Module>> modules;
    std::vector<std::vector<std::size_t>> imports;             // indices of modules, by importing module
    std::vector<std::vector<const Import*>> importStatements;  // of imports
    std::unordered_map<std::string, std::size_t> byFile;       // resolved path; `none` if it is unreadable
    std::unordered_map<std::string, std::size_t> byName;
};

std::size_t Reader::load(const std::string& path, const std::string& name)
{
    const std::string file = resolvedPath(path).string();
    if (const auto known = byFile.find(file); known != byFile.end()) return known->second;

    auto module = std::make_unique<Module>();
    module->source.path = path;
    module->source.module = name;
    if (const auto reason = readFile(path, module->source.text)) {
        unreadable.push_back("cannot read " + inQuotes(path) + ": " + *reason);
        byFile.emplace(file, none);
        return none;
    }

    const std::size_t at = modules.size();
    byFile.emplace(file, at);
    const auto [same, fresh] = byName.emplace(name, at);
    if (!fresh) {
        errors.error({&module->source, 1, 1, 1},
                     "this file is module " + inQuotes(name) + ", as " + inQuotes(modules[same->second]->source.path) +
                         " is; a module's name is its path below the -I folder, and no two may have the same name");
        module->incomplete = true;  // not parsed, as it would repeat every name
    } else {
        parse(*module, errors);
    }
    modules.push_back(std::move(module));
    imports.emplace_back();
    importStatements.emplace_back();
    return at;
}

void Reader::followImports(std::size_t at)
{
    Module& module = *modules[at];
    for (Import& import : module.imports) {
        const auto path = folders.find(import.name);
        if (!path) {
            const std::vector<std::string> near = folders.neighbours(import.name);
            errors.error(import.at, "module " + inQuotes(import.name) + " is not found: there is no " +
                                        inQuotes(import.name + ".x") + " below " + folders.describe() +
                                        suggestion(import.name, {near.begin(), near.end()}));
            module.incomplete = true;
            continue;
        }
        const std::size_t imported = load(*path, import.name);
        if (imported == none) {
            module.incomplete = true;
            continue;
        }
        import.module = modules[imported].get();
        imports[at].push_back(imported);
        importStatements[at].push_back(&import);
    }
}

void Reader::order(Program& program)
{
    const auto onCycle = [&](const std::vector<PathNode>& path, std::size_t first) {
        std::vector<std::string_view> names;
        for (std::size_t i = first; i < path.size(); ++i) names.emplace_back(modules[path[i].node]->source.module);
        errors.error(
            importStatements[path[first].node][path[first].edge]->at,
            "imports form a cycle: " + cyclePath(names) + "; move what both sides need into a module of its own");
    };
    const std::vector<std::size_t> sorted = depthFirst(imports, onCycle);
    for (const std::size_t at : sorted) program.modules.push_back(std::move(modules[at]));
}

Program Reader::read(const std::vector<std::string>& files)
{
    for (const std::string& file : files) {
        const std::size_t at = load(file, folders.moduleOf(file));
        if (at != none) modules[at]->requested = true;
    }
    for (std::size_t at = 0; at < modules.size(); ++at) followImports(at);
    Program program;
    order(program);
    return program;
}

}  // namespace

Program readProgram(const std::vector<std::string>& files, const SearchPath& folders, Diagnostics& errors,
                    std::vector<std::string>& unreadable)
{
    return Reader(folders, errors, unreadable).read(files);
}

}  // namespace quorva::compiler
