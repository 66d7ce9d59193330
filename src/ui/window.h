// SPDX-License-Identifier: MIT
// The one window: header, sidebar of pages, footer, and the question when it is closed.
#pragma once

/// Builds the window, fills the widget record and shows the window. Called once, before the first
/// contact with the service.
void build_window();

/// Asks about unsaved changes and saves them when the user wants that. Returns whether the window
/// stays open.
bool confirm_close();
