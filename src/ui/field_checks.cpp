// SPDX-License-Identifier: MIT
#include "ui/field_checks.h"

#include "ui/field_rules.h"
#include "ui/widgets/setters.h"

void check_grid_square() {
    const GridHint hint = grid_hint(gtk_entry_get_text(GTK_ENTRY(widgets.grid_entry)));
    show_status_line(widgets.grid_hint,
                     {hint.text, hint.valid ? StatusClass::none : StatusClass::error});
    set_style_class(widgets.grid_entry, "invalid", !hint.valid);
}

void update_upload_estimate() {
    const double listeners = gtk_spin_button_get_value(GTK_SPIN_BUTTON(widgets.max_listeners_spin));
    set_label_text(widgets.upload_estimate, upload_estimate(listeners));
}

void update_relay_visibility() {
    const gboolean relay = gtk_switch_get_active(GTK_SWITCH(widgets.relay_switch));
    gtk_widget_set_visible(widgets.reachability_label, !relay);
    gtk_widget_set_visible(widgets.port_box, !relay);
    gtk_widget_set_visible(widgets.relay_key_row, relay);
    gtk_widget_set_visible(widgets.relay_note, relay);
}
