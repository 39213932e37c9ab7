#pragma once

// Text for a shell that has to read back exactly the bytes it was made from.

#include <string>

namespace workbench_int {

/// `text` in double quotes: one word of a command line, whatever it holds.
std::string double_quoted(std::string const& text);

/// `text` as the first word of a command line: as it is where a shell sees nothing special in it,
/// otherwise in single quotes. Never read as an option when it is the text behind `sh -c`.
std::string command_word(std::string const& text);

} // namespace workbench_int
