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

    /// It is no failure to have nothing to integrate.
    void install();
    void call(std::string const& action);

    /// Whether an action has begun to change a workbench.
    bool has_integrated() const { return has_integrated_; }
    installer::SavedTexts const& saved_preferences() const { return host_.saved_preferences; }

  private:
    void choose_workbench();
    int call_plugin(std::string const& action);
    bool may_be_left_out(std::string const& variable) const;
    void print(std::string const& action, installer::Outcome const& outcome);

    installer::Host& host_;
    Plugin const& plugin_;
    Report& report_;
    std::string choice_; ///< the workbench that the session names
    bool has_integrated_ = false;
    bool has_copied_ = true; ///< false where an integration failed to
};

} // namespace trial
