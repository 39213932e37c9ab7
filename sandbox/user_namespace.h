#pragma once

// What an ordinary user needs for a sandbox, and what forbids it.

#include <string>

namespace sandbox {

/// Like `require`, for what a machine may forbid: says what would help.
void require_permission(bool succeeds, std::string const& what);

/// Makes the process the one user of a user namespace, in which it stays who it is and may mount.
/// Throws Refused.
void enter_user_namespace();

} // namespace sandbox
