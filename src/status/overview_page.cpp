// SPDX-License-Identifier: MIT
#include "status/overview_page.h"

#include "link/json_access.h"
#include "link/text.h"
#include "status/overview_texts.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/setters.h"

#include <boost/json/value.hpp>

#include <cstring>
#include <string>

namespace {

/// What a row of the checklist or of the receivers shows; two equal ones look the same.
struct RowContent {
    std::string mark_markup{}; ///< empty: no mark
    const char* mark_class = nullptr;
    std::string markup{};
    std::string origin{};         ///< small text at the end; empty: none
    const char* button = nullptr; ///< text of the link button at the end; null: none
    const char* page = nullptr;   ///< page that the button shows

    bool operator==(const RowContent& other) const {
        return mark_markup == other.mark_markup && g_strcmp0(mark_class, other.mark_class) == 0 &&
               markup == other.markup && origin == other.origin &&
               g_strcmp0(button, other.button) == 0 && g_strcmp0(page, other.page) == 0;
    }
};

struct ShownRow {
    GtkWidget* row = nullptr;
    GtkWidget* button = nullptr;
    RowContent content{};
};

/// Gives the focus to a widget without scrolling the page to it.
void grab_focus_in_place(GtkWidget* widget) {
    GtkWidget* scroll = gtk_widget_get_ancestor(widget, GTK_TYPE_SCROLLED_WINDOW);
    GtkAdjustment* place = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroll));
    const double value = gtk_adjustment_get_value(place);
    gtk_widget_grab_focus(widget);
    gtk_adjustment_set_value(place, value);
}

void on_link_button_clicked(GtkButton*, gpointer page) {
    show_page(static_cast<const char*>(page));
}

ShownRow make_row(const RowContent& content) {
    ShownRow shown{make_box(GTK_ORIENTATION_HORIZONTAL, 10, "row"), nullptr, content};
    if (!content.mark_markup.empty())
        pack(shown.row, make_label(content.mark_markup.c_str(), content.mark_class, false));
    GtkWidget* text = make_label(content.markup.c_str(), nullptr);
    pack(shown.row, text, true);
    if (!content.origin.empty())
        pack(shown.row, make_label(escaped_markup(content.origin).c_str(), "small", false));
    if (content.button) {
        shown.button = make_button(content.button, "link");
        describe_by_label(shown.button, text);
        // The names are literals of the rules: they outlive the button.
        g_signal_connect(shown.button, "clicked", G_CALLBACK(on_link_button_clicked),
                         const_cast<char*>(content.page));
        pack(shown.row, shown.button);
    }
    gtk_widget_show_all(shown.row);
    return shown;
}

constexpr char rows_key[] = "shown-rows";

void forget_rows(gpointer rows) {
    delete static_cast<std::vector<ShownRow>*>(rows);
}

/// The rows that a box shows. They are remembered with the box, and gone with it.
std::vector<ShownRow>& rows_of(GtkWidget* box) {
    gpointer rows = g_object_get_data(G_OBJECT(box), rows_key);
    if (!rows) {
        rows = new std::vector<ShownRow>;
        g_object_set_data_full(G_OBJECT(box), rows_key, rows, forget_rows);
    }
    return *static_cast<std::vector<ShownRow>*>(rows);
}

/// Brings the rows of a box in line with the contents given one after the other. Rows beyond the
/// last one go when the object goes, also when an error ends the pass in the middle.
class RowWriter {
public:
    explicit RowWriter(GtkWidget* box) : box_{box}, rows_{rows_of(box)} {}

    ~RowWriter() {
        while (rows_.size() > written_) {
            note_focus(rows_.back());
            gtk_widget_destroy(rows_.back().row);
            rows_.pop_back();
        }
        give_focus_back();
    }

    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;

