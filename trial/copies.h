#pragma once

#include <functional>

#include "installer/session.h"
#include "trial/exit_status.h"
#include "trial/preview.h"
#include "trial/report.h"

namespace trial {

/// Runs `work` on the real disk, in a process of its own, and returns the status of the report. The
/// workbench and the product are compared with copies made before. What `work` leaves running goes
/// on, unless a signal ends the check. Throws StartError where nothing was run.
ExitStatus run_beside_copies(installer::Session& session, Report& report,
                             std::function<void(ChangeReport const&)> const& work);

} // namespace trial
