#pragma once

#include <functional>
#include <string>
#include <vector>

namespace sandbox {

/// Runs `work` in a child. Until that ends, this process only reaps: the child, and what is left to
/// it by others. Returns what `work` returned, or 128 and the number of the signal that ended it.
/// Throws std::system_error where there can be no child.
int run_in_child(std::function<int()> const& work);

/// For `work` above: what was started and still runs, though its own parent has ended, by command
/// line. Waits up to a second for it to end.
std::vector<std::string> left_running();

} // namespace sandbox
