// Finds procedures by their numbers.

#include "procedures.h"

#include "inspect/documentation.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>

namespace quorva::inspect::capture {

namespace {

template <class Item>
const Item* findNumber(std::span<const Item> items, std::uint32_t number)
{
    const auto found = std::ranges::find(items, number, &Item::number);
    return found == items.end() ? nullptr : &*found;
}

std::string programText(std::uint32_t number)
{
    constexpr std::uint32_t firstOfUsers = 0x20000000;
    if (number < firstOfUsers) return std::to_string(number);
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", number);
    return text;
}

std::optional<std::uint32_t> numberOf(std::string_view text)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex) text.remove_prefix(2);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, isHex ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

template <class Item>
bool fits(std::string_view part, std::uint32_t number, const Item* known)
{
    return numberOf(part) == number || (known && part == known->name);
}

}  // namespace

Procedures::Procedures()
{
    for (const Module* module : knownModules())
        for (const RemoteProgram& program : module->programs) programs[program.number] = &program;
}

CalledProcedure Procedures::find(const ProcedureNumbers& numbers) const
{
    CalledProcedure known;
    const auto found = programs.find(numbers.program);
    if (found == programs.end()) return known;
    known.program = found->second;
    known.version = findNumber(known.program->versions, numbers.version);
    if (known.version) known.procedure = findNumber(known.version->procedures, numbers.procedure);
    return known;
}

std::string Procedures::text(const ProcedureNumbers& numbers) const
{
    const CalledProcedure known = find(numbers);
    return (known.program ? known.program->name : programText(numbers.program)) + '.' +
           (known.version ? known.version->name : std::to_string(numbers.version)) + '.' +
           (known.procedure ? known.procedure->name : std::to_string(numbers.procedure));
}

std::vector<std::string_view> Procedures::names() const
{
    std::vector<std::string_view> names;
    for (const auto& [number, program] : programs) {
        names.emplace_back(program->name);
        for (const RemoteVersion& version : program->versions) {
            names.emplace_back(version.name);
            for (const RemoteProcedure& procedure : version.procedures) names.emplace_back(procedure.name);
        }
    }
    return names;
}

ProcedurePattern::ProcedurePattern(std::string_view text) : given(text)
{
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('.', at), text.size());
        parts.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
}

bool ProcedurePattern::isKnown(const Procedures& procedures) const
{
    const auto names = procedures.names();
    return parts.size() <= 3 && std::ranges::all_of(parts, [&](const std::string& part) {
               return numberOf(part) || std::ranges::find(names, part) != names.end();
           });
}

bool ProcedurePattern::matches(const ProcedureNumbers& numbers, const CalledProcedure& known) const
{
    return fits(parts.back(), numbers.procedure, known.procedure) &&
           (parts.size() < 2 || fits(parts.front(), numbers.program, known.program)) &&
           (parts.size() < 3 || fits(parts[1], numbers.version, known.version));
}

}  // namespace quorva::inspect::capture
