// SPDX-License-Identifier: MIT
#include "ui/widgets/style_sheet.h"

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
