// SPDX-License-Identifier: MIT
#include "ui/widgets/page_stack.h"

#include "support/window_fixture.h"

namespace {

std::string page_name() {
    return gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack));
}

class AddPage : public FreshWindowTest {};

TEST_F(AddPage, ShowsTitleAndSubtitleLiterally) {
    GtkWidget* page = add_page("extra", "A & <B>", "c < d & e");
    gtk_widget_show_all(widgets.stack);
    const std::vector<GtkWidget*> texts = children_of(page);
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(text_of(texts[0]), "A & <B>");
    EXPECT_EQ(text_of(texts[1]), "c < d & e");
}

using ShowPage = WindowTest;

TEST_F(ShowPage, ShowsNoPageOfAnUnknownName) {
    show_page_at_once("station");
    show_page("no such page");
    EXPECT_EQ(page_name(), "station");
    show_page("internet");
    EXPECT_EQ(page_name(), "internet");
}

class PageList : public FreshWindowTest {
protected:
    static GtkWidget* list() {
        for (GtkWidget* widget : tree_of(widgets.window))
            if (GTK_IS_LIST_BOX(widget))
                return widget;
        ADD_FAILURE() << "there is no list of pages";
        return nullptr;
    }
};

TEST_F(PageList, LetsArrowsWalkThroughItsRows) {
    ASSERT_TRUE(gtk_widget_child_focus(list(), GTK_DIR_TAB_FORWARD));
    GtkWidget* const first = gtk_window_get_focus(GTK_WINDOW(widgets.window));
    ASSERT_TRUE(gtk_widget_child_focus(list(), GTK_DIR_DOWN));
    GtkWidget* const second = gtk_window_get_focus(GTK_WINDOW(widgets.window));
    EXPECT_TRUE(GTK_IS_LIST_BOX_ROW(second));
    EXPECT_NE(second, first);
}

TEST_F(PageList, IsPassedByWithoutAPageShown) {
    GtkListBox* const rows = GTK_LIST_BOX(list());
    GtkListBoxRow* const selected = gtk_list_box_get_selected_row(rows);
    gtk_list_box_unselect_all(rows);
    EXPECT_FALSE(gtk_widget_child_focus(list(), GTK_DIR_TAB_FORWARD));
    gtk_list_box_select_row(rows, selected);
}

} // namespace
