// SPDX-License-Identifier: MIT
// The widths of the listeners table's columns.
#pragma once

#include <gtk/gtk.h>

#include <array>
#include <string>

/// Sets the widths of a tree view's four columns from their content: rows of one fixed height are
/// drawn without measuring them all, so GTK does not know how wide they are. Columns only grow. The
/// view must outlive the calls.
class ColumnWidths {
public:
    /// Widths in pixels that the columns have from the start, readable titles included.
    static constexpr std::array<int, 4> least = {48, 96, 104, 64};

    /// Makes a column at least as wide as the text, up to a limit that holds an IPv6 address.
    void take_in(GtkTreeView* view, gint column, const std::string& text);

private:
    int width_of(GtkTreeView* view, const std::string& text);

    std::array<int, 4> widths_{least};
    std::array<int, 128> character_widths_{};
};
