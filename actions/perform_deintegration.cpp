#include "actions/action.h"
#include "workbench/shell_quote.h"

/// Undoes the integration: runs the script that `perform_integration` left in the product
/// ("VORN_INSTALL_DIR", "VORN_INSTALL_SUBDIR"). Returns 0, whatever came of it; the log holds the
/// command's output.
extern "C" int perform_deintegration(session_t* session) {
    workbench_int::open_log(session);
    print_log("workbench_int: perform_deintegration entered");
    std::string const script = workbench_int::deintegration_script_path(session);
    workbench_int::run_command(workbench_int::double_quoted(script));
    return 0;
}
