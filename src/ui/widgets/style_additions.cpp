// SPDX-License-Identifier: MIT
#include "ui/widgets/style_additions.h"

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
