// SPDX-License-Identifier: MIT
// Whether settings that somebody wants to save can be the station's settings.
#pragma once

#include <boost/json.hpp>

#include <string>

/// Returns a sentence for the station's owner that says why `proposed` cannot replace `stored`; ""
/// when it can. Every member of `stored` must come back, those that no form edits unchanged,
/// and no other member may come. Numbers may have any JSON form.
std::string settings_fault(const boost::json::object& stored, const boost::json::object& proposed);

/// Writes the numbers of faultless settings as integers.
void settle_numbers(boost::json::object& settings);
