// SPDX-License-Identifier: MIT
// What a row of a page is made of, as values to compare.
#pragma once

#include <gtk/gtk.h>

#include <ostream>
#include <string>
#include <vector>

/// One child of a row.
struct RowPart {
    std::string kind{};    ///< the name of the widget's type: "GtkLabel"
    std::string text{};    ///< what was written into it: a label's markup, a button's words
    std::string classes{}; ///< its style classes but for those that GTK gives it
    bool expands = false;
    bool at_end = false;
    bool wraps = false; ///< of a label

    bool operator==(const RowPart&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const RowPart& part);

/// The children of a box in their order.
std::vector<RowPart> parts_of(GtkWidget* box);

/// The style classes of a widget but for those that GTK gives it, with blanks between them.
std::string own_classes_of(GtkWidget* widget);

/// The markup of all labels below a widget, those of buttons included, in the tree's order.
std::vector<std::string> label_texts_below(GtkWidget* widget);
