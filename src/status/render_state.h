// SPDX-License-Identifier: MIT
// One pass over everything that shows the station's state.
#pragma once

#include "status/status_line.h"

/// Shows a sentence in the header; its class goes on the dot beside it.
void show_header_line(const StatusLine& line);

/// Redraws the header line, the Overview page and the Internet page's status lines from the
/// settings and the status object, in this order, writing only what differs from what is shown. An
/// error of the JSON library stops the pass where the document is broken: what was drawn before
/// stays, the rest keeps its old content.
void render_state();
