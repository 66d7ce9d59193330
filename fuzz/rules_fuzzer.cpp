// SPDX-License-Identifier: MIT
// Gives short texts to the rules that are written by hand, and compares the results with those of
// the standard library.
#include "link/json_access.h"
#include "ui/field_rules.h"

#include <boost/json.hpp>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <regex>
#include <sstream>

namespace {

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

const json::value* found_by_segments(const json::value& root, const std::string& key) {
    std::istringstream segments{key};
    const json::value* at = nullptr;
    for (std::string segment; std::getline(segments, segment, '.');) {
        const json::value& holder = at ? *at : root;
        const json::object* object = holder.if_object();
        at = object ? object->if_contains(segment) : nullptr;
        if (!at)
            return nullptr;
    }
    return at;
}

std::vector<std::string> words_by_stream(const std::string& text) {
    std::istringstream stream{text};
    stream.imbue(std::locale::classic());
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 500) // std::regex_match recurses: a long text would overflow the stack
        return 0;
    static const std::regex email{R"([^@\s]+@[^@\s]+\.[^@\s]+)"};
    static const std::regex grid{"[A-Ra-r]{2}[0-9]{2}([A-Xa-x]{2})?"};
    static const json::value document = json::parse(
        R"({"station": {"name": "a", "": {"b": 1}}, "": {"x": [1]}, "a": {"b": {"c": null}}})");
    const std::string text{reinterpret_cast<const char*>(data), size};

    require(is_email_address(text) == std::regex_match(text, email), "the e-mail pattern");
    require(grid_hint(text).valid == (text.empty() || std::regex_match(text, grid)),
            "the grid square pattern");
    require(words_of(text) == words_by_stream(text), "the words of a stream");
    require(find_path(document.get_object(), text) == found_by_segments(document, text),
            "the segments of a key");
    for (const unsigned decimals : {0U, 3U})
        // Numbers above a billion are left out: no spin button of the form allows them, and a
        // double is not exact to the thousandth there.
        if (const std::optional<double> number = typed_number(text, decimals);
            number && std::abs(*number) < 1e9) {
            const std::string shown = decimal_text(*number, decimals);
            const std::optional<double> again = typed_number(shown, decimals);
            require(again && decimal_text(*again, decimals) == shown, "a shown number reads back");
        }
    return 0;
}