    void write(const RowContent& content) {
        if (written_ == rows_.size()) {
            rows_.push_back(make_row(content));
            pack(box_, rows_.back().row);
        } else if (!(rows_[written_].content == content)) {
            replace(rows_[written_], content);
        }
        ++written_;
    }

private:
    void replace(ShownRow& shown, const RowContent& content) {
        note_focus(shown);
        gtk_widget_destroy(shown.row);
        shown = make_row(content);
        pack(box_, shown.row);
        gtk_box_reorder_child(GTK_BOX(box_), shown.row, static_cast<gint>(written_));
    }

    void note_focus(const ShownRow& shown) {
        if (shown.button && gtk_widget_is_focus(shown.button))
            page_of_focus_ = shown.content.page;
    }

    /// A destroyed button that had the focus is found again by where it leads.
    void give_focus_back() {
        if (!page_of_focus_)
            return;
        for (const ShownRow& shown : rows_) {
            if (shown.button && std::strcmp(shown.content.page, page_of_focus_) == 0) {
                grab_focus_in_place(shown.button);
                return;
            }
        }
    }

    GtkWidget* box_;
    std::vector<ShownRow>& rows_;
    std::size_t written_ = 0;
    const char* page_of_focus_ = nullptr;
};

} // namespace

void draw_checklist(const StationState& state) {
    const StationIdentity identity{setting_string("station.name"),
                                   setting_string("station.callsign"),
                                   setting_string("station.grid")};
    {
        RowWriter rows{widgets.getting_started_box};
        for (const ChecklistItem& item : checklist_items(state, identity))
            rows.write({.mark_markup = item.done ? "✓" : "○",
                        .mark_class = item.done ? "good" : "muted",
                        .markup = checklist_item_markup(item),
                        .button = item.done ? nullptr : "Go there →",
                        .page = item.done ? nullptr : item.page});
    }
    gtk_widget_set_visible(widgets.getting_started_card, !checklist_is_done(state, identity));
}

void draw_station_link(const StationState& state) {
    const std::string link = valid_utf8(state.station_link);
    const std::string shown = shortened(link);
    GtkButton* button = GTK_BUTTON(widgets.station_link);
    if (gtk_button_get_label(button) != shown) {
        gtk_button_set_label(button, shown.c_str());
        // GTK makes a new label for a new text.
        ellipsise(gtk_bin_get_child(GTK_BIN(button)));
        gtk_link_button_set_uri(GTK_LINK_BUTTON(widgets.station_link),
                                link.empty() ? "about:blank" : link.c_str());
    }
    gtk_widget_set_visible(widgets.station_link_row, !link.empty());
}

void draw_receivers_on_air(const StationState& state) {
    RowWriter rows{widgets.on_air_box};
    for (const json::value& element : required_array(status_object, "receivers")) {
        const json::object& receiver = as_object(element, "an element of receivers");
        const std::string device = member_string(receiver, "device");
        const bool attached = required_bool(receiver, "attached");
        const double lo = number_or_zero(required_member(receiver, "lo"));
        const double hi = number_or_zero(required_member(receiver, "hi"));
        rows.write({.mark_markup = "●",
                    .mark_class = "good",
                    .markup = receiver_markup(device, lo, hi),
                    .origin = receiver_origin(attached)});
    }
    const json::array& started = required_array(status_object, "started");
    for (const json::value& element : started) {
        const json::object& receiver = as_object(element, "an element of started");
        if (required_bool(receiver, "running"))
            continue;
        const std::string serial = string_or_empty(required_member(receiver, "serial"));
        const std::string log = string_or_empty(required_member(receiver, "log"));
        rows.write({.mark_markup = "●",
                    .mark_class = "error",
                    .markup = failed_receiver_markup(serial, log)});
    }
    if (state.receiver_count == 0 && started.empty())
        rows.write({.markup = "<span foreground=\"#B0C6DA\">No receiver is on the air yet.</span>",
                    .button = "Choose receivers →",
                    .page = "receivers"});
}
