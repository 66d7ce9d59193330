// SPDX-License-Identifier: MIT
#include "link/service_link_fixture.h"

#include "link/text.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

std::string in_chunks(std::string_view body, std::size_t chunk_size) {
    std::string text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    while (!body.empty()) {
        const std::string_view chunk = body.substr(0, chunk_size);
        text.append(format_text("%zx\r\n", chunk.size())).append(chunk).append("\r\n");
        body.remove_prefix(chunk.size());
    }
    return text + "0\r\n\r\n";
}

void fill_backlog_of(const FakeService& service) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, service.socket_path().c_str(), sizeof address.sun_path - 1);
    int connected = 0;
    for (bool full = false; !full; ++connected) {
        const int filler = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        ASSERT_GE(filler, 0);
        full = connect(filler, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0;
        close(filler);
        ASSERT_LT(connected, 1'000);
    }
}
