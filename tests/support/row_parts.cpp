// SPDX-License-Identifier: MIT
#include "support/row_parts.h"

#include "support/window_fixture.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 5> classes_of_gtk = {"horizontal", "vertical", "text-button",
                                                            "flat", "toggle"};

RowPart part_of(GtkWidget* box, GtkWidget* child) {
    RowPart part;
    part.kind = G_OBJECT_TYPE_NAME(child);
    part.classes = own_classes_of(child);
    if (GTK_IS_LABEL(child)) {
        part.text = markup_of(child);
        part.wraps = gtk_label_get_line_wrap(GTK_LABEL(child));
    } else if (GTK_IS_BUTTON(child)) {
        part.text = gtk_button_get_label(GTK_BUTTON(child));
    }
    gboolean expands = FALSE;
    GtkPackType end = GTK_PACK_START;
    gtk_box_query_child_packing(GTK_BOX(box), child, &expands, nullptr, nullptr, &end);
    part.expands = expands;
    part.at_end = end == GTK_PACK_END;
    return part;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const RowPart& part) {
    stream << part.kind << " \"" << part.text << '"';
    if (!part.classes.empty())
        stream << " ." << part.classes;
    return stream << (part.expands ? " expands" : "") << (part.at_end ? " at the end" : "")
                  << (part.wraps ? " wraps" : "");
}

std::vector<RowPart> parts_of(GtkWidget* box) {
    std::vector<RowPart> parts;
    for (GtkWidget* child : children_of(box))
        parts.push_back(part_of(box, child));
    return parts;
}

std::string own_classes_of(GtkWidget* widget) {
    std::string own;
    for (const std::string& name : classes_of(widget))
        if (std::find(classes_of_gtk.begin(), classes_of_gtk.end(), name) == classes_of_gtk.end())
            own.append(own.empty() ? "" : " ").append(name);
    return own;
}

std::vector<std::string> label_texts_below(GtkWidget* widget) {
    std::vector<std::string> texts;
    for (GtkWidget* below : tree_of(widget))
        if (GTK_IS_LABEL(below))
            texts.push_back(markup_of(below));
    return texts;
}
