// SPDX-License-Identifier: MIT
#include "receivers/band_menu.h"

#include "receivers/coverage.h"
#include "ui/widgets/signals.h"
#include "ui/widgets/spin_buttons.h"
#include "ui/widgets/widget_record.h"

#include <optional>

namespace {

/// Least width of the menu, in characters.
constexpr int band_menu_chars = 9;

void set_range_to_band(GtkWidget* menu, std::size_t index) {
    const char* id = gtk_combo_box_get_active_id(GTK_COMBO_BOX(menu));
    const std::optional<BandRange> range = band_range(id ? id : "");
    if (!range || index >= widgets.receiver_list.size())
        return;
    const Receiver& receiver = widgets.receiver_list[index];
    if (!receiver.low_spin)
        return;
    // Setting the value also discards typed text that is not committed.
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver.low_spin), range->low_mhz);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver.high_spin), range->high_mhz);
}

void on_band_item_activated(GtkMenuItem*, gpointer menu) {
    g_signal_emit_by_name(menu, "changed");
}

/// GtkComboBox emits no "changed" when the active item is chosen again, but the menu item emits
/// "activate". The menu items exist only after the menu was opened.
void on_band_list_shown(GtkComboBox* menu, GParamSpec*, gpointer) {
    for (GList* list = gtk_menu_get_for_attach_widget(GTK_WIDGET(menu)); list; list = list->next) {
        GList* items = gtk_container_get_children(GTK_CONTAINER(list->data));
        for (GList* item = items; item; item = item->next) {
            // The handler is connected already when the menu was opened before.
            g_signal_handlers_disconnect_by_func(
                item->data, reinterpret_cast<gpointer>(on_band_item_activated), menu);
            g_signal_connect_object(item->data, "activate", G_CALLBACK(on_band_item_activated),
                                    menu, GConnectFlags{});
        }
        g_list_free(items);
    }
}

} // namespace

GtkWidget* make_band_menu(std::size_t index) {
    GtkWidget* menu = gtk_combo_box_text_new();
    for (const BandPreset& preset : band_presets())
        gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(menu), preset.id, preset.text);
    gtk_combo_box_set_active(GTK_COMBO_BOX(menu), 0);
    // With a wrap width GTK opens the menu below its button. Without one it places the active item
    // over the button, and leaves a gap in the menu near the edge of the screen.
    gtk_combo_box_set_wrap_width(GTK_COMBO_BOX(menu), 1);
    // Otherwise the longest band would set the least width of the window.
    GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(menu));
    g_object_set(cells->data, "ellipsize", PANGO_ELLIPSIZE_END, "width-chars", band_menu_chars,
                 nullptr);
    g_list_free(cells);
    call_at_signal(menu, "changed", [menu, index] { set_range_to_band(menu, index); });
    g_signal_connect(menu, "notify::popup-shown", G_CALLBACK(on_band_list_shown), nullptr);
    let_wheel_pass(menu);
    return menu;
}
