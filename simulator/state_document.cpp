// SPDX-License-Identifier: MIT
#include "state_document.h"

#include <cmath>
#include <cstdint>

namespace json = boost::json;

namespace {

// The most listeners that the relay can carry at once.
constexpr int relay_places = 20;

std::int64_t whole(double number) {
    return std::llround(number);
}

json::array receivers_part(const Station& station) {
    json::array receivers;
    for (const ReceiverOnAir& receiver : receivers_on_air(station))
        receivers.push_back(json::object{{"device", receiver.device},
                                         {"attached", receiver.attached},
                                         {"lo", whole(receiver.lo)},
                                         {"hi", whole(receiver.hi)}});
    return receivers;
}

json::array started_part(const Station& station) {
    json::array started;
    for (const StartedReceiver& receiver : station.started) {
        const bool failed = receiver.progress == StartedReceiver::Progress::failed;
        started.push_back(json::object{{"running", !failed},
                                       {"serial", receiver.serial},
                                       {"log", failed ? receiver.log : ""}});
    }
    return started;
}

json::array listeners_part(const Station& station) {
    json::array listeners;
    for (const Listener& listener : station.listeners) {
        json::object record{{"number", listener.number},
                            {"address", listener.address},
                            {"seconds", whole(std::floor(station.clock_s - listener.arrived_s))}};
        if (listener.tuned) {
            record["f"] = whole(listener.frequency);
            record["mode"] = listener.mode;
            record["listening"] = listener.listening;
        }
        record["relayed"] = listener.relayed;
        listeners.push_back(std::move(record));
    }
    return listeners;
}

json::object directory_part(const DirectoryLife& directory) {
    return {{"state", directory.state},
            {"reachable", directory.reachable},
            {"address", directory.address},
            {"error", directory.error}};
}

json::object relay_part(const RelayLife& relay) {
    const bool connected = relay.state == "connected";
    json::object part{{"state", relay.state},
                      {"listeners", connected ? relay_places : 0},
                      {"error", relay.error}};
    if (connected)
        part["url"] = relay.url;
    return part;
}

json::object https_part(const CertificateLife& certificate) {
    json::object part{{"state", certificate.state}, {"error", certificate.error}};
    if (!certificate.name.empty())
        part["name"] = certificate.name;
    if (certificate.expires != 0)
        part["expires"] = certificate.expires;
    return part;
}

} // namespace

json::object state_document(const Station& station) {
    return {{"settings", station.settings},
            {"status",
             {{"broker", station.broker},
              {"receivers", receivers_part(station)},
              {"started", started_part(station)},
              {"listeners", listeners_part(station)},
              {"directory", directory_part(station.directory)},
              {"relay", relay_part(station.relay)},
              {"https", https_part(station.certificate)}}}};
}
