// SPDX-License-Identifier: MIT
#include "link/format_text.h"

#include <glib.h>

#include <cstdarg>
#include <memory>

std::string format_text(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::unique_ptr<char, decltype(&g_free)> text{g_strdup_vprintf(format, arguments),
                                                        g_free};
    va_end(arguments);
    return text.get();
}
