// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

ApiReply put(Station& station, const json::object& settings) {
    return answer(station, request("PUT", "/api/settings", json::serialize(settings)));
}

} // namespace

TEST(ServiceApi, RefusesRequestsWithoutTheHeaderFields) {
    struct Case {
        std::string ApiRequest::*field;
        std::string_view error;
    };
    for (const Case& c : {
             Case{&ApiRequest::host, "The header field Host must be tarnwave."},
             {&ApiRequest::x_tarnwave, "The header field X-Tarnwave must be 1."},
             {&ApiRequest::content_type, "The header field Content-Type must be application/json."},
         }) {
        for (const char* value : {"", "other"}) {
            Station station = station_in("on-air");
            ApiRequest wrong = request("GET", "/api/state");
            wrong.*(c.field) = value;
            const ApiReply reply = answer(station, wrong);
            EXPECT_EQ(reply.status, 400);
            EXPECT_EQ(error_in(reply), c.error);
        }
    }
}

TEST(ServiceApi, NamesTheMethodOfATarget) {
    Station station = station_in("on-air");
    const ApiReply unknown = answer(station, request("GET", "/api/nothing"));
    EXPECT_EQ(unknown.status, 404);
    EXPECT_EQ(error_in(unknown), "There is nothing at /api/nothing.");
    const ApiReply other = answer(station, request("POST", "/api/settings"));
    EXPECT_EQ(other.status, 405);
    EXPECT_EQ(other.allow, "PUT");
    EXPECT_EQ(error_in(other), "/api/settings knows PUT only.");
}

TEST(ServiceApi, RefusesBodiesThatAreNoObject) {
    for (const char* target : {"/api/register", "/api/kick", "/api/ban"})
        for (const char* body : {"", "[]", "{", "5", "{} {}"}) {
            Station station = station_in("on-air");
            const ApiReply reply = answer(station, request("POST", target, body));
            EXPECT_EQ(reply.status, 400);
            EXPECT_EQ(error_in(reply), "The body must be one JSON object.");
        }
}

TEST(ServiceApi, SavesSettingsAndSaysWhetherThePortChanged) {
    Station station = station_in("on-air");
    json::object settings = station.settings;
    settings.at("station").as_object()["name"] = "Valley SDR";
    settings.at("network").as_object()["port"] = 8.073E3;
    ApiReply reply = put(station, settings);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(object_in(reply), json::parse(R"({"restart":false})"));
    EXPECT_EQ(station.settings.at("station").at("name"), "Valley SDR");
    EXPECT_EQ(json::serialize(station.settings.at("network").at("port")), "8073");

    settings.at("network").as_object()["port"] = 9.0E3;
    reply = put(station, settings);
    EXPECT_EQ(object_in(reply), json::parse(R"({"restart":true})"));
    EXPECT_EQ(object_in(put(station, settings)), json::parse(R"({"restart":false})"));
}

TEST(ServiceApi, ARefusedSaveChangesNothing) {
    Station station = station_in("on-air");
    json::object settings = station.settings;
    const json::object former = settings;
    settings.at("station").as_object()["name"] = "Valley SDR";
    settings.at("network").as_object()["port"] = 80;
    const ApiReply reply = put(station, settings);
    EXPECT_EQ(reply.status, 422);
    EXPECT_EQ(error_in(reply),
              "The public port must be a whole number from 1024 to 65535 (network.port).");
    EXPECT_EQ(station.settings, former);
}

TEST(ServiceApi, RegistersOnce) {
    Station station = station_in("first-run");
    const ApiRequest registration =
        request("POST", "/api/register", R"({"email":"owner@k1abc.example"})");
    EXPECT_EQ(answer(station, registration).status, 200);
    EXPECT_EQ(station.settings.at("directory").at("id"), "1042");
    EXPECT_EQ(station.settings.at("directory").at("email"), "owner@k1abc.example");
    const ApiReply again = answer(station, registration);
    EXPECT_EQ(again.status, 409);
    EXPECT_EQ(error_in(again), "The station is registered already, as station 1042.");
}

