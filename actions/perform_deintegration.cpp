#include "actions/action.h"
#include "workbench/shell_quote.h"

namespace workbench_int {

/// Undoes the integration: runs the script that `perform_integration` left in the product
/// ("VORN_INSTALL_DIR", "VORN_INSTALL_SUBDIR"). Returns 0, whatever came of it; the log holds the
/// command's output.
extern "C" int perform_deintegration(session_t* session) {
    open_log(session);
    print_log("workbench_int: perform_deintegration entered");
    std::string const script = deintegration_script_path(session);
    run_command(double_quoted(unmistakable_path(script)));
    return 0;
}

} // namespace workbench_int
