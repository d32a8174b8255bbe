// Invented messages of every type of the library: plausible ones, and those with a chosen arm.

#include "inspect/sample.h"
#include "explain/layout.h"
#include "inspect/documentation.h"
#include "inspect/json.h"
#include "locker_types.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using namespace quorva;
using namespace quorva::inspect;
using namespace std::literals;

namespace {

// Looks through the JSON form of a value.
class Review {
public:
    Review(const Type& type, Bytes message)
    {
        Object object(type);
        const Pass pass = runPass(Mode::decode, type.routine, object.data(), message);
        Bytes again(message.size());
        if (!pass.succeeded || pass.length != message.size() ||
            !runPass(Mode::encode, type.routine, object.data(), again).succeeded || again != message)
            add("", "does not come back");
        else
            value(type, objectJson(type, object.data()), "");
    }

    std::string findings;        // a line "path: what" for each implausible value
    std::set<std::string> arms;  // "TYPE=VALUE" for each union

private:
    void add(const std::string& path, const char* what) { findings += path + ": " + what + '\n'; }

    void use(const Use& use, const Json& json, const std::string& path)
    {
        if (use.form == Form::string && !isText(json)) add(path, "not a text");
        if (json.is_array())
            for (std::size_t i = 0; i < json.size(); ++i) value(*use.type, json[i], path + '/' + std::to_string(i));
        else if (use.type && !json.is_null())
            value(*use.type, json, path);
    }

    void value(const Type& type, const Json& json, const std::string& path)
    {
        if (type.kind == TypeKind::typeDefinition) return use(targetOf(type), json, path);
        if (type.kind == TypeKind::enumeration && !json.is_string()) add(path, "no enumerator");
        if (type.builtin == Builtin::Boolean && !json.is_boolean()) add(path, "not a Boolean");
        for (const Member& member : type.members) {
            if (!*member.name || !json.contains(member.name)) continue;
            use(member.use, json[member.name], path + '/' + member.name);
            if (type.kind == TypeKind::structure) checkTwins(type, member, json, path);
        }
        if (type.kind == TypeKind::discriminatedUnion) {
            const Json& discriminant = json[type.members.front().name];
            arms.insert(std::string(type.name) + '=' +
                        (discriminant.is_string() ? discriminant.get<std::string>() : discriminant.dump()));
        } else if (json.contains("encoding") && json.contains("bytes")) {
            if (!isText(json["bytes"])) add(path, "not a text");
            if (json["encoding"] == "SEAscii" && json["bytes"].value("hex", "") != "") add(path, "not ASCII");
        }
    }

    // A field of the same type as the discriminant of a union beside it has the same value.
    void checkTwins(const Type& type, const Member& field, const Json& json, const std::string& path)
    {
        if (field.use.form != Form::single) return;
        const Type& other = canonicalType(*field.use.type);
        if (other.kind != TypeKind::discriminatedUnion) return;
        const Member& discriminant = other.members.front();
        if (discriminant.use.type->kind == TypeKind::builtin) return;  // which many unrelated fields have
        for (const Member& twin : type.members)
            if (twin.use.type == discriminant.use.type && json[twin.name] != json[field.name][discriminant.name])
                add(path + '/' + twin.name, "not the discriminant");
    }

