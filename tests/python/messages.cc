// Prints messages of every type, whole and damaged, and what the codec makes of each: a JSON object on a line.
//
//   messages [--each N] [--seed S] [--cut]
//
// N whole messages of each type (default 2) and 6 damaged ones for each of them; with --cut also every prefix of the
// first one.

#include "fuzz/damage.h"
#include "inspect/documentation.h"
#include "inspect/input.h"
#include "inspect/json.h"
#include "inspect/object.h"
#include "support/tested_modules.h"

#include <quorvapixdr/explain.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace quorva {
std::span<const Module* const> pythonModules();
}

using namespace quorva;
using inspect::Json;

namespace {

std::string hexOf(std::span<const unsigned char> bytes)
{
    return inspect::hexDigits(bytes);
}

Json placeOf(const Failure& failure)
{
    return {failure.path, failure.offset, failure.reason};
}

void require(bool holds, const Type& type, std::span<const unsigned char> message, const char* what)
{
    if (holds) return;
    std::cerr << type.name << ' ' << hexOf(message).substr(0, 400) << ": " << what << '\n';
    std::exit(1);
}

// All values inside of a JSON value, and the value itself.
void addValues(Json& json, std::vector<Json*>& values)
{
    values.push_back(&json);
    if (json.is_structured())
        for (Json& inside : json) addValues(inside, values);
}

// Damages one value, mostly so that it is no longer the JSON form of the type.
Json damaged(Json json, fuzz::Chance& chance)
{
    static const Json others[] = {nullptr,
                                  true,
                                  0,
                                  2,
                                  -1,
                                  255,
                                  70000,
                                  1.5,
                                  4294967295u,
                                  1e300,
                                  -2147483648L,
                                  Json::object(),
                                  "",
                                  "two",
                                  "\u00e4",
                                  "zero\u0000",
                                  {{"hex", "0g"}},
                                  {{"text", "two"}},
                                  {0},
                                  {{"hex", "6869"}},
                                  {{"bits", "ffc00001"}}};
    std::vector<Json*> values;
    addValues(json, values);
    Json& value = *values[chance.below(values.size())];
    if (value.is_array() && !value.empty() && chance.oneIn(2)) {
        if (chance.oneIn(2))
            value.push_back(value.front());
        else
            value.erase(0);
    } else if (value.is_object() && !value.empty() && chance.oneIn(2)) {
        if (chance.oneIn(2))
            value["more/~"] = 0;
        else
            value.erase(std::next(value.begin(), static_cast<std::ptrdiff_t>(chance.below(value.size()))));
    } else {
        value = others[chance.below(std::size(others))];
    }
    return json;
}

// The bytes of an object that has this JSON form, or the path and the reason why it has none.
Json encodedOf(const Type& type, const Json& json)
{
    try {
        inspect::Object object = inspect::fromJson(type, json.dump());
        if (const auto failure = explain(type, object.data(), longestMessage)) return {failure->path, failure->reason};
        Bytes message(longestMessage);
        message.resize(runPass(Mode::encode, type.routine, object.data(), message).length);
        return hexOf(message);
    } catch (const JsonError& error) {
        return {error.errors().front().path, error.errors().front().sentence};
    }
}

// Answer, length and bytes are the codec's; the place of a refusal is what `explain` finds.
void print(const Type& type, Bytes message, fuzz::Chance& chance)
{
    if (message.size() > longestMessage) message.resize(longestMessage);
    Json line = {{"type", type.name}, {"message", hexOf(message)}};
    inspect::Object object(type);
    const Pass decode = runPass(Mode::decode, type.routine, object.data(), message);
    const std::optional<Failure> failure = explain(type, message);
    require(decode.succeeded == !failure, type, message, "it is explained otherwise than decoded");
    if (failure) {
        line["refused"] = placeOf(*failure);
    } else {
        Bytes again(decode.length);
        const Pass encode = runPass(Mode::encode, type.routine, object.data(), again);
        require(encode.succeeded, type, message, "it does not encode");
        again.resize(encode.length);
        line["length"] = decode.length;
        line["encoded"] = hexOf(again);
        line["json"] = inspect::objectJson(type, object.data());
        line["otherJson"] = damaged(line["json"], chance);
        line["otherEncoded"] = encodedOf(type, line["otherJson"]);
        if (!again.empty()) {
            Bytes shorter(chance.below(again.size()));
            const Pass failed = runPass(Mode::encode, type.routine, object.data(), shorter);
            const auto refusal = explain(type, object.data(), shorter.size());
            require(!failed.succeeded && refusal, type, message, "it fits into fewer bytes");
            line["limit"] = shorter.size();
            line["beyond"] = placeOf(*refusal);
        }
    }
    std::cout << line.dump() << '\n';
}

void printAll(const Type& type, std::size_t each, bool cut, inspect::Sampler& sampler, fuzz::Chance& chance)
{
    Bytes other;
    for (std::size_t i = 0; i < each; ++i) {
        const fuzz::Generated whole = fuzz::generate(sampler, type, chance);
        print(type, whole.message, chance);
        for (int k = 0; k < 6; ++k) {
            Bytes damaged = whole.message;
            for (std::size_t times = 1 + chance.below(2); times > 0; --times)
                fuzz::damage(damaged, whole.control, other, chance);
            print(type, std::move(damaged), chance);
        }
        for (std::size_t length = 0; cut && i == 0 && length < whole.message.size(); ++length)
            print(type, Bytes(whole.message.begin(), whole.message.begin() + static_cast<std::ptrdiff_t>(length)),
                  chance);
        other = whole.message;
    }
}

}  // namespace

int main(int count, char** arguments)
{
    std::size_t each = 2;
    std::uint64_t seed = 1;
    bool cut = false;
    for (int i = 1; i < count; ++i) {
        const std::string_view word = arguments[i];
        if (word == "--cut")
            cut = true;
        else if (word == "--each" && i + 1 < count)
            each = std::strtoul(arguments[++i], nullptr, 10);
        else if (word == "--seed" && i + 1 < count)
            seed = std::strtoul(arguments[++i], nullptr, 10);
        else
            return std::cerr << "usage: messages [--each N] [--seed S] [--cut]\n", 2;
    }
    addModules(exampleModules());  // for the names of their enumerators
    addModules(pythonModules());
    inspect::Sampler sampler;
    fuzz::Chance chance(seed);
    for (const auto& modules : {modules(), exampleModules(), pythonModules()})
        for (const Type* type : inspect::typesOf(modules)) printAll(*type, each, cut, sampler, chance);
    return std::cout.flush() ? 0 : 1;
}
