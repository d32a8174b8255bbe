// The cost of the worst messages of every type of the library, against the bounds of SECURITY.md.
//
// The messages are built from the descriptions: on the path to the innermost array that costs most, each count is the
// maximum of its array. A decode allocates a block at each level, fails in the last one, and so has to clear all of
// them.

#include "bounds.h"
#include "storage.h"

#include <explain/layout.h>
#include <inspect/sample.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>

#include <malloc.h>
#include <ucontext.h>
#include <unistd.h>
#include <ctime>

using namespace quorva;
using namespace quorva::test;
using inspect::Extent;

namespace {

constexpr std::size_t longest = driverMessage;
constexpr std::size_t longestString = std::size_t{1} << 32;  // with its zero byte

std::vector<const Type*> libraryTypes()
{
    return inspect::typesOf(modules());
}

// Adds up what a type costs along its costliest path: the costliest arm, the costliest field, one element of an array.
// The function gives the cost of one use by itself. Throws std::logic_error on a type that contains itself, as its path
// has no end; the library has no such type.
template <class Cost>
class Costliest {
public:
    explicit Costliest(std::function<Cost(const Use&)> function) : costOf(std::move(function)) {}

    Cost of(const Type& type)
    {
        const auto [entry, isNew] = known.try_emplace(&type, Cost{}, false);
        if (!isNew && !entry->second.second) throw std::logic_error(std::string(type.name) + " contains itself");
        if (!isNew) return entry->second.first;
        Cost most{};
        for (const Member& member : type.members) most = std::max(most, of(member.use));
        known[&type] = {most, true};
        return most;
    }
    Cost of(const Use& use) { return costOf(use) + (use.type ? of(*use.type) : Cost{}); }

private:
    std::function<Cost(const Use&)> costOf;
    std::map<const Type*, std::pair<Cost, bool>> known;  // by type: its cost, and true once the cost is complete
};

// Builds the worst message of a type.
class WorstMessage {
public:
    // `withStrings`: the path may end in a string of 4 GiB.
    explicit WorstMessage(bool withStrings)
        : costs([withStrings](const Use& use) -> std::size_t {
              switch (use.form) {
              case Form::variableArray: return std::size_t{use.bound} * use.type->size;
              case Form::optional: return use.type->size;
              case Form::variableOpaque: return use.bound;
              case Form::string: return withStrings ? longestString : 0;
              default: return 0;
              }
          })
    {
    }

    Bytes of(const Type& type)
    {
        message.clear();
        append(type);
        return message;
    }

    // The least that a decode of the message allocates, in bytes.
    std::size_t cost(const Type& type) { return costs.of(type); }

private:
    void appendUnit(std::uint32_t value)
    {
        message.resize(message.size() + 4);
        setUnit(message, message.size() - 4, value);
    }

    void append(const Type& type)
    {
        if (type.kind == TypeKind::discriminatedUnion) {
            const auto arms = inspect::armsOf(type);
            const auto arm = std::ranges::max_element(arms, {}, [&](auto& a) { return costs.of(a.use); });
            appendUnit(inspect::toUnit(inspect::discriminantOf(type), inspect::casesOf(type, *arm).front()));
            append(arm->use);
        } else if (type.kind == TypeKind::typeDefinition) {
            append(inspect::targetOf(type));
        } else if (!type.members.empty()) {
            const auto worst = std::ranges::max_element(type.members, {}, [&](auto& f) { return costs.of(f.use); });
            for (auto field = type.members.begin(); field != worst; ++field) appendShortest(field->use);
            append(worst->use);
        }
    }

    void append(const Use& use)
    {
        if (costs.of(use) == 0) return;
        if (use.form == Form::string) appendUnit(0xFFFFFFFF);
        if (use.form == Form::variableArray || use.form == Form::variableOpaque) appendUnit(use.bound);
        if (use.form == Form::optional) appendUnit(1);
        if (use.type) append(*use.type);
    }

    void appendShortest(const Use& use)
    {
        const std::size_t times = use.form == Form::fixedArray ? use.bound : 1;
        Bytes part(use.form == Form::none ? 0 : use.form == Form::fixedOpaque ? (use.bound + 3) / 4 * 4 : 4);
        if (use.form == Form::single || use.form == Form::fixedArray)
            part = sampler.sample(*use.type, {Extent::least, 0, longest});
        for (std::size_t i = 0; i < times; ++i) message.insert(message.end(), part.begin(), part.end());
    }

