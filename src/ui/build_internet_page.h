// SPDX-License-Identifier: MIT
// The Internet page: the way in, the station list, sharing after logout.
#pragma once

/// Adds the page to the stack and fills its part of the widget record.
void build_internet_page();
