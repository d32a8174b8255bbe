// The stream class that records its calls.

#include "Xdr.h"

#include <algorithm>
#include <cstring>

std::vector<std::string> recordedCalls;
bool overwrites = false;
int throwingConstructors = 0, constructorCalls = 0, destructorCalls = 0;

namespace {

void record(const std::string& call, const std::string& what = {})
{
    recordedCalls.push_back(what.empty() ? call : call + ' ' + what);
}

std::string hex(const unsigned char* bytes, unsigned size)
{
    std::string text;
    for (unsigned i = 0; i < size; ++i) {
        text += "0123456789ABCDEF"[bytes[i] >> 4];
        text += "0123456789ABCDEF"[bytes[i] & 15];
    }
    return text;
}

}  // namespace

Xdr::Xdr() : rootAllocationSlot(nullptr), codedLength(0), streamMode(Request::toTheWire), position(nullptr), rest(0)
{
    if (constructorCalls++ < throwingConstructors) throw StreamRefused();
}

Xdr::~Xdr()
{
    ++destructorCalls;
}

void Xdr::Program(Request mode, unsigned char* buffer, unsigned short length)
{
    streamMode = mode;
    codedLength = 0;
    position = buffer;
    rest = length;
}

bool Xdr::move(unsigned char* data, unsigned short size, bool swap)
{
    const char* const call = swap ? "unit" : "raw";
    if (size > rest) {
        record(call, "refused");
        return false;
    }
    if (streamMode == Request::toTheWire) {
        std::copy_n(data, size, position);
        if (swap) std::reverse(position, position + size);
    } else if (streamMode == Request::fromTheWire) {
        std::copy_n(position, size, data);
        if (swap) std::reverse(data, data + size);
    }
    record(call, size == 0 ? "nothing" : hex(position, size));
    position += size;
    codedLength = static_cast<unsigned short>(codedLength + size);
    rest = static_cast<unsigned short>(rest - size);
    return true;
}

bool Xdr::Transfer(unsigned char* data, unsigned short size)
{
    if (overwrites) std::memcpy(data, "\x44\x33\x22\x11", 4);
    return move(data, size, true);
}

bool Xdr::TransferWithoutSwap(unsigned char* data, unsigned short size)
{
    return move(data, size, false);
}
void Xdr::addOpenTag(const char* name)
{
    record("open", name);
}
void Xdr::addCloseTag(const char* name)
{
    record("close", name);
}
void Xdr::addString(const char* text)
{
    record("marker", text);
}
void Xdr::addString2(const char* text)
{
    record("scalar", text);
}
void Xdr::addString3(const char* text)
{
    record("text", text);
}
void Xdr::addHexDump(unsigned char* data, unsigned short size)
{
    record("dump", hex(data, size));
}
void Xdr::addTab()
{
    record("tab");
}
void Xdr::delTab()
{
    record("untab");
}
void Xdr::addLine()
{
    record("line");
}
void Xdr::setLineFeed(bool on)
{
    record("feed", on ? "on" : "off");
}
void TRACE(const char* format, ...)
{
    record("TRACE", format);
}
