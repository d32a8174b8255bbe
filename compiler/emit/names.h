// How generated code spells files, types and descriptions: always in full.
#pragma once

#include "front/model.h"
#include "text.h"

#include <string>

namespace quorva::compiler {

// Generated headers have folders of their own, so that no module's name can shadow a header of the library.
inline std::string publicHeader(const std::string& module)
{
    return "quorvapixdr/types/" + module + ".h";
}

inline std::string privateHeader(const std::string& module)
{
    return "quorvapixdr/private/" + module + ".h";
}

inline std::string typeName(const Definition& definition)
{
    return "::" + definition.name;
}

inline std::string description(const Definition& definition)
{
    return "quorva::types::" + definition.name;
}

inline std::string madeFrom(const Module& module)
{
    return lineComment("Made from " + module.source.module +
                       ".x by quorvaxdrc. Change the interface file, not this one.");
}

}  // namespace quorva::compiler
