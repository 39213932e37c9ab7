#pragma once

#include <string>
#include <vector>

namespace trial {

/// The variables that the plug-in reads or writes.
extern std::vector<std::string> const known_variables;
bool is_known_variable(std::string const& name);

/// "unknown KIND NAME; did you mean ...?", with the most similar of the known names, or all of them
/// where none is similar.
std::string unknown_name(std::string const& kind, std::string const& name,
                         std::vector<std::string> const& known);

/// The names in double quotes, separated by commas, or "nothing".
std::string enumerated(std::vector<std::string> const& names);

} // namespace trial
