// SPDX-License-Identifier: MIT
// Ending a listener's session, and blocking a listener's address for good.
#pragma once

/// Ends the session of the selected listener; with `block` asks, and blocks the address first. The
/// footer says that it is done, even after a refusal; the refreshed status shows what came of it.
void listener_action(bool block);

/// The handlers of the two buttons.
void end_listener_session();
void block_listener_address();
