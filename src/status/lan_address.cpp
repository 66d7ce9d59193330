// SPDX-License-Identifier: MIT
#include "status/lan_address.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <cstdint>
#include <cstring>
#include <memory>

namespace {

/// The private ranges 10.0.0.0/8, 172.16.0.0/12 and 192.168.0.0/16 (RFC 1918, section 3). `address`
/// is in host byte order.
bool is_private_ipv4(std::uint32_t address) {
    return address >> 24U == 10 || address >> 20U == 0xAC1 || address >> 16U == 0xC0A8;
}

} // namespace

std::string first_private_ipv4(const ifaddrs* interfaces) {
    for (const ifaddrs* each = interfaces; each; each = each->ifa_next) {
        if (!each->ifa_addr || each->ifa_addr->sa_family != AF_INET)
            continue;
        sockaddr_in address;
        std::memcpy(&address, each->ifa_addr, sizeof address);
        if (!is_private_ipv4(ntohl(address.sin_addr.s_addr)))
            continue;
        char text[INET_ADDRSTRLEN];
        if (inet_ntop(AF_INET, &address.sin_addr, text, sizeof text))
            return text;
    }
    return "";
}

std::string lan_address() {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return "";
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> interfaces{first, freeifaddrs};
    return first_private_ipv4(interfaces.get());
}
