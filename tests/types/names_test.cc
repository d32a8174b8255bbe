// Every name function over every value of its enumeration, the numbers around and between them, and the ends of int.

#include "tested_modules.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <set>
#include <string>

using namespace quorva;
using namespace quorva::test;

namespace {

constexpr int widest = 100000;  // of the ranges whose every number is asked for

// The values themselves, their neighbours, and what a narrower number or a table index would take for them.
std::set<int> askedOf(const std::map<int, std::string>& names)
{
    std::set<int> asked = {INT_MIN, INT_MIN + 1, -2, -1, 0, 1, INT_MAX - 1, INT_MAX};
    const auto ask = [&](long long value) {
        if (value >= INT_MIN && value <= INT_MAX) asked.insert(static_cast<int>(value));
    };
    for (const auto& [value, name] : names)
        for (const long long wrapped : {0LL, 1LL << 8, 1LL << 16, 1LL << 31})
            for (const long long near : {-1, 0, 1}) {
                ask(value + near + wrapped);
                ask(value + near - wrapped);
            }
    const long long first = names.begin()->first;
    const long long last = names.rbegin()->first;
    for (long long value = first; last - first < widest && value <= last; ++value) ask(value);
    return asked;
}

}  // namespace

TEST(NameFunctions, agreeWithTheTable)
{
    int enumerations = 0;
    for (const auto* module : testedModules())
        for (const Documentation& documented : module->types) {
            const Type& type = *documented.type;
            if (!type.nameOf) continue;
            ++enumerations;
            SCOPED_TRACE(type.name);
            std::map<int, std::string> names;
            for (const auto& enumerator : documented.enumerators) names.emplace(enumerator.value, enumerator.name);
            ASSERT_EQ(names.size(), documented.enumerators.size());
            ASSERT_FALSE(names.empty());
            for (const int value : askedOf(names)) {
                const auto known = names.find(value);
                ASSERT_EQ(type.nameOf(value), known == names.end() ? "Error_in_Function" : known->second) << value;
            }
        }
    EXPECT_GT(enumerations, 0);
}
