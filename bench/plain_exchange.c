/* SPDX-License-Identifier: MIT
 * Reads until the service hangs up, as the service of scripts/bench does after each reply. */
#include "plain_exchange.h"

#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

static const char request[] = "GET /api/state HTTP/1.1\r\nHost: tarnwave\r\nX-Tarnwave: 1\r\n"
                              "Content-Type: application/json\r\n\r\n";

char* plain_exchange(const char* socket_path) {
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    strncpy(address.sun_path, socket_path, sizeof address.sun_path - 1);
    const struct timeval limit = {.tv_sec = 3};
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    size_t space = 16384;
    size_t size = 0;
    char* reply = malloc(space);
    ssize_t received = connect(connection, (const struct sockaddr*)&address, sizeof address);
    if (received == 0)
        received = send(connection, request, sizeof request - 1, MSG_NOSIGNAL);
    while (received > 0 && (received = recv(connection, reply + size, space - size - 1, 0)) > 0) {
        size += (size_t)received;
        if (size == space - 1)
            reply = realloc(reply, space *= 2);
    }
    close(connection);
    reply[size] = '\0';
    if (received == 0 && size > 0)
        return reply;
    free(reply);
    return NULL;
}
