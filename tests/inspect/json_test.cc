// JSON: the form of every kind of value in both directions, and the errors of wrong JSON.

#include "inspect/json.h"
#include "inspect/input.h"
#include "locker_types.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace quorva;
using namespace quorva::inspect;

namespace {

Bytes encoded(Object& object)
{
    Bytes message(longestMessage);
    const Pass pass = runPass(Mode::encode, object.type().routine, object.data(), message);
    EXPECT_TRUE(pass.succeeded);
    message.resize(pass.length);
    return message;
}

std::string errorsOf(const Type& type, std::string_view text)
{
    try {
        fromJson(type, text);
        return "none";
    } catch (const JsonError& error) {
        return error.what();
    }
}

struct Form {
    const Type& type;
    const char* message;
    const char* json;
};

const Form forms[] = {
    {types::Boolean, "00000001", "true"},
    {types::Boolean, "00000002", "2"},
    {types::ShortInteger, "000000ff", "-1"},
    {types::Integer, "ffff8000", "-32768"},
    {types::UINT, "ffffffff", "4294967295"},
    {types::Float, "3dcccccd", "0.1"},
    {types::Float, "80000000", "-0.0"},
    {types::Float, "00000001", "1e-45"},
    {types::Float, "7f7fffff", "3.4028235e+38"},
    {types::Float, "7fc00001", R"({"bits":"7fc00001"})"},
    {types::Float, "ff800000", R"({"bits":"ff800000"})"},
    {types::DoorState, "00000003", R"("DSjammed")"},
    {types::DoorState, "00000002", "2"},
    {types::DoorState, "ffffffff", "-1"},
    {types::LockerIdSeq, "00000000", "[]"},
    {types::LockerIdSeq, "0000000200000007ffffffff", "[7,4294967295]"},
    {types::Key, "41424300000000000000000000000000", R"({"hex":"41424300000000000000000000000000"})"},
    {types::Key, "41424344414243444142434441424344", R"({"text":"ABCDABCDABCDABCD"})"},
    {types::Picture, "00000000", R"({"hex":""})"},
    {types::Picture, "0000000141000000", R"({"text":"A"})"},
    {types::Picture, "000000010a000000", R"({"hex":"0a"})"},
    {types::Neighbour, "00000000", "null"},
    {types::AccessUnion, "00000000", R"({"kind":"AKnobody"})"},
    {types::AccessUnion, "0000000100000002c3a40000", R"({"kind":"AKowner","owner":"ä"})"},
    {types::AccessUnion, "0000000100000001e4000000", R"({"kind":"AKowner","owner":{"hex":"e4"}})"},
    {types::AccessUnion, "0000000100000003eda08000", R"({"kind":"AKowner","owner":{"hex":"eda080"}})"},
    {types::AccessUnion, "0000000100000003ee808000", "{\"kind\":\"AKowner\",\"owner\":\"\xee\x80\x80\"}"},
    {types::AccessUnion, "0000000100000003e0808000", R"({"kind":"AKowner","owner":{"hex":"e08080"}})"},
    {types::AccessUnion, "0000000100000004f0908080", "{\"kind\":\"AKowner\",\"owner\":\"\xf0\x90\x80\x80\"}"},
    {types::AccessUnion, "0000000100000004f08fbfbf", R"({"kind":"AKowner","owner":{"hex":"f08fbfbf"}})"},
    {types::AccessUnion, "0000000100000004f4908080", R"({"kind":"AKowner","owner":{"hex":"f4908080"}})"},
    {types::AccessUnion, "00000003000000010000000a", R"({"kind":"AKshift","members":[10]})"},
    {types::Drive, "00000001000003e8", R"({"powered":true,"openingTime":1000})"},
    {types::EventUnion, "00000005", R"({"number":5})"},
    {types::StationUnion, "00000028000000010000000200000003", R"({"attribute":40,"counters":[1,2,3]})"},
};

TEST(Json, convertsEachFormBothWays)
{
    for (const Form& form : forms) {
        SCOPED_TRACE(std::string(form.type.name) + ' ' + form.message);
        Bytes message = *bytesOfDigits(form.message);
        Object object(form.type);
        ASSERT_TRUE(runPass(Mode::decode, form.type.routine, object.data(), message).succeeded);
        EXPECT_EQ(objectJson(form.type, object.data()).dump(), form.json);
        Object again = fromJson(form.type, form.json);
        EXPECT_EQ(encoded(again), message);
    }
}

TEST(Json, readsOtherSpellings)
{
    const Form spellings[] = {
        {types::DoorState, "00000003", "3"},
        {types::Boolean, "00000001", "1"},
        {types::Float, "3f800000", "1"},
        {types::Picture, "00000002c3a40000", R"({"text":"ä"})"},
        {types::AccessUnion, "000000010000000141000000", R"({"owner":{"hex":"41"},"kind":1})"},
        {types::AccessUnion, "000000010000000541c3a40122000000", R"({"\u006bind":1,"owner":"\u0041\u00e4\u0001\""})"},
        {types::AccessUnion, "0000000100000004f09f9880", R"({"kind":1,"owner":"\ud83d\ude00"})"},
    };
    for (const Form& form : spellings) {
        SCOPED_TRACE(form.json);
        Object object = fromJson(form.type, form.json);
        EXPECT_EQ(encoded(object), *bytesOfDigits(form.message));
    }
}

