// SPDX-License-Identifier: MIT
#include "support/window_fixture.h"

#include "app/shortcuts.h"
#include "app/start_up.h"
#include "link/json_access.h"
#include "link/service_link.h"
#include "support/toplevels.h"
#include "ui/form.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/setters.h"
#include "ui/window.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>

using namespace std::chrono_literals;

namespace {

/// How long a condition may take to come true.
constexpr auto patience = 60s;
/// How often a look is taken while waiting, in milliseconds.
constexpr guint look_interval_ms = 5;

/// Key of the object data that marks a dialog whose answer is under way.
constexpr char handled_key[] = "handled";

struct FreeEvent {
    void operator()(GdkEvent* event) const { gdk_event_free(event); }
};
using Event = std::unique_ptr<GdkEvent, FreeEvent>;

gboolean keep_looking(gpointer) {
    return G_SOURCE_CONTINUE;
}

std::string copy_and_free(char* text) {
    const std::string copy{text ? text : ""};
    g_free(text);
    return copy;
}

std::string string_property(gpointer object, const char* name) {
    char* text = nullptr;
    g_object_get(object, name, &text, nullptr);
    return copy_and_free(text);
}

/// The window that takes the pointer's events over a widget, and the widget's middle in it.
struct Spot {
    GdkWindow* window = nullptr;
    double x = 0;
    double y = 0;
    double root_x = 0;
    double root_y = 0;
};

/// The largest window below `window` that brings its events to the widget; null when none does.
GdkWindow* event_window_below(GdkWindow* window, GtkWidget* widget) {
    GdkWindow* largest = nullptr;
    for (GList* item = gdk_window_peek_children(window); item; item = item->next) {
        GdkWindow* child = GDK_WINDOW(item->data);
        gpointer owner = nullptr;
        gdk_window_get_user_data(child, &owner);
        if (owner == widget && gdk_window_is_visible(child) &&
            (!largest || gdk_window_get_width(child) > gdk_window_get_width(largest)))
            largest = child;
    }
    return largest;
}

Spot middle_of(GtkWidget* widget) {
    Spot spot;
    GdkWindow* window = gtk_widget_get_window(widget);
    GdkWindow* own = GTK_IS_BUTTON(widget) ? gtk_button_get_event_window(GTK_BUTTON(widget))
                     : gtk_widget_get_has_window(widget) ? window
                     : window                            ? event_window_below(window, widget)
                                                         : nullptr;
    EXPECT_NE(own, nullptr) << "the widget is not on the screen, or takes no events";
    if (!own)
        return spot;
    spot.window = own;
    spot.x = gdk_window_get_width(own) / 2;
    spot.y = gdk_window_get_height(own) / 2;
    int x = 0;
    int y = 0;
    gdk_window_get_root_coords(own, static_cast<int>(spot.x), static_cast<int>(spot.y), &x, &y);
    spot.root_x = x;
    spot.root_y = y;
    return spot;
}

GdkDevice* pointer() {
    return gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default()));
}

void send_button(GtkWidget* widget, GdkEventType type) {
    const Spot spot = middle_of(widget);
    if (!spot.window)
        return;
    const Event event{gdk_event_new(type)};
    event->button.window = GDK_WINDOW(g_object_ref(spot.window));
    event->button.time = GDK_CURRENT_TIME;
    event->button.x = spot.x;
    event->button.y = spot.y;
    event->button.x_root = spot.root_x;
    event->button.y_root = spot.root_y;
    event->button.button = GDK_BUTTON_PRIMARY;
    event->button.state = type == GDK_BUTTON_RELEASE ? GDK_BUTTON1_MASK : 0;
    gdk_event_set_device(event.get(), pointer());
    gdk_event_set_source_device(event.get(), pointer());
    gtk_main_do_event(event.get());
}

void send_key(GdkWindow* window, GdkEventType type, guint key, GdkModifierType modifiers) {
    GdkKeymap* keymap = gdk_keymap_get_for_display(gdk_display_get_default());
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    gdk_keymap_get_entries_for_keyval(keymap, key, &keys, &count);
    ASSERT_GT(count, 0) << "the keyboard has no such key: " << gdk_keyval_name(key);
    const Event event{gdk_event_new(type)};
    event->key.window = GDK_WINDOW(g_object_ref(window));
    event->key.time = GDK_CURRENT_TIME;
    event->key.keyval = key;
    event->key.hardware_keycode = static_cast<guint16>(keys[0].keycode);
    event->key.group = static_cast<guint8>(keys[0].group);
    event->key.state = modifiers;
    g_free(keys);
    GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default());
    gdk_event_set_device(event.get(), gdk_seat_get_keyboard(seat));
    gtk_main_do_event(event.get());
}

