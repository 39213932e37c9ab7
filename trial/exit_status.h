#pragma once

#include <functional>
#include <stdexcept>

namespace trial {

enum ExitStatus { all_succeeded = 0, something_failed = 1, not_started = 2 };

/// Nothing was run, because of the session, the library or the arguments.
struct StartError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The status after something was run. Throws std::runtime_error where the report could not be
/// written to standard output.
ExitStatus status_of(bool has_succeeded);

/// The status that `work` returns, or that of an exception, which is printed.
ExitStatus status_or_error(std::function<ExitStatus()> const& work);

} // namespace trial