TEST(Json, tellsPlaceAndExpectationOfAnError)
{
    const std::string longString(41, 'x');
    const char* const floatWanted =
        R"(1:1: expected a number or {"bits": "7fc00001"} with eight hexadecimal digits, found an object)";
    const struct {
        const Type& type;
        std::string json, error;
    } wrong[] = {
        {types::Natural, "70000", "1:1: expected a whole number from 0 to 65535, found 70000"},
        {types::Natural, "5.5", "1:1: expected a whole number from 0 to 65535, found 5.5"},
        {types::LongInteger, "18446744073709551615",
         "1:1: expected a whole number from -2147483648 to 2147483647, found 18446744073709551615"},
        {types::Boolean, "256", "1:1: expected true, false or a number from 0 to 255, found 256"},
        {types::Float, "1e39", "1:1: the number 1e39 is beyond the largest Float"},
        {types::Float, R"({"bits":"7fc0"})", floatWanted},
        {types::Float, R"({"bits":7})", floatWanted},
        {types::Float, R"({"bits":"7fc0000g"})", floatWanted},
        {types::Float, R"({"bits":"7fc00001","x":0})", floatWanted},
        {types::Float, R"({"sign":"7fc00001"})", floatWanted},
        {types::DoorState, "\"DSjamed\"", "1:1: \"DSjamed\" is not an enumerator of DoorState; did you mean DSjammed?"},
        {types::DoorState, "null", "1:1: expected an enumerator of DoorState or its number, found null"},
        {types::LockerIdSeq, "[1, 2, -3]", "1:8: /2: expected a whole number from 0 to 4294967295, found -3"},
        {types::LockerIdSeq, "[1,2,3,4,5,6,7]", "1:1: expected an array of at most 6 LockerId, found 7"},
        {types::LockerIdSeq, "{}", "1:1: expected an array of at most 6 LockerId, found an object"},
        {types::Key, R"({"text":"ABC"})", "1:1: expected exactly 16 bytes, found 3"},
        {types::Picture, R"({"hex":"abc"})", R"(1:1: expected {"hex": "..."} or {"text": "..."}, found an object)"},
        {types::Picture, R"({"oct":"abc"})", R"(1:1: expected {"hex": "..."} or {"text": "..."}, found an object)"},
        {types::Picture, R"({"hex":7})", R"(1:1: expected {"hex": "..."} or {"text": "..."}, found an object)"},
        {types::StationUnion, R"({"attribute":40,"counters":[1,2]})",
         "1:28: /counters: expected an array of exactly 3 UINT, found 2"},
        {types::Picture, R"("abc")", R"(1:1: expected {"hex": "..."} or {"text": "..."}, found "abc")"},
        {types::AccessUnion, R"({"kind":"AKowner"})", "1:1: the field \"owner\" of AccessUnion is missing"},
        {types::AccessUnion, R"({"kind":9})", "1:9: /kind: kind 9 has no arm in AccessUnion"},
        {types::AccessUnion, R"({"kind":0,"owner":""})",
         "1:11: kind AKnobody (0) has no contents, but \"owner\" is given"},
        {types::AccessUnion, R"({"kind":2,"members":[],"owner":""})",
         "1:24: kind AKgroup (2) goes with the arm \"members\", not with \"owner\""},
        {types::AccessUnion, R"({"kind":1,"owner":")" + longString + R"("})",
         "1:19: /owner: expected a string of at most 40 bytes, found 41"},
        {types::AccessUnion, R"({"kind":1,"owner":"a\u0000b"})", "1:19: /owner: a string cannot hold a zero byte"},
        {types::AccessUnion, R"({"kind":0,"kind":2})", "1:11: /kind: the field is given twice"},
        {types::SignUnion, R"([{"colour":1}])",
         "1:1: expected an object with the field \"colour\" and its arm of SignUnion, found an array"},
        {types::SignUnion, R"({"colour":1,"colour":1,"a\u001b/b":0})",
         "1:13: /colour: the field is given twice\n"
         "1:24: colour LCgreen (1) has no contents, but \"a\\u001b/b\" is given"},
    };
    for (const auto& [type, json, error] : wrong) EXPECT_EQ(errorsOf(type, json), error) << json;
}

