// Moves the bytes of the stream one by one.

#include "Xdr.h"

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
    const unsigned one = 1;
    const bool isLittle = *reinterpret_cast<const unsigned char*>(&one) == 1;
    for (unsigned short i = 0; i < size; ++i) {
        unsigned char& wire = bytes[codedLength + i];
        unsigned char& held = data[isLittle ? size - 1 - i : i];
        (streamMode == decode ? held : wire) = streamMode == decode ? wire : held;
    }
    codedLength = static_cast<unsigned short>(codedLength + size);
    return true;
}

bool Xdr::TransferWithoutSwap(unsigned char* data, unsigned short size)
{
    if (limit - codedLength < size) return false;
    for (unsigned short i = 0; i < size; ++i) {
        unsigned char& wire = bytes[codedLength + i];
        (streamMode == decode ? data[i] : wire) = streamMode == decode ? wire : data[i];
    }
    codedLength = static_cast<unsigned short>(codedLength + size);
    return true;
}
