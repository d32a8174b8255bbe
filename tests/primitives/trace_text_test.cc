// The text of a trace: layout, escapes, hex dumps, and the path to what is still open.

#include "codec_tools.h"
#include "memory.h"

#include <gtest/gtest.h>

#include <deque>
#include <set>
#include <sstream>
#include <thread>

using namespace quorva::test;

namespace {

// Makes the calls of a text like "<a =1 >a": a word is the sign of a call and its argument.
void call(TraceText& trace, std::string_view text)
{
    static std::set<std::string> names;  // the trace keeps the names of open elements by address
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        const std::string& argument = *names.insert(word.substr(1)).first;
        switch (word[0]) {
        case '<': trace.open(argument); break;
        case '>': trace.close(argument); break;
        case '=': trace.value(argument); break;
        case '!': trace.marker(argument); break;
        case '#': trace.hexDump(reinterpret_cast<const unsigned char*>(argument.data()), argument.size()); break;
        case '+': trace.indent(); break;
        case '-': trace.outdent(); break;
        case '/': trace.endLine(); break;
        case '~': trace.setLineFeed(false); break;
        default: FAIL() << word;
        }
    }
}

}  // namespace

TEST(TraceText, hasALayoutAndAPath)
{
    const struct {
        const char* why;
        const char* calls;
        const char* text;  // null: not compared
        const char* path;
    } cases[] = {
        {"a leaf is one line", "<a =1 ~ >a", "<a>1</a>", ""},
        {"an enumerator is in the line of its field", "<a ~ <E =1 >E >a", "<a><E>1</E></a>", ""},
        {"children are indented", "<a <b =1 ~ >b >a", "<a>\n  <b>1</b>\n</a>", ""},
        {"the path has what is open, with the index of an element",
         "<a !<value> + - !</value> !<value> + - !</value> !<value> + <b",
         "<a>\n  <value></value>\n  <value></value>\n  <value>\n    <b>", "a/value[2]/b"},
        {"elements of elements count from 0 again", "<a !<value> !<value> !</value> !</value> !<value> !<value>",
         nullptr, "a/value[1]/value[0]"},
        {"the index counts without an enclosing element too", "!<value> !</value> !<value>", nullptr, "value[1]"},
        {"two contents are kept apart", "<a =1 =2 >a", "<a>1 2</a>", ""},
        {"an array element after a sibling is as deep as the sibling", "<a <b >b !<value> + <c",
         "<a>\n  <b></b>\n  <value>\n    <c>", "a/value[0]/c"},
        {"a close tag ends an array element too", "<a !<value> >value !<value>", "<a>\n  <value></value>\n  <value>",
         "a/value[1]"},
        {"an end without a beginning closes nothing", ">a !</value> <b !</value> !<", "</a></value>\n<b></value>\n  <",
         "b/[0]"},
        {"markup that is not an end", "<a !-/", "<a>\n  -/", "a//[0]"},
        {"an empty name", "<", "<>", ""},
        {"a dump after a content", "<a =1 #AB =2 >a", "<a>1 41 42 2</a>", ""},
        {"a content after a dump", "<a #A =2", "<a>41 2", "a"},
        {"an outdent without an indent", "<a - <b + + / <c", "<a>\n  <b>\n      <c>", "a/b/c"},
        {"more ends than beginnings", "<a >a >a - !</value> <b - !</value>", "<a></a></a></value>\n<b></value>", "b"},
        {"nothing is open after a close tag", "<a >a <b", nullptr, "b"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        TraceText trace;
        for (const char* const text : {"the first text", "the text after clear()"}) {
            SCOPED_TRACE(text);
            call(trace, expected.calls);
            if (expected.text) { EXPECT_EQ(trace.text(), expected.text); }
            EXPECT_EQ(trace.path(), expected.path);
            trace.clear();
            EXPECT_EQ(trace.text(), "");
            EXPECT_EQ(trace.path(), "");
        }
    }
}

TEST(TraceText, escapesWhatXmlOrALineCannotHold)
{
    const struct {
        const char* text;
        const char* escaped;
    } cases[] = {
        {"a<b>&c", "a&lt;b&gt;&amp;c"},
        {"]]>", "]]&gt;"},
        {"C:\\temp", "C:\\\\temp"},
        {"a\nb\rc\td", "a\\nb\\rc\\td"},
        {"\x01\x1f\x7f", "\\x01\\x1f\\x7f"},
        {"Gr\xC3\xB6\xC3\x9F"
         "e",
         "Gr\xC3\xB6\xC3\x9F"
         "e"},
        {"\xF0\x9F\x96\xA8", "\xF0\x9F\x96\xA8"},
        {"\xC3", "\\xc3"},                             // ends within a character
        {"\xC0\xAF", "\\xc0\\xaf"},                    // overlong
        {"\xE0\x80\xAF", "\\xe0\\x80\\xaf"},           // overlong
        {"\xED\xA0\x80", "\\xed\\xa0\\x80"},           // a surrogate
        {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // beyond the last character
        {"\xEF\xBF\xBE", "\\xef\\xbf\\xbe"},           // U+FFFE, which XML does not allow
        {"\xC2\x85", "\\xc2\\x85"},                    // a control character
        {"\xFF\xFE", "\\xff\\xfe"},
        // The first and the last character of each length, and the neighbours of the gaps.
        {"\xC2\xA0\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF", "\xC2\xA0\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF"},
        {"\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBD",
         "\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBD"},
        {"\xC2\x9F\xC1\xBF", "\\xc2\\x9f\\xc1\\xbf"},
        {"\xE0\x9F\xBF\xF0\x8F\xBF\xBF", "\\xe0\\x9f\\xbf\\xf0\\x8f\\xbf\\xbf"},
        {"\xED\xBF\xBF\xEF\xBF\xBF\xF5\x80\x80\x80", "\\xed\\xbf\\xbf\\xef\\xbf\\xbf\\xf5\\x80\\x80\\x80"},
        {"\xC3\xC3\xE0\xA0 ", "\\xc3\\xc3\\xe0\\xa0 "},
    };
    for (const auto& expected : cases) {
        TraceText trace;
        trace.open("a");
        trace.value(expected.text);
        trace.close("a");
        EXPECT_EQ(trace.text(), std::string("<a>") + expected.escaped + "</a>");
        EXPECT_TRUE(isXml(std::string(trace.text())));
    }
}

TEST(TraceText, dumpsSixteenBytesALine)
{
    const auto dumped = [](std::size_t size) {
        const quorva::Bytes bytes(size, 0xAB);
        TraceText trace;
        trace.open("a");
        trace.hexDump(bytes.data(), bytes.size());
        trace.close("a");
        return std::string(trace.text());
    };
    const std::string line = "ab ab ab ab ab ab ab ab ab ab ab ab ab ab ab ab";
    EXPECT_EQ(dumped(0), "<a></a>");
    EXPECT_EQ(dumped(2), "<a>ab ab</a>");
    EXPECT_EQ(dumped(16), "<a>" + line + "</a>");
    EXPECT_EQ(dumped(17), "<a>\n  " + line + "\n  ab\n</a>");
}

// Names and contents of any length at any depth.
TEST(TraceText, holdsElementsOfAnyLength)
{
    for (std::size_t length = 1; length < 70; ++length) {
        const std::string name(length, 'n'), inner = name + "i", content = name + "<\n" + name;
        TraceText trace;
        trace.open("a");
        std::string text = "<a>", path = "a";
        for (std::size_t depth = 1; depth <= 40; ++depth) {
            const std::string line = "\n" + std::string(2 * depth, ' ');
            trace.open(name);
            trace.value(content);
            trace.setLineFeed(false);
            trace.close(name);
            text += line + "<" + name + ">" + name + "&lt;\\n" + name + "</" + name + ">";
            trace.open(name);
            trace.setLineFeed(false);
            trace.open(inner);
            trace.value("-7");
            trace.setLineFeed(false);
            trace.close(inner);
            trace.setLineFeed(false);
            trace.close(name);
            text += line + "<" + name + "><" + inner + ">-7</" + inner + "></" + name + ">";
            trace.open(inner);
            text += line + "<" + inner + ">";
            path += "/" + inner;
        }
        EXPECT_EQ(trace.path(), path);
        for (std::size_t depth = 40; depth > 0; --depth) {
            trace.close(inner);
            text += (depth == 40 ? "" : "\n" + std::string(2 * depth, ' ')) + "</" + inner + ">";
        }
        trace.close("a");
        EXPECT_EQ(trace.text(), text + "\n</a>");
        EXPECT_EQ(trace.path(), "");
    }
}

// One call for a whole element adds the same text as its calls one by one.
TEST(TraceText, addsWholeElements)
{
    TraceText whole, calls;
    std::deque<std::string> names;  // the trace keeps the names of open elements by address
    for (std::size_t length = 1; length < 70; ++length) {
        const std::string& name = names.emplace_back(length, 'n');
        const std::string inner = name + "i";
        for (const std::int64_t number :
             {INT64_MIN, std::int64_t{INT32_MIN}, std::int64_t{-10}, std::int64_t{0}, std::int64_t{9}, std::int64_t{10},
              std::int64_t{99}, std::int64_t{100}, std::int64_t{UINT32_MAX}, INT64_MAX}) {
            whole.element(name, number);
            calls.open(name);
            calls.value(std::to_string(number));
            calls.setLineFeed(false);
            calls.close(name);
            whole.element(name, inner, number);
            calls.open(name);
            calls.setLineFeed(false);
            calls.open(inner);
            calls.value(number);
            calls.setLineFeed(false);
            calls.close(inner);
            calls.setLineFeed(false);
            calls.close(name);
        }
        whole.open(name);
        calls.open(name);
    }
    EXPECT_EQ(whole.text(), calls.text());
    EXPECT_EQ(whole.path(), calls.path());
}

TEST(TraceText, holdsMarkersOfAnyDepth)
{
    TraceText trace;
    std::string text, path;
    for (std::size_t depth = 0; depth < 40; ++depth) {
        trace.marker("<value>");
        trace.indent();
        text += (depth == 0 ? "" : "\n" + std::string(2 * depth, ' ')) + "<value>";
        path += depth == 0 ? "value[0]" : "/value[0]";
        EXPECT_EQ(trace.path(), path);
    }
    for (std::size_t depth = 40; depth-- > 0;) {
        trace.outdent();
        trace.marker("</value>");
        text += (depth == 39 ? "" : "\n" + std::string(2 * depth, ' ')) + "</value>";
    }
    EXPECT_EQ(trace.text(), text);
    EXPECT_EQ(trace.path(), "");
}

TEST(TraceText, isIncompleteWithoutMemoryWhileThePassSucceeds)
{
    void (*const beginnings[])(Xdr&) = {
        [](Xdr& xdrs) { xdrs.addOpenTag("anElementWithALongName"); },
        [](Xdr& xdrs) { xdrs.addString("<value>"); },
        [](Xdr& xdrs) {
            xdrs.addString("<value>");
            xdrs.addTab();
        },
    };
    for (const auto begin : beginnings) {
        for (long first = 0; first < 12; ++first) {
            auto trace = std::make_unique<TraceText>();
            std::uint32_t value = 7;
            unsigned char buffer[4] = {};
            bool succeeded;
            {
                const Watch watch(first);
                succeeded = quorva::runPass(quorva::Mode::encode, XdrLongNatural, &value, buffer, [&](Xdr& xdrs) {
                                xdrs.setTrace(trace.get());
                                for (int i = 0; i < 20; ++i) begin(xdrs);
                            }).succeeded;
            }
            EXPECT_TRUE(succeeded);
            EXPECT_FALSE(first == 0 && trace->complete());
            trace->clear();
            EXPECT_TRUE(trace->complete()) << "clear() tries memory again";
            trace->open("a");
            EXPECT_EQ(trace->text(), "<a>");
            trace.reset();
            EXPECT_EQ(liveBlocks(), 0);
        }
    }
}

TEST(ScopedTrace, nestsAndReachesTheStreamsOfItsThread)
{
    TraceText outer, inner;
    const ScopedTrace outerScope(outer);
    Xdr().addOpenTag("first");
    {
        const ScopedTrace innerScope(inner);
        Xdr().addOpenTag("second");
        std::thread([] { EXPECT_EQ(ScopedTrace::current(), nullptr); }).join();
    }
    Xdr().addOpenTag("third");
    EXPECT_EQ(outer.path(), "first/third");
    EXPECT_EQ(inner.path(), "second");
}
