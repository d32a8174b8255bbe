// The procedures of the known modules' remote programs.
#pragma once

#include <quorvapixdr/documentation.h>

#include <string>
#include <vector>

namespace quorva::inspect {

struct KnownProcedure {
    const Module* module;
    const RemoteProgram* program;
    const RemoteVersion* version;
    const RemoteProcedure* procedure;

    // "SPOOLER.FIRST.createJob"
    std::string name() const;
};

// Modules in the order of `knownModules`, and in each the order of the file.
std::vector<KnownProcedure> knownProcedures();

}  // namespace quorva::inspect
