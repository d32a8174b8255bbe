/* Runs what rpcgen made over messages in memory, as a program that has just these types would. */

#include "tirpc_peer.h"

#include "plain.h"

#include <stdlib.h>
#include <string.h>

union Object {
    plain_JobAttNotifyParams small;
    plain_JobAVPSeq attributes;
    plain_AttributeSeq numbers;
};

static const xdrproc_t routines[] = {(xdrproc_t)xdr_plain_JobAttNotifyParams, (xdrproc_t)xdr_plain_JobAVPSeq,
                                     (xdrproc_t)xdr_plain_AttributeSeq};

void* tirpcObject(enum TirpcType type, const unsigned char* message, unsigned length)
{
    XDR xdrs;
    union Object* object = calloc(1, sizeof *object);
    xdrmem_create(&xdrs, (char*)message, length, XDR_DECODE);
    return object && routines[type](&xdrs, object, 0) ? object : NULL;
}

unsigned tirpcEncode(enum TirpcType type, void* object, unsigned char* buffer, unsigned room)
{
    XDR xdrs;
    xdrmem_create(&xdrs, (char*)buffer, room, XDR_ENCODE);
    return routines[type](&xdrs, object, 0) ? xdr_getpos(&xdrs) : 0;
}

unsigned tirpcDecode(enum TirpcType type, const unsigned char* message, unsigned length)
{
    XDR xdrs;
    union Object object;
    unsigned consumed;
    memset(&object, 0, sizeof object);
    xdrmem_create(&xdrs, (char*)message, length, XDR_DECODE);
    consumed = routines[type](&xdrs, &object, 0) ? xdr_getpos(&xdrs) : 0;
    xdr_free(routines[type], (char*)&object);
    return consumed;
}
