// SPDX-License-Identifier: MIT
// The one window: header, sidebar of pages, footer, and the question when it is closed.
#pragma once

/// Builds the window, fills the widget record and shows the window.
void build_window();

/// Asks about unsaved changes, if there are any. Returns whether the window stays open.
bool confirm_close();
