// SPDX-License-Identifier: MIT
// Ending a listener's session, and blocking a listener's address for good.
#pragma once

/// Acts on the listener selected in the table: ends the session, or after a question blocks the
/// address and ends the session. Says so in the footer whatever the service answered; the poll
/// that follows shows what came of it. Does nothing without a selection or when the question is
/// answered with anything but OK.
void listener_action(bool block);

/// What the two buttons do.
void end_listener_session();
void block_listener_address();
