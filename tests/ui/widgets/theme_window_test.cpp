// SPDX-License-Identifier: MIT
// The colours and sizes that widgets get from the style sheets.
#include "ui/widgets/theme.h"

#include "support/window_fixture.h"
#include "ui/field_rules.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/widget_tree.h"

#include <utility>

namespace {

using Theme = WindowTest;

TEST_F(Theme, IsReadWithoutAnError) {
    for (const char* sheet : {style_sheet, added_styles, high_contrast_styles}) {
        GtkCssProvider* provider = gtk_css_provider_new();
        std::string errors;
        const auto on_error = +[](GtkCssProvider*, GtkCssSection*, GError* error,
                                  std::string* all) { *all += std::string{error->message} + "\n"; };
        g_signal_connect(provider, "parsing-error", G_CALLBACK(on_error), &errors);
        EXPECT_TRUE(gtk_css_provider_load_from_data(provider, sheet, -1, nullptr));
        EXPECT_EQ(errors, "");
        g_object_unref(provider);
    }
}

std::string hex(const GdkRGBA& colour) {
    if (colour.alpha == 0)
        return "transparent";
    char text[16];
    g_snprintf(text, sizeof text, "#%02X%02X%02X", static_cast<unsigned>(colour.red * 255 + 0.5),
               static_cast<unsigned>(colour.green * 255 + 0.5),
               static_cast<unsigned>(colour.blue * 255 + 0.5));
    return text;
}

template <class Value> Value style_of(GtkWidget* widget, const char* property) {
    GtkStyleContext* context = gtk_widget_get_style_context(widget);
    Value value{};
    gtk_style_context_get(context, gtk_style_context_get_state(context), property, &value, nullptr);
    return value;
}

std::string colour_of(GtkWidget* widget, const char* property) {
    GdkRGBA* colour = style_of<GdkRGBA*>(widget, property);
    const std::string text = hex(*colour);
    gdk_rgba_free(colour);
    return text;
}

std::string border(GtkWidget* widget) {
    return colour_of(widget, "border-top-color");
}

double font_pixels(GtkWidget* widget) {
    return style_of<double>(widget, "font-size");
}

/// The size and the colour of the text, the background, one side of the border if there is one, and
/// the padding above the content and to its left.
std::string look_of(GtkWidget* widget) {
    const auto font = style_of<PangoFontDescription*>(widget, "font");
    const bool bold = pango_font_description_get_weight(font) == PANGO_WEIGHT_BOLD;
    pango_font_description_free(font);
    std::string look = decimal_text(font_pixels(widget), 0) + (bold ? "px bold " : "px ") +
                       colour_of(widget, "color") + " on " + colour_of(widget, "background-color");
    GtkStyleContext* context = gtk_widget_get_style_context(widget);
    const GtkStateFlags state = gtk_style_context_get_state(context);
    GtkBorder sides{};
    gtk_style_context_get_border(context, state, &sides);
    const std::pair<int, const char*> borders[] = {{sides.top, "border-top-color"},
                                                   {sides.bottom, "border-bottom-color"},
                                                   {sides.left, "border-left-color"},
                                                   {sides.right, "border-right-color"}};
    for (const auto& [width, property] : borders) {
        if (width == 0)
            continue;
        look += ", border " + std::to_string(width) + " " + colour_of(widget, property) +
                " radius " + std::to_string(style_of<int>(widget, "border-radius"));
        break;
    }
    gtk_style_context_get_padding(context, state, &sides);
    if (sides.top + sides.left > 0)
        look += ", padding " + std::to_string(sides.top) + " " + std::to_string(sides.left);
    return look;
}

/// The first widget that the style sheet knows by this name.
GtkWidget* node(std::string_view name) {
    for (GtkWidget* widget : descendants_of(widgets.window))
        if (gtk_widget_class_get_css_name(GTK_WIDGET_GET_CLASS(widget)) == name)
            return widget;
    ADD_FAILURE() << "there is no " << name;
    return widgets.window;
}

GtkWidget* label_in(GtkWidget* bin) {
    return gtk_bin_get_child(GTK_BIN(bin));
}

GtkWidget* with_status(StatusClass status_class) {
    set_status_class(widgets.footer_status, status_class);
    return widgets.footer_status;
}

GtkWidget* switched_off(GtkWidget* button) {
    gtk_switch_set_active(GTK_SWITCH(button), FALSE);
    return button;
}

GtkWidget* after_typing(const char* key, const char* text, GtkWidget* widget) {
    type_into(key, text);
    return widget;
}

GtkWidget* in_state(GtkWidget* widget, GtkStateFlags state) {
    gtk_widget_set_state_flags(widget, state, FALSE);
    return widget;
}

TEST_F(Theme, GivesEveryKindOfWidgetItsLook) {
    load(state_document());
    // The theme gives windows in the background paler colours.
    ASSERT_TRUE(wait_until(
        [] { return !(gtk_widget_get_state_flags(widgets.window) & GTK_STATE_FLAG_BACKDROP); }));
    GtkWidget* save = widgets.save_button;
    GtkWidget* copy = find_button(widgets.window, "Copy link");
    GtkWidget* frame = gtk_widget_get_parent(widgets.description_view);
    GtkWidget* first_title = gtk_tree_view_column_get_button(
        gtk_tree_view_get_column(GTK_TREE_VIEW(widgets.listeners_view), 0));
    GtkWidget* dialog = gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION,
                                               GTK_BUTTONS_CLOSE, "Well?");
    GtkWidget* menu = gtk_menu_new();
    GtkWidget* item = gtk_menu_item_new_with_label("160 m");
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    // The rows are evaluated in their order, so each state comes after the one before it.
    const struct {
        const char* what;
        std::string look;
        const char* expected;
    } cases[] = {
        {"the window", look_of(widgets.window), "13px #E9F1F9 on #0A1420"},
        {"the brand", look_of(find_label(widgets.window, "TARNWAVE")),
         "11px bold #63B6EE on transparent"},
        {"the header", look_of(gtk_widget_get_parent(gtk_widget_get_parent(widgets.header_title))),
         "13px #E9F1F9 on transparent, border 1 #22384D radius 0, padding 14 20"},
        {"the title", look_of(widgets.header_title), "21px bold #E9F1F9 on transparent"},
        {"the dot", look_of(widgets.header_dot), "15px #35C759 on transparent"},
        {"the mark of unsaved changes", look_of(widgets.unsaved_label),
         "13px #FFB020 on transparent"},
        {"a clean form's Save button", look_of(save),
         "13px bold #0A1420 on #17293B, border 1 #22384D radius 7, padding 7 14"},
        {"its label", look_of(label_in(save)), "13px bold #6B8093 on transparent"},
        {"an edited form's Save button", look_of(after_typing("station.name", "Edited", save)),
         "13px bold #0A1420 on #FF7A47, border 1 #FF7A47 radius 7, padding 7 14"},
        {"its label", look_of(label_in(save)), "13px bold #0A1420 on transparent"},
        {"it under the pointer", look_of(in_state(save, GTK_STATE_FLAG_PRELIGHT)),
         "13px bold #0A1420 on #FF9268, border 1 #FF7A47 radius 7, padding 7 14"},
        {"a button", look_of(copy),
         "13px #E9F1F9 on #17293B, border 1 #22384D radius 7, padding 7 14"},
        {"a button under the pointer", look_of(in_state(copy, GTK_STATE_FLAG_PRELIGHT)),
         "13px #E9F1F9 on #22384D, border 1 #22384D radius 7, padding 7 14"},
        {"a pressed button", look_of(in_state(copy, GTK_STATE_FLAG_ACTIVE)),
         "13px #E9F1F9 on #0E1A26, border 1 #3B9BE0 radius 7, padding 7 14"},
        {"the label of a grey button", look_of(label_in(widgets.block_button)),
         "13px #6B8093 on transparent"},
        {"a link", look_of(widgets.station_link),
         "13px #E9F1F9 on transparent, border 1 transparent radius 7, padding 2 6"},
        {"its label", look_of(label_in(widgets.station_link)), "13px #63B6EE on transparent"},
        {"the first mode, pressed", look_of(widgets.mode_buttons[0]),
         "13px #E9F1F9 on #3B9BE0, border 1 #3B9BE0 radius 7, padding 6 16"},
        {"its label", look_of(label_in(widgets.mode_buttons[0])),
         "13px bold #0A1420 on transparent"},
        {"the last mode, raised", look_of(widgets.mode_buttons[4]),
         "13px #E9F1F9 on #17293B, border 1 #22384D radius 0, padding 6 16"},
        {"its label", look_of(label_in(widgets.mode_buttons[4])), "13px #E9F1F9 on transparent"},
        {"a switch that is on", look_of(field("attach")),
         "13px transparent on #3B9BE0, border 1 #3B9BE0 radius 14"},
        {"a switch that is off", look_of(switched_off(field("attach"))),
         "13px transparent on #152838, border 1 #22384D radius 14"},
        {"a field", look_of(widgets.grid_entry),
         "13px #E9F1F9 on #152838, border 1 #22384D radius 6, padding 0 8"},
        {"a field with the focus", look_of(in_state(widgets.grid_entry, GTK_STATE_FLAG_FOCUSED)),
         "13px #E9F1F9 on #152838, border 1 #3B9BE0 radius 6, padding 0 8"},
        {"a wrong grid square",
         look_of(after_typing("station.grid", "nonsense", widgets.grid_entry)),
         "13px #E9F1F9 on #152838, border 1 #FF5247 radius 6, padding 0 8"},
        {"a number", look_of(widgets.max_listeners_spin),
         "13px #E9F1F9 on #152838, border 1 #22384D radius 6"},
        {"a tick box", look_of(widgets.understand_check),
         "13px #E9F1F9 on transparent, padding 4 4"},
        {"the frame of a text box", look_of(frame),
         "13px #E9F1F9 on #152838, border 1 #22384D radius 6, padding 6 6"},
        {"a text box", look_of(widgets.description_view), "13px #E9F1F9 on #152838"},
        {"a card", look_of(widgets.getting_started_card),
         "13px #E9F1F9 on #101E2C, border 1 #22384D radius 12, padding 4 16"},
        {"a card's title", look_of(widgets.listeners_title), "14px bold #63B6EE on transparent"},
        {"a row", look_of(widgets.station_link_row), "13px #E9F1F9 on transparent, padding 10 0"},
        {"a page's title", look_of(find_label(widgets.stack, "Overview")),
         "17px bold #E9F1F9 on transparent"},
        {"the table", look_of(widgets.listeners_view), "13px #E9F1F9 on #101E2C"},
        {"its chosen row", look_of(in_state(widgets.listeners_view, GTK_STATE_FLAG_SELECTED)),
         "13px #E9F1F9 on #22384D"},
        {"a title of the table", look_of(first_title),
         "13px bold #7590A8 on #101E2C, border 1 #22384D radius 0, padding 4 8"},
        {"the list of pages", look_of(node("stacksidebar")),
         "13px #E9F1F9 on #0A1420, border 1 #22384D radius 0"},
        {"the name of a page", look_of(find_label(node("stacksidebar"), "Station")),
         "13px #B0C6DA on transparent, padding 0 6"},
        {"the name of the chosen page", look_of(find_label(node("row"), "Overview")),
         "13px bold #E9F1F9 on transparent, padding 0 6"},
        {"a chosen page", look_of(node("row")),
         "13px #FFFFFF on #101E2C, border 3 #FF7A47 radius 0, padding 11 18"},
        {"a scroll bar", look_of(node("scrollbar")), "13px #E9F1F9 on #101E2C"},
        {"a dialog", look_of(dialog), "13px #2E3436 on #101E2C"},
        {"its text", look_of(find_label(dialog, "Well?")), "13px #E9F1F9 on transparent"},
        {"a menu", look_of(menu),
         "13px #E9F1F9 on #101E2C, border 1 #22384D radius 0, padding 4 0"},
        {"its item", look_of(item), "13px #E9F1F9 on transparent, padding 4 6"},
        {"its item under the pointer", look_of(in_state(item, GTK_STATE_FLAG_PRELIGHT)),
         "13px #E9F1F9 on #22384D, padding 4 6"},
        {"a separator", look_of(node("separator")), "13px #000000 on #1B2E40"},
        {"a hint", look_of(widgets.grid_hint), "12px #FF5247 on transparent"},
        {"the footer", look_of(gtk_widget_get_parent(widgets.footer_status)),
         "13px #E9F1F9 on transparent, border 1 #22384D radius 0, padding 8 20"},
        {"quiet text", look_of(with_status(StatusClass::none)), "13px #B0C6DA on transparent"},
        {"good news", look_of(with_status(StatusClass::good)), "13px #35C759 on transparent"},
        {"a warning", look_of(with_status(StatusClass::warning)), "13px #FFB020 on transparent"},
        {"an error", look_of(with_status(StatusClass::error)), "13px #FF5247 on transparent"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.look, c.expected) << c.what;
    EXPECT_EQ(style_of<double>(widgets.receiver_list.at(0).details_box, "opacity"), 1);
    switched_off(widgets.receiver_list.at(0).share_switch);
    EXPECT_EQ(style_of<double>(widgets.receiver_list.at(0).details_box, "opacity"), 0.45);
    for (GtkWidget* widget : {save, copy, widgets.grid_entry, widgets.listeners_view})
        gtk_widget_unset_state_flags(
            widget, GtkStateFlags(GTK_STATE_FLAG_PRELIGHT | GTK_STATE_FLAG_ACTIVE |
                                  GTK_STATE_FLAG_SELECTED | GTK_STATE_FLAG_FOCUSED));
    gtk_widget_destroy(dialog);
    gtk_widget_destroy(menu);
}

TEST_F(Theme, FollowsTheDesktopsTextScaleAtOnce) {
    load(state_document());
    const auto sizes = [] {
        std::vector<double> all;
        for (GtkWidget* widget : descendants_of(widgets.window))
            all.push_back(font_pixels(widget));
        return all;
    };
    const std::vector<double> before = sizes();
    g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", 2 * 96 * 1024, nullptr);
    const std::vector<double> after = sizes();
    g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", 96 * 1024, nullptr);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < after.size(); ++i)
        EXPECT_EQ(after[i], 2 * before[i]) << i;
    EXPECT_EQ(sizes(), before);
}

TEST_F(Theme, FitsTheScreenAtEveryTextScale) {
    const struct {
        int percent;
        int width;
        int height;
    } cases[] = {{125, 1024, 600}, {150, 1366, 768}, {200, 1366, 768}};
    load(with(state_document(), "settings.directory.id", ""));
    type_into("station.name", "Edited");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.percent);
        g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", c.percent * 96 * 1024 / 100,
                     nullptr);
        ASSERT_TRUE(wait_for_frame_on(widgets.window));
        for (const char* page : {"overview", "station", "receivers", "listeners", "internet"}) {
            show_page_at_once(page);
            int width = 0;
            int height = 0;
            gtk_widget_get_preferred_width(widgets.window, &width, nullptr);
            gtk_widget_get_preferred_height_for_width(widgets.window, c.width, &height, nullptr);
            EXPECT_LE(width, c.width) << page;
            EXPECT_LE(height, c.height) << page;
        }
        GtkWidget* spin = widgets.receiver_list.at(0).low_spin;
        type_into(spin, "5999.999");
        show_page_at_once("receivers");
        int least = 0;
        gtk_widget_get_preferred_width(widgets.window, &least, nullptr);
        ASSERT_TRUE(wait_until(
            [least] { return gtk_widget_get_allocated_width(widgets.window) >= least; }));
        ASSERT_TRUE(wait_for_frame_on(spin));
        int text = 0;
        pango_layout_get_pixel_size(gtk_entry_get_layout(GTK_ENTRY(spin)), &text, nullptr);
        GdkRectangle area{};
        gtk_entry_get_text_area(GTK_ENTRY(spin), &area);
        EXPECT_LE(text, area.width);
    }
    g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", 96 * 1024, nullptr);
}

