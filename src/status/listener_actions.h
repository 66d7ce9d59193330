// SPDX-License-Identifier: MIT
// Ending a listener's session, and blocking a listener's address for good.
#pragma once

/// Acts on the listener selected in the table: ends the session, or after a question blocks the
/// address and ends the session. Reports it in the footer whatever the service answered, and then
/// refreshes the status, which shows the outcome. Does nothing without a selection or when the
/// question is answered with anything but OK.
void listener_action(bool block);

/// The handlers of the two buttons.
void end_listener_session();
void block_listener_address();
