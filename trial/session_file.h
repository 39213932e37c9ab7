#pragma once

#include <filesystem>

#include "trial/session.h"

namespace trial {

/// Fills the session with the variables and the components that the TOML file describes. Throws
/// StartError, naming the file and, where there is one, the line; the session is then of no use.
void read_session_file(std::filesystem::path const& file, Session& session);

} // namespace trial
