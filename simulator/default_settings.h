// SPDX-License-Identifier: MIT
// The settings with which each scenario begins.
//
// Some members are the service's own and no form shows them; whoever saves sends them back.
#pragma once

#include "scenarios.h"

#include <boost/json.hpp>

boost::json::object default_settings(const Scenario& scenario);