TEST(ServiceApi, RefusesRegistrationsWithAReason) {
    struct Case {
        const char* scenario;
        const char* body;
        int status;
        const char* error;
    };
    for (const Case& c : {
             Case{"first-run", R"({"email":"owner@refused.example"})", 409,
                  "The station list accepts no addresses at refused.example."},
             {"register-refused", R"({"email":"owner@k1abc.example"})", 409,
              "The station list takes no new stations this week."},
             {"first-run", R"({"email":"owner"})", 422, "This is not an email address."},
             {"first-run", R"({"email":"a b@c.example"})", 422, "This is not an email address."},
             {"first-run", R"({"email":"a@b@c.example"})", 422, "This is not an email address."},
             {"first-run", R"({})", 400, "The request needs one member: email, a text."},
             {"first-run", R"({"email":"a@b.example","name":"A"})", 400,
              "The request needs one member: email, a text."},
         }) {
        SCOPED_TRACE(c.body);
        Station station = station_in(c.scenario);
        const ApiReply reply = answer(station, request("POST", "/api/register", c.body));
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(error_in(reply), c.error);
        EXPECT_EQ(station.settings.at("directory").at("id"), "");
    }
}

TEST(ServiceApi, EndsTheSessionOfThisNumber) {
    Station station = station_in("on-air");
    const int number = station.listeners.at(1).number;
    const std::size_t before = station.listeners.size();
    const std::string body = json::serialize(json::object{{"number", number}});
    EXPECT_EQ(answer(station, request("POST", "/api/kick", body)).status, 200);
    EXPECT_EQ(station.listeners.size(), before - 1);
    for (const Listener& listener : station.listeners)
        EXPECT_NE(listener.number, number);
    const ApiReply again = answer(station, request("POST", "/api/kick", body));
    EXPECT_EQ(again.status, 404);
    EXPECT_EQ(error_in(again), "There is no session " + std::to_string(number) + ".");
}

TEST(ServiceApi, RefusesSessionNumbersThatAreNone) {
    struct Case {
        const char* body;
        int status;
        const char* error;
    };
    for (const Case& c : {
             Case{R"({"number":"1"})", 400,
                  "The request needs one member: number, a session's number."},
             {R"({})", 400, "The request needs one member: number, a session's number."},
             {R"({"number":1,"why":""})", 400,
              "The request needs one member: number, a session's number."},
             {R"({"number":0})", 422, "A session's number is a whole number above 0."},
             {R"({"number":1.5})", 422, "A session's number is a whole number above 0."},
             {R"({"number":1e999})", 422, "A session's number is a whole number above 0."},
         }) {
        SCOPED_TRACE(c.body);
        Station station = station_in("on-air");
        const ApiReply reply = answer(station, request("POST", "/api/kick", c.body));
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(error_in(reply), c.error);
    }
}

TEST(ServiceApi, BlocksAnAddressOnceAndEndsItsSessions) {
    Station station = station_in("on-air");
    const std::string address = station.listeners.at(0).address;
    const std::string body = json::serialize(json::object{{"address", address}});
    const std::size_t before = station.settings.at("access").at("banned").as_array().size();
    EXPECT_EQ(answer(station, request("POST", "/api/ban", body)).status, 200);
    EXPECT_EQ(answer(station, request("POST", "/api/ban", body)).status, 200);
    const json::array& banned = station.settings.at("access").at("banned").as_array();
    ASSERT_EQ(banned.size(), before + 1);
    EXPECT_EQ(banned.at(before), json::value(address));
    for (const Listener& listener : station.listeners)
        EXPECT_NE(listener.address, address);
}

TEST(ServiceApi, BlocksAddressesOnly) {
    Station station = station_in("on-air");
    ApiReply reply = answer(station, request("POST", "/api/ban", R"({"address":"hilltop"})"));
    EXPECT_EQ(reply.status, 422);
    EXPECT_EQ(error_in(reply), "“hilltop” is not an address.");
    reply = answer(station, request("POST", "/api/ban", R"({"address":5})"));
    EXPECT_EQ(reply.status, 400);
    EXPECT_EQ(error_in(reply), "The request needs one member: address, a text.");
}

TEST(ServiceApi, ServesNobodyButTheOwner) {
    Station station = station_in("not-owner");
    for (const char* target : {"/api/state", "/api/devices"}) {
        const ApiReply reply = answer(station, request("GET", target));
        EXPECT_EQ(reply.status, 403);
        EXPECT_EQ(error_in(reply), "Only the station owner may use this station.");
    }
    remove_obstacle(station);
    EXPECT_EQ(answer(station, request("GET", "/api/state")).status, 200);
}
