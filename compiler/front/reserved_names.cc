// The table of reserved names. The two longest groups are in system_names.cc.
#include "reserved_names.h"

#include "system_names.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

namespace {

using Names = std::unordered_set<std::string_view>;

Names split(std::string_view list)
{
    constexpr std::string_view blanks = " \n";
    Names names;
    for (std::size_t from = list.find_first_not_of(blanks); from != std::string_view::npos;) {
        const std::size_t end = list.find_first_of(blanks, from);
        names.insert(list.substr(from, end - from));
        from = list.find_first_not_of(blanks, end);
    }
    return names;
}

// Up to C++23, and `typeof` of the GNU dialect.
constexpr std::string_view keywords = R"(
alignas alignof asm auto bool break case catch char char8_t char16_t char32_t class co_await co_return co_yield concept
const const_cast consteval constexpr constinit continue decltype default delete do double dynamic_cast else enum
explicit export extern false float for friend goto if inline int long mutable namespace new noexcept nullptr operator
private protected public register reinterpret_cast requires return short signed sizeof static static_assert static_cast
struct switch template this thread_local throw true try typedef typeid typename typeof union unsigned using virtual
void volatile wchar_t while
)";

constexpr std::string_view operators = "and and_eq bitand bitor compl not not_eq or or_eq xor xor_eq";

// Predefined for other processors than the one for which the list of system names was made.
constexpr std::string_view processorMacros = "PPC i386 mips powerpc sparc";

// The built-in types, their routines, the routines that all types share, the drivers, and the platform.
constexpr std::string_view libraryNames = R"(
Boolean Float Integer LongInteger LongNatural Natural ShortInteger ShortNatural UINT
XdrBoolean XdrFloat XdrInteger XdrLongInteger XdrLongNatural XdrNatural XdrShortInteger XdrShortNatural XdrUINT
XdrArray XdrBytes XdrEnum XdrLongFloat XdrLongNatural2 XdrOpaque XdrOpaque2 XdrPointer XdrString XdrVector XdrVoid
XdrWrapString
ClientsXdrDeserialize ClientsXdrSupport DeallocateString TestDeserialize XdrDeallocate
DiagnosticHook QuorvaFailure QuorvaType ScopedTrace TraceText Xdr XdrRoutine quorva setDiagnosticHook
)";

struct Group {
    NameScope scope;  // `inner` means every scope: what cannot be a member cannot be global either
    std::string_view reason;
    Names names;
};

const std::vector<Group>& groups()
{
    static const std::vector<Group> all = {
        {NameScope::inner, "is a keyword of C++", split(keywords)},
        {NameScope::inner, "is an operator of C++", split(operators)},
        {NameScope::inner, "is a value of 'bool'", split("FALSE TRUE")},
        {NameScope::inner, "is a macro of common C++ headers", split(systemMacros)},
        {NameScope::inner, "is a macro of compilers for some processors", split(processorMacros)},
        {NameScope::inner, "is a macro on some platforms", split("TRACE")},
        {NameScope::global, "is a global name that C++ reserves", split("main std")},
        {NameScope::global, "begins a directive of C++ wherever a line begins with it", split("import module")},
        {NameScope::global, "is a global name of the C library", split(systemGlobals)},
        {NameScope::global, "is a name of the library itself", split(libraryNames)},
    };
    return all;
}

// What C has and C++ has not, from headers of C11: complex, stdatomic, stdnoreturn, threads. Most of their names are
// reserved by their beginnings.
constexpr std::string_view macrosOfC = R"(
ONCE_FLAG_INIT TSS_DTOR_ITERATIONS complex noreturn
)";

constexpr std::string_view globalsOfC = R"(
call_once once_flag
)";

constexpr std::string_view beginningsInC[] = {"atomic_", "cnd_", "memory_order", "mtx_", "thrd_", "tss_"};

const std::vector<Group>& groupsOfC()
{
    static const std::vector<Group> all = {
        {NameScope::inner, "is a keyword of C", split("restrict typeof_unqual")},
        {NameScope::inner, "is a macro of common C headers", split(macrosOfC)},
        {NameScope::global, "is a global name of the C library", split(globalsOfC)},
    };
    return all;
}

std::string_view reservedBySpelling(std::string_view name, NameScope scope)
{
    if (name.starts_with("QUORVA_")) return "begins like the macros of the library";
    if (name.find("__") != std::string_view::npos) return "has a double underscore, which C++ reserves";
    if (name.size() > 1 && name[0] == '_' && name[1] >= 'A' && name[1] <= 'Z')
        return "begins with an underscore and a capital, which C++ reserves";
    if (scope == NameScope::global && name.starts_with("quorva")) return "begins like the functions of the library";
    if (scope == NameScope::global && name.starts_with('_'))
        return "begins with an underscore, which C++ reserves for global names";
    return {};
}

std::string_view reasonIn(const std::vector<Group>& list, std::string_view name, NameScope scope)
{
    for (const Group& group : list) {
        if ((group.scope == NameScope::inner || group.scope == scope) && group.names.contains(name))
            return group.reason;
    }
    return {};
}

}  // namespace

std::string_view reservedBecause(std::string_view name, NameScope scope)
{
    const std::string_view reason = reasonIn(groups(), name, scope);
    return reason.empty() ? reservedBySpelling(name, scope) : reason;
}

std::string_view reservedInC(std::string_view name, NameScope scope)
{
    if (const std::string_view reason = reasonIn(groupsOfC(), name, scope); !reason.empty()) return reason;
    if (scope == NameScope::inner) return {};
    const auto begins = [&](std::string_view beginning) { return name.starts_with(beginning); };
    return std::ranges::any_of(beginningsInC, begins) ? "begins like names of the C library" : std::string_view();
}

}  // namespace quorva::compiler
