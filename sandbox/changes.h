#pragma once

#include <string>
#include <vector>

#include "sandbox/sandbox.h"

namespace sandbox {

/// What is not as it is on the disk.
struct Change {
    char letter;            ///< A added, M changed, D gone, T now of another type
    std::string path;       ///< absolute; a folder's ends with "/"
    std::string detail;     ///< what changed beside text; of a folder that is new, what it holds
    std::string difference; ///< a unified diff where text changed
};

/// All changes below the overlays but for the file `left_out`, sorted by path. Takes as long as
/// there are changes, not files. Throws std::filesystem::filesystem_error where it cannot look.
std::vector<Change> find_changes(std::vector<Overlay> const& overlays,
                                 std::filesystem::path const& left_out);

/// The change in lines: one that begins with two blanks and its letter, below it the difference,
/// indented and cut after 20 lines. Control characters are as they are.
std::vector<std::string> described(Change const& change);

} // namespace sandbox
