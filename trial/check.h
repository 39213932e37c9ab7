#pragma once

#include "installer/session.h"
#include "trial/exit_status.h"
#include "trial/report.h"
#include "trial/sequence.h"

// Both install and uninstall, print what changed, and judge what is left. Both throw where nothing
// was run.

namespace trial {

ExitStatus check(installer::Session& session, Sequence& sequence, Report& report);

/// On the real disk. The workbench and the product are compared with copies made before.
ExitStatus check_without_sandbox(installer::Session& session, Sequence& sequence, Report& report);

} // namespace trial
