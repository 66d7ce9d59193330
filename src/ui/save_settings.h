// SPDX-License-Identifier: MIT
// From the form to the service.
#pragma once

/// Sends the form's settings and reports in the footer; what is typed in a spin button counts. On
/// success the form is loaded anew and clean; otherwise the edits stay as they are. Returns
/// whether the service took them. Throws the JSON library's error when a reply breaks the
/// contract.
bool save_settings();
