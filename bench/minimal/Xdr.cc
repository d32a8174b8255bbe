#include "Xdr.h"

#include <algorithm>
#include <cstring>

void Xdr::Program(Request mode, unsigned char* buffer, unsigned short length)
{
    streamMode = mode;
    bytes = buffer;
    limit = length;
    codedLength = 0;
}

bool Xdr::Transfer(unsigned char* data, unsigned short size)
{
    if (limit - codedLength < size) return false;
    unsigned char* const to = streamMode == decode ? data : bytes + codedLength;
    const unsigned char* const from = streamMode == decode ? bytes + codedLength : data;
    if (size == 4) {
        std::uint32_t unit;
        std::memcpy(&unit, from, 4);
        unit = __builtin_bswap32(unit);
        std::memcpy(to, &unit, 4);
    } else {
        std::reverse_copy(from, from + size, to);
    }
    codedLength = static_cast<unsigned short>(codedLength + size);
    return true;
}

bool Xdr::TransferWithoutSwap(unsigned char* data, unsigned short size)
{
    if (limit - codedLength < size) return false;
    unsigned char* const wire = bytes + codedLength;
    if (size != 0) std::memcpy(streamMode == decode ? data : wire, streamMode == decode ? wire : data, size);
    codedLength = static_cast<unsigned short>(codedLength + size);
    return true;
}

void TRACE(const char*, ...) {}
