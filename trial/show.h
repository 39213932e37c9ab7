#pragma once

// Values as one line of text, for traces and reports.

#include <string>
#include <vector>

namespace trial {

/// In double quotes, with control characters, quotes and backslashes escaped.
std::string show(std::string const& text);
std::string show(std::vector<std::string> const& texts);
std::string show(char const* text);
std::string show(int number);
/// "null", or "set" for a pointer to anything.
std::string show(void const* pointer);
/// A file mode, in octal.
std::string show(unsigned int mode);

/// A call as it would stand in source code.
template <typename... Arguments>
std::string show_call(std::string const& operation, Arguments const&... arguments) {
    std::string text = operation + "(";
    std::string separator;
    ((text += separator + show(arguments), separator = ", "), ...);
    return text + ")";
}

} // namespace trial
