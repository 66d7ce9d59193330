// SPDX-License-Identifier: MIT
// The form: loading and saving it, and what changes in it while it is edited.
#pragma once

/// Fetches the state document, keeps its two members and shows them in the form and, through
/// `render_state`, on the status pages. The form is clean afterwards. When the status of the reply
/// is not 200, nothing changes and nothing is reported. Throws the JSON library's error when the
/// document breaks the contract.
void load_form();

/// Sends the form's settings and reports in the footer. On success the form is loaded anew;
/// otherwise the edits stay as they are. Returns whether the service accepted them. Throws the JSON
/// library's error when a reply breaks the contract.
bool save_settings();

/// Shows where the typed grid square lies, or what a grid square looks like.
void check_grid_square();

/// Shows the upload that the listener limit needs.
void update_upload_estimate();

/// Shows the fields of the relay or the fields of the port forward.
void update_relay_visibility();
