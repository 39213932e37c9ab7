#pragma once

// Where a session says that things are.

#include <filesystem>
#include <string>
#include <vector>

#include "installer/session.h"

namespace trial {

/// The directories in DEFAULT_SEARCH_PATH, empty ones too.
std::vector<std::string> search_path(installer::Session const& session);

/// The workbench that an install uses: the session's choice, or the first one in the search path.
std::string workbench_directory(installer::Session const& session);

/// That of the product alone, also where it is installed below "/".
std::string product_directory(installer::Session const& session);

std::string deintegration_script(installer::Session const& session);

/// Where the log is written, after all links; empty for none.
std::filesystem::path log_file(installer::Session const& session);

} // namespace trial
