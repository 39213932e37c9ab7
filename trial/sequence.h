#pragma once

#include <string>

#include "installer/host.h"
#include "trial/plugin.h"
#include "trial/report.h"

namespace trial {

/// Runs actions in one session and reports what each of them did.
class Sequence {
  public:
    Sequence(installer::Host& host, Plugin const& plugin, Report& report)
        : host_(host), plugin_(plugin), report_(report),
          choice_(host.session.value("WB_INTEGRATION_PATH")) {}

    /// Both return whether nothing failed. It is no failure to have nothing to integrate.
    bool install();
    bool call(std::string const& action);

    /// Whether an action has begun to change a workbench, and whether it was integrated before.
    bool has_integrated() const { return has_integrated_; }
    bool has_integrated_again() const { return has_integrated_again_; }

  private:
    bool choose_workbench();
    bool integrate();
    int call_plugin(std::string const& action);
    void print(std::string const& action, installer::Outcome const& outcome) const;

    installer::Host& host_;
    Plugin const& plugin_;
    Report& report_;
    std::string choice_; ///< the workbench that the session names
    bool has_integrated_ = false, has_integrated_again_ = false;
    bool has_copied_ = true; ///< false where an integration failed to
};

} // namespace trial
