// SPDX-License-Identifier: MIT
#include "support/widget_outline.h"

#include "support/window_fixture.h"

#include <algorithm>
#include <iterator>

namespace {

/// The style classes of the program; GTK adds some of its own.
constexpr const char* our_classes[] = {"brand", "card",   "card-title", "details",    "dot",
                                       "error", "footer", "good",       "header",     "invalid",
                                       "link",  "mode",   "muted",      "page-title", "primary",
                                       "row",   "small",  "textbox",    "title",      "warning"};

std::string number_text(double number) {
    char text[64];
    g_snprintf(text, sizeof text, "%.15g", number);
    return text;
}

std::string quoted(const char* text) {
    return std::string{"\""} + (text ? text : "") + "\"";
}

std::string label_line(GtkLabel* label) {
    const std::string written = gtk_label_get_label(label);
    const bool marked_up = gtk_label_get_use_markup(label) && written.find('<') != written.npos;
    std::string line = "label " + quoted(marked_up ? written.c_str() : gtk_label_get_text(label));
    if (marked_up)
        line += " markup";
    if (!gtk_label_get_line_wrap(label))
        line += " one line";
    if (gtk_label_get_ellipsize(label) != PANGO_ELLIPSIZE_NONE)
        line += " ellipsised";
    if (gtk_label_get_lines(label) > 0)
        line += " at most " + std::to_string(gtk_label_get_lines(label)) + " lines";
    if (gtk_label_get_xalign(label) > 0)
        line += " not left";
    return line;
}

std::string entry_line(GtkEntry* entry) {
    const char* placeholder = gtk_entry_get_placeholder_text(entry);
    std::string line = "entry " + quoted(placeholder);
    if (gtk_entry_get_max_length(entry) > 0)
        line += " at most " + std::to_string(gtk_entry_get_max_length(entry));
    return line;
}

std::string spin_line(GtkSpinButton* spin) {
    double low = 0;
    double high = 0;
    double step = 0;
    gtk_spin_button_get_range(spin, &low, &high);
    gtk_spin_button_get_increments(spin, &step, nullptr);
    std::string line =
        "spin " + number_text(low) + " to " + number_text(high) + " by " + number_text(step);
    if (gtk_spin_button_get_digits(spin) > 0)
        line += " digits " + std::to_string(gtk_spin_button_get_digits(spin));
    return line;
}

std::string box_line(GtkWidget* box) {
    std::string line = "box ";
    line += gtk_orientable_get_orientation(GTK_ORIENTABLE(box)) == GTK_ORIENTATION_VERTICAL
                ? "vertical"
                : "horizontal";
    if (const int spacing = gtk_box_get_spacing(GTK_BOX(box)))
        line += " " + std::to_string(spacing);
    return line;
}

std::string columns_line(GtkTreeView* table) {
    std::string line = "table";
    GList* columns = gtk_tree_view_get_columns(table);
    for (GList* item = columns; item; item = item->next) {
        GtkTreeViewColumn* column = GTK_TREE_VIEW_COLUMN(item->data);
        line += " " + quoted(gtk_tree_view_column_get_title(column));
        if (gtk_tree_view_column_get_expand(column))
            line += " expands";
    }
    g_list_free(columns);
    return line;
}

std::string text_view_line(GtkTextView* view) {
    std::string line = "text view";
    if (gtk_text_view_get_wrap_mode(view) != GTK_WRAP_WORD_CHAR)
        line += " that breaks no long words";
    if (gtk_text_view_get_accepts_tab(view))
        line += " that takes Tab";
    return line;
}

std::string scrolled_line(GtkScrolledWindow* scrolled) {
    GtkPolicyType horizontal = GTK_POLICY_ALWAYS;
    GtkPolicyType vertical = GTK_POLICY_ALWAYS;
    gtk_scrolled_window_get_policy(scrolled, &horizontal, &vertical);
    const bool up_and_down = horizontal == GTK_POLICY_NEVER && vertical == GTK_POLICY_AUTOMATIC;
    return up_and_down ? "scrolled" : "scrolled every way";
}

/// The widget itself, without its place; `is_whole` when what is below it does not count.
std::string kind_line(GtkWidget* widget, bool& is_whole) {
    is_whole = true;
    if (GTK_IS_LABEL(widget))
        return label_line(GTK_LABEL(widget));
    if (GTK_IS_SWITCH(widget))
        return "switch";
    if (GTK_IS_SPIN_BUTTON(widget))
        return spin_line(GTK_SPIN_BUTTON(widget));
    if (GTK_IS_ENTRY(widget))
        return entry_line(GTK_ENTRY(widget));
    if (GTK_IS_LINK_BUTTON(widget))
        return "link " + quoted(gtk_link_button_get_uri(GTK_LINK_BUTTON(widget)));
    if (GTK_IS_CHECK_BUTTON(widget))
        return "check " + quoted(gtk_button_get_label(GTK_BUTTON(widget)));
    if (GTK_IS_TOGGLE_BUTTON(widget))
        return "toggle " + quoted(gtk_button_get_label(GTK_BUTTON(widget)));
    if (GTK_IS_BUTTON(widget))
        return "button " + quoted(gtk_button_get_label(GTK_BUTTON(widget)));
    if (GTK_IS_COMBO_BOX(widget))
        return "menu";
    if (GTK_IS_SEPARATOR(widget))
        return "separator";
    if (GTK_IS_TREE_VIEW(widget))
        return columns_line(GTK_TREE_VIEW(widget));
    if (GTK_IS_TEXT_VIEW(widget))
        return text_view_line(GTK_TEXT_VIEW(widget));
    if (GTK_IS_STACK_SIDEBAR(widget))
        return "sidebar";
    is_whole = false;
    if (GTK_IS_BOX(widget))
        return box_line(widget);
    if (GTK_IS_SCROLLED_WINDOW(widget))
        return scrolled_line(GTK_SCROLLED_WINDOW(widget));
    if (GTK_IS_VIEWPORT(widget))
        return "viewport";
    if (GTK_IS_STACK(widget))
        return "stack";
    if (GTK_IS_EXPANDER(widget))
        return (gtk_expander_get_expanded(GTK_EXPANDER(widget)) ? "open expander " : "expander ") +
               quoted(gtk_expander_get_label(GTK_EXPANDER(widget)));
    return G_OBJECT_TYPE_NAME(widget);
}

/// The settings key of a field, and in brackets the handle that is kept of a widget.
std::string name_line(GtkWidget* widget) {
    const std::pair<const char*, GtkWidget*> members[] = {
#define MEMBER(name) {#name, widgets.name}
        MEMBER(header_title),       MEMBER(header_dot),           MEMBER(header_status),
        MEMBER(open_page_button),   MEMBER(save_button),          MEMBER(unsaved_label),
        MEMBER(footer_status),      MEMBER(getting_started_card), MEMBER(getting_started_box),
        MEMBER(station_link_row),   MEMBER(station_link),         MEMBER(copy_link_button),
        MEMBER(on_air_box),         MEMBER(listeners_title),      MEMBER(listeners_view),
        MEMBER(listeners_scroll),   MEMBER(listeners_empty),      MEMBER(end_session_button),
        MEMBER(block_button),       MEMBER(grid_entry),           MEMBER(grid_hint),
        MEMBER(description_view),   MEMBER(receiver_rows_box),    MEMBER(find_devices_button),
        MEMBER(receivers_status),   MEMBER(max_listeners_spin),   MEMBER(upload_estimate),
        MEMBER(mode_buttons[0]),    MEMBER(mode_buttons[1]),      MEMBER(mode_buttons[2]),
        MEMBER(mode_buttons[3]),    MEMBER(mode_buttons[4]),      MEMBER(banned_view),
        MEMBER(relay_switch),       MEMBER(relay_key_row),        MEMBER(relay_note),
        MEMBER(reachability_label), MEMBER(port_status_label),    MEMBER(port_box),
        MEMBER(port_hint_label),    MEMBER(listing_status_label), MEMBER(register_box),
        MEMBER(understand_check),   MEMBER(register_email),       MEMBER(register_button),
        MEMBER(registered_label),   MEMBER(linger_switch),
#undef MEMBER
    };
    std::string line;
    for (const Receiver& receiver : widgets.receiver_list) {
        const std::pair<const char*, GtkWidget*> handles[] = {
            {"share_switch", receiver.share_switch},
            {"low_spin", receiver.low_spin},
            {"high_spin", receiver.high_spin},
            {"coverage_label", receiver.coverage_label},
            {"details_box", receiver.details_box}};
        for (const auto& [name, handle] : handles)
            if (handle == widget)
                line += std::string{" ("} + name + ")";
    }
    for (const FieldBinding& binding : widgets.field_registry)
        if (binding.widget == widget)
            line += " = " + binding.key;
    for (const auto& [name, member] : members)
        if (member == widget)
            line += std::string{" ("} + name + ")";
    return line;
}

std::string style_line(GtkWidget* widget) {
    std::string line;
    for (const std::string& name : classes_of(widget))
        if (std::find(std::begin(our_classes), std::end(our_classes), name) !=
            std::end(our_classes))
            line += " ." + name;
    return line;
}

std::string place_line(GtkWidget* widget) {
    std::string line;
    const int margins[] = {gtk_widget_get_margin_start(widget), gtk_widget_get_margin_end(widget),
                           gtk_widget_get_margin_top(widget), gtk_widget_get_margin_bottom(widget)};
    if (std::any_of(std::begin(margins), std::end(margins), [](int margin) { return margin; })) {
        for (const int margin : margins)
            line += (line.empty() ? " [" : " ") + std::to_string(margin);
        line += "]";
    }
    int width = -1;
    int height = -1;
    gtk_widget_get_size_request(widget, &width, &height);
    if (width >= 0)
        line += " width " + std::to_string(width);
    if (height >= 0)
        line += " height " + std::to_string(height);
    if (gtk_widget_get_valign(widget) == GTK_ALIGN_CENTER)
        line += " centred";
    GtkWidget* parent = gtk_widget_get_parent(widget);
    if (parent && GTK_IS_BOX(parent)) {
        gboolean expand = FALSE;
        gboolean fill = FALSE;
        guint padding = 0;
        GtkPackType end = GTK_PACK_START;
        gtk_box_query_child_packing(GTK_BOX(parent), widget, &expand, &fill, &padding, &end);
        if (expand)
            line += fill ? " expands" : " expands unfilled";
        if (padding > 0)
            line += " padding " + std::to_string(padding);
        if (end == GTK_PACK_END)
            line += " at end";
    }
    if (!gtk_widget_get_visible(widget))
        line += " hidden";
    if (!gtk_widget_get_sensitive(widget))
        line += " insensitive";
    return line;
}

std::string line_of(GtkWidget* widget, bool& is_whole) {
    return kind_line(widget, is_whole) + style_line(widget) + place_line(widget) +
           name_line(widget);
}

void add_outline(GtkWidget* widget, std::size_t depth, std::string& outline) {
    bool is_whole = false;
    std::string line = line_of(widget, is_whole);
    std::vector<GtkWidget*> below;
    if (!is_whole && GTK_IS_CONTAINER(widget))
        below = children_of(widget);
    if (GTK_IS_EXPANDER(widget))
        std::erase(below, gtk_expander_get_label_widget(GTK_EXPANDER(widget)));
    // A row of a card with its label and hint, as add_row makes them, is one line.
    constexpr std::string_view row = "box horizontal 18 .row";
    if (line.starts_with(row) &&
        line_of(below.front(), is_whole) == "box vertical 2 centred expands") {
        line.replace(0, row.size(), "row");
        for (GtkWidget* label : children_of(below.front()))
            line += " | " + line_of(label, is_whole);
        below.erase(below.begin());
    }
    outline.append(depth * 2, ' ').append(line).append("\n");
    for (GtkWidget* child : below)
        add_outline(child, depth + 1, outline);
}

} // namespace

std::string outline_of(GtkWidget* widget) {
    std::string outline;
    add_outline(widget, 0, outline);
    return outline;
}
