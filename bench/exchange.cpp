// SPDX-License-Identifier: MIT
// Measures the CPU time of one exchange, as the program makes it and in plain C, by turns. The
// service is another process, so that only the client's time is counted.
//
// Usage: bench_exchange SOCKET COUNT
#include "link/service_link.h"
#include "plain_exchange.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr int exchanges_in_a_turn = 50;

bool exchange() {
    return service_request(HttpMethod::get, "/api/state", "").status == 200;
}

bool exchange_in_plain_c() {
    char* reply = plain_exchange(settings_socket_path.c_str());
    std::free(reply);
    return reply != nullptr;
}

double cpu_us() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

double time_of_a_turn(bool (*make_exchange)()) {
    const double began = cpu_us();
    for (int i = 0; i < exchanges_in_a_turn; ++i)
        if (!make_exchange())
            std::exit(EXIT_FAILURE);
    return (cpu_us() - began) / exchanges_in_a_turn;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return EXIT_FAILURE;
    settings_socket_path = argv[1];
    const int turns = std::atoi(argv[2]) / exchanges_in_a_turn;
    double program = 0;
    double floor = 0;
    for (int turn = -1; turn < turns; ++turn) {
        const double one = time_of_a_turn(exchange);
        const double other = time_of_a_turn(exchange_in_plain_c);
        // The first turn is not counted: it fills the caches.
        program += turn < 0 ? 0 : one;
        floor += turn < 0 ? 0 : other;
    }
    std::printf("{\"program\": %f, \"floor\": %f}\n", program / turns, floor / turns);
    return EXIT_SUCCESS;
}
