// SPDX-License-Identifier: MIT
// The list of the station's receivers, in the order of first appearance. Backend and serial number
// identify a receiver.
#pragma once

#include <boost/json/fwd.hpp>

#include <cstddef>
#include <string>
#include <vector>

// GTK's own declaration, repeated so that this file does not include GTK.
typedef struct _GtkWidget GtkWidget;

struct Receiver {
    std::string backend{}; ///< driver family, such as "rtl-sdr" or "rx888"
    std::string serial{};
    std::string model{};
    bool available = true; ///< false: another program uses the device
    bool enabled = false;  ///< the owner shares it with listeners
    double lo = 0;         ///< bottom of the range to cover
    double hi = 0;         ///< top of the range to cover

    // Widgets of the receiver's card, valid until the cards are rebuilt; null where the card has no
    // such widget or there is no card yet.
    GtkWidget* share_switch = nullptr;
    GtkWidget* low_spin = nullptr;  ///< MHz
    GtkWidget* high_spin = nullptr; ///< MHz
    GtkWidget* coverage_label = nullptr;
    GtkWidget* details_box = nullptr; ///< insensitive while the receiver is not shared
};

/// Reads one element of the settings' `receivers`:
/// `{"backend": string, "serial": string, "lo": number, "hi": number}`, and where present
/// `"model"` (else the backend) and `"enabled": bool` (else true). Throws the JSON library's error
/// when it is no object, lacks one of the four, or `enabled` is no boolean.
Receiver receiver_from_settings(const boost::json::value& element);

/// Merges a device reply, `[{"backend": string, "serial": string, "model": string,
/// "available": bool}]`, into `list`: known receivers get the reported model and availability,
/// unknown ones are appended, not shared, with their default range. Returns how many were appended.
/// Throws the JSON library's error at a broken element; those before it are merged.
std::size_t merge_devices(std::vector<Receiver>& list, const boost::json::array& devices);

/// The sentence that reports how many devices the service found, and how many of them are new.
std::string discovery_text(std::size_t found, std::size_t added);

/// A receiver's name for a screen reader: its model, and its serial number too when others in
/// `list` are of the same model.
std::string spoken_name(const std::vector<Receiver>& list, const Receiver& receiver);

/// The settings' `receivers` as they are saved: the shared ones, with whole hertz as doubles.
boost::json::array receivers_to_save(const std::vector<Receiver>& list);