    Costliest<std::size_t> costs;
    inspect::Sampler sampler;
    Bytes message;
};

// The worst message, cut to the buffer of a driver; and filled up with zeros or ones, so that elements after the last
// count are decoded too.
std::vector<Bytes> variantsOf(const Bytes& worst)
{
    std::vector<Bytes> messages(3, worst);
    for (Bytes& message : messages) message.resize(std::min(message.size(), longest));
    for (const std::uint32_t fill : {0u, 1u})
        for (Bytes& filled = messages[1 + fill]; filled.size() < longest;) {
            filled.resize(filled.size() + 4);
            setUnit(filled, filled.size() - 4, fill);
        }
    return messages;
}

// The largest value of a quantity, and the type that has it.
struct Most {
    std::size_t value = 0;
    const char* holder = "";

    void add(std::size_t other, const Type& type)
    {
        if (other > value) *this = {other, type.name};
    }
    // Expects that the printed bound holds, and that it is at most four times the value.
    void expectWithin(const std::string& what) const
    {
        const std::size_t bound = printedBound(what);
        std::cout << "bounds: " << what << ": " << value << " of " << bound << " (" << holder << ")\n";
        EXPECT_LE(value, bound) << what << ": " << holder;
        EXPECT_GE(value, bound / 4) << what << ": the printed bound is loose";
    }
};

}  // namespace

TEST(Bounds, holdForTheAllocationsOfAFailedDecode)
{
    Most block, sum, string;
    for (const bool withStrings : {false, true}) {
        WorstMessage worst(withStrings);
        for (const Type* type : libraryTypes()) {
            const Bytes whole = worst.of(*type);
            for (const Bytes& message : variantsOf(whole)) {
                Storage object(*type);
                object.run(Mode::decode, Message(message).span());
                (withStrings ? string : block).add(largestAllocation(), *type);
                if (!withStrings) sum.add(allocatedBytes(), *type);
                ASSERT_LE(allocations(), static_cast<long>(message.size() / 4))
                    << type->name << ": each takes at least one unit";
                if (whole.size() <= longest) {
                    ASSERT_GE(allocatedBytes(), worst.cost(*type)) << type->name << ": the message does not hit";
                }
                ASSERT_TRUE(object.releasesAll()) << type->name;
            }
        }
    }
    block.expectWithin("largest block of elements");
    sum.expectWithin("all blocks of a failed decode");
    string.expectWithin("address space of a text");
}

// By the descriptions: the memory of each part divided by its least size on the wire, added up over the levels to which
// the same bytes of the message count. And by invented messages, which must not take more.
TEST(Bounds, holdForTheAllocationsOfASuccessfulDecode)
{
    inspect::Sampler sampler;
    Costliest<double> factors([&](const Use& use) {
        if (use.form == Form::string || use.form == Form::variableOpaque) return 1.0;
        if (use.form != Form::variableArray && use.form != Form::optional) return 0.0;
        const std::size_t flag = use.form == Form::optional ? 4 : 0;
        return static_cast<double>(use.type->size) / static_cast<double>(flag + sampler.leastSize(*use.type));
    });
    Most factor;
    for (const Type* type : libraryTypes()) {
        factor.add(static_cast<std::size_t>(std::ceil(factors.of(*type))), *type);
        for (const Extent extent : {Extent::least, Extent::random, Extent::most}) {
            const Bytes message = sampler.sample(*type, {extent, 0, longest});
            Storage object(*type);
            ASSERT_TRUE(object.run(Mode::decode, Message(message).span()).succeeded) << type->name;
            ASSERT_LE(static_cast<double>(allocatedBytes()), factors.of(*type) * static_cast<double>(message.size()))
                << type->name;
            ASSERT_TRUE(object.releasesAll()) << type->name;
        }
    }
    factor.expectWithin("bytes allocated by a success for each byte of the message");
}

