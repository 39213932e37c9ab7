#pragma once

#include <set>
#include <string>

#include "trial/host.h"
#include "trial/plugin.h"

namespace trial {

/// Runs actions in one session and prints on standard output what each of them did.
class Sequence {
  public:
    Sequence(Host& host, Plugin const& plugin) : host_(host), plugin_(plugin) {}

    /// Both return whether nothing failed; to have nothing to integrate is no failure.
    bool install();
    bool run(std::string const& action);

    /// Whether an action has begun to change a workbench, and whether it was integrated before.
    bool has_integrated() const { return has_integrated_; }
    bool has_integrated_again() const { return has_integrated_again_; }

  private:
    Host& host_;
    Plugin const& plugin_;
    std::set<std::string> used_; ///< the variables that the actions read or wrote
    bool has_integrated_ = false, has_integrated_again_ = false;
};

} // namespace trial
