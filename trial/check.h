#pragma once

#include <string>
#include <vector>

#include "installer/session.h"
#include "trial/exit_status.h"
#include "trial/report.h"
#include "trial/sequence.h"

namespace trial {

/// Installs and uninstalls, in a sandbox or on the real disk, prints what changed, and judges what
/// is left. Outside of the workbench that may be what matches a pattern in `ignored`. Throws where
/// nothing was run.
ExitStatus check(installer::Session& session, std::vector<std::string> const& ignored,
                 Sequence& sequence, Report& report, bool in_sandbox);

} // namespace trial
