#include "actions/actions.h"

#include "actions/steps.h"
#include "host/component_model.h"
#include "workbench/components.h"

namespace workbench_int {

int find_wb_components(session_t* session) {
    open_log(session);
    print_log("workbench_int: find_wb_components entered");

    for (Component* const component : session->tsd.components()) {
        if (!is_to_be_installed(component)) continue;
        if (component->name.find("workbench") == std::string::npos) continue;
        print_log("workbench_int: workbench integration supported");
        env_set_string(session, "WB_INTEGRATION_SUPPORTED", "yes");
        env_set_string(session, "WB_INSTALL_SUBDIR", component->subdir());
        return 0;
    }
    print_log("workbench_int: workbench integration is not supported");
    env_set_string(session, "WB_INTEGRATION_SUPPORTED", "no");
    return 0;
}

} // namespace workbench_int
