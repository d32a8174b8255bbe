// Procedures of the known modules, by their numbers.
#pragma once

#include <quorvapixdr/documentation.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect::capture {

// The numbers that a call names.
struct ProcedureNumbers {
    std::uint32_t program = 0, version = 0, procedure = 0;

    auto operator<=>(const ProcedureNumbers&) const = default;
};

// What is known of a call: a null pointer, and those after it, for a number without a name.
struct CalledProcedure {
    const RemoteProgram* program = nullptr;
    const RemoteVersion* version = nullptr;
    const RemoteProcedure* procedure = nullptr;
};

class Procedures {
public:
    // Those of the known modules. Where several modules have a program of the same number, a later one hides it.
    Procedures();

    CalledProcedure find(const ProcedureNumbers& numbers) const;

    // "SPOOLER.FIRST.CREATE_JOB", with a number where there is no name: "0x20000001.1.3". Programs of the range for
    // users are hexadecimal, the registered ones decimal.
    std::string text(const ProcedureNumbers& numbers) const;

    // The names of all programs and procedures.
    std::vector<std::string_view> names() const;

private:
    std::map<std::uint32_t, const RemoteProgram*> programs;
};

// A user's choice: PROCEDURE, PROGRAM.PROCEDURE or PROGRAM.VERSION.PROCEDURE, each a name or a number.
class ProcedurePattern {
public:
    explicit ProcedurePattern(std::string_view text);

    // True if the pattern has one to three parts, each a number or a name that is known.
    bool isKnown(const Procedures& procedures) const;

    bool matches(const ProcedureNumbers& numbers, const CalledProcedure& known) const;

    const std::string& text() const { return given; }

private:
    std::string given;
    std::vector<std::string> parts;
};

}  // namespace quorva::inspect::capture
