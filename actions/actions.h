#pragma once

// The six actions, as the installer finds them by name. Each takes the session of the running
// install, and holds it no longer than the call.

#include "host/services.h"

namespace workbench_int {

extern "C" {

/// Judges the directory in "WB_INTEGRATION_PATH" against the versions in "SUPPORTED_VERSION" and
/// answers in "PATH_STATUS": "ok", "undefined" (no workbench there, or no versions given),
/// "unsupported" or "notwritable". Changes nothing on disk. Returns 0.
int validate_wb_path(session_t* session);

/// Proposes a workbench: writes to "WB_INTEGRATION_PATH" the first directory of the blank-separated
/// "DEFAULT_SEARCH_PATH" that holds one, as it is listed, or the empty string. Returns 0.
int detect_wb_in_default_path(session_t* session);

/// Asks whether the product brings a workbench part: writes "yes" or "no" to
/// "WB_INTEGRATION_SUPPORTED" and, with "yes", the sub-directory of the first component to be
/// installed that has "workbench" in its name to "WB_INSTALL_SUBDIR". Returns 0.
int find_wb_components(session_t* session);

/// Integrates the product: copies its workbench configuration from the installed files into the
/// workbench in "WB_INTEGRATION_PATH", runs the configuration's setup script
/// ("WORKBENCH_SCRIPT_NAME") with the directory of the product's workbench component as its one
/// argument, and leaves a script that undoes all that in the product ("VORN_INSTALL_DIR",
/// "VORN_INSTALL_SUBDIR"). Returns the setup script's status, or -1, with nothing touched, where
/// the product has no configuration, the configuration's name leads elsewhere through "..", or the
/// workbench is no directory. Goes on past any other failure: the installer's operations are not
/// asked how they fared, and only a script that cannot be opened is logged.
int perform_integration(session_t* session);

/// Undoes the integration: runs the script that `perform_integration` left in the product
/// ("VORN_INSTALL_DIR", "VORN_INSTALL_SUBDIR"). Returns 0, whatever came of it; the log holds the
/// command's output.
int perform_deintegration(session_t* session);

/// Sets the key named by "WB_PREFS_INST_DIR" to the product's location, "VORN_INSTALL_DIR" and
/// "VORN_INSTALL_SUBDIR" with a slash between them, in every installed file whose path contains
/// the text in "WB_PREFS". Logs each such file, to whatever log is open. Returns 0, also
/// where a file could not be rewritten.
int init_wb_prefs(session_t* session);

} // extern "C"

} // namespace workbench_int