void add_with_children(GtkWidget* widget, gpointer all) {
    static_cast<std::vector<GtkWidget*>*>(all)->push_back(widget);
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), add_with_children, all);
}

SeenDialog look_at(GtkDialog* dialog) {
    SeenDialog seen;
    if (GTK_IS_MESSAGE_DIALOG(dialog)) {
        seen.primary = string_property(dialog, "text");
        seen.secondary = string_property(dialog, "secondary-text");
        g_object_get(dialog, "message-type", &seen.type, nullptr);
    }
    seen.modal = gtk_window_get_modal(GTK_WINDOW(dialog));
    seen.parent = gtk_window_get_transient_for(GTK_WINDOW(dialog));
    GtkWidget* preset = gtk_window_get_default_widget(GTK_WINDOW(dialog));
    for (GtkWidget* widget : tree_of(GTK_WIDGET(dialog))) {
        if (!GTK_IS_BUTTON(widget) || !gtk_widget_get_mapped(widget))
            continue;
        const int response = gtk_dialog_get_response_for_widget(dialog, widget);
        if (response == GTK_RESPONSE_NONE)
            continue;
        const char* label = gtk_button_get_label(GTK_BUTTON(widget));
        seen.buttons.emplace_back(label ? label : "");
        seen.responses.push_back(response);
        if (widget == preset)
            seen.default_button = seen.buttons.back();
    }
    return seen;
}

void start_up_as_the_program_does() {
    build_window();
    add_shortcuts();
    wait_until_window_is_drawn();
}

/// Builds the one window before the first test.
class TheWindow : public testing::Environment {
public:
    void SetUp() override {
        start_up_as_the_program_does();
        make_stack_homogeneous_when_idle();
        drain_events();
    }
    void TearDown() override {
        // gtk_show_uri_on_window() uses the window once more when the browser has been started.
        GtkWidget* window = GTK_WIDGET(g_object_ref(widgets.window));
        gtk_widget_destroy(window);
        drain_events();
        g_object_unref(window);
    }
};

// GoogleTest owns and deletes it.
[[maybe_unused]] testing::Environment* const the_window =
    testing::AddGlobalTestEnvironment(new TheWindow);

} // namespace

void drain_events() {
    while (gtk_events_pending())
        gtk_main_iteration();
}

bool wait_until(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const guint look = g_timeout_add(look_interval_ms, keep_looking, nullptr);
    bool holds = condition();
    while (!holds && std::chrono::steady_clock::now() < deadline) {
        gtk_main_iteration_do(TRUE);
        holds = condition();
    }
    g_source_remove(look);
    return holds;
}

bool wait_for_frame_on(GtkWidget* widget) {
    GdkFrameClock* clock = gtk_widget_get_frame_clock(widget);
    if (!clock)
        return false;
    bool painted = false;
    const auto on_painted = +[](GdkFrameClock*, bool* done) { *done = true; };
    const gulong handler = g_signal_connect(clock, "after-paint", G_CALLBACK(on_painted), &painted);
    gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_PAINT);
    const bool drawn = wait_until([&painted] { return painted; });
    g_signal_handler_disconnect(clock, handler);
    return drawn;
}

std::string text_of(GtkWidget* label) {
    return gtk_label_get_text(GTK_LABEL(label));
}

std::string markup_of(GtkWidget* label) {
    return gtk_label_get_label(GTK_LABEL(label));
}

std::string tooltip_of(GtkWidget* widget) {
    return string_property(widget, "tooltip-text");
}

bool has_class(GtkWidget* widget, const char* style_class) {
    return gtk_style_context_has_class(gtk_widget_get_style_context(widget), style_class);
}

std::vector<std::string> classes_of(GtkWidget* widget) {
    std::vector<std::string> classes;
    GList* list = gtk_style_context_list_classes(gtk_widget_get_style_context(widget));
    for (GList* item = list; item; item = item->next)
        classes.emplace_back(static_cast<const char*>(item->data));
    g_list_free(list);
    std::sort(classes.begin(), classes.end());
    return classes;
}

std::string status_class_of(GtkWidget* widget) {
    std::string classes;
    for (const char* name : {"good", "warning", "error"})
        if (has_class(widget, name))
            classes.append(classes.empty() ? "" : " ").append(name);
    return classes;
}

