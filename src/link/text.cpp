// SPDX-License-Identifier: MIT
#include "link/text.h"

#include <cstdarg>

std::string format_text(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const GlibText text{g_strdup_vprintf(format, arguments)};
    va_end(arguments);
    return text.get();
}

std::string valid_utf8(std::string_view text) {
    // GLib counts a zero byte as invalid too.
    if (g_utf8_validate_len(text.data(), text.size(), nullptr))
        return std::string{text};
    return GlibText{g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))}.get();
}

std::string shortened(std::string_view text, std::size_t most_bytes) {
    if (text.size() <= most_bytes)
        return std::string{text};
    std::size_t end = most_bytes;
    while (end > 0 && is_continuation_byte(text[end]))
        --end;
    return std::string{text.substr(0, end)} + "…";
}

std::string shortened_in_front(std::string_view text, std::size_t most_bytes) {
    if (text.size() <= most_bytes)
        return std::string{text};
    std::size_t start = text.size() - most_bytes;
    while (start < text.size() && is_continuation_byte(text[start]))
        ++start;
    return "…" + std::string{text.substr(start)};
}

std::string isolated(std::string_view text) {
    std::string whole{text};
    for (const char* at = whole.c_str(); *at; at = g_utf8_next_char(at)) {
        const gunichar letter = g_utf8_get_char(at);
        // The blocks that Unicode keeps for scripts written from right to left.
        if ((letter >= 0x0590 && letter <= 0x08FF) || (letter >= 0xFB1D && letter <= 0xFDFF) ||
            (letter >= 0xFE70 && letter <= 0xFEFC) || (letter >= 0x10800 && letter <= 0x10FFF) ||
            (letter >= 0x1E800 && letter <= 0x1EFFF))
            return "\u200E\u2068" + whole + "\u2069";
    }
    return whole;
}

std::string escaped_markup(std::string_view text) {
    return GlibText{g_markup_escape_text(shortened(text).c_str(), -1)}.get();
}
