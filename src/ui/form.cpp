// SPDX-License-Identifier: MIT
#include "ui/form.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "receivers/linger.h"
#include "receivers/receiver_rows.h"
#include "status/refresh_status.h"
#include "ui/field_rules.h"
#include "ui/settings_body.h"
#include "ui/widgets/busy.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/setters.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <algorithm>

namespace {

void show_field(const FieldBinding& field) {
    const json::value* value = find_path(settings_object, field.key);
    if (!value)
        return;
    // GtkSpinButton is a GtkEntry, so test for it first.
    if (GTK_IS_SWITCH(field.widget))
        gtk_switch_set_active(GTK_SWITCH(field.widget), value->is_bool() && value->get_bool());
    else if (GTK_IS_SPIN_BUTTON(field.widget))
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(field.widget), number_or_zero(*value));
    else
        set_text_of_entry(field.widget, string_or_empty(*value));
}

void show_modes() {
    const json::array& modes = required_array(required_object(settings_object, "content"), "modes");
    for (std::size_t i = 0; i < mode_names.size(); ++i) {
        const bool chosen =
            std::find(modes.begin(), modes.end(), json::value(mode_names[i])) != modes.end();
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.mode_buttons[i]), chosen);
    }
}

void show_blocked_addresses() {
    std::string lines;
    for (const json::value& address :
         required_array(required_object(settings_object, "access"), "banned"))
        lines.append(string_or_empty(address)).append("\n");
    set_text_of_view(widgets.banned_view, lines);
}

void show_receivers() {
    std::vector<Receiver> receivers;
    for (const json::value& element : required_array(settings_object, "receivers"))
        receivers.push_back(receiver_from_settings(element));
    widgets.receiver_list = std::move(receivers);
    rebuild_receiver_rows();
}

void show_registration() {
    const std::string id = setting_string("directory.id");
    gtk_widget_set_visible(widgets.register_box, id.empty());
    gtk_widget_set_visible(widgets.registered_label, !id.empty());
    set_label_text(widgets.registered_label,
                   registered_text(id, setting_string("directory.email")));
}

FieldValue value_of(const FieldBinding& field) {
    // GtkSpinButton is a GtkEntry, so test for it first.
    if (GTK_IS_SWITCH(field.widget))
        return {field.key, gtk_switch_get_active(GTK_SWITCH(field.widget)) == TRUE};
    if (GTK_IS_SPIN_BUTTON(field.widget))
        return {field.key, gtk_spin_button_get_value(GTK_SPIN_BUTTON(field.widget))};
    return {field.key, gtk_entry_get_text(GTK_ENTRY(field.widget))};
}

FormValues form_values() {
    FormValues form;
    for (const FieldBinding& field : widgets.field_registry)
        form.fields.push_back(value_of(field));
    form.description = text_of_view(widgets.description_view);
    for (std::size_t i = 0; i < mode_names.size(); ++i)
        if (gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(widgets.mode_buttons[i])))
            form.modes.emplace_back(mode_names[i]);
    form.blocked_text = text_of_view(widgets.banned_view);
    return form;
}

} // namespace

void load_form() {
    const ReadingStep step{"loading the settings"};
    const ServiceReply reply = service_request(HttpMethod::get, "/api/state", "");
    if (reply.status != 200)
        return;
    json::value document = parse_reply(reply.body);
    json::object settings = take_object(document, "settings");
    status_object = take_object(document, "status");
    settings_object = std::move(settings);

    widgets.loading = true;
    for (const FieldBinding& field : widgets.field_registry)
        show_field(field);
    set_text_of_view(widgets.description_view, setting_string("station.description"));
    show_modes();
    show_blocked_addresses();
    show_receivers();
    show_registration();
    set_label_text(widgets.header_title, header_title(setting_string("station.name"),
                                                      setting_string("station.callsign")));
    check_grid_square();
    update_upload_estimate();
    update_relay_visibility();
    // The cards no longer show the result of the last discovery.
    set_label_text(widgets.receivers_status, "");
    widgets.loading = false;
    mark_clean();

    show_linger();
    render_state();
}

bool save_settings() {
    const ReadingStep step{"saving the settings"};
    const BusyWith busy{widgets.save_button, [] { return widgets.dirty; }};
    if (!busy.draw_progress())
        return false;
    capture_row_edits();
    const json::object body = settings_body(settings_object, form_values(), widgets.receiver_list);
    const ServiceReply reply =
        service_request(HttpMethod::put, "/api/settings", json::serialize(body));
    if (reply.status == 0) {
        show_footer_error("Not saved: the Tarnwave service did not answer.");
        return false;
    }
    const json::value document = parse_reply(reply.body);
    const json::object& answer = as_object(document, "the reply to a save");
    if (reply.status != 200) {
        show_footer_error("Not saved: " + string_or_empty(required_member(answer, "error")));
        return false;
    }
    // Load before `restart` is read: the form is clean even when the reply breaks the contract.
    load_form();
    show_footer({required_bool(answer, "restart")
                     ? "Saved. The new port takes effect when Tarnwave restarts."
                     : "Saved.",
                 StatusClass::good});
    return true;
}

void check_grid_square() {
    const StatusLine hint = grid_hint(gtk_entry_get_text(GTK_ENTRY(widgets.grid_entry)));
    show_status_line(widgets.grid_hint, hint);
    set_style_class(widgets.grid_entry, "invalid", hint.status_class == StatusClass::error);
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
