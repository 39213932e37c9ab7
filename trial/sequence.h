#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "trial/plugin.h"
#include "trial/session.h"

namespace trial {

/// Runs actions in one session and prints what each of them did.
class Sequence {
  public:
    Sequence(Session& session, Plugin const& plugin, std::ostream& out)
        : session_(session), plugin_(plugin), out_(out) {}

    /// Each returns whether all went well; to have nothing to integrate is well.
    bool install();
    bool uninstall() { return run("perform_deintegration"); }
    bool run(std::vector<std::string> const& actions);

  private:
    bool run(std::string const& action);
    bool is_usable_workbench();

    Session& session_;
    Plugin const& plugin_;
    std::ostream& out_;
};

} // namespace trial
