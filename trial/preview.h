#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "installer/session.h"
#include "sandbox/changes.h"
#include "trial/exit_status.h"

namespace trial {

/// Shows what changed on the disk, but for the log.
class ChangeReport {
  public:
    ChangeReport(std::vector<sandbox::Watched> directories, std::filesystem::path log)
        : directories_(std::move(directories)), log_(std::move(log)) {}

    /// Prints below a title what is not as it was, and returns it.
    std::vector<sandbox::Change> show(std::string const& title) const;

  private:
    std::vector<sandbox::Watched> directories_;
    std::filesystem::path log_;
};

/// The workbench that an install uses: the session's choice, or the first one in the search path.
std::filesystem::path workbench_directory(installer::Session const& session);

/// That of the product alone, also where it is installed below "/".
std::filesystem::path product_directory(installer::Session const& session);

/// Where the log is written, after all links.
std::filesystem::path log_file(installer::Session const& session);

/// Runs `work`, which returns whether nothing failed, in a sandbox. Throws sandbox::Refused and
/// StartError where nothing was run.
ExitStatus run_in_sandbox(installer::Session const& session,
                          std::function<bool(ChangeReport const&)> const& work);

/// Runs `work` in a sandbox, and prints below `title` what it changed.
ExitStatus preview(installer::Session const& session, std::string const& title,
                   std::function<bool()> const& work);

} // namespace trial
