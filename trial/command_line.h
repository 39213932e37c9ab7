#pragma once

#include <ostream>

namespace trial {

enum ExitStatus {
    all_well = 0,
    something_failed = 1,
    not_started = 2,
};

/// The program wb-trial: reports on `out`, complains on `err`, returns its exit status.
int run_command_line(int argc, char const* const* argv, std::ostream& out, std::ostream& err);

} // namespace trial
