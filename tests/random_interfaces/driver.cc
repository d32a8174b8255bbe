// Runs the routines of a random library over messages and prints the outcome of each, for trial.py to judge.
//
// A line of input has the index of the type, "v" or "d" (valid; damaged), "x" and the message in hex. The line of
// output is "0 LENGTH" for a message that is refused, and for one that is decoded
//
//     1 LENGTH ENCODED BYTES HALF LAST [PEER]
//
// with the lengths of decode and encode, the bytes in hex, the lengths of encodes into half of the buffer and into one
// byte too few, and, for a valid message, the bytes of the other implementation if it is linked. The traces of decoding
// and encoding a valid message follow after tabs. Text in parentheses reports blocks that a release leaves, writes
// beyond an object or a buffer, and a pass that differs with a trace.

#include "memory.h"
#include "table.h"

#include <Xdr.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <span>
#include <string>
#include <vector>

extern "C" __attribute__((weak)) int peerRecode(unsigned index, const unsigned char* message, unsigned length,
                                                unsigned char* out, unsigned room, unsigned* consumed);

using namespace quorva::test;
using random_interfaces::Entry;
using random_interfaces::table;

namespace {

constexpr std::size_t margin = 16;
constexpr std::size_t longestMessage = 65535;

// Storage of exactly the size, followed by a margin that must stay unchanged.
class Block {
public:
    explicit Block(std::size_t blockSize)
        : size(blockSize), storage(static_cast<unsigned char*>(std::calloc(1, size + margin)))
    {
        std::memset(storage + size, 0x5A, margin);
    }
    ~Block() { std::free(storage); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    std::span<unsigned char> span() { return {storage, size}; }
    bool isIntact() const
    {
        for (std::size_t i = 0; i < margin; ++i)
            if (storage[size + i] != 0x5A) return false;
        return true;
    }

    const std::size_t size;
    unsigned char* const storage;
};

std::string hexOf(std::span<const unsigned char> bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) (text += digits[byte >> 4]) += digits[byte & 15];
    return text;
}

enum class Mode { encode, decode, release };

struct Pass {
    bool succeeded;
    std::size_t length;
};

// Runs passes, all without a trace or all with one.
struct Runner {
    explicit Runner(bool isTraced) : traced(isTraced) {}

    Pass run(Mode mode, const Entry& type, Block& object, std::span<unsigned char> buffer)
    {
        Xdr xdrs;
        Xdr::Trace trace;
        xdrs.Program(static_cast<Xdr::Request>(mode), buffer.data(), static_cast<unsigned short>(buffer.size()));
        if (traced) {
            xdrs.setTrace(&trace);
            xdrs.addOpenTag(type.name);
        }
        bool succeeded;
        {
            const Watch watch;
            succeeded = type.routine(&xdrs, object.storage) != 0;
        }
        if (traced && succeeded && mode != Mode::release) {
            trace.close(type.name);
            traces.append("\t").append(trace.text());
        }
        return {succeeded, xdrs.codedLength};
    }

    const bool traced;
    std::string traces;
};

std::string outcome(const Entry& type, const std::vector<unsigned char>& message, Runner& runner)
{
    std::string line;
    const auto add = [&](auto number) { (line += ' ') += std::to_string(number); };
    const long before = liveBlocks();
    Block object(type.size);
    Block wire(message.size());
    if (!message.empty()) std::memcpy(wire.storage, message.data(), message.size());

    const Pass decoded = runner.run(Mode::decode, type, object, wire.span());
    line += decoded.succeeded ? '1' : '0';
    add(decoded.length);
    if (decoded.succeeded) {
        Block whole(longestMessage);
        const Pass encoded = runner.run(Mode::encode, type, object, whole.span());
        add(encoded.length);
        (line += ' ') += hexOf(whole.span().first(encoded.length));
        if (!encoded.succeeded) line += " (encoding fails)";
        for (const std::size_t room : {encoded.length / 2, encoded.length - 1}) {
            Block few(room);
            const Pass cut = runner.run(Mode::encode, type, object, few.span());
            add(cut.length);
            if (cut.succeeded) line += " (encoding into too few bytes succeeds)";
            if (!few.isIntact()) line += " (encoding writes beyond its buffer)";
        }
    }
    runner.run(Mode::release, type, object, {});
    if (!object.isIntact()) line += " (something writes beyond the object)";
    if (liveBlocks() != before) line += " (release leaves " + std::to_string(liveBlocks() - before) + " blocks)";
    if (mismatchedReleases() != 0) line += " (a block is released in another form than it was allocated)";
    return line;
}

std::vector<unsigned char> bytesOf(const std::string& hex)
{
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

// What the other implementation encodes after it decoded the message.
std::string recodedByPeer(std::size_t index, const std::vector<unsigned char>& message)
{
    std::vector<unsigned char> out(longestMessage);
    unsigned consumed = 0;
    const int length = peerRecode(static_cast<unsigned>(index), message.data(), static_cast<unsigned>(message.size()),
                                  out.data(), static_cast<unsigned>(out.size()), &consumed);
    return length < 0 ? "refused" : hexOf(std::span(out).first(static_cast<std::size_t>(length)));
}

}  // namespace

int main(int, char** arguments)
{
    std::ifstream input(arguments[1]);
    std::size_t index;
    std::string kind;
    std::string hex;
    while (input >> index >> kind >> hex) {
        const std::vector<unsigned char> message = bytesOf(hex.substr(1));
        Runner bare(false);
        Runner traced(true);
        std::string line = outcome(table[index], message, bare);
        if (const std::string other = outcome(table[index], message, traced); other != line)
            line += " with a trace: " + other;
        if (kind == "v") {
            if (peerRecode) line += " " + recodedByPeer(index, message);
            std::replace(traced.traces.begin(), traced.traces.end(), '\n', ' ');
            line += traced.traces;
        }
        std::cout << line << std::endl;
    }
}
