#include "actions/actions.h"

#include "actions/steps.h"
#include "workbench/installation.h"
#include "workbench/split_by_delimiter.h"

namespace workbench_int {

int detect_wb_in_default_path(session_t* session) {
    open_log(session);
    print_log("workbench_int: detect_wb_in_default_path entered");
    std::string const search_path = env_get_string(session, "DEFAULT_SEARCH_PATH");
    print_log("workbench_int: default_path_string %s", search_path.c_str());

    for (std::string const& directory : split_by_delimiter(search_path, ' ')) {
        if (!is_wb_path(directory)) continue;
        env_set_string(session, "WB_INTEGRATION_PATH", directory.c_str());
        print_log("workbench_int: found workbench in %s", directory.c_str());
        return 0;
    }
    env_set_string(session, "WB_INTEGRATION_PATH", "");
    return 0;
}

} // namespace workbench_int