std::string footer() {
    return text_of(widgets.footer_status) + "|" + status_class_of(widgets.footer_status);
}

std::vector<GtkWidget*> children_of(GtkWidget* container) {
    std::vector<GtkWidget*> children;
    GList* list = gtk_container_get_children(GTK_CONTAINER(container));
    for (GList* item = list; item; item = item->next)
        children.push_back(GTK_WIDGET(item->data));
    g_list_free(list);
    return children;
}

std::vector<GtkWidget*> tree_of(GtkWidget* widget) {
    std::vector<GtkWidget*> all;
    add_with_children(widget, &all);
    return all;
}

GtkWidget* find_label(GtkWidget* root, std::string_view text) {
    for (GtkWidget* widget : tree_of(root))
        if (GTK_IS_LABEL(widget) && gtk_label_get_text(GTK_LABEL(widget)) == text)
            return widget;
    return nullptr;
}

GtkWidget* find_button(GtkWidget* root, std::string_view text) {
    for (GtkWidget* widget : tree_of(root)) {
        const char* label =
            GTK_IS_BUTTON(widget) ? gtk_button_get_label(GTK_BUTTON(widget)) : nullptr;
        if (label && label == text)
            return widget;
    }
    return nullptr;
}

GtkWidget* field(std::string_view key) {
    for (const FieldBinding& binding : widgets.field_registry)
        if (binding.key == key)
            return binding.widget;
    ADD_FAILURE() << "no field is bound to " << key;
    return nullptr;
}

void type_into(std::string_view key, const std::string& text) {
    type_into(field(key), text);
}

void type_into(GtkWidget* entry, const std::string& text) {
    ASSERT_TRUE(GTK_IS_ENTRY(entry));
    gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
}

void click(GtkWidget* button) {
    ASSERT_TRUE(GTK_IS_BUTTON(button));
    ASSERT_TRUE(gtk_widget_get_mapped(button)) << "the button is on no visible page";
    ASSERT_TRUE(gtk_widget_is_sensitive(button)) << "the button cannot be clicked";
    gtk_button_clicked(GTK_BUTTON(button));
}

void press_mouse(GtkWidget* widget) {
    send_button(widget, GDK_BUTTON_PRESS);
}

void release_mouse(GtkWidget* widget) {
    send_button(widget, GDK_BUTTON_RELEASE);
    const Spot spot = middle_of(widget);
    if (!spot.window)
        return;
    const Event event{gdk_event_new(GDK_LEAVE_NOTIFY)};
    event->crossing.window = GDK_WINDOW(g_object_ref(spot.window));
    event->crossing.time = GDK_CURRENT_TIME;
    event->crossing.mode = GDK_CROSSING_NORMAL;
    event->crossing.detail = GDK_NOTIFY_NONLINEAR;
    gdk_event_set_device(event.get(), pointer());
    gtk_main_do_event(event.get());
}

void turn_wheel(GtkWidget* widget, GdkScrollDirection direction) {
    const Spot spot = middle_of(widget);
    if (!spot.window)
        return;
    const Event event{gdk_event_new(GDK_SCROLL)};
    event->scroll.window = GDK_WINDOW(g_object_ref(spot.window));
    event->scroll.time = GDK_CURRENT_TIME;
    event->scroll.direction = direction;
    event->scroll.x = spot.x;
    event->scroll.y = spot.y;
    event->scroll.x_root = spot.root_x;
    event->scroll.y_root = spot.root_y;
    gdk_event_set_device(event.get(), pointer());
    gdk_event_set_source_device(event.get(), pointer());
    gtk_main_do_event(event.get());
}

void press_key(GtkWidget* window, guint key, GdkModifierType modifiers) {
    GdkWindow* target = gtk_widget_get_window(window);
    ASSERT_NE(target, nullptr) << "the window is not on the screen";
    // The key may close the window.
    g_object_ref(target);
    send_key(target, GDK_KEY_PRESS, key, modifiers);
    if (!gdk_window_is_destroyed(target))
        send_key(target, GDK_KEY_RELEASE, key, modifiers);
    g_object_unref(target);
}

void run_when_loop_turns(std::function<void()> function) {
    const auto run = +[](gpointer data) -> gboolean {
        (*static_cast<std::function<void()>*>(data))();
        return G_SOURCE_REMOVE;
    };
    const auto forget = +[](gpointer data) { delete static_cast<std::function<void()>*>(data); };
    g_idle_add_full(G_PRIORITY_HIGH, run, new std::function<void()>{std::move(function)}, forget);
}

