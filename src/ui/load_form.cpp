// SPDX-License-Identifier: MIT
#include "ui/load_form.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "receivers/linger.h"
#include "receivers/receiver_rows.h"
#include "status/refresh_status.h"
#include "ui/field_checks.h"
#include "ui/field_rules.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/setters.h"

#include <boost/json/value.hpp>

#include <algorithm>

namespace {

const json::object& required_group(const char* name) {
    return required_object(settings_object, name);
}

void keep_document(const std::string& body) {
    json::value document = parse_reply(body);
    json::object& root = as_object(document, "the state document");
    json::object& settings = required_object(root, "settings");
    json::object& status = required_object(root, "status");
    settings_object = std::move(settings);
    status_object = std::move(status);
}

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
    const json::array& modes = required_array(required_group("content"), "modes");
    for (std::size_t i = 0; i < mode_names.size(); ++i) {
        const std::string_view name = mode_names[i];
        const bool chosen =
            std::any_of(modes.begin(), modes.end(), [name](const json::value& mode) {
                return mode.is_string() && mode.get_string() == name;
            });
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.mode_buttons[i]), chosen);
    }
}

void show_blocked_addresses() {
    std::string lines;
    for (const json::value& address : required_array(required_group("access"), "banned"))
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

} // namespace

void load_form() {
    const ReadingStep step{"loading the settings"};
    const ServiceReply reply = service_request(HttpMethod::get, "/api/state", "");
    if (reply.status != 200)
        return;
    keep_document(reply.body);

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
