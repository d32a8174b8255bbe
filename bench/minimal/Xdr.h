// A stream class that has only the contract's operations and collects no trace.
#pragma once

#include <cstdint>

class Xdr {
public:
    enum Request : std::int32_t { encode = 0, decode = 1, release = 2 };

    void* rootAllocationSlot = nullptr;
    unsigned short codedLength = 0;
    std::int32_t streamMode = encode;

    void Program(Request mode, unsigned char* buffer, unsigned short length);
    bool Transfer(unsigned char* data, unsigned short size);
    bool TransferWithoutSwap(unsigned char* data, unsigned short size);

    void addOpenTag(const char*) {}
    void addCloseTag(const char*) {}
    void addString(const char*) {}
    void addString2(const char*) {}
    void addString3(const char*) {}
    void addHexDump(unsigned char*, unsigned short) {}
    void addTab() {}
    void delTab() {}
    void addLine() {}
    void setLineFeed(bool) {}

private:
    unsigned char* bytes = nullptr;
    unsigned short limit = 0;
};

void TRACE(const char* format, ...) __attribute__((format(printf, 1, 2)));
