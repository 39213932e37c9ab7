#include "workbench/shell_quote.h"

#include <string_view>

namespace {

/// ASCII that means nothing to a shell within a word.
constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyz"
                                   "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                   "0123456789"
                                   "/._-+,:@%";

bool is_plain(char character) {
    bool const is_ascii = static_cast<unsigned char>(character) < 128;
    return !is_ascii || plain.find(character) != std::string_view::npos;
}

/// Whether a shell takes the text as it stands for one word, and `sh -c` takes it for no option.
bool is_plain_word(std::string const& text) {
    if (text.empty() || text.front() == '-' || text.front() == '+') return false;
    for (char const character : text)
        if (!is_plain(character)) return false;
    return true;
}

} // namespace

namespace workbench_int {

std::string double_quoted(std::string const& text) {
    std::string quoted = "\"";
    for (char const character : text) {
        if (std::string_view("\"$`\\").find(character) != std::string_view::npos) quoted += '\\';
        quoted += character;
    }
    return quoted + '"';
}

std::string command_word(std::string const& text) {
    if (is_plain_word(text)) return text;
    std::string quoted = "'";
    for (char const character : text) {
        if (character == '\'')
            quoted += "'\\''";
        else
            quoted += character;
    }
    return quoted + '\'';
}

} // namespace workbench_int
