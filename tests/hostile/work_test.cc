// What the worst messages of every type of the library cost, against the bounds that SECURITY.md prints.
//
// The messages are made from the descriptions: down to the innermost list that costs most, each count the largest that
// the list takes. A decode then allocates a block at each level and fails in the last one, so that it has to empty them
// all.

#include "bounds.h"
#include "passes_over.h"

#include <inspect/layout.h>
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
constexpr std::size_t longestText = std::size_t{1} << 32;  // with its zero

std::vector<const Type*> libraryTypes()
{
    return inspect::typesOf(modules());
}

// Adds up what a type can cost along one path through it: the costliest arm, the costliest field, an element of a list.
// `Step` has the cost of a use by itself, double or std::size_t, as operator()(use). A type that contains itself has no
// such path; the library has none, and this throws std::logic_error where it gets one.
template <class Step>
class Costliest {
public:
    using Cost = std::invoke_result_t<Step, const Use&>;

    explicit Costliest(Step costOf) : step(costOf) {}

    Cost of(const Type& type)
    {
        const auto [entry, isNew] = known.try_emplace(&type, Cost{}, false);
        if (!isNew && !entry->second.second) throw std::logic_error(std::string(type.name) + " contains itself");
        if (!isNew) return entry->second.first;
        Cost most{};
        for (const Use* use : usesOf(type)) most = std::max(most, of(*use));
        known[&type] = {most, true};
        return most;
    }
    Cost of(const Use& use) { return step(use) + (use.type ? of(*use.type) : Cost{}); }

    static std::vector<const Use*> usesOf(const Type& type)
    {
        std::vector<const Use*> uses;
        for (const Member& member : type.members) uses.push_back(&member.use);
        return uses;
    }

private:
    Step step;
    std::map<const Type*, std::pair<Cost, bool>> known;  // what is not finished is being looked at
};

// Makes the messages.
class Attack {
public:
    // Whether a text of 4 GiB may stand at the end of the path.
    explicit Attack(bool withTexts)
        : costs([withTexts](const Use& use) -> std::size_t {
              switch (use.form) {
              case Form::variableArray: return std::size_t{use.bound} * use.type->size;
              case Form::optional: return use.type->size;
              case Form::variableOpaque: return use.bound;
              case Form::string: return withTexts ? longestText : 0;
              default: return 0;
              }
          })
    {
    }

    Bytes on(const Type& type)
    {
        message.clear();
        attack(type);
        return message;
    }

    // What a decode of it allocates at least.
    std::size_t cost(const Type& type) { return costs.of(type); }

private:
    void unit(std::uint32_t value)
    {
        message.resize(message.size() + 4);
        setUnit(message, message.size() - 4, value);
    }

    void attack(const Type& type)
    {
        if (type.kind == TypeKind::discriminatedUnion) {
            const auto arms = inspect::armsOf(type);
            const auto arm = std::ranges::max_element(arms, {}, [&](auto& a) { return costs.of(a.use); });
            unit(inspect::toUnit(inspect::discriminantOf(type), inspect::casesOf(type, *arm).front()));
            attack(arm->use);
        } else if (type.kind == TypeKind::typeDefinition) {
            attack(inspect::targetOf(type));
        } else if (!type.members.empty()) {
            const auto worst = std::ranges::max_element(type.members, {}, [&](auto& f) { return costs.of(f.use); });
            for (auto field = type.members.begin(); field != worst; ++field) passOver(field->use);
            attack(worst->use);
        }
    }

    void attack(const Use& use)
    {
        if (costs.of(use) == 0) return;
        if (use.form == Form::string) unit(0xFFFFFFFF);
        if (use.form == Form::variableArray || use.form == Form::variableOpaque) unit(use.bound);
        if (use.form == Form::optional) unit(1);
        if (use.type) attack(*use.type);
    }

    // The shortest that this part can be.
    void passOver(const Use& use)
    {
        const std::size_t times = use.form == Form::fixedArray ? use.bound : 1;
        Bytes part(use.form == Form::none ? 0 : use.form == Form::fixedOpaque ? (use.bound + 3) / 4 * 4 : 4);
        if (use.form == Form::single || use.form == Form::fixedArray)
            part = sampler.sample(*use.type, {Extent::least, 0, longest});
        for (std::size_t i = 0; i < times; ++i) message.insert(message.end(), part.begin(), part.end());
    }

    Costliest<std::function<std::size_t(const Use&)>> costs;
    inspect::Sampler sampler;
    Bytes message;
};

// The attack on a type, cut where a driver's buffer ends; and filled up with zeros or ones, so that what follows the
// last count decodes as far as it goes.
std::vector<Bytes> variantsOf(const Bytes& attack)
{
    std::vector<Bytes> messages(3, attack);
    for (Bytes& message : messages) message.resize(std::min(message.size(), longest));
    for (const std::uint32_t fill : {0u, 1u})
        for (Bytes& filled = messages[1 + fill]; filled.size() < longest;) {
            filled.resize(filled.size() + 4);
            setUnit(filled, filled.size() - 4, fill);
        }
    return messages;
}

// The largest of something, and the type that it was met with.
struct Record {
    std::size_t most = 0;
    const char* holder = "";

