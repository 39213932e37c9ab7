#include "actions/actions.h"

#include "actions/steps.h"
#include "workbench/installation.h"

namespace workbench_int {

namespace {

/// Whether the workbench is of one of the listed versions. Each version is ended by ";"; what
/// stands behind the last ";" is none.
bool is_any_supported(std::string const& workbench, std::string const& versions) {
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = versions.find(';', begin)) != std::string::npos;
         begin = end + 1) {
        std::string const version = versions.substr(begin, end - begin);
        if (is_supported(path(workbench + "/install.properties"), "name=" + version)) return true;
    }
    return false;
}

/// The verdict on the directory, as "PATH_STATUS" holds it.
char const* judge(std::string const& workbench, std::string const& versions) {
    if (!is_wb_path(workbench)) {
        print_log("workbench_int: %s doesn't contain install.properties", workbench.c_str());
        return "undefined";
    }
    if (versions.empty()) {
        print_log("workbench_int: empty SUPPORTED_VERSION");
        return "undefined";
    }
    if (!is_any_supported(workbench, versions)) return "unsupported";
    if (!is_writable(path(workbench))) {
        print_log("workbench_int: cannot write to %s", workbench.c_str());
        return "notwritable";
    }
    return "ok";
}

} // namespace

int validate_wb_path(session_t* session) {
    open_log(session);
    print_log("workbench_int: validate_wb_path entered");
    std::string const workbench = env_get_string(session, "WB_INTEGRATION_PATH");
    std::string const versions = env_get_string(session, "SUPPORTED_VERSION");
    print_log("workbench_int: wb path: %s", workbench.c_str());
    env_set_string(session, "PATH_STATUS", judge(workbench, versions));
    return 0;
}

} // namespace workbench_int
