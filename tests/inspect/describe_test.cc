// Sizes, users and searches: properties over all types, and hits among the example types.

#include "inspect/find.h"
#include "inspect/sample.h"
#include "inspect/schema.h"
#include "inspect/sizes.h"
#include "inspect/tree.h"
#include "inspect/users.h"
#include "locker_types.h"

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::inspect;

namespace {

TEST(Sizes, boundEveryMessage)
{
    const WireSizes sizes;
    Sampler sampler;
    std::size_t atMost = 0, fixed = 0;
    for (const Type* type : typesOf(test::testedModules())) {
        const WireSize size = sizes.of(*type);
        EXPECT_EQ(sampler.sample(*type, {Extent::least, 0, 0}).size(), size.least) << type->name;
        for (const Recipe& recipe : {Recipe{Extent::random, 1, 300}, Recipe{Extent::random, 2, 300},
                                     Recipe{Extent::random, 3, 300}, Recipe{Extent::most, 0, 20000}}) {
            const Bytes message = sampler.sample(*type, recipe);
            EXPECT_GE(message.size(), size.least) << type->name;
            EXPECT_LE(message.size(), size.most) << type->name;
            atMost += recipe.extent == Extent::most && message.size() == size.most;

            if (type->kind != TypeKind::structure) continue;
            const Tree tree(*type, message);
            const auto offsets = sizes.offsetsIn(*type);
            for (std::uint32_t i = Tree::first(0); i < tree.nodes()[0].end; i = tree.nodes()[i].end) {
                const Node& node = tree.nodes()[i];
                const auto offset = offsets[static_cast<std::size_t>(node.member - type->members.data())];
                if (!offset) continue;
                EXPECT_EQ(node.offset, *offset) << type->name << '.' << node.member->name;
                ++fixed;
            }
        }
    }
    EXPECT_GT(atMost, 1000U);  // the maximum is not only an upper bound
    EXPECT_GT(fixed, 5000U);
}

TEST(Sizes, areUnboundedWhereATypeContainsItself)
{
    const WireSizes sizes;
    EXPECT_EQ(sizes.of(types::Neighbour).most, WireSizes::unbounded);
    EXPECT_EQ(sizes.of(types::Locker).most, WireSizes::unbounded);
    EXPECT_EQ(sizes.of(types::Row).most, 24U);
}

TEST(Users, areFoundThroughTypedefsAndMembers)
{
    const std::vector<const Type*> all = typesOf(test::testedModules());
    const Users users(all);
    EXPECT_EQ(users.direct(types::DoorState), (std::vector<std::string>{"Locker.DoorState", "Row"}));
    std::string indirect;
    for (const Type* user : users.indirect(types::DoorState)) indirect += std::string(user->name) + ' ';
    EXPECT_EQ(indirect, "Neighbour StationUnion Visit ");  // Locker has a Row too, but is not repeated
}

std::string hitsOf(std::string_view word, std::optional<HitKind> only = std::nullopt)
{
    static const std::vector<const Type*> known{&types::AccessUnion, &types::DoorState, &types::EventUnion,
                                                &types::Locker,      &types::Neighbour, &types::StationUnion};
    return hitsText(findHits(word, known, only), 5);
}

TEST(Find, ranksHits)
{
    const struct {
        const char* word;
        const char* hits;
    } searches[] = {
        {"owner",
         "member  Locker.owner                   locker.x:34  string owner<40>\n"
         "arm     AccessUnion AKowner (1) owner  locker.x:52  string owner<40>\n"},
        {"DSJAM", "enumerator  DoorState DSjammed = 3  locker.x:13\n"},
        {"0xFFFFFFFF", "arm  EventUnion -1 reason  locker.x:67  string reason<65535>\n"},
        {"1",
         "arm         AccessUnion AKowner (1) owner  locker.x:52  string owner<40>\n"
         "enumerator  DoorState DSclosed = 1         locker.x:13\n"
         "procedure   STATION.STATION_V1.look = 1    locker.x:76  Locker look(LockerId)\n"},
        {"*state",
         "type    DoorState         locker.x:13  enum\n"
         "member  Locker.DoorState  locker.x:34  DoorState DoorState\n"},
        {"LAMP",
         "member  Locker.lamp                locker.x:34  LampColour lamp\n"
         "arm     StationUnion 22 frontLamp  station.x:8  LampColour frontLamp\n"},
        {"neither", "text  DoorState.DSjammed  locker.x:13  neither sensor switch is pressed\n"},
        {"zebra", ""},
        {"", ""},
    };
    for (const auto& [word, hits] : searches) EXPECT_EQ(hitsOf(word), hits) << word;
    EXPECT_EQ(hitsOf("owner", HitKind::text),
              "text  Locker  locker.x:34  All ten bytes of the code are always sent; the owner pads short codes with "
              "zeros.\n");
    EXPECT_TRUE(hitsOf("s").ends_with("and 18 more (--all)\n"));
}

TEST(Schema, isWrittenForAllTypes)
{
    const Json schema = schemaJson(Catalogue());
    EXPECT_EQ(schema["types"].size(), Catalogue().types().size());
    EXPECT_GE(schema["modules"].size(), modules().size());  // other tests add some
}

}  // namespace
