#include "trial/show.h"

#include <array>
#include <cstdio>

namespace trial {

namespace {

std::string escaped(char character) {
    if (character == '"' || character == '\\') return {'\\', character};
    if (character == '\n') return "\\n";
    auto const byte = static_cast<unsigned char>(character);
    if (byte >= ' ' && byte != 127) return {character};
    std::array<char, 5> hexadecimal;
    std::snprintf(hexadecimal.data(), hexadecimal.size(), "\\x%02x", byte);
    return hexadecimal.data();
}

} // namespace

std::string show(std::string const& text) {
    std::string shown = "\"";
    for (char const character : text) shown += escaped(character);
    return shown + '"';
}

std::string show(std::vector<std::string> const& texts) {
    std::string shown = "{";
    for (std::string const& text : texts) shown += (shown.size() > 1 ? ", " : "") + show(text);
    return shown + "}";
}

std::string show(char const* text) {
    return show(std::string(text));
}

std::string show(void const* pointer) {
    return pointer ? "set" : "null";
}

std::string show(int number) {
    return std::to_string(number);
}

std::string show(unsigned int mode) {
    std::array<char, 16> octal;
    std::snprintf(octal.data(), octal.size(), "%#o", mode);
    return octal.data();
}

} // namespace trial
