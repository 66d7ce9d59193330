// SPDX-License-Identifier: MIT
#include "receivers/receiver_rows.h"

#include "link/text.h"
#include "receivers/band_menu.h"
#include "receivers/coverage.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/signals.h"
#include "ui/widgets/spin_buttons.h"
#include "ui/widgets/widget_tree.h"

#include <string>
#include <utility>

namespace {

constexpr double hertz_per_megahertz = 1e6;

/// Margins above and below the text of an empty list, in pixels.
constexpr int empty_list_margin = 14;

double spin_value(GtkWidget* spin) {
    return gtk_spin_button_get_value(GTK_SPIN_BUTTON(spin));
}

/// Backend and serial number identify a receiver.
void name_for_focus(const Receiver& receiver, GtkWidget* control, const char* name) {
    set_focus_name(control, receiver.backend + " " + receiver.serial + " " + name);
}

/// Makes the card's header. `title_out` receives the label of the model.
GtkWidget* make_header(Receiver& receiver, GtkWidget** title_out) {
    GtkWidget* header = make_box(GTK_ORIENTATION_HORIZONTAL, 12, "row");
    GtkWidget* names = make_box(GTK_ORIENTATION_VERTICAL, 2);
    GtkWidget* title =
        make_label(("<b>" + escaped_markup(receiver.model) + "</b>").c_str(), nullptr);
    pack(names, title);
    *title_out = title;
    GtkWidget* subtitle = make_label(
        receiver_subtitle_markup(receiver.backend, receiver.serial, receiver.available).c_str(),
        "small");
    pack(names, subtitle);
    pack(header, names, true);

    receiver.share_switch = gtk_switch_new();
    name_for_focus(receiver, receiver.share_switch, "switch");
    gtk_switch_set_active(GTK_SWITCH(receiver.share_switch), receiver.enabled);
    gtk_widget_set_valign(receiver.share_switch, GTK_ALIGN_CENTER);
    gtk_widget_set_tooltip_text(receiver.share_switch, "Share this receiver with listeners");
    set_accessible_name(
        receiver.share_switch,
        valid_utf8("Share " + spoken_name(widgets.receiver_list, receiver) + " with listeners")
            .c_str());
    describe_by_label(receiver.share_switch, subtitle);
    pack_end(header, receiver.share_switch);
    return header;
}

GtkWidget* make_frequency_row(Receiver& receiver) {
    GtkWidget* row = make_box(GTK_ORIENTATION_HORIZONTAL, 8);
    // With several receivers a screen reader has to say which one a field belongs to.
    const std::string of_it = " of " + valid_utf8(spoken_name(widgets.receiver_list, receiver));
    receiver.low_spin = make_frequency_spin(("Lowest frequency" + of_it + " in MHz").c_str());
    receiver.high_spin = make_frequency_spin(("Highest frequency" + of_it + " in MHz").c_str());
    name_for_focus(receiver, receiver.low_spin, "low");
    name_for_focus(receiver, receiver.high_spin, "high");
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver.low_spin),
                              receiver.lo / hertz_per_megahertz);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver.high_spin),
                              receiver.hi / hertz_per_megahertz);
    GtkWidget* frequencies = make_label("Frequencies", nullptr, false);
    // A small screen is too narrow for the spin buttons and the whole word.
    ellipsise(frequencies);
    add_whole_text_tooltip(frequencies);
    pack(row, frequencies);
    pack(row, receiver.low_spin);
    pack(row, make_label("to", nullptr, false));
    pack(row, receiver.high_spin);
    pack(row, make_label("MHz", nullptr, false));
    return row;
}

void add_details(Receiver& receiver, std::size_t index, GtkWidget* title) {
    if (receiver_kind(receiver.backend).maximum_span_mhz == 0) {
        pack(receiver.details_box, make_label("Covers all of HF, 0 to 30 MHz.", "muted"));
        return;
    }
    GtkWidget* row = make_frequency_row(receiver);
    GtkWidget* menu = make_band_menu(index);
    name_for_focus(receiver, menu, "band");
    // GtkComboBox takes its accessible name from the active item, which does not name the receiver.
    name_by_label(menu, title);
    pack_end(row, menu);
    pack(receiver.details_box, row);
    receiver.coverage_label = make_label("", "small");
    pack(receiver.details_box, receiver.coverage_label);
    describe_by_label(receiver.low_spin, receiver.coverage_label);
    describe_by_label(receiver.high_spin, receiver.coverage_label);
    check_receiver_range(index);
    // Connected after the first text, so that a load announces nothing.
    announce_changes(receiver.coverage_label);

    for (GtkWidget* spin : {receiver.low_spin, receiver.high_spin}) {
        call_at_signal(spin, "value-changed", [index] { check_receiver_range(index); });
        track_changes(spin);
    }
}

void add_receiver_card(std::size_t index) {
    Receiver& receiver = widgets.receiver_list[index];
    GtkWidget* card = add_card(widgets.receiver_rows_box, nullptr);
    GtkWidget* title = nullptr;
    pack(card, make_header(receiver, &title));

    receiver.details_box = make_box(GTK_ORIENTATION_VERTICAL, 4, "details");
    gtk_widget_set_margin_bottom(receiver.details_box, 12);
    pack(card, receiver.details_box);
    add_details(receiver, index, title);

    g_object_bind_property(receiver.share_switch, "active", receiver.details_box, "sensitive",
                           G_BINDING_SYNC_CREATE);
    track_changes(receiver.share_switch);
}

void add_rows() {
    if (widgets.receiver_list.empty()) {
        GtkWidget* card = add_card(widgets.receiver_rows_box, nullptr);
        GtkWidget* label = make_label(
            "No receivers yet. Plug in your SDR and press <b>Find devices</b>.", "muted");
        set_vertical_margins(label, empty_list_margin, empty_list_margin);
        pack(card, label);
    }
    for (std::size_t index = 0; index < widgets.receiver_list.size(); ++index)
        add_receiver_card(index);
    gtk_widget_show_all(widgets.receiver_rows_box);
}

} // namespace

void rebuild_receiver_rows() {
    const KeepFocus keep_focus{widgets.receiver_rows_box};
    // Destroying a spin button with typed text runs its handlers, which must find no receiver.
    std::vector<Receiver> list = std::exchange(widgets.receiver_list, {});
    gtk_container_foreach(
        GTK_CONTAINER(widgets.receiver_rows_box),
        [](GtkWidget* card, gpointer) { gtk_widget_destroy(card); }, nullptr);
    widgets.receiver_list = std::move(list);
    add_rows();
}

void capture_row_edits() {
    commit_typed_values();
    for (Receiver& receiver : widgets.receiver_list) {
        if (!receiver.share_switch)
            continue;
        receiver.enabled = gtk_switch_get_active(GTK_SWITCH(receiver.share_switch));
        if (!receiver.low_spin)
            continue;
        receiver.lo = spin_value(receiver.low_spin) * hertz_per_megahertz;
        receiver.hi = spin_value(receiver.high_spin) * hertz_per_megahertz;
    }
}

void check_receiver_range(std::size_t index) {
    if (index >= widgets.receiver_list.size())
        return;
    const Receiver& receiver = widgets.receiver_list[index];
    if (!receiver.coverage_label || !receiver.low_spin)
        return;
    show_status_line(receiver.coverage_label,
                     coverage_line(receiver.backend, spin_value(receiver.low_spin),
                                   spin_value(receiver.high_spin)));
}
