// SPDX-License-Identifier: MIT
#include "ui/save_settings.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "receivers/receiver_rows.h"
#include "ui/load_form.h"
#include "ui/settings_body.h"
#include "ui/widgets/busy.h"
#include "ui/widgets/setters.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace {

FieldValue value_of(const FieldBinding& field) {
    // GtkSpinButton is a GtkEntry, so test for it first.
    if (GTK_IS_SWITCH(field.widget))
        return {field.key, static_cast<bool>(gtk_switch_get_active(GTK_SWITCH(field.widget)))};
    if (GTK_IS_SPIN_BUTTON(field.widget))
        return {field.key, gtk_spin_button_get_value(GTK_SPIN_BUTTON(field.widget))};
    return {field.key, std::string{gtk_entry_get_text(GTK_ENTRY(field.widget))}};
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
