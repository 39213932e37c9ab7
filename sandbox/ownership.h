#pragma once

// What an ordinary user's sandbox cannot change: its user namespace has one user with one group,
// and what names another cannot be copied up. To be asked before the namespace is entered, for in
// it all others look the same.

#include <filesystem>
#include <set>

#include "sandbox/coverage.h"

namespace sandbox {

/// Whether an access control list of the file or directory names somebody else.
bool names_others(char const* path, bool is_directory);

/// Throws Refused where this user can change something in the directories that could not be
/// changed in the sandbox.
void require_own(std::set<std::filesystem::path> const& directories, Coverage const& coverage);

} // namespace sandbox
