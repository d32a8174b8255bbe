// The look of the trace: nesting, escapes, hex dumps, and the path to what is still open.

#include "codec_tools.h"
#include "memory.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

using namespace quorva::test;

TEST(TraceText, layoutAndPath)
{
    const struct {
        const char* why;
        std::function<void(TraceText&)> add;
        const char* text;
        const char* path;
    } cases[] = {
        {"a leaf stands on one line",
         [](TraceText& t) { t.open("a"); t.value("1"); t.setLineFeed(false); t.close("a"); }, "<a>1</a>", ""},
        {"an enumerator stands inside its field's line",
         [](TraceText& t) { t.open("a"); t.setLineFeed(false); t.open("E"); t.value("1"); t.close("E"); t.close("a"); },
         "<a><E>1</E></a>", ""},
        {"children are indented",
         [](TraceText& t) { t.open("a"); t.open("b"); t.value("1"); t.setLineFeed(false); t.close("b"); t.close("a"); },
         "<a>\n  <b>1</b>\n</a>", ""},
        {"what is open is the path, with the index of an element",
         [](TraceText& t) {
             t.open("a");
             for (int i = 0; i < 2; ++i) { t.marker("<value>"); t.indent(); t.outdent(); t.marker("</value>"); }
             t.marker("<value>"); t.indent(); t.open("b");
         },
         "<a>\n  <value></value>\n  <value></value>\n  <value>\n    <b>", "a/value[2]/b"},
        {"elements of elements count from 0 again",
         [](TraceText& t) {
             t.open("a");
             t.marker("<value>"); t.marker("<value>"); t.marker("</value>"); t.marker("</value>");
             t.marker("<value>"); t.marker("<value>");
         },
         nullptr, "a/value[1]/value[0]"},
        {"without an enclosing element the index counts as well",
         [](TraceText& t) { t.marker("<value>"); t.marker("</value>"); t.marker("<value>"); }, nullptr, "value[1]"},
        {"two contents are kept apart", [](TraceText& t) { t.open("a"); t.value("1"); t.value("2"); t.close("a"); },
         "<a>1 2</a>", ""},
        {"a frame behind a sibling is as deep as the sibling",
         [](TraceText& t) {
             t.open("a"); t.open("b"); t.close("b"); t.marker("<value>"); t.indent(); t.open("c");
         },
         "<a>\n  <b></b>\n  <value>\n    <c>", "a/value[0]/c"},
        {"a name ends a frame, too",
         [](TraceText& t) { t.open("a"); t.marker("<value>"); t.close("value"); t.marker("<value>"); },
         "<a>\n  <value></value>\n  <value>", "a/value[1]"},
        {"what nobody began is ended all the same, and closes nothing",
         [](TraceText& t) { t.close("a"); t.marker("</value>"); t.open("b"); t.marker("</value>"); t.marker("<"); },
         "</a></value>\n<b></value>\n  <", "b/[0]"},
        {"markup that is no end", [](TraceText& t) { t.open("a"); t.marker("-/"); }, "<a>\n  -/", "a//[0]"},
        {"no name at all", [](TraceText& t) { t.open(""); }, "<>", ""},
        {"a dump behind a content",
         [](TraceText& t) { t.open("a"); t.value("1"); t.hexDump(reinterpret_cast<const unsigned char*>("AB"), 2); t.value("2"); t.close("a"); },
         "<a>1 41 42 2</a>", ""},
        {"a content behind a dump",
         [](TraceText& t) { t.open("a"); t.hexDump(reinterpret_cast<const unsigned char*>("AB"), 1); t.value("2"); }, "<a>41 2", "a"},
        {"less indented than not at all",
         [](TraceText& t) { t.open("a"); t.outdent(); t.open("b"); t.indent(); t.indent(); t.endLine(); t.open("c"); },
         "<a>\n  <b>\n      <c>", "a/b/c"},
        {"more ends than beginnings",
         [](TraceText& t) { t.open("a"); t.close("a"); t.close("a"); t.endValue(); t.open("b"); t.endValue(); },
         "<a></a></a></value>\n<b></value>", "b"},
        {"nothing is open behind a name", [](TraceText& t) { t.open("a"); t.close("a"); t.open("b"); }, nullptr, "b"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        TraceText trace;
        expected.add(trace);
        if (expected.text) {
            EXPECT_EQ(trace.text(), expected.text);
        }
        EXPECT_EQ(trace.path(), expected.path);
        trace.clear();
        EXPECT_EQ(trace.text(), "");
        EXPECT_EQ(trace.path(), "");
        expected.add(trace);
        EXPECT_EQ(trace.path(), expected.path) << "a new text";
        if (expected.text) {
            EXPECT_EQ(trace.text(), expected.text) << "a new text";
        }
    }
}

TEST(TraceText, escapes)
{
    const struct {
        const char* text;
        const char* shown;
    } cases[] = {
        {"a<b>&c", "a&lt;b&gt;&amp;c"},
        {"]]>", "]]&gt;"},
        {"C:\\temp", "C:\\\\temp"},
        {"a\nb\rc\td", "a\\nb\\rc\\td"},
        {"\x01\x1f\x7f", "\\x01\\x1f\\x7f"},
        {"Gr\xC3\xB6\xC3\x9F" "e", "Gr\xC3\xB6\xC3\x9F" "e"},
        {"\xF0\x9F\x96\xA8", "\xF0\x9F\x96\xA8"},
        {"\xC3", "\\xc3"},                      // ends within a character
        {"\xC0\xAF", "\\xc0\\xaf"},             // overlong
        {"\xE0\x80\xAF", "\\xe0\\x80\\xaf"},    // overlong
        {"\xED\xA0\x80", "\\xed\\xa0\\x80"},    // a surrogate
        {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // beyond the last character
        {"\xEF\xBF\xBE", "\\xef\\xbf\\xbe"},    // U+FFFE, which XML has not
        {"\xC2\x85", "\\xc2\\x85"},             // a control character
        {"\xFF\xFE", "\\xff\\xfe"},
        // The first and the last character of each length, and those beside the gaps.
        {"\xC2\xA0\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF", "\xC2\xA0\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF"},
        {"\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBD", "\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBD"},
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
        EXPECT_EQ(trace.text(), std::string("<a>") + expected.shown + "</a>");
        EXPECT_TRUE(isXml(std::string(trace.text())));
    }
}

TEST(TraceText, hexDump)
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

// Who has much to say adds elements and lines at once: the text is the same as from the calls one by one.
TEST(TraceText, wholeElements)
{
    const auto leaf = [](TraceText& t, const char* name, auto contents) {
        t.open(name); contents(); t.setLineFeed(false); t.close(name);
    };
    for (std::size_t length = 1; length < 70; ++length) {
        const std::string name(length, 'n'), inner = name + "i", text = name + "<\n" + name,
                          markup = "<" + inner + ">-7</" + inner + ">" + std::string(48, '?');
        const TraceText::Name shown = {markup.c_str(), markup.size() - 48};
        TraceText whole, calls;
        const auto inLine = [&] {
            calls.setLineFeed(false); calls.open(inner.c_str()); calls.value("-7"); calls.setLineFeed(false); calls.close(inner.c_str());
        };
        whole.open("a");
        calls.open("a");
        whole.inLine(40, [shown] { return shown; });
        for (int i = 0; i < 40; ++i) inLine();
        for (int depth = 0; depth < 20; ++depth) {  // deeper than lines usually are, too
            whole.element({name.c_str(), length}, text.c_str(), text.size());
            leaf(calls, name.c_str(), [&] { calls.value(text.c_str()); });
            whole.framed(35, [shown] { return shown; });
            for (int i = 0; i < 35; ++i) {
                calls.marker("<value>"); calls.indent(); inLine(); calls.outdent(); calls.marker("</value>");
            }
            whole.framed(2, [n = -1]() mutable { return n += 45; });
            for (const char* n : {"44", "89"}) {
                calls.marker("<value>"); calls.indent(); calls.value(n);
                calls.setLineFeed(false); calls.outdent(); calls.marker("</value>");
            }
            whole.beginValue();
            calls.marker("<value>"); calls.indent();
            EXPECT_EQ(whole.path(), calls.path());
        }
        EXPECT_EQ(whole.text(), calls.text());
    }
}

TEST(TraceText, lines)
{
    using Lines = TraceText::Lines;
    for (std::size_t length = 1; length <= Lines::longestName; ++length) {
        const std::string name(length, 'n'), tags = "<" + name + "></" + name + ">" + std::string(Lines::beyond, '?'),
                          markup = "<" + name + ">-7</" + name + ">" + std::string(48, '?');
        const TraceText::Tags around = {tags.c_str(), length};
        const std::size_t size = Lines::mostOnce + 40 * (Lines::most + 4 * length + Lines::mostDigits);
        TraceText whole, calls;
        Lines lines(whole);
        EXPECT_FALSE(lines.take(size, Lines::mostBlanks)) << "without memory";
        const auto number = [&](auto value, const std::string& shown) {
            lines.element(around, value);
            calls.open(name.c_str()); calls.value(shown.c_str()); calls.setLineFeed(false); calls.close(name.c_str());
        };
        for (std::size_t depth = 0; 2 * depth + 2 <= Lines::mostBlanks; ++depth) {
            lines.leave();
            whole.makeRoom(size);
            ASSERT_TRUE(lines.take(size, Lines::mostBlanks - 2));
            number(true, "true");
            number(false, "false");
            for (const std::int32_t n : {0, 9, 10, 99, 100, 101, 999, 1000, 123456, -1, -10, INT32_MAX, INT32_MIN}) number(n, std::to_string(n));
            for (const std::uint32_t n : {0u, 9u, 10u, 100u, 99999u, 1000000000u, UINT32_MAX}) number(n, std::to_string(n));
            lines.element(around, TraceText::Name{markup.c_str(), markup.size() - 48});
            calls.open(name.c_str()); calls.setLineFeed(false); calls.open(name.c_str()); calls.value("-7");
            calls.setLineFeed(false); calls.close(name.c_str()); calls.setLineFeed(false); calls.close(name.c_str());
            lines.push(around);
            lines.pop(around);
            calls.open(name.c_str()); calls.close(name.c_str());
            lines.open(around);
            calls.open(name.c_str());
            number(7, "7");
            lines.close(around);
            calls.close(name.c_str());
            lines.push(around);
            calls.open(name.c_str());
        }
        EXPECT_FALSE(lines.take(size, Lines::mostBlanks - 2)) << "too deep";
        lines.leave();
        EXPECT_EQ(whole.path(), calls.path());
        whole.value("1");
        EXPECT_FALSE(lines.take(size, Lines::mostBlanks)) << "behind a value";
        whole.close(around.name());
        whole.setLineFeed(false);
        EXPECT_FALSE(lines.take(size, Lines::mostBlanks)) << "within a line";
        calls.value("1"); calls.close(name.c_str());
        EXPECT_EQ(whole.text(), calls.text());
    }
}

TEST(TraceText, framesOfAnyDepth)
{
    TraceText whole, calls;
    for (int depth = 0; depth < 40; ++depth) {
        whole.beginValue();
        calls.marker("<value>"); calls.indent();
        EXPECT_EQ(whole.path(), calls.path());
    }
    for (int depth = 0; depth < 40; ++depth) {
        whole.endValue();
        calls.outdent(); calls.marker("</value>");
    }
    EXPECT_EQ(whole.text(), calls.text());
    EXPECT_EQ(whole.path(), "");
}

TEST(TraceText, runningOutOfMemoryEndsTheCollectingOnly)
{
    void (*const ways[])(Xdr&) = {
        [](Xdr& xdrs) { xdrs.addOpenTag("anElementWithALongName"); },
        [](Xdr& xdrs) { xdrs.addString("<value>"); },
        [](Xdr& xdrs) { xdrs.sink()->beginValue(); },
    };
    for (const auto begin : ways) {
        for (long first = 0; first < 12; ++first) {
            auto trace = std::make_unique<TraceText>();
            std::uint32_t value = 7;
            unsigned char buffer[4] = {};
            bool succeeded;
            {
                const Watch watch(first);
                succeeded = quorva::runPass(encoding, XdrLongNatural, &value, buffer, [&](Xdr& xdrs) {
                    xdrs.setTrace(trace.get());
                    for (int i = 0; i < 20; ++i) begin(xdrs);
                }).succeeded;
            }
            EXPECT_TRUE(succeeded);
            EXPECT_FALSE(first == 0 && trace->complete());
            trace->clear();
            EXPECT_TRUE(trace->complete()) << "a new text may find memory";
            trace->open("a");
            EXPECT_EQ(trace->text(), "<a>");
            trace.reset();
            EXPECT_EQ(liveBlocks(), 0);
        }
    }
}

TEST(ScopedTrace, reachesStreamsOfThisThreadAndNests)
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
