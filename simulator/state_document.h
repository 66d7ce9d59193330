// SPDX-License-Identifier: MIT
// The document that describes the station.
#pragma once

#include "station.h"

#include <boost/json.hpp>

/// The state document: the stored settings and what is going on right now.
boost::json::object state_document(const Station& station);
