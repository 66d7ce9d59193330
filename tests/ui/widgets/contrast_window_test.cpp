// SPDX-License-Identifier: MIT
// Whether texts and the ring around the focused widget can be seen: contrasts as WCAG 2.2 counts
// them.
#include "ui/widgets/theme.h"

#include "link/json_access.h"
#include "support/window_fixture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

/// The three channels in the lower bytes.
using Pixel = std::uint32_t;

double luminance(Pixel colour) {
    const auto channel = [colour](unsigned shift) {
        const double value = (colour >> shift & 0xFFU) / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(16) + 0.7152 * channel(8) + 0.0722 * channel(0);
}

double contrast(Pixel first, Pixel second) {
    const auto [low, high] = std::minmax({luminance(first), luminance(second)});
    return (high + 0.05) / (low + 0.05);
}

Pixel pixel(const std::string& hex) {
    return static_cast<Pixel>(std::stoul(hex.substr(1), nullptr, 16));
}

TEST(Contrast, OfTheColoursIsEnough) {
    const struct {
        const char* what;
        const char* colour;
        const char* ground;
        double least;
    } cases[] = {
        {"text on the window", "#E9F1F9", "#0A1420", 4.5},
        {"text in a field", "#E9F1F9", "#152838", 4.5},
        {"selected text", "#E9F1F9", "#1F5C8C", 4.5},
        {"a placeholder", "#8FA8BF", "#152838", 4.5},
        {"small text on a card", "#7590A8", "#101E2C", 4.5},
        {"quiet text in the title bar", "#B0C6DA", "#101E2C", 4.5},
        {"an error on a card", "#FF5247", "#101E2C", 4.5},
        {"the text of a primary button", "#0A1420", "#FF7A47", 4.5},
        {"the text of a pressed mode", "#0A1420", "#3B9BE0", 4.5},
        {"the ring of a button", "#63B6EE", "#17293B", 3},
        {"the ring of a button under the pointer", "#63B6EE", "#22384D", 3},
        {"the ring of a band menu", "#63B6EE", "#152838", 3},
        {"the ring of a page's name", "#63B6EE", "#101E2C", 3},
        {"the ring of a primary button", "#0A1420", "#FF7A47", 3},
        {"the ring of a pressed mode", "#0A1420", "#3B9BE0", 3},
        {"the ring of a field", "#3B9BE0", "#152838", 3},
        {"the ring of a switch", "#E9F1F9", "#101E2C", 3},
        {"small text in high contrast", "#D6E4F0", "#101E2C", 7},
        {"an error in high contrast", "#FF9C96", "#101E2C", 7},
        {"a pressed mode in high contrast", "#0A1420", "#8CCBF5", 7},
        {"a border in high contrast", "#9FB8CE", "#101E2C", 3},
        {"a border on a field in high contrast", "#9FB8CE", "#152838", 3},
    };
    const std::string sheets = std::string{style_sheet} + added_styles + high_contrast_styles;
    for (const auto& c : cases) {
        EXPECT_GE(contrast(pixel(c.colour), pixel(c.ground)), c.least) << c.what;
        EXPECT_NE(sheets.find(c.colour), sheets.npos) << c.what;
        EXPECT_NE(sheets.find(c.ground), sheets.npos) << c.what;
    }
}

/// Around a widget, in pixels: rings may be drawn outside.
constexpr int margin = 6;

std::vector<Pixel> picture_of(GtkWidget* widget) {
    const int width = gtk_widget_get_allocated_width(widget) + 2 * margin;
    const int height = gtk_widget_get_allocated_height(widget) + 2 * margin;
    int x = 0;
    int y = 0;
    gtk_widget_translate_coordinates(widget, widgets.window, 0, 0, &x, &y);
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* context = cairo_create(surface);
    cairo_translate(context, margin - x, margin - y);
    gtk_widget_draw(widgets.window, context);
    cairo_destroy(context);
    cairo_surface_flush(surface);
    std::vector<Pixel> pixels;
    for (int row = 0; row < height; ++row) {
        const auto* line = reinterpret_cast<const Pixel*>(
            cairo_image_surface_get_data(surface) + row * cairo_image_surface_get_stride(surface));
        for (int column = 0; column < width; ++column)
            pixels.push_back(line[column] & 0xFFFFFFU);
    }
    cairo_surface_destroy(surface);
    return pixels;
}

class Focus : public WindowTest {
protected:
    Focus() {
        json::value document = with(state_document(), "settings.directory.id", "");
        load(with(document, "settings.relay.enabled", true));
    }

    /// Widgets that have the keyboard themselves, not what they lie in.
    static bool is_control(GtkWidget* widget) {
        return gtk_widget_get_can_focus(widget) && gtk_widget_get_mapped(widget) &&
               gtk_widget_is_sensitive(widget) && !GTK_IS_SCROLLED_WINDOW(widget) &&
               !GTK_IS_LIST_BOX(widget) && !GTK_IS_WINDOW(widget);
    }

    /// How many pixels the focus changes by a contrast of 3 and more.
    static long ring_pixels(GtkWidget* widget) {
        gtk_widget_grab_focus(widget);
        gtk_window_set_focus_visible(GTK_WINDOW(widgets.window), TRUE);
        wait_for_frame_on(widgets.window); // pages that were just shown have no place before
        const std::vector<Pixel> focused = picture_of(widget);
        gtk_window_set_focus(GTK_WINDOW(widgets.window), nullptr);
        const std::vector<Pixel> plain = picture_of(widget);
        long different = 0;
        for (std::size_t i = 0; i < std::min(focused.size(), plain.size()); ++i)
            different += contrast(focused[i], plain[i]) >= 3;
        return different;
    }

    static void expect_ring(GtkWidget* widget, const char* state) {
        // Half of the widget's outline; for an expander, of its title's.
        const int least = std::min(300, gtk_widget_get_allocated_width(widget) +
                                            gtk_widget_get_allocated_height(widget));
        EXPECT_GE(ring_pixels(widget), least)
            << gtk_widget_get_name(widget) << " " << state
            << (GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : "");
    }

    static void expect_rings_of_this_page() {
        for (GtkWidget* widget : tree_of(widgets.window)) {
            if (!is_control(widget))
                continue;
            expect_ring(widget, "");
            if (GTK_IS_SWITCH(widget)) {
                GtkSwitch* button = GTK_SWITCH(widget);
                gtk_switch_set_active(button, !gtk_switch_get_active(button));
                drain_events(); // the one for lingering acts at once
                expect_ring(widget, "the other way");
                gtk_switch_set_active(button, !gtk_switch_get_active(button));
            } else if (GTK_IS_TOGGLE_BUTTON(widget) &&
                       !gtk_widget_get_ancestor(widget, GTK_TYPE_COMBO_BOX)) {
                GtkToggleButton* button = GTK_TOGGLE_BUTTON(widget);
                gtk_toggle_button_set_active(button, !gtk_toggle_button_get_active(button));
                expect_ring(widget, "the other way ");
                gtk_toggle_button_set_active(button, !gtk_toggle_button_get_active(button));
            }
        }
    }
};

TEST_F(Focus, IsSeenOnEveryControlOfEveryPageInEveryState) {
    gtk_tree_view_set_cursor(GTK_TREE_VIEW(widgets.listeners_view), gtk_tree_path_new_first(),
                             nullptr, FALSE);
    for (const char* page : {"overview", "station", "receivers", "listeners", "internet"}) {
        SCOPED_TRACE(page);
        show_page_at_once(page);
        expect_rings_of_this_page();
    }
}

TEST_F(Focus, IsSeenOnAWrongGridSquare) {
    show_page_at_once("station");
    type_into("station.grid", "nonsense");
    expect_ring(widgets.grid_entry, "");
}

} // namespace
