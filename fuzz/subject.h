// The properties that hold for any bytes decoded as any type; and the inputs, which choose the type.
#pragma once

#include "coding.h"
#include "memory.h"

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quorva::fuzz {

// Thrown when a property does not hold. `what` names the type and the difference.
struct Finding {
    std::string what;
};

// ---- Inputs --------------------------------------------------------------------------------------------------------

// All types of the library and of the tests' modules, sorted by name.
std::span<const Type* const> allTypes();

// A type's key is a hash of its name, so that inputs keep their meaning when types are added. Every key selects a type:
// the one with the same key or else the next one.
std::uint16_t keyOf(const Type& type);
const Type& typeOf(std::uint16_t key);

// An input of a driver that serves all types: the type's key, high byte first; a byte that selects the driver's
// variant; the contents.
struct Input {
    static constexpr std::size_t headSize = 3;

    const Type* type;
    std::uint8_t variant;
    std::span<const unsigned char> contents;

    // Missing bytes of the head count as zero. The contents stay in `bytes`.
    static Input of(std::span<const unsigned char> bytes);
    Bytes bytes() const;
};

// Calls `report` when a sanitizer, a signal or a finding ends the program.
void onCrash(void (*report)());

// Writes `input` to a file and prints the file's name. Safe to call from `report`.
void keepInput(const char* file, std::span<const unsigned char> input);

// Runs the body of a driver. A finding is printed and aborts the program.
template <class Body>
int runDriver(Body body)
{
    void abortOn(const Finding&);
    try {
        body();
    } catch (const Finding& finding) {
        abortOn(finding);
    }
    return 0;
}

// ---- Properties ----------------------------------------------------------------------------------------------------

using test::Coding;

// The result of a decode pass.
struct Outcome {
    bool succeeded = false;
    std::size_t length = 0;
    long allocated = 0;
    bool encodes = false;  // the object encodes into no more bytes than the message had
    Bytes left;            // the bytes that this encode pass wrote before it ended or failed
    bool operator==(const Outcome&) const = default;
};

// One type and storage for one object, used again for each message. Every check throws Finding.
class Subject {
public:
    explicit Subject(const Type& type);

    // Makes allocations of more than `size` bytes fail in later passes. The initial limit is 1 MiB under a sanitizer:
    // a message may ask for 4 GiB that stay untouched, and the sanitizer touches an eighth of them. Otherwise there is
    // no limit.
    void refuseBlocksAbove(std::size_t size) { largestBlock = size; }

    // Decodes a message, encodes the object and releases it. Checks that the passes stay within the message, show no
    // uninitialised memory and leave no block allocated. Allocations from number `failFrom` on fail, counted from 0.
    const Outcome& decode(Coding coding, std::span<const unsigned char> message, long failFrom = test::Watch::never);

    // Checks that the interpreter and the plain functions have the same outcome, and returns it.
    const Outcome& decodeBothWays(std::span<const unsigned char> message, long failFrom = test::Watch::never);

    // Checks that an accepted message encodes, and that the encoded bytes decode and encode to themselves. Returns true
    // if the message is accepted.
    bool roundTrips(std::span<const unsigned char> message);

    // Checks that an encode pass into a buffer of `size` bytes writes a prefix of the object's full encoding.
    void encodeInto(std::size_t size, std::span<const unsigned char> message);

    // Checks that the inspector's reader agrees with a decode pass about result, length and failed member, and with an
    // encode pass about the object. The object has a JSON form even after a refusal.
    void agreesWithInspector(std::span<const unsigned char> message);

private:
    Pass run(Coding coding, Mode mode, std::span<unsigned char> buffer, long failFrom = test::Watch::never);
    void release(Coding coding);
    std::span<unsigned char> lastBytes(std::size_t size) { return {arena.get() + arenaSize - size, size}; }
    std::span<unsigned char> placed(std::span<const unsigned char> message);

    static constexpr std::size_t arenaSize = longestMessage;

    const Type& described;
    std::size_t largestBlock = test::Scarcity{}.largest;
    std::unique_ptr<unsigned char[]> object;
    std::unique_ptr<unsigned char[]> arena;  // messages end at its end, so that a sanitizer sees an overrun
    Outcome outcomes[3];
};

}  // namespace quorva::fuzz
