// Headings, positions and counts of findings.
#include "findings.h"

#include <array>
#include <ostream>
#include <string_view>

namespace quorva::compiler {

namespace {

constexpr std::array<std::string_view, 5> headings = {"Breaks the wire", "Breaks source", "Breaks only the trace",
                                                      "New", "Provisional"};
constexpr std::array<std::string_view, 5> summaryWords = {"wire", "source", "trace", "new", "provisional"};

std::string positionText(const Span& span)
{
    return span.source ? span.source->path + ":" + std::to_string(span.line) : "-";
}

}  // namespace

std::size_t print(const std::vector<Finding>& findings, std::ostream& out)
{
    std::array<std::size_t, headings.size()> counts{};
    for (const Finding& finding : findings) ++counts[static_cast<std::size_t>(finding.impact)];
    for (std::size_t impact = 0; impact < headings.size(); ++impact) {
        if (counts[impact] == 0) continue;
        out << headings[impact] << '\n';
        for (const Finding& finding : findings) {
            if (static_cast<std::size_t>(finding.impact) != impact) continue;
            out << "  " << positionText(finding.before) << " -> " << positionText(finding.after) << ": "
                << finding.sentence << '\n';
        }
        out << '\n';
    }
    for (std::size_t impact = 0; impact < headings.size(); ++impact) {
        out << (impact == 0 ? "" : ", ") << summaryWords[impact] << ": " << counts[impact];
    }
    out << '\n';
    return counts[0] + counts[1] + counts[2];
}

}  // namespace quorva::compiler
