#pragma once

#include <string>
#include <vector>

#include "sandbox/changes.h"
#include "sandbox/coverage.h"

namespace sandbox {

/// In a mount namespace of its own: lays an overlay over each directory that can have one, and
/// makes all else read-only. The upper layers lie in the folder `scratch`, or in memory where that
/// is empty. Returns the overlays as directories to be watched, parents first; the paths in them
/// are for this process and its children. Throws Refused.
std::vector<Watched> mount_overlays(Coverage const& coverage, std::string const& scratch,
                                    bool is_root);

} // namespace sandbox
