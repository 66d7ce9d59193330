// SPDX-License-Identifier: MIT
// Opening and copying the link of the station's own page.
#pragma once

/// Opens the station's own page in the desktop's browser. A failure is not reported.
void open_station_page();

/// Copies the link of the station page to the clipboard and says so in the footer.
void copy_station_link();
