// SPDX-License-Identifier: MIT
// One card per receiver on the Receivers page.
#pragma once

#include <cstddef>

/// Makes the cards anew from the receiver list. Edits that were not captured are lost. The focus
/// stays on the same control of the same receiver.
void rebuild_receiver_rows();

/// Commits typed text in spin buttons, then copies the cards' values into the receiver list: the
/// share switch, and the range of a tunable receiver.
void capture_row_edits();

/// The handler of "value-changed" of both spin buttons of the receiver at `index`. Does nothing for
/// a receiver without frequency controls.
void check_receiver_range(std::size_t index);
