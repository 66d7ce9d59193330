// SPDX-License-Identifier: MIT
// The Internet page: the port forward or the relay, the station list, sharing after logout.
#pragma once

/// Adds the page to the stack and fills its part of the widget record.
void build_internet_page();
