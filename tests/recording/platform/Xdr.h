// A stream class of somebody else's: it keeps the contract and has nothing beyond it, and it writes down every call.
#pragma once

#include <string>
#include <vector>

class Xdr {
public:
    // Other names than the bundled class gives them; only the numbers count.
    enum class Request { toTheWire = 0, fromTheWire = 1, letGo = 2 };

    void* rootAllocationSlot;
    unsigned short codedLength;
    Request streamMode;

    Xdr();
    ~Xdr();
    void Program(Request mode, unsigned char* buffer, unsigned short length);
    bool Transfer(unsigned char* data, unsigned short size);
    bool TransferWithoutSwap(unsigned char* data, unsigned short size);
    void addOpenTag(const char* name);
    void addCloseTag(const char* name);
    void addString(const char* text);
    void addString2(const char* text);
    void addString3(const char* text);
    void addHexDump(unsigned char* data, unsigned short size);
    void addTab();
    void delTab();
    void addLine();
    void setLineFeed(bool on);

private:
    bool move(unsigned char* data, unsigned short size, bool swap);

    unsigned char* position;
    unsigned short rest;
};

void TRACE(const char* format, ...);

// What was called since the test emptied it, one text for each call.
extern std::vector<std::string> recordedCalls;

// Set by a test: `Transfer` replaces what it was given, in every mode, before it refuses or goes on.
extern bool meddling;
