#pragma once

// What the plug-in reads of the installer's model of the product.

#include <string>
#include <vector>

#include "host/component_model.h"

namespace workbench_int {

/// Whether the component is there, has a name and is to be installed, asked in this order and no
/// further than the first "no".
bool is_to_be_installed(Component* component);

/// The paths of the component's installed files, in order, empty ones too. None
/// where the component's provider, or its handle for the files, is null.
std::vector<std::string> installed_files(Component& component);

} // namespace workbench_int