    // True for the JSON form of a string or an opaque in UTF-8 without control characters.
    static bool isText(const Json& json)
    {
        std::string text;
        if (json.is_string()) {
            text = json.get<std::string>();
        } else if (json.contains("text")) {
            text = json["text"].get<std::string>();
        } else {
            const std::string hex = json["hex"].get<std::string>();
            for (std::size_t i = 0; i < hex.size(); i += 2)
                text += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
        }
        return support::isUtf8(text) && std::ranges::none_of(text, [](unsigned char c) { return c < ' ' || c == 127; });
    }
};

// The unions that values of the type can contain.
std::vector<const Type*> unionsIn(const Type& root)
{
    std::vector<const Type*> found = {&root};
    for (std::size_t i = 0; i < found.size(); ++i)
        for (const Member& member : found[i]->members)
            if (member.use.type && std::ranges::find(found, member.use.type) == found.end())
                found.push_back(member.use.type);
    std::erase_if(found, [](const Type* type) { return type->kind != TypeKind::discriminatedUnion; });
    return found;
}

// The ids of a list of attributes, or the reason why the choices are refused.
std::string idsWith(const Type& list, std::vector<ArmChoice> arms)
{
    try {
        Bytes message = Sampler().sample(list, {Extent::usual, 1, 1024, std::move(arms)});
        Object object(list);
        runPass(Mode::decode, list.routine, object.data(), message);
        std::string ids;
        for (const Json& each : objectJson(list, object.data())) ids += each["id"].dump() + ' ';
        return ids;
    } catch (const ArmError& error) {
        return error.what();
    }
}

TEST(Sample, isPlausibleForEveryType)
{
    Sampler sampler;
    for (const Type* type : typesOf(test::testedModules())) {
        for (std::uint64_t seed = 0; seed < 8; ++seed) {
            for (const std::size_t budget : {1024u, 100u}) {
                const Bytes message = sampler.sample(*type, {Extent::usual, seed, budget});
                EXPECT_LE(message.size(), std::max(budget, sampler.leastSize(*type)));
                EXPECT_EQ(Review(*type, message).findings, "") << type->name << ", seed " << seed;
            }
        }
        for (const Extent extent : {Extent::least, Extent::most})
            EXPECT_EQ(Review(*type, sampler.sample(*type, {extent, 0, 1024})).findings, "") << type->name;
    }
}

// From every type, each arm of each union that its values can contain.
TEST(Sample, reachesEveryArm)
{
    Sampler sampler;
    std::size_t reached = 0;
    for (const Type* type : typesOf(test::testedModules())) {
        for (const Type* chosen : unionsIn(*type)) {
            const auto arms = armsOf(*chosen);
            for (std::size_t turn = 0; turn < arms.size(); ++turn) {
                const std::int64_t value = casesOf(*chosen, arms[turn]).front();
                const Enumerator* const named = enumeratorOf(discriminantOf(*chosen), value);
                const ArmChoice arm{chosen->name, named ? named->name : numberText(discriminantOf(*chosen), value)};
                const Bytes message = sampler.sample(*type, {Extent::usual, reached, 1024, {arm}});
                const Review review(*type, message);
                EXPECT_EQ(review.findings, "");
                const Extent extent = reached % 2 ? Extent::most : Extent::random;
                const std::size_t size = sampler.sample(*type, {extent, reached, 300, {arm}}).size();
                EXPECT_LE(size, std::max<std::size_t>(300, sampler.sample(*type, {Extent::least, 0, 0, {arm}}).size()));
                EXPECT_TRUE(review.arms.contains(arm.name + '=' + arm.value))
                    << type->name << ' ' << arm.name << '=' << arm.value;
                ++reached;
            }
        }
    }
    EXPECT_GT(reached, 17000u);
}

// A text that is too long for its place ends after a whole character.
TEST(Sample, cutsTextsBetweenCharacters)
{
    Chance chance(0);
    for (std::size_t most = 0; most < 200; ++most) {
        const std::string text = Plausible(chance).text(most % 12, false, {});
        EXPECT_TRUE(support::isUtf8(text) && text.size() <= most % 12 && text.empty() == (most % 12 == 0)) << text;
    }
}

TEST(Sample, obeysArmChoicesOrTellsWhyNot)
{
    const auto all = typesOf(test::testedModules());
    const Type& jobs = **std::ranges::find_if(all, [](auto* type) { return type->name == "JobAVPSeq"sv; });
    const struct {
        std::vector<ArmChoice> arms;
        const char* outcome;
    } cases[] = {
        {{{"attribute", "jobName"}}, "77 "},
        {{{"attribute", "jobName"}, {"JobUnion", "8"}}, "8 77 "},
        {{{"JobState", "JScompleted"}, {"attribute", "8"}}, "8 13 "},
        {{{"jobCompletionReason", "JCRcompletedNormal"}, {"JobUnion", "8"}}, "8 13 "},
        {{{"/1/value/attribute", "8"}}, "13 8 805 "},
        {{{"/0/value/jobState", "JScompleted"}}, "13 805 15 "},
        {{{"JobUnion", "jobNam"}}, "JobUnion=jobNam: JobUnion has no arm \"jobNam\"; did you mean jobName?"},
        {{{"JobUnoin", "8"}},
         "JobUnoin=8: no union or discriminant in JobAVPSeq is called \"JobUnoin\"; did you mean JobUnion?"},
        {{{"dpaJobState", "8000"}}, "dpaJobState=8000: JobState has no arm \"8000\""},
        {{{"/0/valeu", "8"}}, "/0/valeu=8: /0 is a JobAVP, which has no member \"valeu\"; did you mean value?"},
        {{{"/0/id", "8"}}, "/0/id=8: /0/id is not a union"},
        {{{"/0/id/x", "8"}}, "/0/id/x=8: /0/id has no members"},
        {{{"/65535/value", "8"}},
         "/65535/value=8: the message is an array of at most 65535 elements, without an element \"65535\""},
        {{{"/0/value", "8"}, {"/0/value", "77"}}, "/0/value=77 never applies: the other choices exclude it"},
    };
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        const ArmChoice before{"/before", "AKowner"};  // an optional
        Bytes message = Sampler().sample(types::Visit, {Extent::usual, seed, 1024, {before}});
        Object visit(types::Visit);
        runPass(Mode::decode, types::Visit.routine, visit.data(), message);
        EXPECT_EQ(objectJson(types::Visit, visit.data())["before"]["kind"], "AKowner");
    }
    for (const auto& each : cases) EXPECT_EQ(idsWith(jobs, each.arms), each.outcome);
}

}  // namespace
