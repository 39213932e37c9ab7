#include "actions/actions.h"

#include "actions/steps.h"
#include "workbench/shell_quote.h"

namespace workbench_int {

int perform_deintegration(session_t* session) {
    open_log(session);
    print_log("workbench_int: perform_deintegration entered");
    std::string const script = deintegration_script_path(session);
    run_logged(quoted_path(script));
    return 0;
}

} // namespace workbench_int
