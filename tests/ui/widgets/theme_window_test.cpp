// SPDX-License-Identifier: MIT
// The style sheets' rules, and the colours and sizes that real widgets get from them.
#include "ui/widgets/theme.h"

#include "app/start_up.h"
#include "link/build_constants.h"
#include "support/window_fixture.h"
#include "ui/colours.h"
#include "ui/widgets/setters.h"

#include <algorithm>
#include <utility>

namespace {

using Theme = WindowTest;

using Rules = std::vector<std::pair<std::string, std::string>>;

std::string one_line(std::string_view text) {
    std::string line;
    for (const char letter : text) {
        const bool blank = letter == ' ' || letter == '\n';
        if (!blank)
            line += letter;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

/// The rules of a sheet without comments: selectors and declarations.
Rules rules_of(std::string_view sheet) {
    Rules rules;
    for (std::size_t open = sheet.find('{'); open != sheet.npos; open = sheet.find('{')) {
        const std::size_t close = sheet.find('}', open);
        rules.emplace_back(one_line(sheet.substr(0, open)),
                           one_line(sheet.substr(open + 1, close - open - 1)));
        sheet.remove_prefix(close + 1);
    }
    return rules;
}

TEST_F(Theme, HasItsRulesInOrder) {
    const Rules expected = {
        {"window, dialog",
         "background: #0A1420; color: #E9F1F9; font-family: Sans; font-size: 13px;"},
        {"messagedialog, messagedialog.background, messagedialog box, messagedialog "
         ".dialog-action-area",
         "background: #101E2C;"},
        {"messagedialog label", "color: #E9F1F9;"},
        {"messagedialog .titlebar, messagedialog headerbar",
         "background: #101E2C; border: none; box-shadow: none;"},
        {"label", "color: #E9F1F9;"},
        {"menu", "background: #101E2C; color: #E9F1F9; border: 1px solid #22384D;"},
        {"menuitem", "color: #E9F1F9;"},
        {"menuitem:hover", "background: #22384D;"},
        {".brand", "color: #63B6EE; font-size: 11px; font-weight: bold; letter-spacing: 2px;"},
        {".title", "font-size: 21px; font-weight: bold;"},
        {".page-title", "font-size: 17px; font-weight: bold;"},
        {".muted", "color: #B0C6DA;"},
        {".small", "color: #7590A8; font-size: 12px;"},
        {".card",
         "background: #101E2C; border: 1px solid #22384D; border-radius: 12px; padding: 4px 16px;"},
        {".card-title", "font-size: 14px; font-weight: bold; color: #63B6EE;"},
        {".row", "padding: 10px 0;"},
        {"separator", "background: #1B2E40; min-height: 1px;"},
        {".dot", "font-size: 15px;"},
        {".good", "color: #35C759;"},
        {".warning", "color: #FFB020;"},
        {".error", "color: #FF5247;"},
        {"entry, spinbutton, combobox button",
         "background: #152838; color: #E9F1F9; border: 1px solid #22384D; border-radius: 6px; "
         "min-height: 30px; box-shadow: none;"},
        {"entry:focus, spinbutton:focus", "border-color: #3B9BE0;"},
        {"entry.invalid", "border-color: #FF5247;"},
        {"spinbutton button",
         "background: transparent; border: none; color: #B0C6DA; min-width: 18px; padding: 0 6px;"},
        {"button", "background: #17293B; color: #E9F1F9; border: 1px solid #22384D; border-radius: "
                   "7px; padding: 7px 14px; box-shadow: none; text-shadow: none;"},
        {"button:hover", "background: #22384D;"},
        {"button:active", "background: #0E1A26; border-color: #3B9BE0;"},
        {"button:disabled, button:disabled label", "color: #6B8093;"},
        {"button.primary",
         "background: #FF7A47; color: #0A1420; font-weight: bold; border-color: #FF7A47;"},
        {"button.primary label", "color: #0A1420;"},
        {"button.primary:hover", "background: #FF9268;"},
        {"button.primary:disabled", "background: #17293B; border-color: #22384D;"},
        {"button.primary:disabled label", "color: #6B8093;"},
        {"button.link", "background: transparent; border-color: transparent; padding: 2px 6px;"},
        {"button.link label", "color: #63B6EE;"},
        {"button.mode", "padding: 6px 16px; border-radius: 0; margin-right: -1px;"},
        {"button.mode:first-child", "border-radius: 7px 0 0 7px;"},
        {"button.mode:last-child", "border-radius: 0 7px 7px 0;"},
        {"button.mode:checked", "background: #3B9BE0; border-color: #3B9BE0;"},
        {"button.mode:checked label", "color: #0A1420; font-weight: bold;"},
        {"switch", "background: #152838; border: 1px solid #22384D; border-radius: 14px; color: "
                   "transparent;"},
        {"switch:checked", "background: #3B9BE0; border-color: #3B9BE0;"},
        {"switch slider", "background: #E9F1F9; border-radius: 12px; min-width: 20px; min-height: "
                          "20px; border: none;"},
        {"checkbutton", "padding: 4px;"},
        {"checkbutton check", "background: #152838; border: 1px solid #7590A8; color: #E9F1F9;"},
        {"checkbutton check:checked",
         "background: #3B9BE0; border-color: #63B6EE; -gtk-icon-source: builtin;"},
        {"stacksidebar", "background: #0A1420; border-right: 1px solid #22384D;"},
        {"stacksidebar list", "background: #0A1420;"},
        {"stacksidebar row", "padding: 11px 18px; border-left: 3px solid transparent;"},
        {"stacksidebar row label", "color: #B0C6DA;"},
        {"stacksidebar row:selected", "background: #101E2C; border-left-color: #FF7A47;"},
        {"stacksidebar row:selected label", "color: #E9F1F9; font-weight: bold;"},
        {"treeview.view", "background: #101E2C; color: #E9F1F9;"},
        {"treeview.view:selected", "background: #22384D;"},
        {"treeview header button",
         "background: #101E2C; color: #7590A8; border: none; border-bottom: 1px solid #22384D; "
         "border-radius: 0; padding: 4px 8px;"},
        {"treeview header button label", "color: #7590A8; font-weight: normal;"},
        {"textview, textview text", "background: #152838; color: #E9F1F9;"},
        {".textbox",
         "border: 1px solid #22384D; border-radius: 6px; padding: 6px; background: #152838;"},
        {"scrolledwindow, viewport", "background: transparent; border: none;"},
        {"scrollbar trough", "background: #101E2C;"},
        {"scrollbar slider",
         "background: #22384D; border-radius: 6px; min-width: 6px; min-height: 6px;"},
        {"expander title label", "color: #B0C6DA;"},
        {".header", "border-bottom: 1px solid #22384D; padding: 14px 20px 12px;"},
        {".footer", "border-top: 1px solid #22384D; padding: 8px 20px;"},
        {"tooltip", "background: #17293B; color: #E9F1F9;"},
    };
    const Rules rules = rules_of(style_sheet);
    ASSERT_EQ(rules.size(), expected.size());
    for (std::size_t i = 0; i < rules.size(); ++i) {
        EXPECT_EQ(rules[i].first, expected[i].first);
        EXPECT_EQ(rules[i].second, expected[i].second) << "of " << expected[i].first;
    }
}

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

TEST_F(Theme, GivesTheStyleSheetsSizesInPoints) {
    const auto size_in = [](const Rules& rules, const std::string& selector, double per_pixel) {
        for (const auto& [rule, declarations] : rules) {
            const std::size_t at = declarations.find("font-size: ");
            if (rule == selector && at != declarations.npos)
                return g_ascii_strtod(declarations.c_str() + at + 11, nullptr) / per_pixel;
        }
        return 0.0;
    };
    const Rules added = rules_of(added_styles);
    for (const auto& [selector, declarations] : rules_of(style_sheet)) {
        if (declarations.find("font-size") == declarations.npos)
            continue;
        EXPECT_EQ(size_in({{selector, declarations}}, selector, 1),
                  size_in(added,
                          selector == "window, dialog" ? "window, dialog, messagedialog" : selector,
                          72.0 / 96))
            << selector;
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

std::string colour_of(GtkWidget* widget, const char* property) {
    GtkStyleContext* context = gtk_widget_get_style_context(widget);
    GdkRGBA* colour = nullptr;
    gtk_style_context_get(context, gtk_style_context_get_state(context), property, &colour,
                          nullptr);
    const std::string text = hex(*colour);
    gdk_rgba_free(colour);
    return text;
}

std::string text_colour(GtkWidget* widget) {
    return colour_of(widget, "color");
}

std::string background(GtkWidget* widget) {
    return colour_of(widget, "background-color");
}

std::string border(GtkWidget* widget) {
    return colour_of(widget, "border-top-color");
}

int font_pixels(GtkWidget* widget) {
    GtkStyleContext* context = gtk_widget_get_style_context(widget);
    double size = 0;
    gtk_style_context_get(context, gtk_style_context_get_state(context), "font-size", &size,
                          nullptr);
    return static_cast<int>(size);
}

TEST_F(Theme, ColoursTheWindow) {
    load(state_document());
    EXPECT_EQ(background(widgets.window), "#0A1420");
    EXPECT_EQ(text_colour(widgets.window), "#E9F1F9");
    EXPECT_EQ(font_pixels(widgets.window), 13);
}

TEST_F(Theme, ColoursLabelsByTheirClasses) {
    const std::string version_text = std::string{"Tarnwave "} + program_version;
    const struct {
        const char* text;
        const char* colour;
        int pixels;
    } cases[] = {
        {"TARNWAVE", "#63B6EE", 11},           {"On the air", "#63B6EE", 14},
        {"Station page", "#E9F1F9", 13},       {"Unsaved changes", "#FFB020", 13},
        {version_text.c_str(), "#7590A8", 12}, {"Overview", "#E9F1F9", 17},
    };
    load(state_document());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        GtkWidget* label = nullptr;
        for (GtkWidget* widget : tree_of(widgets.window))
            if (GTK_IS_LABEL(widget) && text_of(widget) == c.text &&
                !gtk_widget_get_ancestor(widget, GTK_TYPE_STACK_SIDEBAR))
                label = widget;
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(text_colour(label), c.colour);
        EXPECT_EQ(font_pixels(label), c.pixels);
    }
}

TEST_F(Theme, ColoursTheDotByTheStationsHealth) {
    load(state_document());
    EXPECT_EQ(text_colour(widgets.header_dot), "#35C759");
    EXPECT_EQ(font_pixels(widgets.header_dot), 15);
    service.stop();
    poll_state(nullptr);
    EXPECT_EQ(text_colour(widgets.header_dot), "#FF5247");
}

TEST_F(Theme, ColoursTheStatusClasses) {
    const struct {
        const char* style_class;
        const char* colour;
    } cases[] = {{"good", "#35C759"}, {"warning", "#FFB020"}, {"error", "#FF5247"}};
    GtkWidget* label = widgets.footer_status;
    GtkStyleContext* context = gtk_widget_get_style_context(label);
    EXPECT_EQ(text_colour(label), "#B0C6DA");
    for (const auto& c : cases) {
        gtk_style_context_add_class(context, c.style_class);
        EXPECT_EQ(text_colour(label), c.colour) << c.style_class;
        gtk_style_context_remove_class(context, c.style_class);
    }
    EXPECT_EQ(text_colour(label), "#B0C6DA");
}

TEST_F(Theme, ColoursTheSaveButtonByItsState) {
    load(state_document());
    GtkWidget* label = gtk_bin_get_child(GTK_BIN(widgets.save_button));
    EXPECT_EQ(background(widgets.save_button), "#17293B");
    EXPECT_EQ(border(widgets.save_button), "#22384D");
    EXPECT_EQ(text_colour(label), "#6B8093");
    type_into("station.name", "Edited");
    EXPECT_EQ(background(widgets.save_button), "#FF7A47");
    EXPECT_EQ(border(widgets.save_button), "#FF7A47");
    EXPECT_EQ(text_colour(label), "#0A1420");
}

TEST_F(Theme, ColoursButtonsAndLinks) {
    load(state_document());
    EXPECT_EQ(background(find_button(widgets.window, "Copy link")), "#17293B");
    EXPECT_EQ(border(find_button(widgets.window, "Copy link")), "#22384D");
    EXPECT_EQ(background(widgets.station_link), "transparent");
    EXPECT_EQ(text_colour(gtk_bin_get_child(GTK_BIN(widgets.station_link))), "#63B6EE");
    EXPECT_EQ(text_colour(gtk_bin_get_child(GTK_BIN(widgets.block_button))), "#6B8093");
}

TEST_F(Theme, ColoursAPressedMode) {
    load(state_document());
    GtkWidget* pressed = widgets.mode_buttons[0];
    GtkWidget* raised = widgets.mode_buttons[4];
    EXPECT_EQ(background(pressed), "#3B9BE0");
    EXPECT_EQ(text_colour(gtk_bin_get_child(GTK_BIN(pressed))), "#0A1420");
    EXPECT_EQ(background(raised), "#17293B");
    EXPECT_EQ(text_colour(gtk_bin_get_child(GTK_BIN(raised))), "#E9F1F9");
}

TEST_F(Theme, ColoursSwitchesByTheirState) {
    load(state_document());
    GtkWidget* attach = field("attach");
    EXPECT_EQ(background(attach), "#3B9BE0");
    gtk_switch_set_active(GTK_SWITCH(attach), FALSE);
    EXPECT_EQ(background(attach), "#152838");
    EXPECT_EQ(border(attach), "#22384D");
}

TEST_F(Theme, DrawsARedBorderAroundAWrongGridSquare) {
    load(state_document());
    EXPECT_EQ(background(widgets.grid_entry), "#152838");
    EXPECT_EQ(border(widgets.grid_entry), "#22384D");
    type_into("station.grid", "nonsense");
    EXPECT_EQ(border(widgets.grid_entry), "#FF5247");
    type_into("station.grid", "");
    EXPECT_EQ(border(widgets.grid_entry), "#22384D");
}

TEST_F(Theme, ColoursCardsAndTextBoxes) {
    GtkWidget* frame = gtk_widget_get_parent(widgets.description_view);
    EXPECT_EQ(background(widgets.getting_started_card), "#101E2C");
    EXPECT_EQ(border(widgets.getting_started_card), "#22384D");
    EXPECT_EQ(background(frame), "#152838");
    EXPECT_EQ(background(widgets.description_view), "#152838");
    EXPECT_EQ(background(widgets.listeners_view), "#101E2C");
}

TEST_F(Theme, GreysTheDetailsOfAReceiverThatIsOff) {
    load(state_document());
    const auto opacity = [](GtkWidget* widget) {
        GtkStyleContext* context = gtk_widget_get_style_context(widget);
        double value = 0;
        gtk_style_context_get(context, gtk_style_context_get_state(context), "opacity", &value,
                              nullptr);
        return value;
    };
    const Receiver& receiver = widgets.receiver_list.at(0);
    EXPECT_EQ(opacity(receiver.details_box), 1);
    gtk_switch_set_active(GTK_SWITCH(receiver.share_switch), FALSE);
    EXPECT_EQ(opacity(receiver.details_box), 0.45);
}

TEST_F(Theme, FollowsTheDesktopsTextScaleAtOnce) {
    GtkSettings* settings = gtk_settings_get_default();
    load(state_document());
    g_object_set(settings, "gtk-xft-dpi", 2 * 96 * 1024, nullptr);
    EXPECT_EQ(font_pixels(widgets.window), 26);
    EXPECT_EQ(font_pixels(widgets.header_title), 42);
    g_object_set(settings, "gtk-xft-dpi", 96 * 1024, nullptr);
    EXPECT_EQ(font_pixels(widgets.header_title), 21);
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
        EXPECT_EQ(text_colour(widgets.footer_status), "#35C759") << theme;
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
