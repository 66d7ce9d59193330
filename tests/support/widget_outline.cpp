// SPDX-License-Identifier: MIT
#include "support/widget_outline.h"

#include "support/window_fixture.h"
#include "ui/field_rules.h"
#include "ui/widgets/setters.h"

namespace {

/// A property of a class and the value of it that the outline leaves out.
struct Property {
    GType type;
    const char* name;
    const char* usual;
};

const std::vector<Property>& properties() {
    static const std::vector<Property> all = {
        {GTK_TYPE_LABEL, "wrap", "TRUE"},
        {GTK_TYPE_LABEL, "ellipsize", "none"},
        {GTK_TYPE_LABEL, "lines", "-1"},
        {GTK_TYPE_LABEL, "xalign", "0.000000"},
        {GTK_TYPE_BUTTON, "label", "\"\""},
        {GTK_TYPE_LINK_BUTTON, "uri", "\"\""},
        {GTK_TYPE_TOGGLE_BUTTON, "active", "FALSE"},
        {GTK_TYPE_SWITCH, "active", "FALSE"},
        {GTK_TYPE_COMBO_BOX, "active", ""},
        {GTK_TYPE_ENTRY, "text", "\"\""},
        {GTK_TYPE_ENTRY, "placeholder-text", "\"\""},
        {GTK_TYPE_ENTRY, "max-length", "0"},
        {GTK_TYPE_SPIN_BUTTON, "digits", "0"},
        {GTK_TYPE_TEXT_VIEW, "wrap-mode", "word-char"},
        {GTK_TYPE_TEXT_VIEW, "accepts-tab", "FALSE"},
        {GTK_TYPE_SCROLLED_WINDOW, "hscrollbar-policy", "never"},
        {GTK_TYPE_SCROLLED_WINDOW, "vscrollbar-policy", "automatic"},
        {GTK_TYPE_EXPANDER, "expanded", "FALSE"},
        {GTK_TYPE_BOX, "spacing", "0"},
        {GTK_TYPE_WIDGET, "margin-start", "0"},
        {GTK_TYPE_WIDGET, "margin-end", "0"},
        {GTK_TYPE_WIDGET, "margin-top", "0"},
        {GTK_TYPE_WIDGET, "margin-bottom", "0"},
        {GTK_TYPE_WIDGET, "width-request", "-1"},
        {GTK_TYPE_WIDGET, "height-request", "-1"},
        {GTK_TYPE_WIDGET, "valign", "fill"},
        {GTK_TYPE_WIDGET, "visible", "TRUE"},
        {GTK_TYPE_WIDGET, "sensitive", "TRUE"},
    };
    return all;
}

/// The same for the properties that a container has for each of its children.
const std::vector<Property>& child_properties() {
    static const std::vector<Property> all = {
        {GTK_TYPE_BOX, "expand", "FALSE"}, {GTK_TYPE_BOX, "fill", "TRUE"},
        {GTK_TYPE_BOX, "padding", "0"},    {GTK_TYPE_BOX, "pack-type", "start"},
        {GTK_TYPE_STACK, "name", ""},      {GTK_TYPE_STACK, "title", ""}};
    return all;
}

/// The text of a value, which ends with this call.
std::string text_and_end_of(GValue& value) {
    std::string text;
    if (G_VALUE_HOLDS_ENUM(&value)) {
        auto* values = static_cast<GEnumClass*>(g_type_class_peek(G_VALUE_TYPE(&value)));
        text = g_enum_get_value(values, g_value_get_enum(&value))->value_nick;
    } else {
        GValue transformed = G_VALUE_INIT;
        g_value_init(&transformed, G_TYPE_STRING);
        g_value_transform(&value, &transformed);
        const char* letters = g_value_get_string(&transformed);
        const char* quote = G_VALUE_HOLDS_STRING(&value) ? "\"" : "";
        text = std::string{quote} + (letters ? letters : "") + quote;
        g_value_unset(&transformed);
    }
    g_value_unset(&value);
    return text;
}

std::string properties_line(GtkWidget* widget) {
    std::string line;
    const auto add = [&line](const Property& property, GValue& value) {
        if (const std::string text = text_and_end_of(value); text != property.usual)
            line += std::string{" "} + property.name + "=" + text;
    };
    for (const Property& property : properties()) {
        if (!G_TYPE_CHECK_INSTANCE_TYPE(widget, property.type))
            continue;
        GValue value = G_VALUE_INIT;
        g_object_get_property(G_OBJECT(widget), property.name, &value);
        add(property, value);
    }
    GtkWidget* parent = gtk_widget_get_parent(widget);
    for (const Property& property : child_properties()) {
        if (!parent || !G_TYPE_CHECK_INSTANCE_TYPE(parent, property.type))
            continue;
        GParamSpec* kind =
            gtk_container_class_find_child_property(G_OBJECT_GET_CLASS(parent), property.name);
        GValue value = G_VALUE_INIT;
        g_value_init(&value, kind->value_type);
        gtk_container_child_get_property(GTK_CONTAINER(parent), widget, property.name, &value);
        add(property, value);
    }
    return line;
}

/// A column as its title, a row as its cells.
std::string table_line(GtkTreeView* table) {
    std::string line;
    GList* columns = gtk_tree_view_get_columns(table);
    for (GList* item = columns; item; item = item->next) {
        GtkTreeViewColumn* column = GTK_TREE_VIEW_COLUMN(item->data);
        line += std::string{" | "} + gtk_tree_view_column_get_title(column) +
                (gtk_tree_view_column_get_expand(column) ? " (expands)" : "");
    }
    g_list_free(columns);
    GtkTreeModel* model = gtk_tree_view_get_model(table);
    GtkTreeIter iter;
    for (gboolean more = gtk_tree_model_get_iter_first(model, &iter); more;
         more = gtk_tree_model_iter_next(model, &iter)) {
        for (int column = 0; column < gtk_tree_model_get_n_columns(model); ++column) {
            GValue value = G_VALUE_INIT;
            gtk_tree_model_get_value(model, &iter, column, &value);
            line += (column ? ", " : " | ") + text_and_end_of(value);
        }
    }
    return line;
}

/// What no property says.
std::string content_line(GtkWidget* widget) {
    if (GTK_IS_LABEL(widget)) {
        const std::string text = text_of(widget);
        const std::string written = markup_of(widget);
        return " \"" + text + "\"" +
               (written.find('<') == written.npos ? "" : " markup=" + written);
    }
    if (GTK_IS_SPIN_BUTTON(widget)) {
        GtkAdjustment* range = gtk_spin_button_get_adjustment(GTK_SPIN_BUTTON(widget));
        return " " + decimal_text(gtk_adjustment_get_lower(range), 0) + " to " +
               decimal_text(gtk_adjustment_get_upper(range), 0) + " by " +
               decimal_text(gtk_adjustment_get_step_increment(range), 3);
    }
    if (GTK_IS_TREE_VIEW(widget))
        return table_line(GTK_TREE_VIEW(widget));
    return GTK_IS_TEXT_VIEW(widget) ? " \"" + text_of_view(widget) + "\"" : "";
}

/// The settings key of a field, and in brackets the handle that is kept of a widget.
std::string name_line(GtkWidget* widget) {
    const std::pair<const char*, GtkWidget*> members[] = {
#define MEMBER(name) {#name, widgets.name}
        // clang-format off
        MEMBER(header_title), MEMBER(header_dot), MEMBER(header_status), MEMBER(save_button),
        MEMBER(unsaved_label), MEMBER(footer_status), MEMBER(getting_started_card),
        MEMBER(getting_started_box), MEMBER(station_link_row), MEMBER(station_link),
        MEMBER(on_air_box), MEMBER(listeners_title), MEMBER(listeners_view),
        MEMBER(listeners_scroll), MEMBER(listeners_empty), MEMBER(end_session_button),
        MEMBER(block_button), MEMBER(grid_entry), MEMBER(grid_hint), MEMBER(description_view),
        MEMBER(receiver_rows_box), MEMBER(find_devices_button), MEMBER(receivers_status),
        MEMBER(max_listeners_spin), MEMBER(upload_estimate), MEMBER(mode_buttons[0]),
        MEMBER(mode_buttons[1]), MEMBER(mode_buttons[2]), MEMBER(mode_buttons[3]),
        MEMBER(mode_buttons[4]), MEMBER(banned_view), MEMBER(relay_switch), MEMBER(relay_key_row),
        MEMBER(relay_note), MEMBER(reachability_label), MEMBER(port_status_label), MEMBER(port_box),
        MEMBER(port_hint_label), MEMBER(listing_status_label), MEMBER(register_box),
        MEMBER(understand_check), MEMBER(register_email), MEMBER(register_button),
        MEMBER(registered_label), MEMBER(linger_switch)
    // clang-format on
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

std::string line_of(GtkWidget* widget) {
    std::string line = G_OBJECT_TYPE_NAME(widget) + content_line(widget);
    for (const std::string& name : classes_of(widget))
        line += " ." + name;
    return line + properties_line(widget) + name_line(widget);
}

void add_outline(GtkWidget* widget, std::size_t depth, std::string& outline) {
    std::string line = line_of(widget);
    std::vector<GtkWidget*> below;
    if (GTK_IS_CONTAINER(widget) && !GTK_IS_BUTTON(widget) && !GTK_IS_COMBO_BOX(widget) &&
        !GTK_IS_TREE_VIEW(widget) && !GTK_IS_STACK_SIDEBAR(widget))
        below = children_of(widget);
    // A row of a card with its label and hint, as add_row makes them, is one line.
    constexpr std::string_view row = "GtkBox .horizontal .row spacing=18";
    if (line.starts_with(row) &&
        line_of(below.front()) == "GtkBox .vertical spacing=2 valign=center expand=TRUE") {
        line.replace(0, row.size(), "row");
        for (GtkWidget* label : children_of(below.front()))
            line += " | " + line_of(label);
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
