// SPDX-License-Identifier: MIT
// The style sheets that give the window its colours and shapes.
#pragma once

extern const char style_sheet[];

/// Added after the style sheet, so that it wins whatever the selectors: text sizes that follow the
/// desktop's text scale, focus rings, and colours for the parts of GTK that would otherwise have
/// the desktop theme's.
extern const char added_styles[];

/// Brighter borders, texts and focus rings. Added after both other sheets.
extern const char high_contrast_styles[];

/// Adds the style sheets to the default screen at application priority, and those for high contrast
/// for as long as the desktop has such a theme. GTK must be initialised.
void apply_theme();
