#pragma once

#include <set>
#include <string>

#include "installer/host.h"
#include "trial/plugin.h"

namespace trial {

/// Runs actions in one session and prints on standard output what each of them did.
class Sequence {
  public:
    Sequence(installer::Host& host, Plugin const& plugin) : host_(host), plugin_(plugin) {}

    /// Both return whether nothing failed. It is no failure to have nothing to integrate.
    bool install();
    bool call(std::string const& action);

    /// Whether an action has begun to change a workbench, and whether it was integrated before.
    bool has_integrated() const { return has_integrated_; }
    bool has_integrated_again() const { return has_integrated_again_; }

  private:
    bool choose_workbench();
    int call_plugin(std::string const& action);
    void remember(installer::Outcome const& outcome);
    void print_unused_variables() const;

    installer::Host& host_;
    Plugin const& plugin_;
    std::set<std::string> used_; ///< the variables that the actions read or wrote
    bool has_integrated_ = false, has_integrated_again_ = false;
};

} // namespace trial
