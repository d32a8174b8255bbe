// Names: patterns, guesses at what was meant, and declarations in words.

#include "inspect/catalogue.h"
#include "inspect/describe.h"
#include "locker_types.h"

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::inspect;
namespace types = quorva::schema::types;

namespace {

TEST(Names, patterns)
{
    for (const char* pattern : {"", "*", "Job*", "*seq", "J?bAVP*", "avp", "*b*v*q", "JobAVPSeq", "JobAVPSeq*"})
        EXPECT_TRUE(matches(pattern, "JobAVPSeq")) << pattern;
    for (const char* pattern : {"Jobs", "?", "*union", "obAVP*", "JobAVPSeq?", "Job*p", "a*a"})
        EXPECT_FALSE(matches(pattern, "JobAVPSeq")) << pattern;
}

TEST(Names, guesses)
{
    const std::string_view names[] = {"JobAVP", "JobAVPSeq", "DocumentAVP", "Boolean", "Locker"};
    EXPECT_EQ(didYouMean("jobavp", names), "; did you mean JobAVP?");
    EXPECT_EQ(didYouMean("Lokcer", names), "; did you mean Locker?");
    EXPECT_EQ(didYouMean("avp", names), "; did you mean JobAVP, JobAVPSeq or DocumentAVP?");
    EXPECT_EQ(didYouMean("Xyz", names), "");
    EXPECT_EQ(didYouMean("", names), "");
}

TEST(Names, a_description_tells_all)
{
    const std::string text = descriptionText(types::EventUnion, Catalogue());
    for (const char* part :
         {"EventUnion  union  locker.x:", "Most events say all there is to say.", "by Integer32 number\n",
          "Provisional: numbers until the station's makers agree on them\n", "-1         string reason<65535>\n",
          "7          AccessUnion access\n", "any other  void\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\nis missing in\n" << text;
    EXPECT_EQ(declaration(types::Locker.fields[1].use, "code"), "ShortNatural code[10]");
    EXPECT_EQ(declaration(types::Neighbour.target, ""), "Locker *");

    const std::string enumeration = descriptionText(types::DoorState, Catalogue());
    for (const char* part : {"enumerators\n    0    DSopen\n", "3    DSjammed   neither sensor switch is pressed\n", "255  DSunknown\n"})
        EXPECT_NE(enumeration.find(part), std::string::npos) << part << "\nis missing in\n" << enumeration;
    const std::string record = descriptionText(types::Locker, Catalogue());
    for (const char* part : {"fields\n    LockerId id\n", "string owner<40>", "\"\" while the door is free\n", "opaque seal[8]\n"})
        EXPECT_NE(record.find(part), std::string::npos) << part << "\nis missing in\n" << record;
}

// The same for programs, member by member.
TEST(Names, a_description_as_json)
{
    const struct {
        const schema::Type& type;
        const char* pointer;
        const char* value;
    } cases[] = {
        {types::DoorState, "/kind", R"("enum")"},
        {types::DoorState, "/enumerators/2", R"({"name":"DSjammed","value":3,"doc":"neither sensor switch is pressed"})"},
        {types::DoorState, "/enumerators/0", R"({"name":"DSopen","value":0})"},
        {types::DoorState, "/leastOnWire", "4"},
        {types::Key, "/kind", R"("bytes")"},
        {types::Row, "/kind", R"("vector")"},
        {types::Picture, "/kind", R"("bytes")"},
        {types::Locker, "/fields/0", R"({"name":"id","form":"single","type":"LockerId","offset":0})"},
        {types::Locker, "/fields/1", R"({"name":"code","form":"vector","type":"ShortNatural","number":10,"offset":4})"},
        {types::Locker, "/fields/3", R"({"name":"owner","form":"string","maximum":40,"offset":24,"doc":"\"\" while the door is free"})"},
        {types::EventUnion, "/provisional", R"("numbers until the station's makers agree on them")"},
        {types::EventUnion, "/discriminant", R"({"name":"number","form":"single","type":"Integer32","offset":0})"},
        {types::EventUnion, "/hasDefault", "true"},
        {types::EventUnion, "/arms/0", R"({"cases":[-1],"name":"reason","form":"string","maximum":65535,"offset":8})"},
        {types::AccessUnion, "/hasDefault", "false"},
        {types::AccessUnion, "/arms/0", R"({"cases":[0],"form":"void"})"},
        {types::AccessUnion, "/arms/2/cases", "[2,3]"},
        {types::Neighbour, "/target", R"({"form":"optional","type":"Locker"})"},
    };
    for (const auto& expected : cases) {
        const Json json = descriptionJson(expected.type, Catalogue());
        const Json::json_pointer pointer(expected.pointer);
        EXPECT_EQ(json.contains(pointer) ? json.at(pointer).dump() : "nothing", expected.value) << expected.type.name << expected.pointer;
    }
}

}  // namespace
