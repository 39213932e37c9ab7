#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "sandbox/changes.h"
#include "sandbox/coverage.h"

namespace sandbox {

struct Overlays {
    std::vector<Watched> mounted;                 ///< as directories to be watched, parents first
    std::map<std::filesystem::path, int> refused; ///< those without one, with the kernel's error
};

/// In a mount namespace of its own: lays an overlay over each directory that can have one, and
/// makes all else read-only. The upper layers lie in the folder `scratch`, or in memory where that
/// is empty. The paths in what is returned are for this process and its children, by descriptors
/// not below `lowest` as far as there can be such. Throws Refused.
Overlays mount_overlays(Coverage const& coverage, std::string const& scratch, bool is_root,
                        int lowest);

} // namespace sandbox
