// JSON of the C++ layer, by the inspector's shared library.

#include "memory.h"

#include <quorvapixdr/documentation.h>
#include <quorvapixdr/json.h>
#include <quorvapixdr/types/jobs/kinds.h>
#include <quorvapixdr/types/station.h>

#include <gtest/gtest.h>

namespace quorva {
// The modules of the CMake target `every_form`.
std::span<const Module* const> exampleModules();
}  // namespace quorva

using namespace quorva;
using namespace quorva::test;

namespace {

constexpr char station[] = R"({"attribute":22,"frontLamp":"LCred"})";
constexpr char owned[] = R"({"kind":1,"owner":"Anna"})";

template <class T>
std::string errorsOf(std::string_view text, bool isMalformed = false)
{
    try {
        fromJson<T>(text);
        return "none";
    } catch (const JsonError& error) {
        EXPECT_EQ(error.isMalformed(), isMalformed);
        std::string lines;
        for (const JsonError::Entry& entry : error.errors()) lines += (lines.empty() ? "" : "\n") + entry.text();
        EXPECT_EQ(error.what(), lines);
        return lines;
    }
}

TEST(JsonOfValues, namesTheEnumeratorsOfTheLibrary)
{
    EXPECT_EQ(*fromJson<InterruptPriority>("\"IPNow\""), InterruptPriority::IPNow);
    EXPECT_EQ(toJson(InterruptPriority::IPNow), "\"IPNow\"");
    EXPECT_EQ(errorsOf<InterruptPriority>("\"IPNov\""),
              "1:1: \"IPNov\" is not an enumerator of InterruptPriority; did you mean IPNow?");
}

TEST(JsonOfValues, namesTheEnumeratorsOfAddedModules)
{
    const std::string numbersOnly = "1:29: /frontLamp: the enumerators of LampColour are known by their numbers only";
    EXPECT_TRUE(errorsOf<StationUnion>(station).starts_with(numbersOnly));
    addModules(exampleModules());
    const auto value = fromJson<StationUnion>(station);
    removeModules(exampleModules());
    EXPECT_TRUE(errorsOf<StationUnion>(station).starts_with(numbersOnly));
    EXPECT_EQ(toJson(*value), station);
}

TEST(JsonOfValues, tellsMalformedTexts)
{
    EXPECT_EQ(errorsOf<JobType>("[1", true), "1:3: not JSON: expected ',' or ']', found the end of the text");
    EXPECT_EQ(errorsOf<JobType>(std::string(600, '['), true), "1:513: values are nested deeper than 512 levels");
}

TEST(JsonOfValues, takesCodersAndIndents)
{
    const auto priority = fromJson("7", coder::JobPriority);
    EXPECT_EQ(toJson(*priority, coder::JobPriority), "7");
    EXPECT_EQ(toJson(*fromJson<AccessUnion>(owned), coder::AccessUnion, 1),
              "{\n \"kind\": \"AKowner\",\n \"owner\": \"Anna\"\n}");
    EXPECT_THROW(toJson(*priority, Coder<JobPriority>{XdrJobPriority, "Rank"}), std::domain_error);
}

TEST(JsonOfValues, leavesAZeroedObjectWhereMemoryIsShort)
{
    const std::string text =
        std::string(R"({"minutes":1,"offset":2,"paid":true,"sign":{"colour":1},"last":{"number":7,)") + R"("access":)" +
        owned + R"(},"drive":{"powered":false},"changes":[{"attribute":32,"key":)" +
        R"({"text":"ABCDABCDABCDABCD"}},{"attribute":485,"raw":{"text":"A"}}],"before":)" + owned + R"(,"rest":5})";
    for (long failing = 0;; ++failing) {
        Visit visit = {};
        const Visit zeroed = {};
        bool isFilled = false;
        {
            const Watch watch(failing);
            try {
                fromJson(description::Visit(), text, &visit);
                isFilled = true;
                releaseContents(XdrVisit, &visit);
            } catch (const std::bad_alloc&) {
            }
        }
        EXPECT_EQ(liveBlocks(), 0) << failing;
        if (isFilled) break;
        ASSERT_EQ(std::memcmp(&visit, &zeroed, sizeof visit), 0) << failing;
    }
}

}  // namespace
