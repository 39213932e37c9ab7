#pragma once

// Steps that several actions take.

#include <string>

#include "host/services.h"

namespace workbench_int {

/// Opens the installer's log under the name in "log_file", also where that is empty.
void open_log(session_t* session);

/// Has the installer run `command`, with a log line before it and its output in a line after it.
/// Returns the status that the installer stored, 0 where it stored none.
int run_logged(std::string const& command);

/// Where the product keeps its de-integration script, from "VORN_INSTALL_DIR" and
/// "VORN_INSTALL_SUBDIR", joined as they are.
std::string deintegration_script_path(session_t* session);

} // namespace workbench_int