TEST_F(Theme, HasStrongBordersWhileTheDesktopHasAHighContrastTheme) {
    GtkSettings* settings = gtk_settings_get_default();
    for (const char* theme : {"HighContrast", "HighContrastInverse"}) {
        g_object_set(settings, "gtk-theme-name", theme, nullptr);
        EXPECT_EQ(border(find_button(widgets.window, "Copy link")), "#9FB8CE") << theme;
        set_status_class(widgets.footer_status, StatusClass::good);
        EXPECT_EQ(colour_of(widgets.footer_status, "color"), "#35C759") << theme;
        set_status_class(widgets.footer_status, StatusClass::none);
        gtk_settings_reset_property(settings, "gtk-theme-name");
        EXPECT_EQ(border(find_button(widgets.window, "Copy link")), "#22384D") << theme;
    }
}

TEST_F(Theme, HasStrongBordersWhenTheEnvironmentAsksForHighContrast) {
    setenv("GTK_THEME", "HighContrast", 1);
    g_object_notify(G_OBJECT(gtk_settings_get_default()), "gtk-theme-name");
    EXPECT_EQ(border(find_button(widgets.window, "Copy link")), "#9FB8CE");
    unsetenv("GTK_THEME");
    g_object_notify(G_OBJECT(gtk_settings_get_default()), "gtk-theme-name");
    EXPECT_EQ(border(find_button(widgets.window, "Copy link")), "#22384D");
}

TEST_F(Theme, HasTheColoursOfMarkupInItsClasses) {
    const std::string_view sheet{style_sheet};
    const auto has = [&](const char* start, std::string_view colour) {
        return sheet.find(start + std::string{colour} + ";") != sheet.npos;
    };
    EXPECT_TRUE(has(".muted { color: ", muted_colour));
    EXPECT_TRUE(has(".small { color: ", small_colour));
    EXPECT_TRUE(has(".warning { color: ", warning_colour));
}

} // namespace
