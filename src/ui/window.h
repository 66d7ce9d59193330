// SPDX-License-Identifier: MIT
// The one window: header, sidebar of pages, footer, and the question when it is closed.
#pragma once

/// Builds the window, fills the widget record and shows the window. Called once, before the first
/// contact with the service.
void build_window();

/// Gives all pages the size of the largest, which measures them all. Needed before another page
/// than the first is shown: a narrow one would let a small window grow taller than its screen,
/// since GTK reckons the least height at the least width.
void measure_pages_alike();

/// Finishes what the first frame had no need of, once the program has nothing else to do: the
/// pages are measured alike, so that the window keeps its least size from page to page.
void finish_window_when_idle();

/// Asks about unsaved changes and saves them when the user wants that. Returns whether the window
/// stays open.
bool confirm_close();
