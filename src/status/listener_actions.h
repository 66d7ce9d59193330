// SPDX-License-Identifier: MIT
// Ending a listener's session, and blocking a listener's address for good.
#pragma once

/// Ends the session of the selected listener; with `block` asks, and blocks the address first. The
/// footer reports it whatever the service answered; then the status is refreshed.
void listener_action(bool block);

/// The handlers of the two buttons.
void end_listener_session();
void block_listener_address();
