#pragma once

#include <iostream>
#include <stdexcept>

#include "sandbox/sandbox.h"
#include "trial/show.h"

namespace trial {

enum ExitStatus { all_succeeded = 0, something_failed = 1, not_started = 2 };

/// Nothing was run: the session, the library or the arguments will not do.
struct StartError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The status after something was run. Throws std::runtime_error where the report could not be
/// written to standard output.
inline ExitStatus exit_status(bool has_succeeded) {
    if (!std::cout.flush()) throw std::runtime_error("the report cannot be written");
    return has_succeeded ? all_succeeded : something_failed;
}

/// The status after an exception, which it prints.
inline ExitStatus exit_status(std::exception const& error) {
    std::cerr << "wb-trial: " << printable(error.what()) << '\n';
    bool const has_started =
        !dynamic_cast<StartError const*>(&error) && !dynamic_cast<sandbox::Refused const*>(&error);
    return has_started ? something_failed : not_started;
}

} // namespace trial
