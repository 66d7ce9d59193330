// SPDX-License-Identifier: MIT
// Saving the form's settings.
#pragma once

/// Commits typed text in spin buttons, sends the form's settings and reports in the footer. On
/// success the form is loaded anew and clean; otherwise the edits stay as they are. Returns
/// whether the service accepted them. Throws the JSON library's error when a reply breaks the
/// contract.
bool save_settings();
