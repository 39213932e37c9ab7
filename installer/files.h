#pragma once

// What an installer does to files. What fails throws std::filesystem::filesystem_error.

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>

#include "installer/outcome.h"

namespace installer {

/// Merges repeated separators, drops a trailing one. ".." stays: across a link it leads elsewhere.
std::string normalised(std::string const& path);

/// Puts a new file in the place of `target`, whole or not at all. `fill` is given its name beside
/// `target`, which nobody can guess; until it is in its place it is its owner's alone. It is
/// removed where `fill` throws; SIGINT, SIGTERM and SIGHUP wait.
void replace_file(std::filesystem::path const& target,
                  std::function<void(std::filesystem::path const& fresh)> const& fill);

/// Gives `file` the owner, group, mode, ACL and extended attributes of `model`. A group or an
/// attribute that cannot be kept is a note; the new group then gets no more rights than everybody.
void copy_attributes(std::filesystem::path const& model, std::filesystem::path const& file,
                     Outcome& outcome);

/// Makes the directory with that mode, and those above it. Of one that is there already only the
/// mode is changed, where that is needed; where it cannot be, that is a note.
void create_folder(std::filesystem::path const& directory, mode_t mode, Outcome& outcome);

/// Copies what is in `source` into the directory `destination`, which must not lie in it. Keeps
/// modes and links, and overwrites file by file. A FIFO, socket or device is left out and a failure
/// of the outcome. On a terminal it shows every second how many files are copied.
void copy_tree(std::filesystem::path const& source, std::filesystem::path const& destination,
               Outcome& outcome);

} // namespace installer
