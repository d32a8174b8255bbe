// Names and numbers in their scopes: programs in all modules, versions in a program, procedures in a version.
#include "check_programs.h"

#include "reserved_names.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quorva::compiler {

namespace {

// Where a name or a number was first given.
struct First {
    Span at;
    std::string what;
};

// The names and numbers of one scope.
class Scope {
public:
    Scope(std::string_view membersKind, Diagnostics& diagnostics) : kind(membersKind), errors(diagnostics) {}

    // Enters a program, version or procedure, or reports why that is not possible.
    template <class Member>
    void add(const Member& member)
    {
        const std::string what = std::string(kind) + " " + inQuotes(member.name);
        if (const std::string_view reason = reservedBecause(member.name, NameScope::inner); !reason.empty())
            errors.error(member.at, inQuotes(member.name) + " " + std::string(reason) + "; choose another name");
        if (const auto [first, isNew] = names.emplace(member.name, First{member.at, what}); !isNew)
            errors.error(
                member.at,
                what + (first->second.what == what ? " is defined twice" : " has the name of " + first->second.what) +
                    "; rename one",
                Note{first->second.at, "defined here"});
        number(member.number, what);
    }

    // Enters the name of something else in the scope. Only the first of a name counts.
    void reserve(const std::string& name, const First& first) { names.emplace(name, first); }

private:
    void number(const Value& value, const std::string& what)
    {
        if (!value.known) return;
        if (value.number < 0 || value.number > std::numeric_limits<std::uint32_t>::max()) {
            errors.error(value.at, "the number of " + what + " is out of range: it has 32 bits and no sign");
        } else if (const auto [first, isNew] = numbers.emplace(value.number, First{value.at, what}); !isNew) {
            errors.error(value.at,
                         what + " has the number " + std::to_string(value.number) + ", which " + first->second.what +
                             " has already; each number has one name",
                         Note{first->second.at, "first used here"});
        }
    }

    std::string_view kind;
    Diagnostics& errors;
    std::unordered_map<std::string, First> names;
    std::unordered_map<std::int64_t, First> numbers;
};

// Servers answer procedure 0 of every version to show that they are there.
void nullProcedure(const RemoteProcedure& procedure, Diagnostics& errors)
{
    const bool isNull = procedure.number.known && procedure.number.number == 0;
    if (isNull && (procedure.argument || procedure.result))
        errors.error(procedure.at, "procedure " + inQuotes(procedure.name) +
                                       " has the number 0, which neither takes nor returns anything in any program; "
                                       "give it another number, or write 'void' for both");
}

void checkProgram(const RemoteProgram& remote, Diagnostics& errors)
{
    if (remote.versions.empty() && !remote.hasErrors)
        errors.error(remote.at, "program " + inQuotes(remote.name) + " has no versions");
    Scope versions("version", errors);
    for (const RemoteVersion& version : remote.versions) {
        versions.add(version);
        if (version.procedures.empty() && !remote.hasErrors)
            errors.error(version.at, "version " + inQuotes(version.name) + " has no procedures");
        Scope procedures("procedure", errors);
        for (const RemoteProcedure& procedure : version.procedures) {
            procedures.add(procedure);
            nullProcedure(procedure, errors);
        }
    }
}

}  // namespace

void checkPrograms(const Program& program, const std::vector<const Definition*>& definitions, Diagnostics& errors)
{
    Scope programs("program", errors);
    for (const Definition* each : definitions) {
        programs.reserve(each->name, {each->at, describe(*each)});
        for (const Enumerator& enumerator : each->enumerators)
            programs.reserve(enumerator.name, {enumerator.at, "enumerator " + inQuotes(enumerator.name)});
    }
    for (const auto& module : program.modules) {
        for (const RemoteProgram& remote : module->programs) {
            if (errors.full()) return;
            programs.add(remote);
            checkProgram(remote, errors);
        }
    }
}

}  // namespace quorva::compiler
