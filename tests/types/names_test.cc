// Every name function over the values of its enumeration, the numbers around and between them, and the limits of int.

#include "tested_modules.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <set>
#include <string>

using namespace quorva;
using namespace quorva::test;

namespace {

constexpr int widest = 100000;  // the longest range of values of which every number is tried

// The values, their neighbours, and the numbers that a narrower integer would confuse with them.
std::set<int> numbersToTry(const std::map<int, std::string>& names)
{
    std::set<int> numbers = {INT_MIN, INT_MIN + 1, -2, -1, 0, 1, INT_MAX - 1, INT_MAX};
    const auto add = [&](long long value) {
        if (value >= INT_MIN && value <= INT_MAX) numbers.insert(static_cast<int>(value));
    };
    for (const auto& [value, name] : names)
        for (const long long wrapped : {0LL, 1LL << 8, 1LL << 16, 1LL << 31})
            for (const long long near : {-1, 0, 1}) {
                add(value + near + wrapped);
                add(value + near - wrapped);
            }
    const long long first = names.begin()->first;
    const long long last = names.rbegin()->first;
    for (long long value = first; last - first < widest && value <= last; ++value) add(value);
    return numbers;
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
            for (const int value : numbersToTry(names)) {
                const auto known = names.find(value);
                ASSERT_EQ(type.nameOf(value), known == names.end() ? "Error_in_Function" : known->second) << value;
            }
        }
    EXPECT_GT(enumerations, 0);
}
