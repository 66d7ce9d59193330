// SPDX-License-Identifier: MIT
// Ending a listener's session, and blocking a listener's address for good.
#pragma once

/// Ends the session of the listener selected in the table; with `block` asks, and blocks the address
/// first. The footer reports it whatever the service answered; the refreshed status shows the truth.
void listener_action(bool block);

/// The handlers of the two buttons.
void end_listener_session();
void block_listener_address();
