// A custom stream class that offers the contract and nothing beyond it, and records every call.
#pragma once

#include <string>
#include <vector>

class Xdr {
public:
    // The names differ from those of the bundled class; the codec uses the numbers alone.
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

// One line for each call since the test cleared it.
extern std::vector<std::string> recordedCalls;

// Set by a test: `Transfer` overwrites the value that it is given, in every mode, even if it then refuses.
extern bool overwrites;

// The constructor throws StreamRefused in its first `throwingConstructors` calls. A test sets the counts back.
struct StreamRefused {};
extern int throwingConstructors, constructorCalls, destructorCalls;
