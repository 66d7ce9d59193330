// SPDX-License-Identifier: MIT
// Asking the service which receivers are plugged in.
#pragma once

/// Asks the service, takes what it found into the receiver list, and says how many there are.
/// Edits in the receivers' rows survive. Blocks for up to half a minute after "Looking for
/// receivers…" was drawn. Throws the JSON library's error when the reply breaks the contract.
void find_devices();
