#pragma once

#include <string>
#include <vector>

#include "installer/session.h"

namespace trial {

/// Fills the session with the variables and the components that the TOML file describes, then with
/// the settings, each NAME=VALUE, in the place of the file's. Returns the patterns of the paths
/// that an uninstall may leave. Throws StartError, naming the file and, where there is one, the
/// line; the session is then of no use.
std::vector<std::string> read_session(std::string const& file,
                                      std::vector<std::string> const& settings,
                                      installer::Session& session);

} // namespace trial
