// SPDX-License-Identifier: MIT
#include "link/format_text.h"

#include <glib.h>

#include <cstdarg>
#include <memory>

namespace {

using GlibText = std::unique_ptr<char, decltype(&g_free)>;

} // namespace

std::string format_text(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const GlibText text{g_strdup_vprintf(format, arguments), g_free};
    va_end(arguments);
    return text.get();
}

std::string escaped_markup(std::string_view text) {
    return GlibText{g_markup_escape_text(std::string{text}.c_str(), -1), g_free}.get();
}
