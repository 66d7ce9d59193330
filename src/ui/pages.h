// SPDX-License-Identifier: MIT
// The five pages: their cards, fields and words, in page order.
#pragma once

/// Adds the pages to the stack and fills the widget record with what they hold. The order in which
/// the fields are made is the order of the field registry.
void build_pages();
