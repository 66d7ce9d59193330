// SPDX-License-Identifier: MIT
// The link and a service at its other end.
#pragma once

#include "link/service_link.h"

#include "support/fake_service.h"

#include <gtest/gtest.h>

class ServiceLink : public testing::Test {
protected:
    ServiceLink() { settings_socket_path = service.socket_path(); }
    ~ServiceLink() override { settings_socket_path = "/run/tarnwave/settings.sock"; }

    static ServiceReply get_state(int time_limit_s = 5) {
        return service_request(HttpMethod::get, "/api/state", "", time_limit_s);
    }

    FakeService service{};
};

inline void expect_no_answer(const ServiceReply& reply) {
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.body, "");
}
