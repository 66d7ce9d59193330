// SPDX-License-Identifier: MIT
// One card per receiver on the Receivers page.
#pragma once

#include <cstddef>

/// Makes the cards anew from the receiver list. Edits in the old cards are lost unless they were
/// captured before.
void rebuild_receiver_rows();

/// Copies what the cards' widgets hold back into the receiver list: the share switch, and the
/// range of a receiver that tunes.
void capture_row_edits();

/// Shows whether the range typed for the receiver at `index` of the list fits it. Does nothing for
/// a receiver without frequency controls. Serves "value-changed" of both spin buttons.
void check_receiver_range(std::size_t index);
