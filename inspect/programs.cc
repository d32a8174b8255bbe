// Lists procedures.

#include "programs.h"

#include "documentation.h"

namespace quorva::inspect {

std::string KnownProcedure::name() const
{
    return std::string(program->name) + '.' + version->name + '.' + procedure->name;
}

std::vector<KnownProcedure> knownProcedures()
{
    std::vector<KnownProcedure> known;
    for (const Module* module : knownModules())
        for (const RemoteProgram& program : module->programs)
            for (const RemoteVersion& version : program.versions)
                for (const RemoteProcedure& procedure : version.procedures)
                    known.push_back({module, &program, &version, &procedure});
    return known;
}

}  // namespace quorva::inspect
