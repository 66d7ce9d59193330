// SPDX-License-Identifier: MIT
// Handlers that update hints and show or hide rows while the form's fields are edited.
#pragma once

/// Shows where the typed grid square lies, or what a grid square looks like. The handler of the
/// entry's "changed".
void check_grid_square();

/// Shows the upload that the listener limit needs. The handler of its spin button's
/// "value-changed".
void update_upload_estimate();

/// Shows the fields of the relay or the fields of the port forward. The handler of the relay
/// switch's "notify::active".
void update_relay_visibility();