void select_listener(int index) {
    GtkTreePath* path = gtk_tree_path_new_from_indices(index, -1);
    gtk_tree_selection_select_path(
        gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.listeners_view)), path);
    gtk_tree_path_free(path);
}

void show_page_at_once(const char* name) {
    gtk_stack_set_visible_child_full(GTK_STACK(widgets.stack), name,
                                     GTK_STACK_TRANSITION_TYPE_NONE);
    drain_events();
}

/// Tells the settings window that it has the keyboard, as a compositor would: windows that were
/// opened and closed before may have taken it.
static void give_keyboard_to_window() {
    GdkEvent* event = gdk_event_new(GDK_FOCUS_CHANGE);
    event->focus_change.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(widgets.window)));
    event->focus_change.in = TRUE;
    gtk_widget_send_focus_change(widgets.window, event);
    gdk_event_free(event);
}

WindowTest::WindowTest() : socket_path_before_{settings_socket_path} {
    settings_socket_path = service.socket_path();
    settings_object = {};
    status_object = {};
    set_label_text(widgets.footer_status, "");
    set_status_class(widgets.footer_status, StatusClass::none);
    set_label_text(widgets.receivers_status, "");
    widgets.loading = false;
    for (GtkWidget* button : {widgets.find_devices_button, widgets.register_button})
        gtk_widget_set_sensitive(button, TRUE);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), FALSE);
    gtk_entry_set_text(GTK_ENTRY(widgets.register_email), "");
    give_keyboard_to_window();
    gtk_window_set_focus(GTK_WINDOW(widgets.window), nullptr);
    gtk_tree_selection_unselect_all(
        gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.listeners_view)));
    mark_clean();
    show_page_at_once("overview");
    watch_ = g_timeout_add(look_interval_ms, look_for_dialog, this);
    // Dialogs may come from within the handling of another one.
    g_source_set_can_recurse(g_main_context_find_source_by_id(nullptr, watch_), TRUE);
}

WindowTest::~WindowTest() {
    drain_events();
    g_source_remove(watch_);
    EXPECT_TRUE(handlers_.empty()) << handlers_.size() << " dialogs did not come";
    settings_socket_path = socket_path_before_;
}

void WindowTest::load(const json::value& document) {
    service.will_answer_state(json::serialize(document));
    load_form();
}

void WindowTest::poll(const json::value& document) {
    service.will_answer_state(json::serialize(document));
    poll_state(nullptr);
}

std::vector<std::string> WindowTest::requests_sent() const {
    std::vector<std::string> all;
    for (const RecordedRequest& request : service.requests())
        all.push_back(request.method + " " + request.target +
                      (request.method == "GET" && !request.body.empty() ? " with a body" : ""));
    return all;
}

void WindowTest::answer_next_dialog(int response, std::function<void()> while_open) {
    handle_next_dialog([response, while_open = std::move(while_open)](GtkDialog* dialog) {
        if (while_open)
            while_open();
        gtk_dialog_response(dialog, response);
    });
}

void WindowTest::handle_next_dialog(std::function<void(GtkDialog*)> handler) {
    handlers_.push_back(std::move(handler));
}

gboolean WindowTest::look_for_dialog(gpointer test) {
    WindowTest* self = static_cast<WindowTest*>(test);
    for (GtkWidget* window : toplevels()) {
        if (GTK_IS_DIALOG(window) && gtk_widget_get_mapped(window) &&
            !g_object_get_data(G_OBJECT(window), handled_key)) {
            g_object_set_data(G_OBJECT(window), handled_key, self);
            self->handle(GTK_DIALOG(window));
            break;
        }
    }
    return G_SOURCE_CONTINUE;
}

void WindowTest::handle(GtkDialog* dialog) {
    dialogs.push_back(look_at(dialog));
    if (handlers_.empty()) {
        ADD_FAILURE() << "nothing answers the dialog: " << dialogs.back().primary;
        gtk_dialog_response(dialog, GTK_RESPONSE_DELETE_EVENT);
        return;
    }
    const std::function<void(GtkDialog*)> handler = std::move(handlers_.front());
    handlers_.pop_front();
    handler(dialog);
}

FreshWindowTest::FreshWindowTest() : record_before_{widgets} {
    widgets = WidgetRecord{};
    start_up_as_the_program_does();
    give_keyboard_to_window();
}

FreshWindowTest::~FreshWindowTest() {
    if (widgets.window)
        gtk_widget_destroy(widgets.window);
    drain_events();
    widgets = record_before_;
}
