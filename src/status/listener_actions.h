// SPDX-License-Identifier: MIT
// Ending a listener's session, and blocking a listener's address for good.
#pragma once

/// Ends the session of the listener selected in the table, and with `block` blocks the address
/// first, after a question. Reports it in the footer whatever the service answered, and then
/// refreshes the status, which shows the outcome.
void listener_action(bool block);

/// The handlers of the two buttons.
void end_listener_session();
void block_listener_address();
