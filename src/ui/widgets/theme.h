// SPDX-License-Identifier: MIT
// Applying the style sheets to the screen.
#pragma once

/// Adds the style sheets to the default screen at application priority, and those for high contrast
/// for as long as the desktop has such a theme. GTK must be initialised.
void apply_theme();
