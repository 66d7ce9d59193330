// SPDX-License-Identifier: MIT
// The settings with which each scenario begins.
//
// Some members belong to the service alone: no form shows them, and a save sends them back.
#pragma once

#include "scenarios.h"

#include <boost/json.hpp>

boost::json::object default_settings(const Scenario& scenario);
