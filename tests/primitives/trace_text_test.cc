// The look of the trace: nesting, escapes, hex dumps, and the path to what is still open.

#include "codec_tools.h"
#include "memory.h"

#include <gtest/gtest.h>

#include <deque>
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
         [](TraceText& t) {
             t.open("a");
             t.value("1");
             t.setLineFeed(false);
             t.close("a");
         },
         "<a>1</a>", ""},
        {"an enumerator stands inside its field's line",
         [](TraceText& t) {
             t.open("a");
             t.setLineFeed(false);
             t.open("E");
             t.value("1");
             t.close("E");
             t.close("a");
         },
         "<a><E>1</E></a>", ""},
        {"children are indented",
         [](TraceText& t) {
             t.open("a");
             t.open("b");
             t.value("1");
             t.setLineFeed(false);
             t.close("b");
             t.close("a");
         },
         "<a>\n  <b>1</b>\n</a>", ""},
        {"what is open is the path, with the index of an element",
         [](TraceText& t) {
             t.open("a");
             for (int i = 0; i < 2; ++i) {
                 t.marker("<value>");
                 t.indent();
                 t.outdent();
                 t.marker("</value>");
             }
             t.marker("<value>");
             t.indent();
             t.open("b");
         },
         "<a>\n  <value></value>\n  <value></value>\n  <value>\n    <b>", "a/value[2]/b"},
        {"elements of elements count from 0 again",
         [](TraceText& t) {
             t.open("a");
             t.marker("<value>");
             t.marker("<value>");
             t.marker("</value>");
             t.marker("</value>");
             t.marker("<value>");
             t.marker("<value>");
         },
         nullptr, "a/value[1]/value[0]"},
        {"without an enclosing element the index counts as well",
         [](TraceText& t) {
             t.marker("<value>");
             t.marker("</value>");
             t.marker("<value>");
         },
         nullptr, "value[1]"},
        {"two contents are kept apart",
         [](TraceText& t) {
             t.open("a");
             t.value("1");
             t.value("2");
             t.close("a");
         },
         "<a>1 2</a>", ""},
        {"a frame behind a sibling is as deep as the sibling",
         [](TraceText& t) {
             t.open("a");
             t.open("b");
             t.close("b");
             t.marker("<value>");
             t.indent();
             t.open("c");
         },
         "<a>\n  <b></b>\n  <value>\n    <c>", "a/value[0]/c"},
        {"a name ends a frame, too",
         [](TraceText& t) {
             t.open("a");
             t.marker("<value>");
             t.close("value");
             t.marker("<value>");
         },
         "<a>\n  <value></value>\n  <value>", "a/value[1]"},
        {"what nobody began is ended all the same, and closes nothing",
         [](TraceText& t) {
             t.close("a");
             t.marker("</value>");
             t.open("b");
             t.marker("</value>");
             t.marker("<");
         },
         "</a></value>\n<b></value>\n  <", "b/[0]"},
        {"markup that is no end",
         [](TraceText& t) {
             t.open("a");
             t.marker("-/");
         },
         "<a>\n  -/", "a//[0]"},
        {"no name at all", [](TraceText& t) { t.open(""); }, "<>", ""},
        {"a dump behind a content",
         [](TraceText& t) {
             t.open("a");
             t.value("1");
             t.hexDump(reinterpret_cast<const unsigned char*>("AB"), 2);
             t.value("2");
             t.close("a");
         },
         "<a>1 41 42 2</a>", ""},
        {"a content behind a dump",
         [](TraceText& t) {
             t.open("a");
             t.hexDump(reinterpret_cast<const unsigned char*>("AB"), 1);
             t.value("2");
         },
         "<a>41 2", "a"},
        {"less indented than not at all",
         [](TraceText& t) {
             t.open("a");
             t.outdent();
             t.open("b");
             t.indent();
             t.indent();
             t.endLine();
             t.open("c");
         },
         "<a>\n  <b>\n      <c>", "a/b/c"},
        {"more ends than beginnings",
         [](TraceText& t) {
             t.open("a");
             t.close("a");
             t.close("a");
             t.outdent();
             t.marker("</value>");
             t.open("b");
             t.outdent();
             t.marker("</value>");
         },
         "<a></a></a></value>\n<b></value>", "b"},
        {"nothing is open behind a name",
         [](TraceText& t) {
             t.open("a");
             t.close("a");
             t.open("b");
         },
         nullptr, "b"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        TraceText trace;
        expected.add(trace);
        if (expected.text) { EXPECT_EQ(trace.text(), expected.text); }
        EXPECT_EQ(trace.path(), expected.path);
        trace.clear();
        EXPECT_EQ(trace.text(), "");
        EXPECT_EQ(trace.path(), "");
        expected.add(trace);
        EXPECT_EQ(trace.path(), expected.path) << "a new text";
        if (expected.text) { EXPECT_EQ(trace.text(), expected.text) << "a new text"; }
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
        {"\xEF\xBF\xBE", "\\xef\\xbf\\xbe"},           // U+FFFE, which XML has not
        {"\xC2\x85", "\\xc2\\x85"},                    // a control character
        {"\xFF\xFE", "\\xff\\xfe"},
        // The first and the last character of each length, and those beside the gaps.
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

// Names of any length, contents of any length, at any depth.
TEST(TraceText, elementsOfAnyLength)
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

// The text of a whole element is that of the calls one by one.
TEST(TraceText, wholeElements)
{
    TraceText whole, calls;
    std::deque<std::string> names;  // which the open elements keep by address
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

TEST(TraceText, markersOfAnyDepth)
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

TEST(TraceText, runningOutOfMemoryEndsTheCollectingOnly)
{
    void (*const ways[])(Xdr&) = {
        [](Xdr& xdrs) { xdrs.addOpenTag("anElementWithALongName"); },
        [](Xdr& xdrs) { xdrs.addString("<value>"); },
        [](Xdr& xdrs) {
            xdrs.addString("<value>");
            xdrs.addTab();
        },
    };
    for (const auto begin : ways) {
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
