// SPDX-License-Identifier: MIT
#include "ui/widgets/long_text.h"

#include "link/text.h"

#include <algorithm>
#include <cstring>

namespace {

/// Length in bytes from which a label's text is cut into pieces, and the length of a piece. Shorter
/// texts are laid out quickly anyway; of the lengths tried for a piece, 64 was the fastest.
constexpr std::size_t long_text = 1500;
constexpr std::size_t long_text_piece = 64;

/// Least width of a label with a long text, in characters. GTK would otherwise break the text at
/// every letter to compute a least width.
constexpr gint long_text_chars = 20;

/// Whether a text has a word that may have to be broken: the narrowest label is 40 characters wide.
bool has_long_word(const char* text) {
    constexpr std::size_t long_word = 40;
    for (;;) {
        const std::size_t length = std::strcspn(text, " \t\n");
        if (length > long_word)
            return true;
        if (!text[length])
            return false;
        text += length + 1;
    }
}

} // namespace

// Pango shapes the rest of a run again at each line break, so the time for a long run grows with
// the square of its length. Two alternating languages divide the text into short runs.
void ease_layout(GtkWidget* label) {
    const char* const text = gtk_label_get_text(GTK_LABEL(label));
    const std::size_t length = std::strlen(text);
    if (length < long_text && !has_long_word(text))
        return;
    PangoAttrList* pieces = pango_attr_list_new();
    // No hyphen where a word is broken: in an address it would look like a part of the address.
    pango_attr_list_insert(pieces, pango_attr_insert_hyphens_new(FALSE));
    PangoLanguage* const languages[] = {pango_language_get_default(),
                                        pango_language_from_string("und")};
    bool second = false;
    for (std::size_t start = 0; length >= long_text && start < length; second = !second) {
        std::size_t end = std::min(start + long_text_piece, length);
        while (end < length && is_continuation_byte(text[end]))
            ++end; // not inside a character
        PangoAttribute* piece = pango_attr_language_new(languages[second ? 1 : 0]);
        piece->start_index = static_cast<guint>(start);
        piece->end_index = static_cast<guint>(end);
        pango_attr_list_insert(pieces, piece);
        start = end;
    }
    gtk_label_set_attributes(GTK_LABEL(label), pieces);
    pango_attr_list_unref(pieces);
    if (length >= long_text)
        gtk_label_set_width_chars(GTK_LABEL(label), long_text_chars);
}
