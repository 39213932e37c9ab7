#include "actions/steps.h"

namespace workbench_int {

void open_log(session_t* session) {
    std::string const file = env_get_string(session, "log_file");
    logging_state_t** const no_state = nullptr;
    log_init(file.c_str(), no_state);
}

int run_logged(std::string const& command) {
    int status = 0;
    print_log("workbench_int: running command: %s", command.c_str());
    std::string const output = get_command_output(command, &status, true, std::string());
    print_log("workbench_int: out: %s", output.c_str());
    return status;
}

std::string deintegration_script_path(session_t* session) {
    std::string const directory = env_get_string(session, "VORN_INSTALL_DIR");
    std::string const subdirectory = env_get_string(session, "VORN_INSTALL_SUBDIR");
    return path(directory + subdirectory + "/vorn/wb_deintegrate") + ".sh";
}

} // namespace workbench_int
