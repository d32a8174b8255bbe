// Types that are not what their name or their neighbours suggest, each kept on purpose and with its reason.

#include "codec_tools.h"

#include <inspect/catalogue.h>
#include <inspect/object.h>

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::test;

TEST(OddTypes, areAsTheyAre)
{
    const char* const refused = nullptr;
    const struct {
        const char* why;
        const char* type;
        const char* message;
        const char* traced;  // part of the trace without its line breaks; null where the message is refused
    } cases[] = {
        {"every enumeration takes newer values", "ReturnStatus", "00000011", "<Error_in_Function>17</Error_in_Function>"},
        {"a hole in the numbers", "EventId", "00000079", "<Error_in_Function>121</Error_in_Function>"},
        {"every union but one refuses what it has no arm for", "DividersUnion", "00000002", refused},
        {"also in a hole of its discriminant", "SvcRegStatusUnion", "00000008", refused},
        {"the one union with a default arm", "TripleAEventUnion", "00000000",
         "<TripleAEventUnionUnion><default></default></TripleAEventUnionUnion>"},
        {"the union's element is named after the type, doubled or not", "DividersUnion", "00000001",
         "<DividersUnionUnion></DividersUnionUnion>"},
        {"a list in name, at most one record in fact; its number is another matter", "EssFaultRecordList", "00000003 00000000",
         "<numberOfRecords>3</numberOfRecords><listOfFaultRecords>false</listOfFaultRecords>"},
        {"an angle in name, a text in fact", "milliRadianVal", "00000003 31323300", "123"},
        {"an attribute that can be written", "DCPlatformManagerWriteUnion", "000001C9 00000001", "<rs422Attachment>true"},
        {"but not read", "DCPlatformManagerUnion", "000001C9 00000001", refused},
        {"id and discriminant are two numbers, which nobody compares", "IImageServiceAVP", "00000007 00000002 00000009",
         "<id>7</id><value><attribute>2</attribute>"},
        {"a shape kept for capabilities that never came", "IImageCapabilityUnion", "00000000 00000007", "<junk>7</junk>"},
        {"which holds nothing else", "IImageCapabilityUnion", "00000001 00000007", refused},
        {"a smaller maximum than its siblings have", "TemplateIdSeq", "00000006", refused},
        {"the plain encoded string takes less than the short one", "EncodedString",
         "00000000 00000029 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000",
         refused},
    };
    const inspect::Catalogue catalogue;
    for (const auto& expected : cases) {
        SCOPED_TRACE(std::string(expected.type) + ": " + expected.why);
        const auto* type = catalogue.find(expected.type);
        ASSERT_NE(type, nullptr);
        inspect::Object object(*type);
        Bytes message = bytesOf(expected.message);
        TraceText trace;
        const Pass pass = runTraced(decoding, type->routine, type->name, object.data(), message, trace);
        EXPECT_EQ(pass.succeeded, expected.traced != refused);
        if (!pass.succeeded || !expected.traced) continue;
        EXPECT_EQ(pass.length, message.size());
        std::string text;
        for (const char c : trace.text())
            if (c != '\n' && c != ' ') text += c;
        EXPECT_NE(text.find(expected.traced), std::string::npos) << text;
    }
}
