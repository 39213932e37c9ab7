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

/// Finds what is not as it was when it was made, but for the log.
class ChangeReport {
  public:
    ChangeReport(std::vector<sandbox::Watched> directories, installer::Session const& session,
                 Report& report)
        : directories_(std::move(directories)), log_(log_file(session)), places_(session),
          report_(report) {}

    std::vector<sandbox::Change> find() const { return sandbox::find_changes(directories_, log_); }
    /// Prints changes below a title, and the remarks. Text that not everybody can read is not shown
    /// beside workbench and product, for a report may go anywhere.
    void show(std::string const& title, std::vector<sandbox::Change> changes,
              std::vector<std::string> const& remarks = {}) const;

    /// Where a file that was in one of the directories can be read as it was.
    std::filesystem::path before(std::filesystem::path const& file) const;

  private:
    bool is_secret(std::string const& path) const;

    std::vector<sandbox::Watched> directories_;
    std::filesystem::path log_;
    Places places_;
    Report& report_;
};

/// Runs `work` in a sandbox, and returns the status of the report. A log that can be written
/// outside alone is taken out of the session. Throws sandbox::Refused where nothing was run.
ExitStatus run_in_sandbox(installer::Session& session, Report& report,
                          std::function<void(ChangeReport const&)> const& work);

/// Runs `work` in a sandbox, and prints below `title` what it changed.
ExitStatus preview(installer::Session& session, Report& report, std::string const& title,
                   std::function<void()> const& work);

} // namespace trial
