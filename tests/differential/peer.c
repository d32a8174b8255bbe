/* Runs the routines of rpcgen over messages in memory. peer_table writes PEER_TABLE. */

#include "peer.h"

#include "plain.h"

#include <stdlib.h>

#define TYPE(name) #name,
const char* const peerTypes[] = {
#include PEER_TABLE
    NULL};
#undef TYPE

#define TYPE(name) {(xdrproc_t)xdr_plain_##name, sizeof(plain_##name)},
static const struct {
    xdrproc_t routine;
    size_t size;
} peers[] = {
#include PEER_TABLE
};

int peerRecode(unsigned index, const unsigned char* message, unsigned length, unsigned char* out, unsigned room,
               unsigned* consumed)
{
    XDR xdrs;
    int result = peerRefusesToDecode;
    void* object = calloc(1, peers[index].size);

    xdrmem_create(&xdrs, (char*)message, length, XDR_DECODE);
    if (object && peers[index].routine(&xdrs, object, 0)) {
        *consumed = xdr_getpos(&xdrs);
        xdrmem_create(&xdrs, (char*)out, room, XDR_ENCODE);
        result = peers[index].routine(&xdrs, object, 0) ? (int)xdr_getpos(&xdrs) : peerRefusesToEncode;
    }
    if (object) xdr_free(peers[index].routine, object);
    free(object);
    return result;
}
