// Prints the JSON Schema of all types and, for each, JSON values with what `fromJson` says about them: a line with the
// schema, then lines {"type", "accepted", "json"}. schema_test.py compares a validator's opinion with it.
#include "inspect/chance.h"
#include "inspect/sample.h"
#include "inspect/schema.h"
#include "tested_modules.h"

#include <cstdio>

using namespace quorva;
using namespace quorva::inspect;

namespace {

void collect(Json& value, std::vector<Json*>& all)
{
    all.push_back(&value);
    for (Json& each : value)
        if (value.is_structured()) collect(each, all);
}

const Json others = Json::parse(R"([null, true, "damaged", "\u0000", -1, 1, 7, 1.5, 256, 65536, 5000000000,
    3.4028235e38, 3.5e38, [], {}, {"hex": "0"}, {"hex": "00"}, {"hex": "4142"}, {"hex": "4g"}, {"text": "ABC"},
    {"text": "ABCDEFGH"}, {"text": "A\u0000"}, {"bits": "7fc00001"}, {"bits": "7f"}, {"hex": "", "text": ""}])");

// Changes one place of the value.
void damage(Json& value, Chance& chance)
{
    std::vector<Json*> places;
    collect(value, places);
    Json& place = *places[chance.below(places.size())];
    if (place.is_object() && !place.empty() && chance.oneIn(2)) {
        place.erase(std::next(place.begin(), static_cast<std::ptrdiff_t>(chance.below(place.size()))));
    } else if (place.is_object() && chance.oneIn(2)) {
        place["damaged"] = 0;
    } else if (place.is_array() && !place.empty() && chance.oneIn(2)) {
        const Json last = place.back();
        if (chance.oneIn(2))
            place.erase(place.size() - 1);
        else
            for (std::size_t i = 0; i < 12; ++i) place.push_back(last);
    } else if (place.is_string() && chance.oneIn(2)) {
        place = std::string(chance.below(300), 'x');
    } else {
        place = others[chance.below(others.size())];
    }
}

bool isAccepted(const Type& type, const Json& value)
{
    try {
        fromJson(type, value.dump());
        return true;
    } catch (const JsonError&) {
        return false;
    }
}

void print(const Type& type, const Json& value)
{
    const Json line = {{"type", type.name}, {"accepted", isAccepted(type, value)}, {"json", value}};
    std::puts(line.dump().c_str());
}

}  // namespace

int main()
{
    std::vector<const Type*> types = typesOf(test::testedModules());
    types.insert(types.end(), builtinTypes().begin(), builtinTypes().end());
    std::puts(jsonSchemaOf(types).dump().c_str());
    for (const Type* type : types)
        if (type->kind == TypeKind::builtin || type->kind == TypeKind::typeDefinition)
            for (const Json& other : others) print(*type, other);
    Sampler sampler;
    for (const Type* type : types)
        for (std::uint64_t seed = 0; seed < 2; ++seed) {
            Bytes message = sampler.sample(*type, {Extent::random, seed, 128});
            Object object(*type);
            if (!runPass(Mode::decode, type->routine, object.data(), message).succeeded) return 1;
            Json value = objectJson(*type, object.data());
            print(*type, value);
            Chance chance(seed + message.size());
            damage(value, chance);
            print(*type, value);
        }
}