namespace {

// Resident memory of the process, in bytes.
std::size_t residentMemory()
{
    std::size_t all = 0, held = 0;
    std::ifstream("/proc/self/statm") >> all >> held;
    return held * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// Runs an action on a separate stack and measures how much of it the action used.
class Stack {
public:
    static std::size_t usedBy(const std::function<void()>& action)
    {
        static std::vector<unsigned char> stack(size, pattern);
        static std::size_t clean = 0;  // bytes from the far end that still hold the pattern
        std::fill(stack.begin() + static_cast<std::ptrdiff_t>(clean), stack.end(), pattern);
        current = &action;
        getcontext(&inner);
        inner.uc_stack.ss_sp = stack.data();
        inner.uc_stack.ss_size = size;
        inner.uc_link = &outer;
        makecontext(
            &inner, [] { (*current)(); }, 0);
        swapcontext(&outer, &inner);
        static const std::vector<unsigned char> page(4096, pattern);
        for (clean = 0; clean < size && std::memcmp(&stack[clean], page.data(), page.size()) == 0;)
            clean += page.size();
        while (clean < size && stack[clean] == pattern) ++clean;
        return size - clean;
    }

private:
    static constexpr std::size_t size = 1 << 20;
    static constexpr unsigned char pattern = 0xC3;
    static inline ucontext_t outer, inner;
    static inline const std::function<void()>* current = nullptr;
};

// Processor time of this thread.
std::size_t microseconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<std::size_t>(now.tv_sec) * 1'000'000 + static_cast<std::size_t>(now.tv_nsec) / 1000;
}

// The most that a pass and an explanation take.
struct Costs {
    Most untraced, traced, explanation;  // bytes of the stack
    Most time;                           // microseconds of a pass
};

Costs costsOfPasses()
{
    inspect::Sampler sampler;
    WorstMessage worstBlocks(false), worstStrings(true);
    Costs costs;
    for (const Type* type : libraryTypes()) {
        std::vector<Bytes> messages = {sampler.sample(*type, {Extent::most, 0, longest}),
                                       sampler.sample(*type, {Extent::random, 0, longest})};
        for (WorstMessage* const worst : {&worstBlocks, &worstStrings})
            for (Bytes& message : variantsOf(worst->of(*type))) messages.push_back(std::move(message));
        for (const Bytes& bytes : messages) {
            costs.explanation.add(Stack::usedBy([&] { explain(*type, bytes); }), *type);
            for (const bool withTrace : {false, true}) {
                const Message message(bytes);
                Storage object(*type);
                TraceText trace;
                const auto pass = [&](Mode mode) {
                    const std::size_t start = microseconds();
                    (withTrace ? costs.traced : costs.untraced)
                        .add(Stack::usedBy([&] {
                                 runPass(mode, type->routine, object.data(), message.span(),
                                         [&](Xdr& xdrs) { xdrs.setTrace(withTrace ? &trace : nullptr); });
                             }),
                             *type);
                    costs.time.add(microseconds() - start, *type);
                };
                pass(Mode::decode);
                pass(Mode::encode);
                if (withTrace && &bytes >= &messages[2])  // the trace of a release is as long as the arrays
                    releaseContents(type->routine, object.data());
                else
                    pass(Mode::release);
            }
        }
    }
    return costs;
}

}  // namespace

TEST(Bounds, holdForTheStack)
{
    costsOfPasses();  // binds every function: the dynamic linker takes stack where it binds one at its first call
    const Costs costs = costsOfPasses();
#ifdef __clang__
    costs.untraced.expectWithin("stack of a pass, built by clang++");
#else
    costs.untraced.expectWithin("stack of a pass, built by g++");
#endif
    costs.traced.expectWithin("stack of a pass with a trace");
    costs.explanation.expectWithin("stack of an explanation");
    std::cout << "bounds: the longest pass took " << costs.time.value << " us of a processor (" << costs.time.holder
              << ")\n";
}

// Last, as it changes how malloc obtains memory.
TEST(Bounds, holdForTheMemoryThatAFailedDecodeTouches)
{
    mallopt(M_MMAP_THRESHOLD, 65536);  // larger blocks are mapped one by one, and unmapped at once
    malloc_trim(0);
    Most touched;
    for (const bool withStrings : {false, true}) {
        WorstMessage worst(withStrings);
        for (const Type* type : libraryTypes())
            for (const Bytes& bytes : variantsOf(worst.of(*type))) {
                const Message message(bytes);
                Storage object(*type);
                const std::size_t before = residentMemory();
                object.run(Mode::decode, message.span());
                const std::size_t after = residentMemory();
                touched.add(after - std::min(before, after), *type);
                ASSERT_TRUE(object.releasesAll()) << type->name;
            }
    }
    touched.expectWithin("memory that a failed decode touches");
}
