#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "installer/session.h"
#include "sandbox/changes.h"
#include "trial/exit_status.h"
#include "trial/places.h"
#include "trial/report.h"

namespace trial {

/// Finds and prints what is not as it was when it was made, but for the log.
class ChangeReport {
  public:
    ChangeReport(std::vector<sandbox::Watched> directories, installer::Session const& session,
                 Report const& report)
        : directories_(std::move(directories)), log_(log_file(session)), places_(session),
          report_(report) {}

    /// Prints the changes below a title, and returns them. Text that not everybody can read is not
    /// shown beside workbench and product, for a report may go anywhere.
    std::vector<sandbox::Change> show(std::string const& title) const;

  private:
    bool is_secret(std::string const& path) const;

    std::vector<sandbox::Watched> directories_;
    std::filesystem::path log_;
    Places places_;
    Report const& report_;
};

/// Runs `work` in a sandbox, and returns the status of the report. Throws sandbox::Refused where
/// nothing was run.
ExitStatus run_in_sandbox(installer::Session const& session, Report const& report,
                          std::function<void(ChangeReport const&)> const& work);

/// Runs `work` in a sandbox, and prints below `title` what it changed.
ExitStatus preview(installer::Session const& session, Report const& report,
                   std::string const& title, std::function<void()> const& work);

} // namespace trial