TEST(Json, tellsAllErrorsAtOnce)
{
    EXPECT_EQ(errorsOf(types::Visit, R"({"minutes": 70000, "offset": 0, "paid": "no", "sing": {}, "sign": {"colour": 0},
 "last": {"number": 7, "access": {"owner": 7, "kind": 1}}, "paid": 0,
 "drive": {"powered": false},
 "changes": [{"attribute": 7}, {"attribute": 485, "raw": {"text": "ABC"}}],
 "a/b~c": 0, "before": null})"),
              "1:13: /minutes: expected a whole number from -32768 to 32767, found 70000\n"
              "1:41: /paid: expected true, false or a number from 0 to 255, found \"no\"\n"
              "1:47: Visit has no field \"sing\"; did you mean sign?\n"
              "2:44: /last/access/owner: expected a string, {\"hex\": \"...\"} or null, found 7\n"
              "2:60: /paid: the field is given twice\n"
              "4:28: /changes/0/attribute: attribute 7 has no arm in StationUnion\n"
              "5:2: Visit has no field \"a/b~c\"\n"
              "1:1: the field \"rest\" of Visit is missing");
}

TEST(Json, placesEachKindOfToken)
{
    EXPECT_EQ(
        errorsOf(types::LockerIdSeq, "\xEF\xBB\xBF[ null,\r\n\ttrue , \"a\\\\\\\"],\",-1.50e+3\n,{\"x\":[{},7]},[]]"),
        "1:6: /0: expected a whole number from 0 to 4294967295, found null\n"
        "2:2: /1: expected a whole number from 0 to 4294967295, found true\n"
        "2:9: /2: expected a whole number from 0 to 4294967295, found \"a\\\\\\\"],\"\n"
        "2:19: /3: expected a whole number from 0 to 4294967295, found -1.50e+3\n"
        "3:2: /4: expected a whole number from 0 to 4294967295, found an object\n"
        "3:15: /5: expected a whole number from 0 to 4294967295, found an array");
}

