/* Another implementation of the same wire form: what rpcgen makes of the same interface files, run by libtirpc. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

enum TirpcType { tirpcSmall, tirpcAttributes, tirpcNumbers };

/* An object of that type decoded from a message, or null. It stays until the program ends. */
void* tirpcObject(enum TirpcType type, const unsigned char* message, unsigned length);

/* Bytes written, or 0. */
unsigned tirpcEncode(enum TirpcType type, void* object, unsigned char* buffer, unsigned room);

/* Decodes the message and releases what came out. Bytes read, or 0. */
unsigned tirpcDecode(enum TirpcType type, const unsigned char* message, unsigned length);

#ifdef __cplusplus
}
#endif
