// SPDX-License-Identifier: MIT
// Putting the station on the public station list, once.
#pragma once

/// Registers the station with the typed e-mail address, after saving unsaved changes, and reports
/// in the footer. Blocks for up to half a minute after "Registering…" was drawn. Throws the JSON
/// library's error when a refusal gives no reason.
void register_station();
