/* What the peer's client and server share: they are made by rpcgen and libtirpc from the plain rendering of spooler.x.
 */
#ifndef PEER_H
#define PEER_H

#include "spooler_plain.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>

/* The dispatch functions of rpcgen, which its header does not declare. */
void plain_print_spooler_1(struct svc_req* request, SVCXPRT* transport);
void plain_spooler_client_1(struct svc_req* request, SVCXPRT* transport);

static inline struct sockaddr_in loopback(int port)
{
    struct sockaddr_in address = {0};
    address.sin_family = AF_INET;
    address.sin_port = htons((unsigned short)port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/*
 * A socket that is bound to a port of the loopback interface; with 0, the system chooses, and `*port` is its choice.
 * One of TCP listens, because libtirpc takes a bound socket as it is.
 */
static inline int boundSocket(int type, int* port)
{
    struct sockaddr_in address = loopback(*port);
    socklen_t length = sizeof address;
    const int opened = socket(AF_INET, type, 0);
    if (opened < 0 || bind(opened, (struct sockaddr*)&address, length) != 0 ||
        (type == SOCK_STREAM && listen(opened, SOMAXCONN) != 0) ||
        getsockname(opened, (struct sockaddr*)&address, &length) != 0) {
        perror("socket");
        exit(1);
    }
    *port = ntohs(address.sin_port);
    return opened;
}

/* Serves what is ready, or waits for it. */
static inline void serveOnce(void)
{
    fd_set ready = svc_fdset;
    if (select(FD_SETSIZE, &ready, NULL, NULL, NULL) > 0) svc_getreqset(&ready);
}

#endif
