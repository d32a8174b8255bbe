// The C++ layer: constants, limits, coders and their descriptions.

#include "codec_tools.h"
#include "memory.h"

#include <quorvapixdr/arena.h>
#include <quorvapixdr/description.h>
#include <quorvapixdr/types/common/event.h>
#include <quorvapixdr/types/station.h>

#include <gtest/gtest.h>

#include <functional>

using namespace quorva;
using namespace quorva::test;

namespace {

// In read-only memory: a store ends the program. Has every form whose coding loads and stores, narrow ones included.
const AccessUnion access = {AccessKind::AKnobody, {}};
const Visit constantVisits[] = {
    {-2, -1, 1, {LampColour::LCred}, {1, {7}}, {9, {}}, {0, nullptr}, nullptr, 65535},
    {-2, -1, 0, {LampColour::LCoff}, {0, {}}, {9, {}}, {0, nullptr}, const_cast<AccessUnion*>(&access), 65535},
};

}  // namespace

TEST(Encode, onlyReadsTheObject)
{
    for (const Visit& visit : constantVisits) {
        const Bytes message = quorva::encode(visit);
        TraceText trace;
        const ScopedTrace collecting(trace);
        EXPECT_EQ(quorva::encode(visit), message);
        EXPECT_EQ(quorva::decode<Visit>(message)->rest, 65535);
    }
    static const Boolean paid = 1;
    EXPECT_EQ(hexOf(quorva::encode(paid, coder::Boolean)), "00000001");
}

TEST(Encode, keepsToItsLimit)
{
    const Visit& visit = constantVisits[0];
    const std::size_t length = quorva::encode(visit).size();
    EXPECT_EQ(quorva::encode(visit, {.limit = length}).size(), length);
    EXPECT_THROW(quorva::encode(visit, {.limit = length - 1}), CodingError);

    std::string text(65531, 'A');
    char* held = text.data();
    constexpr Coder<char*> longText = {
        [](Xdr* xdrs, void* object) { return XdrString(xdrs, static_cast<char**>(object), 70000); }, "LongText"};
    EXPECT_THROW(quorva::encode(held, longText), CodingError);
    EXPECT_THROW(quorva::encode(held, longText, {.limit = 1 << 20}), CodingError)
        << "65531 and 4 bytes, and one of padding";
    text.pop_back();
    text.pop_back();
    text.pop_back();
    held = text.data();
    EXPECT_EQ(quorva::encode(held, longText, {.limit = 1 << 20}).size(), 65532u);
}

