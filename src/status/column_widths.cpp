// SPDX-License-Identifier: MIT
#include "status/column_widths.h"

#include <algorithm>

namespace {

/// Greatest width of a column, in pixels. Ours: it holds an IPv6 address of 39 characters; what is
/// longer ends in an ellipsis.
constexpr int most_column_width = 380;

/// Room on both sides of a cell's text, in pixels.
constexpr int cell_padding = 20;

int measured(GtkTreeView* view, const char* text, int length) {
    PangoLayout* layout = gtk_widget_create_pango_layout(GTK_WIDGET(view), nullptr);
    pango_layout_set_text(layout, text, length);
    int width = 0;
    pango_layout_get_pixel_size(layout, &width, nullptr);
    g_object_unref(layout);
    return width;
}

} // namespace

/// The sum of the characters' own widths, each measured once. Kerning is left out: it takes a pixel
/// or two away at most.
int ColumnWidths::width_of(GtkTreeView* view, const std::string& text) {
    int width = 0;
    for (const char* at = text.c_str(); *at && width < most_column_width;
         at = g_utf8_next_char(at)) {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte >= character_widths_.size()) {
            width += measured(view, at, static_cast<int>(g_utf8_next_char(at) - at));
            continue;
        }
        int& known = character_widths_[byte];
        if (known == 0)
            known = measured(view, at, 1);
        width += known;
    }
    return width;
}

void ColumnWidths::take_in(GtkTreeView* view, gint column, const std::string& text) {
    int& widest = widths_[static_cast<std::size_t>(column)];
    const int width = std::min(width_of(view, text) + cell_padding, most_column_width);
    if (width <= widest)
        return;
    widest = width;
    GtkTreeViewColumn* view_column = gtk_tree_view_get_column(view, column);
    gtk_tree_view_column_set_min_width(view_column, width);
    gtk_tree_view_column_set_fixed_width(view_column, width);
}
