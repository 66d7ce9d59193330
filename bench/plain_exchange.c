/* SPDX-License-Identifier: MIT
 * The only header field that is read is Content-Length; the service of scripts/bench always sends
 * it.
 */
#define _GNU_SOURCE
#include "plain_exchange.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

static const char request[] = "GET /api/state HTTP/1.1\r\nHost: tarnwave\r\nX-Tarnwave: 1\r\n"
                              "Content-Type: application/json\r\n\r\n";

static ssize_t receive(int connection, char* into, size_t space) {
    ssize_t received;
    do
        received = recv(connection, into, space, 0);
    while (received < 0 && errno == EINTR);
    return received;
}

static char* receive_reply(int connection, size_t* size) {
    /* Receives the header, and as much of the body as comes with it. */
    char start[16384];
    size_t filled = 0;
    char* end_of_header = NULL;
    while (!end_of_header && filled + 1 < sizeof start) {
        const ssize_t received = receive(connection, start + filled, sizeof start - 1 - filled);
        if (received <= 0)
            return NULL;
        filled += (size_t)received;
        start[filled] = '\0';
        end_of_header = strstr(start, "\r\n\r\n");
    }
    const char* length = strcasestr(start, "\r\ncontent-length:");
    if (!end_of_header || !length)
        return NULL;
    *size = strtoul(length + 17, NULL, 10);
    char* body = malloc(*size + 1);
    size_t have = filled - (size_t)(end_of_header + 4 - start);
    memcpy(body, end_of_header + 4, have);
    while (have < *size) {
        const ssize_t received = receive(connection, body + have, *size - have);
        if (received <= 0) {
            free(body);
            return NULL;
        }
        have += (size_t)received;
    }
    body[*size] = '\0';
    return body;
}

char* plain_exchange(const char* socket_path, size_t* size) {
    struct sockaddr_un address = {.sun_family = AF_UNIX};
    strncpy(address.sun_path, socket_path, sizeof address.sun_path - 1);
    const struct timeval limit = {.tv_sec = 3};
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    char* body = NULL;
    if (connect(connection, (const struct sockaddr*)&address, sizeof address) == 0) {
        setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
        if (send(connection, request, sizeof request - 1, MSG_NOSIGNAL) > 0)
            body = receive_reply(connection, size);
    }
    close(connection);
    return body;
}
