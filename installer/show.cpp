#include "installer/show.h"

#include <array>
#include <cstdio>

namespace installer {

namespace {

template <typename Value>
std::string formatted(char const* format, Value value) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

bool is_control(unsigned char byte, unsigned char before) {
    bool const is_c1_in_utf8 = before == 0xc2 && byte >= 0x80 && byte < 0xa0;
    return byte < ' ' || byte == 127 || is_c1_in_utf8;
}

} // namespace

std::string printable(std::string_view text, std::string_view kept) {
    std::string shown;
    unsigned char before = 0;
    for (char const character : text) {
        auto const byte = static_cast<unsigned char>(character);
        if (!is_control(byte, before) || kept.find(character) != std::string_view::npos)
            shown += character;
        else shown += character == '\n' ? "\\n" : formatted("\\x%02x", byte);
        before = byte;
    }
    return shown;
}

std::string show(std::string const& text) {
    std::string escaped;
    for (char const character : text) {
        if (character == '"' || character == '\\') escaped += '\\';
        escaped += character;
    }
    return '"' + printable(escaped) + '"';
}

std::string show(std::vector<std::string> const& texts) {
    std::string shown = "{";
    for (std::string const& text : texts) shown += (shown.size() > 1 ? ", " : "") + show(text);
    return shown + "}";
}

std::string show_mode(unsigned int mode) {
    return formatted("%04o", mode & 07777);
}

} // namespace installer
