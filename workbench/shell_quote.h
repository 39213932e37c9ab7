#pragma once

// Text for a shell that has to read back exactly the bytes it was made from.

#include <string>

namespace workbench_int {

/// `text` in double quotes: one word of a command line, whatever it holds.
std::string double_quoted(std::string const& text);

/// `text` as one word of a command line: as it is where no character in it means anything to a
/// shell, otherwise in single quotes.
std::string shell_word(std::string const& text);

/// `path`, which is to be run or removed, as one word of a command line: in double quotes, and so
/// that it is not taken for anything but a path.
std::string quoted_path(std::string const& path);

/// `path` with "./" before it where its first character would have it taken for an option of a
/// program, of a script's own shell as well, or for the name of a shell's job.
std::string unmistakable_path(std::string const& path);

} // namespace workbench_int
