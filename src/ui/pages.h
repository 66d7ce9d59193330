// SPDX-License-Identifier: MIT
// The five pages: their cards, fields and words, in page order.
#pragma once

/// Adds the pages to the stack and fills the widget record with what they hold.
void build_pages();
