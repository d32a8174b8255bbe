// Types that are not what their name or their neighbours suggest: runs the cases of odd/*.txt, each with its reason.
//
// A file is made of blocks with an empty line between them:
//
//     # Why the types behave so, for all cases up to the next empty line.
//     Type: 0000000C 00000010*5      the message in hex; a unit with *5 stands there five times
//     = <jobHeldReason>              part of the trace, whose blanks do not matter; there may be several
//     Type: 0000000D
//     ! refused                      also when more bytes follow than any value of the type can want

#include "codec_tools.h"

#include <inspect/catalogue.h>
#include <inspect/object.h>
#include <quorvapixdr/types/locker.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>
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

// Nothing if the text is no message.
std::optional<Bytes> messageOf(const std::string& text)
{
    std::istringstream units(text);
    Bytes message;
    std::string unit;
    while (units >> unit) {
        int times = 1;
        if (const auto star = unit.find('*'); star != std::string::npos) {
            const char* const end = unit.data() + unit.size();
            const auto [stop, error] = std::from_chars(unit.data() + star + 1, end, times);
            if (error != std::errc() || stop != end || times < 1 || times > 10000) return std::nullopt;
            unit.resize(star);
        }
        if (unit.size() != 8 || unit.find_first_not_of("0123456789ABCDEF") != std::string::npos) return std::nullopt;
        const Bytes bytes = bytesOf(unit);
        for (; times > 0; --times) message.insert(message.end(), bytes.begin(), bytes.end());
    }
    if (message.empty()) return std::nullopt;
    return message;
}

// The cases of one file. Every line that is none of the forms above is a failure, as is a file without cases.
std::vector<Example> read(const std::string& path)
{
    std::vector<Example> cases;
    std::string why;
    std::string line;
    int number = 0;
    bool open = false;  // whether the last case may get another verdict
    const auto fault = [&](int at, const char* what) { ADD_FAILURE_AT(path.c_str(), at) << what; };
    const auto hasVerdict = [](const Example& last) { return last.refused || !last.traced.empty(); };
    const auto finish = [&] {
        if (open && !hasVerdict(cases.back())) fault(cases.back().line, "neither a trace nor '! refused' follows");
        open = false;
    };
    std::ifstream file(path);
    while (std::getline(file, line)) {
        ++number;
        const auto colon = line.find(": ");
        if (line.empty()) {
            finish();
            why.clear();
        } else if (line.starts_with("# ")) {
            finish();
            why += (why.empty() ? "" : " ") + line.substr(2);
        } else if (line.starts_with("= ") && open && !cases.back().refused) {
            cases.back().traced.push_back(withoutBlanks(line.substr(2)));
        } else if (line == "! refused" && open && !hasVerdict(cases.back())) {
            cases.back().refused = true;
        } else if (const auto message = colon == std::string::npos ? std::nullopt : messageOf(line.substr(colon + 2))) {
            finish();
            if (why.empty()) fault(number, "a case without a reason");
            cases.push_back({number, why, line.substr(0, colon), *message, {}, false});
            open = true;
        } else {
            fault(number, "cannot be read");
        }
    }
    finish();
    if (cases.empty()) ADD_FAILURE_AT(path.c_str(), number) << "no case";
    return cases;
}

// What is wrong with the case; empty if nothing is.
std::string faultOf(const Example& expected, const inspect::Catalogue& catalogue)
{
    const auto* type = catalogue.find(expected.type);
    if (!type) return "there is no such type";
    inspect::Object object(*type);
    Bytes message = expected.message;
    if (expected.refused) message.resize(message.size() + 16384);  // so that it is not the end that is refused
    TraceText trace;
    const Pass pass = runTraced(Mode::decode, type->routine, type->name, object.data(), message, trace);
    if (expected.refused) return pass.succeeded ? "taken:\n" + std::string(trace.text()) : "";
    if (!pass.succeeded) return "refused behind:\n" + std::string(trace.text());
    if (pass.length != message.size())
        return "took " + std::to_string(pass.length) + " of " + std::to_string(message.size()) + " bytes";
    const std::string text = withoutBlanks(std::string(trace.text()));
    for (const std::string& part : expected.traced)
        if (text.find(part) == std::string::npos) return "no " + part + " in\n" + std::string(trace.text());
    return "";
}

}  // namespace

TEST(OddTypes, areAsTheyAre)
{
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(ODD_TYPES_DIR))
        if (entry.path().extension() == ".txt") paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    ASSERT_FALSE(paths.empty()) << ODD_TYPES_DIR;
    const inspect::Catalogue catalogue;
    for (const std::string& path : paths)
        for (const Example& expected : read(path))
            if (const std::string fault = faultOf(expected, catalogue); !fault.empty())
                ADD_FAILURE_AT(path.c_str(), expected.line) << expected.type << " (" << expected.why << ") " << fault;
}

// Texts that are refused, or whose trace is cut: there the whole elements of the trace leave off and the calls take
// over.
TEST(TracedTexts, atTheirBounds)
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
        const auto shown = std::ranges::count(trace.text(), '#');
        EXPECT_EQ(shown, done.length > 8 ? static_cast<long>(std::min<std::size_t>(expected.characters, 4096)) : 0);
    }
}
