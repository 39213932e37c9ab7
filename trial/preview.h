#pragma once

#include <functional>
#include <string>
#include <vector>

#include "trial/exit_status.h"
#include "trial/sequence.h"

// Both work in a sandbox, where what an install or uninstall is expected to change may change, and
// what is in `writable`. Both return an exit status, and throw where nothing was run.

namespace trial {

/// Runs `work`, which returns whether nothing failed, and prints below `title` what it changed.
ExitStatus preview(installer::Session const& session, std::vector<std::string> const& writable,
                   std::string const& title, std::function<bool()> const& work);

/// Installs and uninstalls, prints what changed, and judges what is left.
ExitStatus check(installer::Session const& session, std::vector<std::string> const& writable,
                 Sequence& sequence);

} // namespace trial
