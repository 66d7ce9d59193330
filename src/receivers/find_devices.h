// SPDX-License-Identifier: MIT
// Asking the service which receivers are plugged in.
#pragma once

/// Merges the service's devices into the receiver list and says how many there are. Keeps unsaved
/// edits of the receivers' rows. Blocks for up to half a minute after "Looking for receivers…" was
/// drawn. Throws the JSON library's error when the reply breaks the contract.
void find_devices();