// The sentence of the inspector, and its parts.
TEST(CodingError, saysWhereAndWhy)
{
    std::string tooLong(65, 'x');
    NotifyBinding binding = {tooLong.data(), 1, 2, 3};
    LockerId ids[7] = {};
    AccessUnion members = {AccessKind::AKgroup, {.members = {7, ids}}};
    StationUnion doors = {485, {.raw = {3, nullptr}}};
    const Bytes cut = bytesOf("00000004 41424344 00000001 0000");
    const struct {
        const char* name;
        std::function<void()> pass;
        const char* what;
    } cases[] = {
        {"limit", [] { quorva::encode(constantVisits[0], {.limit = 22}); },
         "cannot encode Visit at /drive/openingTime, byte 20 of 22: the message is longer than the limit of 22 bytes"},
        {"maximum", [&] { quorva::encode(binding); },
         "cannot encode NotifyBinding at /hostName, byte 0 of 1024: length 65 is beyond the maximum 64"},
        {"count", [&] { quorva::encode(members); },
         "cannot encode AccessUnion at /members, byte 4 of 1024: count 7 is beyond the maximum 6"},
        {"null", [&] { quorva::encode(doors); },
         "cannot encode StationUnion at /raw, byte 4 of 1024: count 3, but the elements are a null pointer"},
        {"cut", [&] { quorva::decode<NotifyBinding>(cut); },
         "cannot decode NotifyBinding at /versionNumber, byte 12 of 14: 2 bytes left where a unit of 4 is needed"},
        {"arm", [] { quorva::decode<AccessUnion>(bytesOf("00000009")); },
         "cannot decode AccessUnion at /kind, byte 0 of 4: kind 9 has no arm in AccessUnion"},
        {"rest", [] { quorva::decode<AccessUnion>(bytesOf("00000000 00")); },
         "cannot decode AccessUnion at byte 4 of 5: 1 byte is left over"},
        {"long", [] { quorva::decode<AccessUnion>(Bytes(65536)); },
         "cannot decode AccessUnion at byte 65535 of 65536: a message has at most 65535 bytes"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        try {
            expected.pass();
            FAIL();
        } catch (const CodingError& error) {
            EXPECT_STREQ(error.what(), expected.what);
        }
    }
    try {
        quorva::decode<NotifyBinding>(cut);
    } catch (const CodingError& error) {
        EXPECT_EQ(error.type(), "NotifyBinding");
        EXPECT_EQ(error.path(), "/versionNumber");
        EXPECT_EQ(error.offset(), 12u);
        EXPECT_EQ(error.reason(), "2 bytes left where a unit of 4 is needed");
    }
    EXPECT_EQ(quorva::explain<NotifyBinding>(cut)->path, "/versionNumber");
    EXPECT_EQ(quorva::explain(cut, coder::HostName), std::nullopt) << "bytes after the value are not a failure";
}

// A description cannot tell that memory is short, and a routine may do what its description does not say.
TEST(CodingError, saysOnlyWhatTheCodecKnowsWithoutAnExplanation)
{
    const Coder<AccessUnion> other = {[](Xdr*, void*) { return 0; }, "Other", description::AccessUnion};
    const Coder<AccessUnion> unknown = {other.routine, "Unknown"};
    const auto whatOf = [](Coder<AccessUnion> coder, std::string_view hex) -> std::string {
        try {
            quorva::decode(bytesOf(hex), coder);
        } catch (const CodingError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(whatOf(other, "00000000"),
              "cannot decode Other at byte 0 of 4: the codec refuses it, perhaps because memory is short");
    EXPECT_EQ(whatOf(other, "00000009"), "cannot decode Other at byte 0 of 4: the codec refuses it");
    EXPECT_EQ(whatOf(unknown, "00000009"),
              "cannot decode Unknown at byte 0 of 4: the codec refuses it, perhaps because memory is short");
}

// From the library, from a module outside of it, and of a built-in type.
TEST(Coder, hasTheDescriptionOfItsType)
{
    EXPECT_STREQ(coderOf<NotifyBinding>.description().members[0].name, "hostName");
    EXPECT_EQ(coder::HostName.description().members[0].use.bound, 64u);
    EXPECT_EQ(coder::Key.description().size, 16u);
    EXPECT_EQ(coderOf<Visit>.description().routine, XdrVisit);
    EXPECT_EQ(coder::Natural.description().builtin, Builtin::Natural);
}

// Texts, a sequence type, an array member, bytes and an optional value; the arena moves on before the encode.
TEST(Arena, ownsWhatAnObjectPointsTo)
{
    const Watch watch;
    {
        Arena first;
        Locker door = *first.make<Locker>();
        door.label = first.text("left, top");
        door.owner = first.text("");
        door.picture = first.list<Picture>(bytesOf("0102030405"));
        door.signature = first.bytes(bytesOf("FF"));
        door.right = first.make(door);
        door.nested = first.counted({door, *door.right});
        Arena arena = std::move(first);

        Visit visit = constantVisits[0];
        visit.changes = arena.counted<StationUnion>({{AttributeNumber{41}, {}}});
        visit.changes.elements[0].master = arena.make(door);
        const auto decoded = quorva::decode<Visit>(quorva::encode(visit, {.limit = longestMessage}));
        const Locker& master = *decoded->changes.elements[0].master;
        EXPECT_STREQ(master.label, "left, top");
        EXPECT_STREQ(master.owner, "");
        EXPECT_EQ(master.picture.count, 5);
        EXPECT_EQ(master.picture.elements[4], 5);
        EXPECT_EQ(master.nested.count, 2);
        EXPECT_EQ(master.nested.elements[1].signature.elements[0], 0xFF);
        EXPECT_EQ(master.right->right, nullptr);
    }
    EXPECT_EQ(liveBlocks(), 0);
    EXPECT_EQ(mismatchedReleases(), 0);
}

TEST(Arena, refusesWhatNoMessageCanHold)
{
    Arena arena;
    const std::vector<LockerId> ids(65536);
    EXPECT_EQ(arena.list<LockerIdSeq>(std::span(ids).first(65535)).count, 65535);
    EXPECT_THROW(arena.list<LockerIdSeq>(ids), std::length_error);
    EXPECT_THROW(arena.text(std::string_view("a\0b", 3)), std::invalid_argument);
    EXPECT_EQ(arena.list<LockerIdSeq>({}).elements, nullptr);
}
