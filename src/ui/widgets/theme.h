// SPDX-License-Identifier: MIT
// The window's colours and shapes.
#pragma once

/// Adds the style sheets to the default screen at application priority. GTK must be initialised.
void apply_theme();

/// The style sheet that gives the window its look.
extern const char style_sheet[];

/// What `style_sheet` leaves open: where the keyboard focus is, and what is greyed as a whole. It
/// overrides none of that sheet's declarations.
extern const char state_style_sheet[];
