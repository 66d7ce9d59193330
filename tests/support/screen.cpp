// SPDX-License-Identifier: MIT
#include "support/screen.h"

#include <gdk/gdkx.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

} // namespace

unsigned long screen_id_of(GtkWidget* window) {
    return gdk_x11_window_get_xid(gtk_widget_get_window(window));
}

bool is_on_screen(unsigned long id) {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const auto request = xcb_get_window_attributes(connection, static_cast<xcb_window_t>(id));
    // Without a place for an error, none is reported but the missing reply.
    const std::unique_ptr<xcb_get_window_attributes_reply_t, Free> reply{
        xcb_get_window_attributes_reply(connection, request, nullptr)};
    const bool shown = reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    xcb_disconnect(connection);
    return shown;
}
