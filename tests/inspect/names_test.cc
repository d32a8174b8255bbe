// Types by name: patterns, suggestions and descriptions.

#include "inspect/catalogue.h"
#include "inspect/describe.h"
#include "locker_types.h"

#include <gtest/gtest.h>

#include <initializer_list>

using namespace quorva;
using namespace quorva::inspect;

namespace {

void expectParts(const std::string& text, std::initializer_list<const char*> parts)
{
    for (const char* part : parts) EXPECT_NE(text.find(part), std::string::npos) << part << "\nis missing in\n" << text;
}

TEST(Names, matchPatterns)
{
    for (const char* pattern : {"", "*", "Job*", "*seq", "J?bAVP*", "avp", "*b*v*q", "JobAVPSeq", "JobAVPSeq*"})
        EXPECT_TRUE(matches(pattern, "JobAVPSeq")) << pattern;
    for (const char* pattern : {"Jobs", "?", "*union", "obAVP*", "JobAVPSeq?", "Job*p", "a*a"})
        EXPECT_FALSE(matches(pattern, "JobAVPSeq")) << pattern;
}

TEST(Names, areSuggestedForSimilarOnes)
{
    const std::string_view names[] = {"JobAVP", "JobAVPSeq", "DocumentAVP", "Boolean", "Locker"};
    EXPECT_EQ(didYouMean("jobavp", names), "; did you mean JobAVP?");
    EXPECT_EQ(didYouMean("Lokcer", names), "; did you mean Locker?");
    EXPECT_EQ(didYouMean("avp", names), "; did you mean JobAVP, JobAVPSeq or DocumentAVP?");
    EXPECT_EQ(didYouMean("Xyz", names), "");
    EXPECT_EQ(didYouMean("", names), "");
}

TEST(Descriptions, showDocumentationMembersAndArms)
{
    const std::string text = descriptionText(types::EventUnion, Catalogue());
    expectParts(text, {"EventUnion  union  locker.x:", "Most events say all there is to say.", "by Integer32 number ",
                       "Provisional: numbers until the station's makers agree on them\n",
                       "-1       string reason<65535>", "7        AccessUnion access", "default  void\n"});
    EXPECT_EQ(declaration(types::Locker.members[1].use, "code"), "ShortNatural code[10]");
    EXPECT_EQ(declaration(types::Neighbour.members.front().use, ""), "Locker *");

    const std::string enumeration = descriptionText(types::DoorState, Catalogue());
    expectParts(enumeration, {"enumerators\n    0    DSopen\n", "3    DSjammed   neither sensor switch is pressed\n",
                              "255  DSunknown\n"});
    const std::string structure = descriptionText(types::Locker, Catalogue());
    expectParts(structure, {"    LockerId id ", "string owner<40>", "\"\" while the door is free\n", "opaque seal[8]"});
}

// The mark of a member shows in the description and in the list of types; the summary counts it in settled types.
TEST(Descriptions, markProvisionalMembers)
{
    static constexpr Member fields[] = {{"id", {&types::LongNatural, 0, Form::single}, 0},
                                        {"colour", {&types::Natural, 0, Form::single}, 4},
                                        {"rest", {&types::Natural, 0, Form::single}, 6}};
    static constexpr Member arms[] = {{"kind", {&types::LongInteger, 0, Form::single}, 0},
                                      {"", {}, 0},
                                      {"number", {&types::LongNatural, 0, Form::single}, 4}};
    static constexpr Case cases[] = {{3, 1}, {7, 2}, {0xFFFFFFFE, 2}};
    static constexpr Type structure = {
        .name = "Panel", .kind = TypeKind::structure, .size = 8, .alignment = 4, .members = fields};
    static constexpr Type choice = {.name = "Choice",
                                    .kind = TypeKind::discriminatedUnion,
                                    .size = 8,
                                    .alignment = 4,
                                    .members = arms,
                                    .cases = cases,
                                    .armElement = "ChoiceUnion"};
    static constexpr Type draft = {
        .name = "Draft", .kind = TypeKind::structure, .size = 8, .alignment = 4, .members = fields};
    static constexpr MemberDocumentation ofFields[] = {{}, {"of the lamp", "until the lamp is chosen"}, {"", ""}};
    static constexpr MemberDocumentation ofArms[] = {{}, {}, {"", "its number may change"}};
    static constexpr Documentation documentation[] = {
        {.type = &structure, .line = 3, .members = ofFields},
        {.type = &choice, .line = 9, .members = ofArms},
        {.type = &draft, .line = 20, .provisional = "", .members = ofFields}};
    static constexpr Module panels = {"panels", "panels.x", "", documentation};
    static constexpr const Module* known[] = {&panels};
    addModules(known);

    const std::string text = descriptionText(structure, Catalogue()) + descriptionText(choice, Catalogue());
    expectParts(text, {"    LongNatural id  ", "  of the lamp  provisional: until the lamp is chosen\n",
                       "6..7                    provisional\n", "  arms  by LongInteger kind  ", "    3   void\n",
                       "    -2  LongNatural number   4      4..7       provisional: its number may change\n"});

    const std::vector<const Type*> all = typesOf(known);
    EXPECT_EQ(typesText(all),
              "Panel   struct  panels  2 provisional members\n"
              "Choice  union   panels  1 provisional member\n"
              "Draft   struct  panels  provisional\n");
    EXPECT_EQ(typesJson(all)[0]["provisionalMembers"].dump(), R"(["colour","rest"])");
    EXPECT_EQ(descriptionJson(choice, Catalogue())["arms"][1].dump(),
              R"({"cases":[-2,7],"name":"number","form":"single","type":"LongNatural","offset":4,"size":4,)"
              R"("leastOnWire":4,"mostOnWire":4,)"
              R"("provisional":"its number may change"})");
    for (const Type* type : all) EXPECT_TRUE(isProvisional(*type)) << type->name;
    EXPECT_FALSE(isProvisional(types::Locker));
    expectParts(summaryText(all, 0),
                {"layouts         2 settled, 1 provisional\nmembers         3 provisional in settled types\n"});
}

TEST(Descriptions, holdTheSameAsJson)
{
    const struct {
        const Type& type;
        const char* pointer;
        const char* value;
    } cases[] = {
        {types::DoorState, "/kind", R"("enum")"},
        {types::DoorState, "/enumerators/2",
         R"({"name":"DSjammed","value":3,"doc":"neither sensor switch is pressed"})"},
        {types::DoorState, "/enumerators/0", R"({"name":"DSopen","value":0})"},
        {types::DoorState, "/leastOnWire", "4"},
        {types::Key, "/kind", R"("fixed-length-opaque")"},
        {types::Row, "/kind", R"("fixed-length-array")"},
        {types::Picture, "/kind", R"("variable-length-opaque")"},
        {types::Locker, "/fields/0",
         R"({"name":"id","form":"single","type":"LockerId","offset":0,"size":4,"leastOnWire":4,"mostOnWire":4,)"
         R"("wireOffset":0})"},
        {types::Locker, "/fields/1",
         R"({"name":"code","form":"fixed-length-array","type":"ShortNatural","number":10,"offset":4,"size":10,)"
         R"("leastOnWire":40,"mostOnWire":40,"wireOffset":4})"},
        {types::Locker, "/fields/3",
         R"({"name":"owner","form":"string","maximum":40,"offset":24,"size":8,"leastOnWire":4,"mostOnWire":44,)"
         R"("doc":"\"\" while the door is free"})"},
        {types::EventUnion, "/provisional", R"("numbers until the station's makers agree on them")"},
        {types::EventUnion, "/discriminant",
         R"({"name":"number","form":"single","type":"Integer32","offset":0,"size":4,)"
         R"("leastOnWire":4,"mostOnWire":4})"},
        {types::EventUnion, "/hasDefault", "true"},
        {types::EventUnion, "/arms/0",
         R"({"cases":[-1],"name":"reason","form":"string","maximum":65535,"offset":8,"size":8,)"
         R"("leastOnWire":4,"mostOnWire":null})"},
        {types::AccessUnion, "/hasDefault", "false"},
        {types::AccessUnion, "/arms/0", R"({"cases":[0],"form":"void"})"},
        {types::AccessUnion, "/arms/2/cases", "[2,3]"},
        {types::Neighbour, "/target", R"({"form":"optional","type":"Locker"})"},
    };
    for (const auto& expected : cases) {
        const Json json = descriptionJson(expected.type, Catalogue());
        const Json::json_pointer pointer(expected.pointer);
        EXPECT_EQ(json.contains(pointer) ? json.at(pointer).dump() : "nothing", expected.value)
            << expected.type.name << expected.pointer;
    }
}

}  // namespace
