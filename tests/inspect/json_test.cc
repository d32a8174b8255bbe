// JSON: the form of every kind of value in both directions, and the errors of wrong JSON.

#include "inspect/json.h"
#include "inspect/input.h"
#include "locker_types.h"

#include <gtest/gtest.h>

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

std::string errorsOf(const Type& type, const std::string& text)
{
    try {
        fromJson(type, parseJson(text));
        return "none";
    } catch (const JsonError& error) {
        return error.what();
    } catch (const InputError& error) {
        return std::to_string(error.line) + ':' + std::to_string(error.column) + ": " + error.what();
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
        EXPECT_EQ(toJson(form.type, object.data()).dump(), form.json);
        Object again = fromJson(form.type, parseJson(form.json));
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
    };
    for (const Form& form : spellings) {
        SCOPED_TRACE(form.json);
        Object object = fromJson(form.type, parseJson(form.json));
        EXPECT_EQ(encoded(object), *bytesOfDigits(form.message));
    }
}

TEST(Json, tellsPlaceAndExpectationOfAnError)
{
    const std::string longString(41, 'x');
    const char* const floatWanted =
        R"(expected a number or {"bits": "7fc00001"} with eight hexadecimal digits, found an object)";
    const struct {
        const Type& type;
        std::string json, error;
    } wrong[] = {
        {types::Natural, "70000", "expected a whole number from 0 to 65535, found 70000"},
        {types::Natural, "5.5", "expected a whole number from 0 to 65535, found 5.5"},
        {types::LongInteger, "18446744073709551615",
         "expected a whole number from -2147483648 to 2147483647, found 18446744073709551615"},
        {types::Boolean, "256", "expected true, false or a number from 0 to 255, found 256"},
        {types::Float, "1e39", "the number 1e+39 is beyond the largest Float"},
        {types::Float, R"({"bits":"7fc0"})", floatWanted},
        {types::Float, R"({"bits":7})", floatWanted},
        {types::Float, R"({"bits":"7fc0000g"})", floatWanted},
        {types::Float, R"({"bits":"7fc00001","x":0})", floatWanted},
        {types::Float, R"({"sign":"7fc00001"})", floatWanted},
        {types::DoorState, "\"DSjamed\"", "\"DSjamed\" is not an enumerator of DoorState; did you mean DSjammed?"},
        {types::DoorState, "null", "expected an enumerator of DoorState or its number, found null"},
        {types::LockerIdSeq, "[1, 2, -3]", "/2: expected a whole number from 0 to 4294967295, found -3"},
        {types::LockerIdSeq, "[1,2,3,4,5,6,7]", "expected an array of at most 6 LockerId, found 7"},
        {types::LockerIdSeq, "{}", "expected an array of at most 6 LockerId, found an object"},
        {types::Key, R"({"text":"ABC"})", "expected exactly 16 bytes, found 3"},
        {types::Picture, R"({"hex":"abc"})", R"(expected {"hex": "..."} or {"text": "..."}, found an object)"},
        {types::Picture, R"({"oct":"abc"})", R"(expected {"hex": "..."} or {"text": "..."}, found an object)"},
        {types::Picture, R"({"hex":7})", R"(expected {"hex": "..."} or {"text": "..."}, found an object)"},
        {types::StationUnion, R"({"attribute":40,"counters":[1,2]})",
         "/counters: expected an array of exactly 3 UINT, found 2"},
        {types::Picture, R"("abc")", R"(expected {"hex": "..."} or {"text": "..."}, found "abc")"},
        {types::AccessUnion, R"({"kind":"AKowner"})", "the field \"owner\" of AccessUnion is missing"},
        {types::AccessUnion, R"({"kind":9})", "/kind: kind 9 has no arm in AccessUnion"},
        {types::AccessUnion, R"({"kind":0,"owner":""})", "/owner: kind AKnobody (0) has no contents"},
        {types::AccessUnion, R"({"kind":2,"members":[],"owner":""})",
         "/owner: kind AKgroup (2) goes with the arm \"members\""},
        {types::AccessUnion, R"({"kind":1,"owner":")" + longString + R"("})",
         "/owner: expected a string of at most 40 bytes, found 41"},
        {types::AccessUnion, R"({"kind":1,"owner":"a\u0000b"})", "/owner: a string cannot hold a zero byte"},
        {types::AccessUnion, R"({"kind":1,"kind":2})", "/kind: the field is given twice"},
        {types::SignUnion, R"([{"colour":1}])",
         "expected an object with the field \"colour\" and its arm of SignUnion, found an array"},
        {types::StationUnion, R"({"attribute":23,"doors":[{"id":1,"id":2}]})", "/doors/0/id: the field is given twice"},
        {types::Drive, R"({"powered":1,)",
         "1:14: not JSON: syntax error while parsing object key - unexpected end of input; "
         "expected string literal"},
    };
    for (const auto& [type, json, error] : wrong) EXPECT_EQ(errorsOf(type, json), error) << json;
}

TEST(Json, tellsAllErrorsAtOnce)
{
    EXPECT_EQ(errorsOf(types::Visit, R"({"minutes": 70000, "offset": 0, "paid": "no", "sing": {}, "sign": {"colour": 0},
                                         "last": {"number": 7, "access": {"kind": 1, "owner": 7}},
                                         "drive": {"powered": false},
                                         "changes": [{"attribute": 7}, {"attribute": 485, "raw": {"text": "ABC"}}],
                                         "a/b~c": 0, "before": null})"),
              "/minutes: expected a whole number from -32768 to 32767, found 70000\n"
              "/paid: expected true, false or a number from 0 to 255, found \"no\"\n"
              "/last/access/owner: expected a string, {\"hex\": \"...\"} or null, found 7\n"
              "/changes/0/attribute: attribute 7 has no arm in StationUnion\n"
              "the field \"rest\" of Visit is missing\n"
              "/sing: no such field in Visit; did you mean sign?\n"
              "/a~1b~0c: no such field in Visit");
}

TEST(Json, boundsTheNesting)
{
    const std::string open(5000, '['), closed(5000, ']');
    EXPECT_EQ(errorsOf(types::LockerIdSeq, open + closed), "values are nested too deeply");
}

TEST(Json, tellsTwentyErrorsAtMost)
{
    const std::string errors = errorsOf(types::Neighbour, R"({"nested":[{},{},{}]})");
    EXPECT_EQ(std::ranges::count(errors, '\n'), 19) << errors;
}

}  // namespace
