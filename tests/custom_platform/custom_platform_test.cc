// The codec against a stream class that offers nothing beyond the contract: the codec makes exactly the calls of
// calls.txt.

#include "codec_tools.h"
#include "memory.h"

#include <quorvapixdr/drivers.h>
#include <quorvapixdr/types/forms.h>

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <functional>
#include <sstream>

using namespace quorva;
using namespace quorva::test;

static_assert(!Traceable<Xdr>, "this class offers nothing beyond the contract");

namespace {

const struct {
    const char* name;
    XdrRoutine routine;
    std::size_t size;
} types[] = {
    {"Colour", XdrColour, sizeof(Colour)},    {"Id", XdrId, sizeof(Id)},       {"IdSeq", XdrIdSeq, sizeof(IdSeq)},
    {"Name", XdrName, sizeof(Name)},          {"Seal", XdrSeal, sizeof(Seal)}, {"Blob", XdrBlob, sizeof(Blob)},
    {"Pair", XdrPair, sizeof(Pair)},          {"Next", XdrNext, sizeof(Next)}, {"Point", XdrPoint, sizeof(Point)},
    {"Scalars", XdrScalars, sizeof(Scalars)}, {"Held", XdrHeld, sizeof(Held)}, {"Shape", XdrShape, sizeof(Shape)},
    {"Event", XdrEvent, sizeof(Event)},
};

// The words of a call with one blank between them, so that a string that ends in blanks can be written in the file.
std::string singleSpaced(const std::string& call)
{
    std::istringstream words(call);
    std::string text;
    for (std::string word, gap; words >> word; gap = " ") text += gap + word;
    return text;
}

// The calls of "    open x,  unit 00000001", one a line.
std::string callsOf(std::istream& lines)
{
    std::string calls, line, call;
    while (lines.peek() == ' ' && std::getline(lines, line)) {
        for (std::istringstream parts(line); std::getline(parts, call, ',');) { calls += singleSpaced(call) + '\n'; }
    }
    return calls;
}

std::string record(const std::string& verb, const std::string& name, Bytes wire, std::size_t room)
{
    for (const auto& type : types) {
        if (type.name != name) continue;
        alignas(std::max_align_t) unsigned char object[256] = {};
        if (verb != "decode") runPass(Mode::decode, type.routine, object, wire);
        const auto mode = verb == "decode" ? Mode::decode : verb == "encode" ? Mode::encode : Mode::release;
        Bytes buffer(room);
        recordedCalls.clear();
        const Pass pass = runPass(mode, type.routine, object, verb == "decode" ? wire : buffer);
        std::string calls;
        for (const std::string& call : recordedCalls) { calls += singleSpaced(call) + '\n'; }
        if (verb != "release") releaseContents(type.routine, object);
        return calls + (pass.succeeded ? "= 1\n" : "= 0\n");
    }
    return "no type " + name;
}

}  // namespace

TEST(CustomPlatform, seesTheCallsOfTheFile)
{
    std::ifstream file(CALLS_FILE);
    int cases = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        SCOPED_TRACE(line);
        std::istringstream words(line);
        std::string verb, type, word, wire;
        std::size_t room = 256;
        words >> verb >> type;
        while (words >> word && word != "within") wire += word;
        if (word == "within") words >> room;
        EXPECT_EQ(record(verb, type, bytesOf(wire), room), callsOf(file));
        ++cases;
    }
    EXPECT_GT(cases, 40) << CALLS_FILE;
}

