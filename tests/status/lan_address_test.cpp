// SPDX-License-Identifier: MIT
#include "status/internet_texts.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <dlfcn.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <cerrno>
#include <list>
#include <string>
#include <vector>

namespace {

/// The error with which getifaddrs(3) fails; with 0 the real function is called.
int refusal = 0;

} // namespace

/// Stands in for the C library's function.
extern "C" int getifaddrs(ifaddrs** first) noexcept {
    if (refusal != 0) {
        errno = refusal;
        return -1;
    }
    using Function = int (*)(ifaddrs**);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getifaddrs"));
    return real(first);
}

namespace {

/// A hand-made list of interfaces as getifaddrs would give it. Texts are IPv4 or IPv6 addresses;
/// an empty one is an interface without an address.
class Interfaces {
public:
    explicit Interfaces(const std::vector<std::string>& addresses) {
        for (const std::string& text : addresses) {
            sockaddr* address = nullptr;
            if (sockaddr_in ipv4{}; inet_pton(AF_INET, text.c_str(), &ipv4.sin_addr) == 1) {
                ipv4.sin_family = AF_INET;
                address = reinterpret_cast<sockaddr*>(&ipv4_.emplace_back(ipv4));
            } else if (sockaddr_in6 ipv6{};
                       inet_pton(AF_INET6, text.c_str(), &ipv6.sin6_addr) == 1) {
                ipv6.sin6_family = AF_INET6;
                address = reinterpret_cast<sockaddr*>(&ipv6_.emplace_back(ipv6));
            } else {
                EXPECT_EQ(text, "") << "not an address";
            }
            ifaddrs* before = nodes_.empty() ? nullptr : &nodes_.back();
            ifaddrs& node = nodes_.emplace_back();
            node.ifa_addr = address;
            if (before)
                before->ifa_next = &node;
        }
    }
    Interfaces(const Interfaces&) = delete;
    Interfaces& operator=(const Interfaces&) = delete;

    const ifaddrs* first() const { return nodes_.empty() ? nullptr : &nodes_.front(); }

private:
    std::list<sockaddr_in> ipv4_{};
    std::list<sockaddr_in6> ipv6_{};
    std::list<ifaddrs> nodes_{};
};

std::string first_private(const std::vector<std::string>& addresses) {
    return first_private_ipv4(Interfaces{addresses}.first());
}

} // namespace

TEST(LanAddress, IsInOneOfThreeRanges) {
    const struct {
        const char* address;
        bool is_private;
    } cases[] = {
        {"9.255.255.255", false},   {"10.0.0.0", true},         {"10.255.255.255", true},
        {"11.0.0.0", false},        {"172.15.255.255", false},  {"172.16.0.0", true},
        {"172.31.255.255", true},   {"172.32.0.0", false},      {"172.32.0.1", false},
        {"192.167.255.255", false}, {"192.168.0.0", true},      {"192.168.255.255", true},
        {"192.169.0.0", false},     {"100.64.0.1", false},      {"100.127.255.254", false},
        {"127.0.0.1", false},       {"169.254.1.1", false},     {"203.0.113.7", false},
        {"0.0.0.0", false},         {"255.255.255.255", false}, {"1.0.0.10", false},
        {"1.168.168.192", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.address);
        EXPECT_EQ(first_private({c.address}), c.is_private ? c.address : "");
    }
}

TEST(LanAddress, IsTheFirstPrivateOneInTheListsOrder) {
    EXPECT_EQ(first_private({"127.0.0.1", "203.0.113.7", "192.168.1.20", "10.0.0.5"}),
              "192.168.1.20");
    EXPECT_EQ(first_private({"10.0.0.5", "192.168.1.20"}), "10.0.0.5");
}

TEST(LanAddress, PassesOverInterfacesWithoutAnAddress) {
    EXPECT_EQ(first_private({"", "172.20.1.2"}), "172.20.1.2");
    EXPECT_EQ(first_private_ipv4(nullptr), "");
}

TEST(LanAddress, PassesOverIpv6) {
    EXPECT_EQ(first_private({"::1", "fd00::1", "::ffff:192.168.1.20", "10.1.2.3"}), "10.1.2.3");
    EXPECT_EQ(first_private({"fe80::a00:1", "a00:1::"}), "");
}

TEST(LanAddress, IsNothingWhenTheInterfacesCannotBeRead) {
    refusal = ENOBUFS;
    EXPECT_EQ(lan_address(), "");
    refusal = 0;
}

TEST(LanAddress, OfThisHostIsPrivateOrNothing) {
    const std::string address = lan_address();
    ifaddrs* first = nullptr;
    ASSERT_EQ(getifaddrs(&first), 0);
    EXPECT_EQ(address, first_private_ipv4(first));
    freeifaddrs(first);
    EXPECT_TRUE(address.empty() || first_private({address}) == address) << address;
}
