// SPDX-License-Identifier: MIT
// The style sheet that gives the window its colours and shapes.
#pragma once

extern const char style_sheet[];