// The codec stores what the stream left in the unit of a narrow value, in each direction and after a refusal too.
TEST(CustomPlatform, mayChangeNarrowValues)
{
    const struct {
        const char* name;
        XdrRoutine routine;
        std::uint32_t left;
    } cases[] = {
        {"Integer", XdrInteger, 0x55553344},           {"Natural", XdrNatural, 0x55553344},
        {"Boolean", XdrBoolean, 0x55555544},           {"ShortInteger", XdrShortInteger, 0x55555544},
        {"ShortNatural", XdrShortNatural, 0x55555544}, {"LongNatural", XdrLongNatural, 0x11223344},
    };
    overwrites = true;
    for (const auto& expected : cases) {
        for (const std::size_t room : {4u, 0u}) {
            std::uint32_t value = 0x55555555;
            Bytes buffer = bytesOf("11223344");
            buffer.resize(room);
            runPass(Mode::encode, expected.routine, &value, buffer);
            EXPECT_EQ(value, expected.left) << expected.name << " encoded, room " << room;
            value = 0x55555555;
            runPass(Mode::decode, expected.routine, &value, buffer);
            EXPECT_EQ(value, expected.left) << expected.name << " decoded, room " << room;
        }
    }
    overwrites = false;
}

TEST(CustomPlatform, getsABufferOf1024BytesFromTheDrivers)
{
    Bytes buffer(1024);
    std::string characters(1021, 'A');
    char* text = characters.data();
    const auto routine = [](Xdr* xdrs, void* object) { return XdrString(xdrs, static_cast<char**>(object), 65535); };
    EXPECT_EQ(ClientsXdrSupport(routine, &text, buffer.data()), 4);
    characters.resize(1020);
    EXPECT_EQ(ClientsXdrSupport(routine, &text, buffer.data()), 1024);
}

// Errors have a path and a reason although this class collects no trace.
TEST(CustomPlatform, servesTheOwnerLayer)
{
    Point point = {1, 2};
    const Bytes message = quorva::encode(point);
    EXPECT_EQ(quorva::decode<Point>(message)->x, 1);
    try {
        quorva::decode<Point>(std::span(message).first(6));
        FAIL();
    } catch (const CodingError& error) {
        EXPECT_STREQ(error.what(), "cannot decode Point at /y, byte 4 of 6: 2 bytes left where a unit of 4 is needed");
    }
}

// The exception passes through the drivers and the C++ layer, nothing leaks, and object and buffer are unchanged.
TEST(CustomPlatform, mayThrowInItsConstructor)
{
    Point point = {1, 2};
    std::array<unsigned char, driverMessage> buffer;
    const struct {
        const char* name;
        std::function<void()> call;
        int otherStreams = 0;
    } entries[] = {
        {"ClientsXdrSupport", [&] { ClientsXdrSupport(XdrPoint, &point, buffer.data()); }},
        {"ClientsXdrDeserialize", [&] { ClientsXdrDeserialize(XdrPoint, &point, buffer.data()); }},
        {"TestDeserialize", [&] { TestDeserialize(XdrPoint, &point, buffer.data()); }},
        {"XdrDeallocate", [&] { XdrDeallocate(XdrPoint, &point, buffer.data()); }},
        {"encode", [&] { quorva::encode(point); }},
        {"decode, which releases with a second stream", [&] { quorva::decode<Point>(buffer); }, 1},
    };
    for (const auto& entry : entries) {
        SCOPED_TRACE(entry.name);
        buffer.fill('B');
        throwingConstructors = 1;
        constructorCalls = destructorCalls = 0;
        {
            const Watch watch;
            EXPECT_THROW(entry.call(), StreamRefused);
        }
        EXPECT_EQ(liveBlocks(), 0) << "the memory of the stream";
        EXPECT_EQ(mismatchedReleases(), 0);
        EXPECT_EQ(constructorCalls, 1 + entry.otherStreams);
        EXPECT_EQ(destructorCalls, entry.otherStreams);
        EXPECT_EQ(point.x, 1);
        EXPECT_EQ(point.y, 2);
        EXPECT_EQ(buffer.front(), 'B');
    }
    throwingConstructors = 0;
    EXPECT_EQ(ClientsXdrSupport(XdrPoint, &point, buffer.data()), 8) << "the next stream can be constructed";
}