TEST(Json, tellsWhereATextIsNotJson)
{
    const char escapes[] = R"(an escape is \" \\ \/ \b \f \n \r \t, or \u with four hexadecimal digits)";
    const struct {
        std::string_view text;
        std::string error;
    } wrong[] = {
        {"", "1:1: not JSON: expected a value, found the end of the text"},
        {"[1,\n 2", "2:3: not JSON: expected ',' or ']', found the end of the text"},
        {"[1,]", "1:4: not JSON: expected a value, found ']'"},
        {"[1}", "1:3: not JSON: expected ',' or ']', found '}'"},
        {"{a: 1}", "1:2: not JSON: expected a name in double quotes or '}', found \"a\""},
        {R"({"a":1,})", "1:8: not JSON: expected a name in double quotes, found '}'"},
        {R"({"a" 1})", "1:6: not JSON: expected ':', found \"1\""},
        {R"({"a":1 "b":2})", "1:8: not JSON: expected ',' or '}', found '\"'"},
        {"None", "1:1: not JSON: expected a value, found \"None\""},
        {"nulls", "1:1: not JSON: expected a value, found \"nulls\""},
        {"7 8", "1:3: not JSON: expected the end of the text, found \"8\""},
        {{"7\0 8", 4}, "1:2: not JSON: expected the end of the text, found byte 0x00"},
        {"\xE2\x80\x9C", "1:1: not JSON: expected a value, found byte 0xe2"},
        {" 01", "1:2: not JSON: \"01\" is not a number"},
        {"-", "1:1: not JSON: \"-\" is not a number"},
        {"1.", "1:1: not JSON: \"1.\" is not a number"},
        {"1e+", "1:1: not JSON: \"1e+\" is not a number"},
        {"0x10", "1:1: not JSON: \"0x10\" is not a number"},
        {"[\"abc", "1:2: not JSON: the string has no closing quote"},
        {"\"a\\", std::string("1:3: not JSON: ") + escapes},
        {R"("\x41")", std::string("1:2: not JSON: ") + escapes},
        {R"("\u12g4")", std::string("1:2: not JSON: ") + escapes},
        {R"("\ud83d\u0041")", "1:2: not JSON: half of a surrogate pair"},
        {R"("\ude00")", "1:2: not JSON: half of a surrogate pair"},
        {"\"a\nb\"", "1:3: not JSON: a string with the control character 0x0a; write it as \\u000a"},
        {"\"a\xE4\"", "1:3: not JSON: byte 0xe4 of a string is not UTF-8"},
    };
    for (const auto& [text, error] : wrong) EXPECT_EQ(errorsOf(types::Float, text), error);
}

TEST(Json, boundsTheNesting)
{
    EXPECT_EQ(errorsOf(types::LockerIdSeq, std::string(5000, '[')), "1:513: values are nested deeper than 512 levels");
}

// Takes milliseconds, or hours if the time for one of the texts is quadratic.
TEST(Json, readsLongTextsInLinearTime)
{
    const auto repeated = [](std::string_view unit) {
        std::string text;
        while (text.size() < 3'000'000) text += unit;
        return text;
    };
    const std::string texts[] = {'[' + repeated("{},") + "0]",
                                 '{' + repeated("\"rest\":[],") + "\"\":0}",
                                 repeated("[[],"),
                                 '"' + repeated("\\u00e4") + '"',
                                 repeated("7"),
                                 repeated("\n") + "x"};
    const auto begin = std::chrono::steady_clock::now();
    for (const std::string& text : texts)
        for (const Type* type : {&types::Visit, &types::StationUnion, &types::LockerIdSeq, &types::Float})
            EXPECT_NE(errorsOf(*type, text), "none");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::minutes(1));
}

TEST(Json, tellsTwentyErrorsAtMostAndThatThereAreMore)
{
    std::string text = R"({"attribute":40,"counters":[1,2,3])";
    for (int i = 0; i < 20; ++i) text += R"(,"unknown":0)";
    const std::string errors = errorsOf(types::StationUnion, text + '}');
    EXPECT_EQ(std::ranges::count(errors, '\n'), 19) << errors;
    EXPECT_EQ(errorsOf(types::StationUnion, text + R"(,"unknown":0})"),
              errors + "\nthere are more errors; these are the first 20");
}

}  // namespace
