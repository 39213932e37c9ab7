#include "actions/action.h"
#include "host/component_model.h"
#include "workbench/component_walk.h"

namespace workbench_int {

/// Asks whether the product brings a workbench part: writes "yes" or "no" to
/// "WB_INTEGRATION_SUPPORTED" and, with "yes", the sub-directory of the first component to be
/// installed that has "workbench" in its name to "WB_INSTALL_SUBDIR". Returns 0.
extern "C" int find_wb_components(session_t* session) {
    open_log(session);
    print_log("workbench_int: find_wb_components entered");

    auto const answer_yes = [session](Component& component) {
        if (component.name.find("workbench") == std::string::npos) return false;
        print_log("workbench_int: workbench integration supported");
        env_set_string(session, "WB_INTEGRATION_SUPPORTED", "yes");
        env_set_string(session, "WB_INSTALL_SUBDIR", component.subdir());
        return true;
    };
    if (any_component(session->tsd.components(), answer_yes)) return 0;

    print_log("workbench_int: workbench integration is not supported");
    env_set_string(session, "WB_INTEGRATION_SUPPORTED", "no");
    return 0;
}

} // namespace workbench_int
