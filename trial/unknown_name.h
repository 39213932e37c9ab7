#pragma once

#include <string>
#include <vector>

namespace trial {

/// "unknown KIND NAME; did you mean ...?", with the most similar of the known names, or all of them
/// where none is similar.
std::string unknown_name(std::string const& kind, std::string const& name,
                         std::vector<std::string> const& known);

/// The names in double quotes, separated by commas, or "nothing".
std::string enumerated(std::vector<std::string> const& names);

} // namespace trial
