// SPDX-License-Identifier: MIT
// Keeps the settings, the registration and the blocked addresses among them, from run to run.
#pragma once

#include <boost/json.hpp>

#include <string>

/// Reads settings into `settings`, which stays as it is when there is no such file. They must be
/// of the shape of `pattern`. Returns in words what went wrong, "" when nothing did.
std::string read_settings_file(const std::string& path, const boost::json::object& pattern,
                               boost::json::object& settings);

/// Writes settings so that the file holds the former ones or these, whatever happens meanwhile.
/// Returns in words what went wrong, "" when nothing did.
std::string write_settings_file(const std::string& path, const boost::json::object& settings);
