#pragma once

// What an ordinary user needs for a sandbox, and what refuses it.

#include <filesystem>
#include <set>
#include <string>

namespace sandbox {

/// Like `require`, for what only the rights of this process can refuse: says what would help.
void require_right(bool succeeds, std::string const& what);

/// In a user namespace there is one user with one group. What belongs to others cannot change
/// there: throws Refused where this user could change one of these directories outside.
void require_own(std::set<std::filesystem::path> const& directories);

/// Makes the process the one user of a user namespace, in which it stays who it is and may mount.
/// Throws Refused.
void enter_user_namespace();

} // namespace sandbox
