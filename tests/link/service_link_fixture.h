// SPDX-License-Identifier: MIT
// The link and a scriptable service at its other end.
#pragma once

#include "link/service_link.h"

#include "support/fake_service.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

class ServiceLink : public testing::Test {
protected:
    ServiceLink() { settings_socket_path = service.socket_path(); }
    ~ServiceLink() override { settings_socket_path = "/run/tarnwave/settings.sock"; }

    static ServiceReply get_state(int time_limit_s = 5) {
        return service_request(HttpMethod::get, "/api/state", "", time_limit_s);
    }

    /// What the link makes of a reply, byte for byte, after which the service hangs up.
    ServiceReply reply_to(std::string raw) {
        service.next_connection({read_request(), send(std::move(raw))});
        return get_state();
    }

    FakeService service{};
};

inline void expect_no_answer(const ServiceReply& reply) {
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.body, "");
}

/// A reply with its body in chunks of this size, the last one excepted.
std::string in_chunks(std::string_view body, std::size_t chunk_size);

/// Fills the queue of a service that accepts nothing meanwhile.
void fill_backlog_of(const FakeService& service);
