// The bundled stream: one pass of one routine over a caller's buffer, with an optional trace.
//
// The codec asks of its stream class no more than the section "The contract" below; any class that keeps it can stand
// in (see QUORVA_PLATFORM_DIR). What follows under "Beyond the contract" is used where the class has it.
#pragma once

#include "trace_text.h"

#include <bit>
#include <cstdint>
#include <cstring>

class Xdr {
public:
    // ---- The contract -----------------------------------------------------------------------------------------------
    // 1. The three fields stand first, in this order. The codec writes the slot, and reads the mode.
    // 2. `Request` has the values 0 encode (memory to wire), 1 decode (wire to memory), 2 release (what a decode
    //    allocated); `streamMode` holds the same number from `Program` on.
    // 3. `codedLength` is the number of bytes moved since `Program`, in both directions.
    // 4. `Transfer` and `TransferWithoutSwap` move all of their bytes and return true, or none and return false.
    // 5. The trace operations have no result and never fail a pass.

    enum Request : std::int32_t { encode = 0, decode = 1, release = 2 };

    void* rootAllocationSlot = nullptr;  // the object that a routine allocated because it was given a null pointer
    unsigned short codedLength = 0;
    std::int32_t streamMode = encode;

    // An idle stream. It collects a trace when a ScopedTrace stands in this thread.
    Xdr() noexcept : trace(ScopedTrace::current()) {}
    Xdr(const Xdr&) = delete;
    Xdr& operator=(const Xdr&) = delete;

    // Starts a pass over `length` bytes at `buffer`, which stay the caller's and must outlive the pass. A null has
    // none.
    void Program(Request mode, unsigned char* buffer, unsigned short length) noexcept
    {
        streamMode = mode;
        bytes = buffer ? buffer : nowhere();
        limit = buffer ? length : static_cast<unsigned short>(0);
        codedLength = 0;
    }

    // Codes one value of `size` bytes at `data` in network byte order.
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

    // Moves `size` bytes as they are; none is fine.
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

    // Collects the trace of the passes to come in `sink`, which must outlive them; null collects none.
    void setTrace(Trace* sink) noexcept { trace = sink; }

    // True if a trace is collected; if not, the codec formats no text.
    bool tracing() const noexcept { return trace != nullptr; }

    // What collects it, or null: the codec hands over names with their lengths, and numbers as numbers.
    Trace* sink() const noexcept { return trace; }

    // The next byte to move, the end of the buffer, and the way to say that everything up to `at` was moved. The codec
    // moves bytes itself with these while no trace is collected.
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

    // Where a pass without a buffer stands. Nothing is read or written there.
    unsigned char* nowhere() noexcept { return reinterpret_cast<unsigned char*>(this); }

    unsigned char* bytes = nowhere();
    unsigned short limit = 0;
    Trace* trace;
};

// Diagnostic print, printf-like. Silent until a hook is set.
void TRACE(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Receives each diagnostic as finished text (at most 511 characters), from the thread that printed it; null silences.
using DiagnosticHook = void (*)(const char* text);
void setDiagnosticHook(DiagnosticHook hook) noexcept;
