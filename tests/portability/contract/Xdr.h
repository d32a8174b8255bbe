// A stream class with the contract and a sink for the trace, and without the members that the codec uses as shortcuts:
// the codec makes every call of the contract.
#pragma once

#include "../../../platform/trace_text.h"

#include <cstdint>

class Xdr {
public:
    enum Request : std::int32_t { encode = 0, decode = 1, release = 2 };
    using Trace = TraceText;

    void* rootAllocationSlot = nullptr;
    unsigned short codedLength = 0;
    std::int32_t streamMode = encode;

    Xdr() noexcept : trace(ScopedTrace::current()) {}

    void Program(Request mode, unsigned char* buffer, unsigned short length);
    bool Transfer(unsigned char* data, unsigned short size);
    bool TransferWithoutSwap(unsigned char* data, unsigned short size);

    void addOpenTag(const char* name)
    {
        if (trace) trace->open(name);
    }
    void addCloseTag(const char* name)
    {
        if (trace) trace->close(name);
    }
    void addString(const char* text)
    {
        if (trace) trace->marker(text);
    }
    void addString2(const char* text)
    {
        if (trace) trace->value(text);
    }
    void addString3(const char* text)
    {
        if (trace) trace->value(text);
    }
    void addHexDump(unsigned char* data, unsigned short size)
    {
        if (trace) trace->hexDump(data, size);
    }
    void addTab()
    {
        if (trace) trace->indent();
    }
    void delTab()
    {
        if (trace) trace->outdent();
    }
    void addLine()
    {
        if (trace) trace->endLine();
    }
    void setLineFeed(bool on)
    {
        if (trace) trace->setLineFeed(on);
    }

    void setTrace(Trace* sink) { trace = sink; }

private:
    unsigned char* bytes = nullptr;
    unsigned short limit = 0;
    Trace* trace;
};

void TRACE(const char* format, ...) __attribute__((format(printf, 1, 2)));

using DiagnosticHook = void (*)(const char* text);
void setDiagnosticHook(DiagnosticHook hook) noexcept;
