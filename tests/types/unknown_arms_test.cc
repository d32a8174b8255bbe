// A union whose discriminant has no arm fails in every mode, release included, and only the discriminant is coded.

#include "codec_tools.h"
#include "tested_modules.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

using namespace quorva;
using namespace quorva::test;

namespace {

// Discriminants without an arm: the neighbours of the cases, and the limits of the range. `all` is the largest
// discriminant.
std::set<std::uint32_t> withoutArm(const Type& type, std::uint32_t all)
{
    std::set<std::uint32_t> cases, found = {all, all / 2, all / 2 + 1};
    for (const Case& each : type.cases) cases.insert(each.value & all);
    for (const std::uint32_t value : cases) found.insert({(value - 1) & all, (value + 1) & all});
    std::erase_if(found, [&](std::uint32_t value) { return cases.contains(value); });
    return found;
}

void setDiscriminant(void* object, std::size_t width, std::uint32_t value)
{
    if (width == sizeof value)
        std::memcpy(object, &value, sizeof value);
    else
        *static_cast<unsigned char*>(object) = static_cast<unsigned char>(value);
}

}  // namespace

TEST(UnknownArms, failInEveryMode)
{
    int unions = 0;
    for (const auto* module : testedModules())
        for (const Documentation& documented : module->types) {
            const Type* const type = documented.type;
            if (type->kind != TypeKind::discriminatedUnion || type->hasDefault) continue;
            const std::size_t width = type->members[0].use.type->size;
            ASSERT_TRUE(width == 4 || width == 1) << type->name;
            ++unions;
            for (const std::uint32_t value : withoutArm(*type, width == 1 ? 0xFF : 0xFFFFFFFF))
                for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) {
                    SCOPED_TRACE(std::string(type->name) + " " + std::to_string(value) + ", mode " +
                                 std::to_string(static_cast<int>(mode)));
                    std::vector<std::uint64_t> object((type->size + 7) / 8);
                    if (mode != Mode::decode) setDiscriminant(object.data(), width, value);
                    Bytes buffer(16384);
                    if (mode == Mode::decode) setUnit(buffer, 0, value);
                    const Pass pass = runPass(mode, type->routine, object.data(), buffer);
                    EXPECT_FALSE(pass.succeeded);
                    EXPECT_EQ(pass.length, mode == Mode::release ? 0u : 4u);
                    EXPECT_EQ(unitAt(buffer, 0), mode == Mode::release ? 0u : value);
                }
        }
    EXPECT_GT(unions, 0);
}
