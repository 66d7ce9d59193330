// SPDX-License-Identifier: MIT
// Styles that complete the style sheet, and styles for a high-contrast theme.
//
// GTK looks a property up in the provider that was added last, whatever its selectors: a
// declaration here overrides all of that property's declarations in the style sheet for the
// widgets that its selector matches.
#pragma once

/// Text sizes that follow the desktop's text scale, focus rings, and colours for the parts of GTK
/// that would otherwise have the desktop theme's.
extern const char added_styles[];

/// Brighter borders, texts and focus rings. Added after both other sheets.
extern const char high_contrast_styles[];
