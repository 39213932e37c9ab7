#pragma once

namespace trial {

enum ExitStatus {
    all_well = 0,
    something_failed = 1,
    not_started = 2,
};

/// The program wb-trial. Returns its exit status.
int run_command_line(int argc, char const* const* argv);

} // namespace trial
