// SPDX-License-Identifier: MIT
// A picture of every page in the build folder, for a person to look at.
#include "support/window_fixture.h"

#include <filesystem>

namespace {

using Pictures = WindowTest;

TEST_F(Pictures, AreSavedOfEveryPage) {
    std::filesystem::create_directories(PICTURE_FOLDER);
    load(state_document());
    for (const char* page : {"overview", "station", "receivers", "listeners", "internet"}) {
        SCOPED_TRACE(page);
        show_page_at_once(page);
        ASSERT_TRUE(wait_for_frame_on(widgets.window));
        const int width = gtk_widget_get_allocated_width(widgets.window);
        const int height = gtk_widget_get_allocated_height(widgets.window);
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
        cairo_t* cairo = cairo_create(surface);
        gtk_widget_draw(widgets.window, cairo);
        cairo_destroy(cairo);
        const std::string file = std::string{PICTURE_FOLDER "/"} + page + ".png";
        EXPECT_EQ(cairo_surface_write_to_png(surface, file.c_str()), CAIRO_STATUS_SUCCESS) << file;
        cairo_surface_destroy(surface);
    }
}

} // namespace
