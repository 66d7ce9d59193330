// SPDX-License-Identifier: MIT
// What the style sheet leaves open, and what a high-contrast theme asks for.
//
// GTK looks a property up in the provider that was added last, whatever its selectors: a
// declaration here overrides all of that property's declarations in the style sheet for the
// widgets that its selector matches.
#pragma once

/// Text sizes that follow the desktop's text scale, rings around the widget with the focus, and
/// the parts of the toolkit that would keep the desktop theme's own colours.
extern const char added_styles[];

/// Brighter borders, texts and rings, on top of both.
extern const char high_contrast_styles[];
