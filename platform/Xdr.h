// The bundled stream class: a pass over a caller's buffer, with an optional trace.
//
// The codec needs what the section "The contract" lists; any class that keeps the contract can replace this one (see
// QUORVA_PLATFORM_DIR). The codec uses what follows under "Beyond the contract" where the class has it.
#pragma once

#include "trace_text.h"

#include <bit>
#include <cstdint>
#include <cstring>

class Xdr {
public:
    // ---- The contract -----------------------------------------------------------------------------------------------
    // 1. The three fields come first, in this order. The codec writes the slot and reads the mode.
    // 2. `Request` has the values 0 encode (memory to wire), 1 decode (wire to memory), 2 release (what a decode
    //    allocated); `streamMode` holds the same number from `Program` on.
    // 3. `codedLength` is the number of bytes moved since `Program`, in both directions.
    // 4. `Transfer` and `TransferWithoutSwap` move all of their bytes and return true, or none and return false.
    // 5. The trace operations have no result and never fail a pass.

    enum Request : std::int32_t { encode = 0, decode = 1, release = 2 };

    void* rootAllocationSlot = nullptr;  // the object that a routine allocated because it was given a null pointer
    unsigned short codedLength = 0;
    std::int32_t streamMode = encode;

    // A stream that is not yet programmed. Its sink is that of the innermost ScopedTrace of this thread, if any.
    Xdr() noexcept : trace(ScopedTrace::current()) {}
    Xdr(const Xdr&) = delete;
    Xdr& operator=(const Xdr&) = delete;

    // Starts a pass over `length` bytes at `buffer`, which the caller owns and which must outlive the pass. A null
    // buffer has no bytes.
    void Program(Request mode, unsigned char* buffer, unsigned short length) noexcept
    {
        streamMode = mode;
        bytes = buffer ? buffer : nowhere();
        limit = buffer ? length : static_cast<unsigned short>(0);
        codedLength = 0;
    }

    // Codes one value of `size` bytes at `data`, big-endian on the wire.
    bool Transfer(unsigned char* data, unsigned short size) noexcept
    {
        if (size != 4) return transferReversed(data, size);
        if (limit - codedLength < 4) return false;
        std::uint32_t unit;
        unsigned char* const at = bytes + codedLength;
        std::memcpy(&unit, streamMode == decode ? at : data, 4);
        if constexpr (std::endian::native == std::endian::little) unit = __builtin_bswap32(unit);
        std::memcpy(streamMode == decode ? data : at, &unit, 4);
        codedLength = static_cast<unsigned short>(codedLength + 4);
        return true;
    }

    // Moves `size` bytes at `data` unchanged; 0 is fine.
    bool TransferWithoutSwap(unsigned char* data, unsigned short size) noexcept
    {
        if (limit - codedLength < size) return false;
        if (size == 0) return true;
        if (streamMode == decode)
            std::memcpy(data, bytes + codedLength, size);
        else
            std::memcpy(bytes + codedLength, data, size);
        codedLength = static_cast<unsigned short>(codedLength + size);
        return true;
    }

    void addOpenTag(const char* name) noexcept
    {
        if (trace) trace->open(name);
    }
    void addCloseTag(const char* name) noexcept
    {
        if (trace) trace->close(name);
    }
    void addString(const char* text) noexcept
    {
        if (trace) trace->marker(text);
    }
    void addString2(const char* text) noexcept
    {
        if (trace) trace->value(text);
    }
    void addString3(const char* text) noexcept
    {
        if (trace) trace->value(text);
    }
    void addHexDump(unsigned char* data, unsigned short size) noexcept
    {
        if (trace) trace->hexDump(data, size);
    }
    void addTab() noexcept
    {
        if (trace) trace->indent();
    }
    void delTab() noexcept
    {
        if (trace) trace->outdent();
    }
    void addLine() noexcept
    {
        if (trace) trace->endLine();
    }
    void setLineFeed(bool on) noexcept
    {
        if (trace) trace->setLineFeed(on);
    }

    // ---- Beyond the contract ----------------------------------------------------------------------------------------

    using Trace = TraceText;

    // Collects the trace of the following passes in `sink`, which must outlive them; null collects none.
    void setTrace(Trace* sink) noexcept { trace = sink; }

    // True if a trace is collected. If not, the codec formats no text.
    bool tracing() const noexcept { return trace != nullptr; }

    // The sink, or null. The codec adds names with their lengths, and numbers as numbers, to it directly.
    Trace* sink() const noexcept { return trace; }

    // The next byte to move, the end of the buffer, and the function that sets the next byte. The codec moves bytes
    // itself with these while no trace is collected.
    unsigned char* cursor() const noexcept { return bytes + codedLength; }
    unsigned char* end() const noexcept { return bytes + limit; }
    void moveTo(const unsigned char* at) noexcept { codedLength = static_cast<unsigned short>(at - bytes); }

private:
    bool transferReversed(unsigned char* data, unsigned short size) noexcept
    {
        if (limit - codedLength < size) return false;
        unsigned char* const at = bytes + codedLength;
        for (unsigned i = 0; i < size; ++i) {
            const unsigned wire = std::endian::native == std::endian::little ? size - 1u - i : i;
            if (streamMode == decode)
                data[i] = at[wire];
            else
                at[wire] = data[i];
        }
        codedLength = static_cast<unsigned short>(codedLength + size);
        return true;
    }

    // A valid address for a pass without a buffer. Nothing is read or written there.
    unsigned char* nowhere() noexcept { return reinterpret_cast<unsigned char*>(this); }

    unsigned char* bytes = nowhere();
    unsigned short limit = 0;
    Trace* trace;
};

// Diagnostic print, formats like printf. Prints nothing until a hook is set.
void TRACE(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Receives each diagnostic as a formatted text of at most 511 characters, in the thread that printed it; null ends
// that.
using DiagnosticHook = void (*)(const char* text);
void setDiagnosticHook(DiagnosticHook hook) noexcept;
