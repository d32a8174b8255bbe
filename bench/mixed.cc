// Measures what one message repeated over and over hides: many types in random order, and arrays of any length.

#include "measure.h"
#include "passes.h"

#include <inspect/sample.h>
#include <quorvapixdr/codec.h>
#include <quorvapixdr/schema.h>

#include <peer.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <random>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::bench {

namespace {

struct Sample {
    const schema::Type* type;
    unsigned peer;  // the type's place in peerTypes
    Bytes wire;
};

constexpr std::size_t sampleCount = 1000;
constexpr std::size_t repeats = 100;

unsigned char out[longestMessage];

// Decode into an object on the heap, encode that, free it: what the peer's one entry point does.
std::size_t recode(Sample& sample)
{
    void* const object = std::calloc(1, sample.type->size);
    if (!object) return 0;
    std::size_t written = 0;
    if (runPass(Xdr::decode, sample.type->routine, object, sample.wire).succeeded)
        written = runPass(Xdr::encode, sample.type->routine, object, {out, longest}).length;
    releaseContents(sample.type->routine, object);
    std::free(object);
    return written;
}

std::size_t peerRecodes(Sample& sample)
{
    unsigned consumed = 0;
    const int written =
        peerRecode(sample.peer, sample.wire.data(), static_cast<unsigned>(sample.wire.size()), out, longest, &consumed);
    return written < 0 ? 0 : static_cast<std::size_t>(written);
}

std::vector<Sample> samples()
{
    std::unordered_map<std::string_view, unsigned> places;
    for (unsigned i = 0; peerTypes[i]; ++i) places.emplace(peerTypes[i], i);
    std::vector<std::pair<const schema::Type*, unsigned>> types;
    for (const auto* module : schema::modules())
        for (const auto* type : module->types)
            if (const auto place = places.find(type->name); place != places.end())
                types.emplace_back(type, place->second);
    if (types.empty()) die("no type of the library is known to the peer");

    std::vector<Sample> made;
    std::mt19937_64 random(20260101);
    inspect::Sampler sampler;
    for (std::size_t attempt = 0; made.size() < sampleCount; ++attempt) {
        if (attempt == 20 * sampleCount) die("too few types give a sample");
        const auto& [type, place] = types[random() % types.size()];
        Sample sample = {type, place, sampler.sample(*type, {inspect::Extent::random, random(), longest})};
        if (sample.wire.size() >= 12 && recode(sample) == sample.wire.size()) made.push_back(std::move(sample));
    }
    return made;
}

template <class Action>
void measureOrders(const std::string& name, std::vector<Sample>& all, Action action)
{
    std::size_t bytes = 0;
    for (const Sample& sample : all) bytes += sample.wire.size();
    measure("mixed/" + name, bytes,
            [&all, action] {
                std::size_t done = 0;
                for (Sample& sample : all) done += action(sample);
                return done;
            },
            {{"messages", static_cast<double>(all.size())}});

    // The same messages, each many times before the next. The stride visits all of them in an order of no kind.
    const double average = static_cast<double>(bytes) / static_cast<double>(all.size()) * repeats;
    ::benchmark::RegisterBenchmark(("repeated/" + name).c_str(), [&all, action, average](::benchmark::State& state) {
        std::size_t at = 0;
        for (auto _ : state) {
            for (std::size_t i = 0; i < repeats; ++i) ::benchmark::DoNotOptimize(action(all[at]));
            at = (at + 619) % all.size();
        }
        state.counters["messages"] = repeats;
        state.counters["bytes"] = average;
    });
}

}  // namespace

void measureMixed()
{
    static std::vector<Sample> all = samples();
    measureOrders("recode/quorva", all, recode);
    measureOrders("recode/tirpc", all, peerRecodes);
}

void measureFields()
{
    static std::deque<std::vector<AttributeId>> arrays;
    static std::deque<Bytes> wires;
    // A stream holds 65535 bytes: no array of numbers in a message has more than 16382.
    for (const std::size_t count : {1u, 16u, 256u, 4096u, 16382u}) {
        auto& numbers = arrays.emplace_back(count);
        for (std::size_t i = 0; i < count; ++i) numbers[i] = static_cast<AttributeId>(7 * i);
        auto& wire = wires.emplace_back(4 + 4 * count);
        const std::string name = "/AttributeSeq/" + std::to_string(count);
        const auto encode = [&numbers, &wire] {
            AttributeSeq value = {static_cast<std::uint16_t>(numbers.size()), numbers.data()};
            return runPass(Xdr::encode, XdrAttributeSeq, &value, wire).length;
        };
        measure("fields/encode" + name, wire.size(), encode, {{"fields", static_cast<double>(count)}});
        measure("fields/decode" + name, wire.size(),
                [&wire] { return decodePass<AttributeSeq>(XdrAttributeSeq, wire.data(), wire.size()); },
                {{"fields", static_cast<double>(count)}});
    }
}

}  // namespace quorva::bench
