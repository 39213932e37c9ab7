#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "host/component_model.h"

namespace trial {

inline constexpr std::array<char const*, 6> action_names = {
    "detect_wb_in_default_path", "validate_wb_path",      "find_wb_components",
    "perform_integration",       "perform_deintegration", "init_wb_prefs"};

/// The plug-in, loaded as an installer loads it.
class Plugin {
  public:
    using Action = int (*)(session_t*);

    /// Throws StartError where the library does not load or lacks one of the actions.
    explicit Plugin(std::filesystem::path const& file);

    /// The action of that name, which has to be one of `action_names`.
    Action action(std::string const& name) const;

  private:
    std::unique_ptr<void, int (*)(void*)> library_;
};

/// The library that was built or installed with the program. Throws StartError where there is none.
std::filesystem::path bundled_plugin();

} // namespace trial
