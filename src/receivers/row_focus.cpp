// SPDX-License-Identifier: MIT
#include "receivers/row_focus.h"

#include "ui/widgets/widget_record.h"

#include <array>

namespace {

/// The controls of a receiver's card in reading order; null where it has no such control.
std::array<GtkWidget*, 4> controls_of(const Receiver& receiver) {
    GtkWidget* menu = nullptr;
    if (receiver.low_spin) {
        GList* row =
            gtk_container_get_children(GTK_CONTAINER(gtk_widget_get_parent(receiver.low_spin)));
        for (GList* child = row; child; child = child->next)
            if (GTK_IS_COMBO_BOX(child->data))
                menu = GTK_WIDGET(child->data);
        g_list_free(row);
    }
    return {receiver.share_switch, receiver.low_spin, receiver.high_spin, menu};
}

} // namespace

std::optional<FocusedRowControl> focused_row_control() {
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(widgets.window));
    if (!focus)
        return std::nullopt;
    for (const Receiver& receiver : widgets.receiver_list) {
        const auto controls = controls_of(receiver);
        for (std::size_t i = 0; i < controls.size(); ++i)
            if (controls[i] && (focus == controls[i] || gtk_widget_is_ancestor(focus, controls[i])))
                return FocusedRowControl{receiver.backend, receiver.serial, i};
    }
    return std::nullopt;
}

void give_row_focus_to(const FocusedRowControl& focused) {
    for (const Receiver& receiver : widgets.receiver_list) {
        if (receiver.backend != focused.backend || receiver.serial != focused.serial)
            continue;
        GtkWidget* widget = controls_of(receiver)[focused.place];
        if (widget && GTK_IS_COMBO_BOX(widget))
            gtk_widget_child_focus(widget, GTK_DIR_TAB_FORWARD);
        else if (widget)
            gtk_widget_grab_focus(widget);
        return;
    }
}
