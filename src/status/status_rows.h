// SPDX-License-Identifier: MIT
// Rows of the Overview page: a mark, a text and at the end an origin or a link button.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

/// What a row shows; empty members leave their widget out.
struct RowContent {
    std::string mark{}; ///< a single character
    std::string mark_class{};
    std::string markup{}; ///< the text
    std::string origin{}; ///< small and plain
    std::string button{}; ///< label of the link button
    std::string page{};   ///< page that the button shows

    bool operator==(const RowContent&) const = default;
};

/// Shows these rows in a box, and no others. A row whose content stays is kept, so that focus and
/// half-finished clicks survive; any other is made anew. When the button that has the focus goes,
/// the focus moves to the button that leads to the same page.
void show_rows(GtkWidget* box, const std::vector<RowContent>& contents);