    void meet(std::size_t value, const Type& type)
    {
        if (value > most) *this = {value, type.name};
    }
    // Whether the printed bound holds, and is not so large that it says nothing.
    void expectWithin(const std::string& what) const
    {
        const std::size_t bound = printedBound(what);
        std::cout << "work: " << what << ": " << most << " of " << bound << " (" << holder << ")\n";
        EXPECT_LE(most, bound) << what << ": " << holder;
        EXPECT_GE(most, bound / 4) << what << ": the printed bound is loose";
    }
};

}  // namespace

TEST(Work, aFailedDecodeAllocates)
{
    Record block, sum, text;
    for (const bool withTexts : {false, true}) {
        Attack attack(withTexts);
        for (const Type* type : libraryTypes()) {
            const Bytes whole = attack.on(*type);
            for (const Bytes& message : variantsOf(whole)) {
                Storage object(*type);
                object.run(Mode::decode, Message(message).span());
                (withTexts ? text : block).meet(largestAllocation(), *type);
                if (!withTexts) sum.meet(allocatedBytes(), *type);
                ASSERT_LE(allocations(), static_cast<long>(message.size() / 4)) << type->name << ": each takes a unit";
                if (whole.size() <= longest) {
                    ASSERT_GE(allocatedBytes(), attack.cost(*type)) << type->name << ": the attack does not hit";
                }
                ASSERT_TRUE(object.releasesAll()) << type->name;
            }
        }
    }
    block.expectWithin("largest block of elements");
    sum.expectWithin("all blocks of a failed decode");
    text.expectWithin("address space of a text");
}

// By the descriptions: what each part takes in memory against the least that it takes on the wire, added up over the
// levels that the same bytes of the message count for. And by the samples, which must not take more.
TEST(Work, aSuccessfulDecodeAllocates)
{
    inspect::Sampler sampler;
    Costliest<std::function<double(const Use&)>> factors([&](const Use& use) {
        if (use.form == Form::string || use.form == Form::variableOpaque) return 1.0;
        if (use.form != Form::variableArray && use.form != Form::optional) return 0.0;
        const std::size_t flag = use.form == Form::optional ? 4 : 0;
        return static_cast<double>(use.type->size) / static_cast<double>(flag + sampler.leastSize(*use.type));
    });
    Record factor;
    for (const Type* type : libraryTypes()) {
        factor.meet(static_cast<std::size_t>(std::ceil(factors.of(*type))), *type);
        for (const Extent extent : {Extent::least, Extent::random, Extent::fullest}) {
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

// Bytes of memory that the process holds.
std::size_t resident()
{
    std::size_t all = 0, held = 0;
    std::ifstream("/proc/self/statm") >> all >> held;
    return held * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// A stack of its own for `action`, and how much of it was used.
class Stack {
public:
    static std::size_t usedBy(const std::function<void()>& action)
    {
        static std::vector<unsigned char> stack(size, pattern);
        static std::size_t clean = 0;  // bytes from the far end on that nobody has written since they were filled
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

std::size_t microseconds()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<std::size_t>(now.tv_sec) * 1'000'000 + static_cast<std::size_t>(now.tv_nsec) / 1000;
}

}  // namespace

TEST(Work, passesStandOnTheStack)
{
    inspect::Sampler sampler;
    Attack onBlocks(false), onTexts(true);
    Record untraced, traced, time;
    for (const Type* type : libraryTypes()) {
        std::vector<Bytes> messages = {sampler.sample(*type, {Extent::fullest, 0, longest}),
                                       sampler.sample(*type, {Extent::random, 0, longest})};
        for (Attack* const attack : {&onBlocks, &onTexts})
            for (Bytes& message : variantsOf(attack->on(*type))) messages.push_back(std::move(message));
        for (const Bytes& bytes : messages)
            for (const bool withTrace : {false, true}) {
                const Message message(bytes);
                Storage object(*type);
                TraceText trace;
                const auto pass = [&](Mode mode) {
                    const std::size_t start = microseconds();
                    (withTrace ? traced : untraced)
                        .meet(Stack::usedBy([&] {
                                  runPass(mode, type->routine, object.data(), message.span(),
                                          [&](Xdr& xdrs) { xdrs.setTrace(withTrace ? &trace : nullptr); });
                              }),
                              *type);
                    time.meet(microseconds() - start, *type);
                };
                pass(Mode::decode);
                pass(Mode::encode);
                if (withTrace && &bytes >= &messages[2])  // the trace of a release is as long as the lists are
                    releaseContents(type->routine, object.data());
                else
                    pass(Mode::release);
            }
    }
#ifdef __clang__
    untraced.expectWithin("stack of a pass, built by clang++");
#else
    untraced.expectWithin("stack of a pass, built by g++");
#endif
    traced.expectWithin("stack of a pass with a trace");
    std::cout << "work: the longest pass took " << time.most << " us of a processor (" << time.holder << ")\n";
}

// Last, as it changes how the machine hands out memory.
TEST(Work, aFailedDecodeTouches)
{
    mallopt(M_MMAP_THRESHOLD, 65536);  // blocks come as fresh pages, and go at once
    malloc_trim(0);
    Record touched;
    for (const bool withTexts : {false, true}) {
        Attack attack(withTexts);
        for (const Type* type : libraryTypes())
            for (const Bytes& bytes : variantsOf(attack.on(*type))) {
                const Message message(bytes);
                Storage object(*type);
                const std::size_t before = resident();
                object.run(Mode::decode, message.span());
                const std::size_t after = resident();
                touched.meet(after - std::min(before, after), *type);
                ASSERT_TRUE(object.releasesAll()) << type->name;
            }
    }
    touched.expectWithin("memory that a failed decode touches");
}
