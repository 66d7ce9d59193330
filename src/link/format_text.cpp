// SPDX-License-Identifier: MIT
#include "link/format_text.h"

#include <glib.h>

#include <cstdarg>
#include <memory>

namespace {

using GlibText = std::unique_ptr<char, decltype(&g_free)>;

/// True for the second and later bytes of a UTF-8 character.
bool is_inside_character(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string format_text(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const GlibText text{g_strdup_vprintf(format, arguments), g_free};
    va_end(arguments);
    return text.get();
}

std::string utf8_of_locale(std::string_view text) {
    const GlibText converted{
        g_locale_to_utf8(text.data(), static_cast<gssize>(text.size()), nullptr, nullptr, nullptr),
        g_free};
    return converted ? converted.get() : "";
}

std::string shortened(std::string_view text, std::size_t most_bytes) {
    if (text.size() <= most_bytes)
        return std::string{text};
    std::size_t end = most_bytes;
    while (end > 0 && is_inside_character(text[end]))
        --end;
    return std::string{text.substr(0, end)} + "…";
}

std::string shortened_in_front(std::string_view text, std::size_t most_bytes) {
    if (text.size() <= most_bytes)
        return std::string{text};
    std::size_t start = text.size() - most_bytes;
    while (start < text.size() && is_inside_character(text[start]))
        ++start;
    return "…" + std::string{text.substr(start)};
}

std::string escaped_markup(std::string_view text) {
    return GlibText{g_markup_escape_text(shortened(text).c_str(), -1), g_free}.get();
}
