#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace installer {

struct CommandOutcome {
    int status; ///< the exit code, or 128 + the signal that ended the command
    std::string output;
};

/// Runs `shell -c command` with no standard input, waits for it and for the end of its output, and
/// returns what it wrote to both its output streams. `hear` gets that too, as it comes. Where there
/// is no such shell, the status is 127. SIGINT, SIGTERM or SIGHUP to this process alone ends it,
/// and is passed on to the command. One in a process group of its own cannot signal this process's;
/// on a terminal it would be in the background. Throws std::system_error or std::bad_alloc where
/// there is no room for it.
CommandOutcome run_in_shell(std::string const& shell, std::string const& command, bool in_own_group,
                            std::function<void(std::string_view)> const& hear);

} // namespace installer
