#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace sandbox {

/// Extended attributes by name, ACLs and security labels among them.
using Attributes = std::map<std::string, std::string>;

/// What lies somewhere, but for its content; of a link its own.
struct Record {
    struct stat status;
    Attributes attributes;
};

/// A directory whose changes can be found.
struct Watched {
    std::filesystem::path directory; ///< its path, free of links
    std::filesystem::path before;    ///< a path to it as it was
    std::filesystem::path upper;     ///< what was written in it; empty where that is not known
    /// When the watch began: of itself, as "", and without an upper layer of all that lies in it,
    /// by path in it.
    std::map<std::string, Record> records;
};

/// Begins the watch of a directory that is there. Without an upper layer `before` is needed only
/// when changes are looked for.
Watched watch(std::filesystem::path const& directory, std::filesystem::path const& before,
              std::filesystem::path const& upper);

struct Change {
    char letter;            ///< A added, M changed, D gone, T now of another type
    std::string path;       ///< absolute; a folder's ends with "/"
    std::string detail;     ///< what changed beside text; what a new or gone folder holds
    std::string difference; ///< a unified diff where text changed
};

/// All changes in the directories but for the file `left_out`, sorted by path, each once. With
/// upper layers it takes as long as there are changes, not files. What cannot be compared is a
/// change too.
std::vector<Change> find_changes(std::vector<Watched> const& directories,
                                 std::filesystem::path const& left_out);

/// The files with several hard links that were copied up: another name of such a file keeps its
/// content in a sandbox, and does not outside.
std::set<std::filesystem::path> copied_up_hard_links(std::vector<Watched> const& directories);

} // namespace sandbox
