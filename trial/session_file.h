#pragma once

#include <string>

#include "installer/session.h"

namespace trial {

/// Fills the session with the variables and the components that the TOML file describes. Throws
/// StartError, naming the file and, where there is one, the line; the session is then of no use.
void read_session_file(std::string const& file, installer::Session& session);

} // namespace trial
