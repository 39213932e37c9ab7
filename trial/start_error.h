#pragma once

#include <stdexcept>

namespace trial {

/// Why nothing could be run: a session file, a library or an argument that does not serve.
struct StartError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace trial
