// What must hold of any bytes, held against one type at a time; and the inputs that choose the type.
#pragma once

#include "memory.h"
#include "coding.h"

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quorva::fuzz {

// Thrown where something does not hold.
struct Finding {
    std::string what;
};

// ---- Inputs --------------------------------------------------------------------------------------------------------

// All types of the library and of the teaching module, by name.
std::span<const Type* const> allTypes();

// The two bytes that stand for a type. They are made of its name, so a corpus keeps its meaning when types are added.
// Every key leads to some type: the one with the next key that is taken.
std::uint16_t keyOf(const Type& type);
const Type& typeOf(std::uint16_t key);

// An input over all types: the key, high byte first, a byte for the driver to choose a variant by, and the contents.
struct Input {
    static constexpr std::size_t headSize = 3;

    const Type* type;
    std::uint8_t variant;
    std::span<const unsigned char> contents;

    // What is missing of the head counts as zero.
    static Input of(std::span<const unsigned char> bytes);
    Bytes bytes() const;
};

// Has `report` called when a sanitizer, a signal or a finding ends the program; and what it may call then: writes
// `input` into a file and says so.
void whenDying(void (*report)());
void leave(const char* file, std::span<const unsigned char> input);

// Runs the body of a driver. A finding is printed and ends the program, as a sanitizer's report does.
template <class Body>
int judge(Body body)
{
    void giveUp(const Finding&);
    try {
        body();
    } catch (const Finding& finding) {
        giveUp(finding);
    }
    return 0;
}

// ---- Properties ----------------------------------------------------------------------------------------------------

using test::Coding;

// What a decode pass did and left.
struct Outcome {
    bool succeeded = false;
    std::size_t length = 0;
    long allocated = 0;
    bool encodes = false;  // what was left could be encoded, into no more bytes than the message had
    Bytes left;            // what that wrote, up to where it failed
    bool operator==(const Outcome&) const = default;
};

// One type with storage of its own, used again for each message. All checks throw Finding.
class Subject {
public:
    explicit Subject(const Type& type);

    // Allocations of more than `size` bytes fail in the passes to come. To begin with, none does, but under a sanitizer
    // those above 1 MiB: a message may ask for 4 GiB that nobody touches, and the sanitizer touches an eighth of that.
    void refuseBlocksAbove(std::size_t size) { largestBlock = size; }

    // Decodes, encodes what is left, releases it: nothing is read beyond the message or written beyond the length,
    // nothing was written by nobody, nothing stays allocated. Allocations from the number `failFrom` on fail.
    const Outcome& decode(Coding coding, std::span<const unsigned char> message, long failFrom = test::Watch::never);

    // Both ways do and leave the same.
    const Outcome& decodeBothWays(std::span<const unsigned char> message, long failFrom = test::Watch::never);

    // What was accepted encodes, and what that wrote comes back unchanged. Returns whether the message was accepted.
    bool comesBack(std::span<const unsigned char> message);

    // An accepted message, encoded into `room` bytes, writes the beginning of what it writes into more.
    void encodeInto(std::size_t room, std::span<const unsigned char> message);

    // The inspector's own reading of the message agrees with the pass about the result, the length and the place, and
    // its reading of the object with an encode pass; the object can be shown whatever happened.
    void agreesWithInspector(std::span<const unsigned char> message);

private:
    Pass run(Coding coding, Mode mode, std::span<unsigned char> buffer, long failFrom = test::Watch::never);
    void release(Coding coding);
    std::span<unsigned char> room(std::size_t size) { return {arena.get() + arenaSize - size, size}; }
    std::span<unsigned char> placed(std::span<const unsigned char> message);

    static constexpr std::size_t arenaSize = longestMessage;

    const Type& described;
    std::size_t largestBlock = test::Scarcity{}.largest;
    std::unique_ptr<unsigned char[]> object;
    std::unique_ptr<unsigned char[]> arena;  // messages end where it ends, so that the first byte too many is seen
    Outcome outcomes[3];
};

}  // namespace quorva::fuzz
