// Prints, for each type, a digest of results, lengths, bytes and traces of decodes, encodes and releases, over whole
// and damaged messages. Builds that differ in compiler, optimisation, machine or stream class print the same. With
// --messages, prints the messages for replay instead: routine, size of the object, bytes in hexadecimal and a full
// stop.

#include <inspect/documentation.h>
#include <inspect/sample.h>

#include <cstdio>
#include <memory>
#include <string_view>

using namespace quorva;

namespace {

// FNV-1a, 64 bits.
class Digest {
public:
    void add(const void* bytes, std::size_t size)
    {
        const auto* at = static_cast<const unsigned char*>(bytes);
        for (std::size_t i = 0; i < size; ++i) sum = (sum ^ at[i]) * 0x100000001B3u;
    }
    void add(std::string_view text) { add(text.data(), text.size()); }
    void add(std::uint32_t number)
    {
        for (int shift = 0; shift < 32; shift += 8) {
            const auto byte = static_cast<unsigned char>(number >> shift);
            add(&byte, 1);
        }
    }
    unsigned long long value() const { return sum; }

private:
    std::uint64_t sum = 0xCBF29CE484222325u;
};

// Adds the outcome of one pass with a trace.
void addPass(Digest& digest, Mode mode, const Type& type, void* object, std::span<unsigned char> buffer)
{
    TraceText trace;
    const Pass pass = runTraced(mode, type.routine, type.name, object, buffer, trace);
    digest.add(static_cast<std::uint32_t>(pass.succeeded));
    digest.add(static_cast<std::uint32_t>(pass.length));
    digest.add(std::string_view(trace.text()));
    digest.add(std::string_view(trace.path()));
}

void addMessage(Digest& digest, const Type& type, Bytes message)
{
    const auto object = std::make_unique<unsigned char[]>(type.size);
    addPass(digest, Mode::decode, type, object.get(), message);
    Bytes written(message.size() + 4);
    addPass(digest, Mode::encode, type, object.get(), written);
    digest.add(written.data(), written.size());
    addPass(digest, Mode::release, type, object.get(), {});
}

// Calls use(message) with a dozen messages of the type, each whole, damaged and cut.
template <class Use>
void forMessages(inspect::Sampler& sampler, const Type& type, Use use)
{
    using inspect::Extent;
    for (std::size_t seed = 0; seed < 12; ++seed) {
        const Extent extent = seed == 0 ? Extent::least : seed == 1 ? Extent::most : Extent::random;
        const Bytes message = sampler.sample(type, {extent, seed, 600});
        use(message);
        if (message.size() < 4) continue;
        const std::size_t units = message.size() / 4;
        Bytes damaged = message;  // a unit that is beyond most ranges
        damaged[seed * 7 % units * 4 + 2] ^= 0x41;
        use(damaged);
        damaged = message;
        damaged.resize(seed * 13 % units * 4);
        use(damaged);
    }
}

void print(const Type& type, const Bytes& message)
{
    std::printf("Xdr%s %u ", type.name, type.size);
    for (const unsigned char byte : message) std::printf("%02x", byte);
    std::puts(".");
}

}  // namespace

int main(int count, char** arguments)
{
    const bool messages = count > 1 && std::string_view(arguments[1]) == "--messages";
    inspect::Sampler sampler;
    for (const Type* type : inspect::typesOf(modules())) {
        if (messages) {
            forMessages(sampler, *type, [&](const Bytes& message) { print(*type, message); });
            continue;
        }
        Digest digest;
        forMessages(sampler, *type, [&](const Bytes& message) { addMessage(digest, *type, message); });
        std::printf("%016llx %s\n", digest.value(), type->name);
    }
}
