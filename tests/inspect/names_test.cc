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
}

}  // namespace
