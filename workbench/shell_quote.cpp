#include "workbench/shell_quote.h"

#include <algorithm>
#include <string_view>

namespace workbench_int {

namespace {

/// ASCII that means nothing to a shell.
constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyz"
                                   "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                   "0123456789"
                                   "/._-+,:@%";

bool is_plain(char character) {
    bool const is_ascii = static_cast<unsigned char>(character) < 128;
    return !is_ascii || plain.find(character) != std::string_view::npos;
}

} // namespace

std::string double_quoted(std::string const& text) {
    std::string quoted = "\"";
    for (char const character : text) {
        if (std::string_view("\"$`\\").find(character) != std::string_view::npos) quoted += '\\';
        quoted += character;
    }
    return quoted + '"';
}

std::string shell_word(std::string const& text) {
    bool const is_word = !text.empty() && std::all_of(text.begin(), text.end(), is_plain);
    if (is_word) return text;
    std::string quoted = "'";
    for (char const character : text) {
        if (character == '\'') quoted += "'\\''";
        else quoted += character;
    }
    return quoted + '\'';
}

std::string quoted_path(std::string const& path) {
    return double_quoted(unmistakable_path(path));
}

std::string unmistakable_path(std::string const& path) {
    return path.find_first_of("-+%") == 0 ? "./" + path : path;
}

} // namespace workbench_int
