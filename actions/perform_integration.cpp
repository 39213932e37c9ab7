#include "actions/actions.h"

#include "actions/steps.h"
#include "host/component_model.h"
#include "workbench/configuration.h"
#include "workbench/deintegration_script.h"
#include "workbench/shell_quote.h"

namespace workbench_int {

namespace {

/// Whether a component behind the first, which begins with the marker, is "..": the copy, and what
/// the de-integration script removes, could then be another directory than the name promises.
bool leads_elsewhere(std::string const& configuration) {
    return (configuration + "/").find("/../") != std::string::npos;
}

} // namespace

int perform_integration(session_t* session) {
    open_log(session);
    print_log("workbench_int: perform_integration entered");
    std::string const chosen = env_get_string(session, "WB_INTEGRATION_PATH");
    std::string const workbench = path(chosen);
    std::string const found = get_wb_integration(session->tsd.components());
    std::string const configuration = path(found);
    print_log("workbench_int: path to workbench: %s", workbench.c_str());
    // An installer may make something of an empty path, "." for one.
    if (found.empty() || configuration.empty() || leads_elsewhere(found)) {
        print_log("workbench_int: workbench integration is not supported");
        return -1;
    }

    std::string component_dir = env_get_string(session, "VORN_INSTALL_DIR");
    component_dir += env_get_string(session, "WB_INSTALL_SUBDIR");
    std::string const source_dir = path(component_dir + "/" + configuration);
    if (!is_dir(workbench) || chosen.empty()) {
        print_log("workbench_int: workbench path: %s does not exist or not a directory",
                  workbench.c_str());
        return -1;
    }

    std::string const config_dir = path(workbench + "/" + configuration);
    folder_create(config_dir, 0755U);
    dir_copy(source_dir, config_dir);

    std::string const script_name = env_get_string(session, "WORKBENCH_SCRIPT_NAME");
    std::string const setup_script =
        path(workbench + "/" + configuration + "/wr-setup/" + script_name) + ".sh";
    int const status =
        run_logged(quoted_path(setup_script) + " " + double_quoted(path(component_dir)));

    create_deintegration_script(deintegration_script_path(session), config_dir);
    return status;
}

} // namespace workbench_int
