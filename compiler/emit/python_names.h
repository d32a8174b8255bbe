// The names of modules, classes and members in generated Python. A name that Python or the generated code needs for
// something else gets a `_` at its end, as many as make it unique in its scope.
#pragma once

#include "front/model.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

// The names of modules and definitions of one program.
class PythonNames {
public:
    explicit PythonNames(const Program& program);

    // The class, or the constant.
    const std::string& of(const Definition& definition) const { return definitions.at(definition.name); }

    // The path of a module below the package: "jobs.identity".
    const std::string& pathOf(const std::string& module) const { return paths.at(module); }

    // The package as a relative import in the module names it: "..".
    std::string rootFrom(const Module& module) const;

    // The file of a module, or of a folder that is not a module, below the folder of the package. A module that is also
    // a folder of modules is the `__init__` of the folder.
    std::string fileOf(const Module& module) const;
    std::string fileOfFolder(const std::string& path) const;

    bool isModule(const std::string& path) const { return modules.contains(path); }

    // True for the name of a module or folder directly below the package.
    bool isTopLevel(const std::string& name) const { return folders.contains(name) || modules.contains(name); }

private:
    std::unordered_map<std::string, std::string> definitions;  // by their names
    std::unordered_map<std::string, std::string> paths;        // by their modules
    std::unordered_set<std::string> modules;                   // their paths
    std::unordered_set<std::string> folders;                   // their paths
};

// The attributes of an enumeration, in the order of the file.
std::vector<std::string> enumeratorNames(const Definition& enumeration);

// The attributes of a struct, in the order of its fields. None has a name among `classes`.
std::vector<std::string> fieldNames(const Definition& structure, const std::unordered_set<std::string>& classes);

// The attribute of a union's discriminant, which has no name among `classes`.
std::string discriminantAttribute(const Definition& discriminatedUnion, const std::unordered_set<std::string>& classes);

}  // namespace quorva::compiler
