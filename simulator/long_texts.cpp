// SPDX-License-Identifier: MIT
#include "long_texts.h"

#include <string_view>

namespace {

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

} // namespace

std::string long_refusal() {
    return "The station cannot take this over now, since a longer explanation than usual is due: "
           "the people who run the list have asked every station owner to write to them first, "
           "and they answer on weekdays, in the morning, politely by hand.";
}

std::string long_word() {
    return repeated("Unbreakable", 18) + "Ab";
}

std::string long_log() {
    return repeated("usb_transfer_status=5;retry=", 2340) + "last_retry_fails";
}

std::string long_station_name() {
    // 25 characters at a time, the "é" of two bytes among them.
    return repeated("Café Hilltop Radio <SDR> ", 400);
}
