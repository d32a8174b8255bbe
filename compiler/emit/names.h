// The names of files, types and descriptions in generated code.
#pragma once

#include "front/model.h"
#include "text.h"

#include <string>

namespace quorva::compiler {

// Paths of generated headers in #include lines. They have folders of their own, so no module can hide a header of the
// library.
inline std::string publicHeader(const std::string& module)
{
    return "quorvapixdr/types/" + module + ".h";
}

inline std::string cHeader(const std::string& module)
{
    return "quorvapixdr/c/" + module + ".h";
}

inline std::string privateHeader(const std::string& module)
{
    return "quorvapixdr/private/" + module + ".h";
}

// The C++ type, from the global namespace on.
inline std::string typeName(const Definition& definition)
{
    return "::" + definition.name;
}

// The constant that describes the type.
inline std::string description(const Definition& definition)
{
    return "quorva::types::" + definition.name;
}

// The comment at the start of every generated file.
inline std::string generatedBanner(const Module& module)
{
    return lineComment("Generated from " + module.source.module +
                       ".x by quorvaxdrc. Edit the interface file, not this one.");
}

}  // namespace quorva::compiler
