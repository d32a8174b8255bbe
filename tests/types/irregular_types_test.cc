// Types that behave differently than their names or neighbours suggest: runs the cases of irregular/*.txt.
//
// A file consists of blocks with an empty line between them:
//
//     # Why the types behave so. It holds for all cases up to the next empty line.
//     Type: 0000000C 00000010*5      the message in hex; *5 repeats a unit five times
//     = <jobHeldReason>              a part of the trace, without regard to blanks; a case may have several
//     Type: 0000000D
//     ! refused                      even when more bytes follow than any value of the type needs

#include "codec_tools.h"

#include <inspect/catalogue.h>
#include <inspect/object.h>
#include <quorvapixdr/types/locker.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

using namespace quorva;
using namespace quorva::test;

namespace {

struct Example {
    int line = 0;
    std::string why;
    std::string type;
    Bytes message;
    std::vector<std::string> traced;
    bool refused = false;
};

std::string withoutBlanks(std::string_view text)
{
    std::string kept;
    for (const char c : text)
        if (c != '\n' && c != ' ') kept += c;
    return kept;
}

// The message of "0000000C 00000010*5"; empty if the text is not a message.
Bytes messageOf(const std::string& text)
{
    std::istringstream units(text);
    Bytes message;
    for (std::string unit; units >> unit;) {
        const auto star = std::min(unit.find('*'), unit.size());
        const int times = star < unit.size() ? std::atoi(unit.c_str() + star + 1) : 1;
        unit.resize(star);
        if (unit.size() != 8 || unit.find_first_not_of("0123456789ABCDEF") != std::string::npos || times < 1) return {};
        for (int i = 0; i < times; ++i) std::ranges::copy(bytesOf(unit), std::back_inserter(message));
    }
    return message;
}

// The cases of one file. A line of another form is a failure, as are a case without a reason or an expectation, and a
// file without cases.
std::vector<Example> read(const std::string& path)
{
    std::vector<Example> cases;
    std::string why;
    int number = 0;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        ++number;
        const auto colon = line.find(": ");
        if (line.empty()) {
            why.clear();
        } else if (line.starts_with("# ")) {
            why += (why.empty() ? "" : " ") + line.substr(2);
        } else if (line.starts_with("= ") && !why.empty() && !cases.empty()) {
            cases.back().traced.push_back(withoutBlanks(line.substr(2)));
        } else if (line == "! refused" && !why.empty() && !cases.empty()) {
            cases.back().refused = true;
        } else if (colon != std::string::npos && !why.empty() && !messageOf(line.substr(colon + 2)).empty()) {
            cases.push_back({number, why, line.substr(0, colon), messageOf(line.substr(colon + 2)), {}, false});
        } else {
            ADD_FAILURE_AT(path.c_str(), number) << "not a line of a case, or a case without a reason: " << line;
        }
    }
    for (const Example& each : cases)
        if (each.refused != each.traced.empty())
            ADD_FAILURE_AT(path.c_str(), each.line) << "needs either a trace or '! refused'";
    if (cases.empty()) ADD_FAILURE_AT(path.c_str(), number) << "no case";
    return cases;
}

// What is wrong with the case; empty if it holds.
std::string errorOf(const Example& expected, const inspect::Catalogue& catalogue)
{
    const auto* type = catalogue.find(expected.type);
    if (!type) return "is not a type";
    inspect::Object object(*type);
    Bytes message = expected.message;
    if (expected.refused) message.resize(message.size() + 16384);  // so that the end of the message is not the reason
    TraceText trace;
    const Pass pass = runTraced(Mode::decode, type->routine, type->name, object.data(), message, trace);
    const std::string text(trace.text());
    if (expected.refused) return pass.succeeded ? "accepted:\n" + text : "";
    if (!pass.succeeded) return "refused after:\n" + text;
    if (pass.length != message.size())
        return "took " + std::to_string(pass.length) + " of " + std::to_string(message.size()) + " bytes";
    for (const std::string& part : expected.traced)
        if (withoutBlanks(text).find(part) == std::string::npos) return "no " + part + " in\n" + text;
    return "";
}

}  // namespace

TEST(IrregularTypes, behaveAsTheFilesSay)
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(IRREGULAR_TYPES_DIR))
        if (entry.path().extension() == ".txt") paths.push_back(entry.path().string());
    ASSERT_FALSE(paths.empty()) << IRREGULAR_TYPES_DIR;
    const inspect::Catalogue catalogue;
    for (const std::string& path : paths)
        for (const Example& expected : read(path))
            if (const std::string error = errorOf(expected, catalogue); !error.empty())
                ADD_FAILURE_AT(path.c_str(), expected.line) << expected.type << " (" << expected.why << ") " << error;
}

// Where a string is refused or the trace of it is cut, the interpreter has to leave its shortcut for whole elements.
TEST(TracedStrings, endAtTheirBounds)
{
    const struct {
        bool bounded;
        std::size_t characters, room, moved;
    } cases[] = {{true, 40, 9000, 48},      {true, 41, 9000, 8},       {true, 40, 47, 8},
                 {true, 40, 7, 4},          {false, 4095, 9000, 4104}, {false, 4096, 9000, 4104},
                 {false, 4097, 9000, 4108}, {false, 4097, 4107, 4105}};
    for (const auto& expected : cases) {
        std::string text(expected.characters, '#');
        AccessUnion access = {AccessKind::AKowner, {text.data()}};
        EventUnion event = {-1, {text.data()}};
        Bytes buffer(expected.room);
        TraceText trace;
        void* const object = expected.bounded ? static_cast<void*>(&access) : &event;
        const Pass done =
            runTraced(Mode::encode, expected.bounded ? XdrAccessUnion : XdrEventUnion, "T", object, buffer, trace);
        EXPECT_EQ(done.length, expected.moved) << expected.characters << " within " << expected.room;
        EXPECT_EQ(done.succeeded, done.length % 4 == 0 && done.length > 8);
        const auto traced = std::ranges::count(trace.text(), '#');
        EXPECT_EQ(traced, done.length > 8 ? static_cast<long>(std::min<std::size_t>(expected.characters, 4096)) : 0);
    }
}
