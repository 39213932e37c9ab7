#pragma once

#include <string>
#include <vector>

namespace sandbox {

/// Of the processes with the same parent as this one, which are orphans where that only reaps, the
/// command lines of those that still run. Waits up to a second for them to end.
std::vector<std::string> orphans();

} // namespace sandbox
