// SPDX-License-Identifier: MIT
#include "ui/widgets/theme.h"

#include "ui/widgets/signals.h"
#include "ui/widgets/widget_tree.h"

const char style_sheet[] = R"(
window, dialog { background: #0A1420; color: #E9F1F9; font-family: Sans; font-size: 13px; }
messagedialog, messagedialog.background, messagedialog box, messagedialog .dialog-action-area { background: #101E2C; }
messagedialog label { color: #E9F1F9; }
messagedialog .titlebar, messagedialog headerbar { background: #101E2C; border: none; box-shadow: none; }
label { color: #E9F1F9; }
menu { background: #101E2C; color: #E9F1F9; border: 1px solid #22384D; }
menuitem { color: #E9F1F9; }
menuitem:hover { background: #22384D; }
.brand { color: #63B6EE; font-size: 11px; font-weight: bold; letter-spacing: 2px; }
.title { font-size: 21px; font-weight: bold; }
.page-title { font-size: 17px; font-weight: bold; }
.muted { color: #B0C6DA; }
.small { color: #7590A8; font-size: 12px; }
.card { background: #101E2C; border: 1px solid #22384D; border-radius: 12px; padding: 4px 16px; }
.card-title { font-size: 14px; font-weight: bold; color: #63B6EE; }
.row { padding: 10px 0; }
separator { background: #1B2E40; min-height: 1px; }
.dot { font-size: 15px; }
.good { color: #35C759; }
.warning { color: #FFB020; }
.error { color: #FF5247; }
entry, spinbutton, combobox button { background: #152838; color: #E9F1F9; border: 1px solid #22384D; border-radius: 6px; min-height: 30px; box-shadow: none; }
entry:focus, spinbutton:focus { border-color: #3B9BE0; }
entry.invalid { border-color: #FF5247; }
spinbutton button { background: transparent; border: none; color: #B0C6DA; min-width: 18px; padding: 0 6px; }
button { background: #17293B; color: #E9F1F9; border: 1px solid #22384D; border-radius: 7px; padding: 7px 14px; box-shadow: none; text-shadow: none; }
button:hover { background: #22384D; }
button:active { background: #0E1A26; border-color: #3B9BE0; }
button:disabled, button:disabled label { color: #6B8093; }
button.primary { background: #FF7A47; color: #0A1420; font-weight: bold; border-color: #FF7A47; }
button.primary label { color: #0A1420; }
button.primary:hover { background: #FF9268; }
button.primary:disabled { background: #17293B; border-color: #22384D; }
button.primary:disabled label { color: #6B8093; }
button.link { background: transparent; border-color: transparent; padding: 2px 6px; }
button.link label { color: #63B6EE; }
button.mode { padding: 6px 16px; border-radius: 0; margin-right: -1px; }
button.mode:first-child { border-radius: 7px 0 0 7px; }
button.mode:last-child { border-radius: 0 7px 7px 0; }
button.mode:checked { background: #3B9BE0; border-color: #3B9BE0; }
button.mode:checked label { color: #0A1420; font-weight: bold; }
switch { background: #152838; border: 1px solid #22384D; border-radius: 14px; color: transparent; }
switch:checked { background: #3B9BE0; border-color: #3B9BE0; }
switch slider { background: #E9F1F9; border-radius: 12px; min-width: 20px; min-height: 20px; border: none; }
checkbutton { padding: 4px; }
checkbutton check { background: #152838; border: 1px solid #7590A8; color: #E9F1F9; }
checkbutton check:checked { background: #3B9BE0; border-color: #63B6EE; -gtk-icon-source: builtin; }
stacksidebar { background: #0A1420; border-right: 1px solid #22384D; }
stacksidebar list { background: #0A1420; }
stacksidebar row { padding: 11px 18px; border-left: 3px solid transparent; }
stacksidebar row label { color: #B0C6DA; }
stacksidebar row:selected { background: #101E2C; border-left-color: #FF7A47; }
stacksidebar row:selected label { color: #E9F1F9; font-weight: bold; }
treeview.view { background: #101E2C; color: #E9F1F9; }
treeview.view:selected { background: #22384D; }
treeview header button { background: #101E2C; color: #7590A8; border: none; border-bottom: 1px solid #22384D; border-radius: 0; padding: 4px 8px; }
treeview header button label { color: #7590A8; font-weight: normal; }
textview, textview text { background: #152838; color: #E9F1F9; }
.textbox { border: 1px solid #22384D; border-radius: 6px; padding: 6px; background: #152838; }
scrolledwindow, viewport { background: transparent; border: none; }
scrollbar trough { background: #101E2C; }
scrollbar slider { background: #22384D; border-radius: 6px; min-width: 6px; min-height: 6px; }
expander title label { color: #B0C6DA; }
.header { border-bottom: 1px solid #22384D; padding: 14px 20px 12px; }
.footer { border-top: 1px solid #22384D; padding: 8px 20px; }
tooltip { background: #17293B; color: #E9F1F9; }
)";

// Sizes in pt grow with the desktop's text scale, sizes in px do not. At 96 dpi these sizes equal
// those of the style sheet.
const char added_styles[] = R"(
window, dialog, messagedialog { font-family: Sans; font-size: 9.75pt; }
.brand { font-size: 8.25pt; }
.title { font-size: 15.75pt; }
.page-title { font-size: 12.75pt; }
.small { font-size: 9pt; }
.card-title { font-size: 10.5pt; }
.dot { font-size: 11.25pt; }

button:focus, checkbutton:focus, combobox button:focus, expander title:focus,
stacksidebar row:focus {
    outline: 2px solid #63B6EE;
    outline-offset: -3px;
}
button.primary:focus, button.mode:checked:focus { outline-color: #0A1420; outline-offset: -5px; }
entry:focus, spinbutton:focus { box-shadow: inset 0 0 0 1px #3B9BE0; }
switch:focus { box-shadow: 0 0 0 1px #101E2C, 0 0 0 3px #E9F1F9; }
switch:focus slider { outline: none; }
textview text:focus { box-shadow: inset 0 0 0 1px #3B9BE0; }
treeview.view:focus { outline: 1px solid #63B6EE; outline-offset: -2px; }
.details:disabled { opacity: 0.45; }

button { transition: none; }
stacksidebar list { border: none; }
scrollbar, scrollbar trough { background: #101E2C; border: none; }
scrollbar.vertical slider { min-height: 40px; }
scrollbar.horizontal slider { min-width: 40px; }

headerbar, .titlebar { background: #101E2C; border-color: #22384D; box-shadow: none; }
headerbar .title { color: #B0C6DA; font-size: 9.75pt; font-weight: normal; }
headerbar button.titlebutton { background: transparent; border-color: transparent; }
headerbar button.titlebutton:hover { background: #22384D; }
decoration { box-shadow: 0 0 0 1px #7590A8, 0 4px 16px 2px rgba(0, 0, 0, 0.7); }
.solid-csd decoration { background: #3A5570; box-shadow: none; }

@define-color placeholder_text_color #8FA8BF;
selection { background: #1F5C8C; color: #E9F1F9; }
popover, popover.background { background: #101E2C; color: #E9F1F9; border-color: #22384D; }
menu > arrow { background: #101E2C; color: #E9F1F9; border-color: #22384D; }
menuitem:disabled, menuitem:disabled label { color: #6B8093; }
searchbar > revealer > box { background: #101E2C; border-color: #22384D; box-shadow: none; }
.keycap { background: #17293B; border-color: #22384D; box-shadow: none; color: #E9F1F9; }
)";

const char high_contrast_styles[] = R"(
.small, expander title label, stacksidebar row label, .muted,
treeview header button label { color: #D6E4F0; }
.good { color: #35C759; }
.warning { color: #FFB020; }
.error { color: #FF9C96; }
entry, spinbutton, combobox button, button, switch, .card, .textbox, menu, popover, tooltip,
checkbutton check { border-color: #9FB8CE; }
button.link, spinbutton entry, spinbutton button, headerbar button { border-color: transparent; }
entry.invalid { border-color: #FF9C96; }
button.mode:checked { background: #8CCBF5; }
separator { background: #9FB8CE; }
scrollbar slider { background: #9FB8CE; }
button:focus, checkbutton:focus, combobox button:focus, expander title:focus,
stacksidebar row:focus, treeview.view:focus { outline: 3px solid #FFFFFF; }
button.primary:focus, button.mode:checked:focus { outline-color: #000000; }
entry:focus, spinbutton:focus { border-color: #FFFFFF; box-shadow: inset 0 0 0 2px #FFFFFF; }
switch:focus { box-shadow: 0 0 0 1px #101E2C, 0 0 0 4px #FFFFFF; }
textview text:focus { box-shadow: inset 0 0 0 2px #FFFFFF; }
)";

namespace {

/// Returns the provider, which stays until the process ends.
GtkCssProvider* add_sheet(const char* sheet) {
    GtkCssProvider* provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, sheet, -1, nullptr);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(),
                                              GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    return provider;
}

/// Fills the sheet for high contrast, or empties it, depending on the name of the theme.
void follow_high_contrast(GtkCssProvider* high_contrast) {
    char* of_desktop = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-theme-name", &of_desktop, nullptr);
    const char* of_user = g_getenv("GTK_THEME"); // overrides the desktop's theme
    const char* name = of_user ? of_user : of_desktop;
    const bool wanted = name && g_str_has_prefix(name, "HighContrast");
    g_free(of_desktop);
    gtk_css_provider_load_from_data(high_contrast, wanted ? high_contrast_styles : "", -1, nullptr);
}

/// GTK lays texts out again by itself when the text scale changes, but the Pango contexts of the
/// entries keep the old width of a character, because their font is the same in pt.
void measure_entries_again() {
    GList* windows = gtk_window_list_toplevels();
    for (GList* window = windows; window; window = window->next)
        for (GtkWidget* widget : descendants_of(GTK_WIDGET(window->data)))
            if (GTK_IS_ENTRY(widget)) {
                pango_context_changed(gtk_widget_get_pango_context(widget));
                gtk_widget_queue_resize(widget);
            }
    g_list_free(windows);
}

} // namespace

void apply_theme() {
    add_sheet(style_sheet);
    add_sheet(added_styles);
    GtkCssProvider* high_contrast = add_sheet("");
    follow_high_contrast(high_contrast);
    GtkSettings* settings = gtk_settings_get_default();
    call_at_signal(settings, "notify::gtk-theme-name",
                   [high_contrast] { follow_high_contrast(high_contrast); });
    call_at_signal(settings, "notify::gtk-xft-dpi", measure_entries_again);
}
