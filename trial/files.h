#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace trial {

/// Merges repeated separators and drops a trailing one. Leaves ".." alone: across a link it would
/// name another directory.
std::string normalised(std::string const& path);

/// Puts a new file in the place of `file`, whole or not at all: `write` makes it beside `file`,
/// under the name that it is given. Throws std::filesystem::filesystem_error, and what `write`
/// throws; `file` is then as it was.
void replace_file(std::filesystem::path const& file,
                  std::function<void(std::filesystem::path const& fresh)> const& write);

/// Copies what is in `source` into the directory `destination`, which must not lie in it. Keeps
/// modes and symbolic links, overwrites files one by one, each whole or not at all. Throws
/// std::filesystem::filesystem_error at the first that cannot be copied.
void copy_tree(std::filesystem::path const& source, std::filesystem::path const& destination);

} // namespace trial
