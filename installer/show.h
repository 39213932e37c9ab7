#pragma once

// Values as text, for traces and reports.

#include <string>
#include <string_view>
#include <vector>

namespace installer {

/// The text with its control characters escaped, but for those in `kept`, so that it does nothing
/// to a terminal.
std::string printable(std::string_view text, std::string_view kept = "");

/// In double quotes on one line, with control characters, quotes and backslashes escaped.
std::string show(std::string const& text);
std::string show(std::vector<std::string> const& texts);
inline std::string show(int number) {
    return std::to_string(number);
}
/// "null", or "set" for a pointer to anything.
inline std::string show(void* pointer) {
    return pointer ? "set" : "null";
}
/// A file mode in octal, without the file's type.
std::string show_mode(unsigned int mode);
/// An argument that is a file mode.
struct Mode {
    unsigned int bits;
};
inline std::string show(Mode mode) {
    return show_mode(mode.bits);
}

/// A call as it would stand in source code.
template <typename... Arguments>
std::string show_call(std::string const& operation, Arguments const&... arguments) {
    std::string text = operation + "(";
    std::string separator;
    ((text += separator + show(arguments), separator = ", "), ...);
    return text + ")";
}

} // namespace installer
