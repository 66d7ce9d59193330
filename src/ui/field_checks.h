// SPDX-License-Identifier: MIT
// What follows the form's fields as they are edited: hints, and rows that come and go.
#pragma once

/// Shows where the typed grid square lies, or that it is none. Serves the grid entry's "changed".
void check_grid_square();

/// Shows the upload that the listener limit needs. Serves "value-changed" of its spin button.
void update_upload_estimate();

/// Shows the fields of the relay or those of the port forward. Serves the relay switch's
/// "notify::active".
void update_relay_visibility();
