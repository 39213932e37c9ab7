#pragma once

#include <string>
#include <vector>

#include "host/component_model.h"

/// The name of the product's workbench configuration: the marker "wr-qev-" and the four characters
/// behind it (fewer where the path ends), cut from the first installed path that holds the marker.
/// Empty where none does. Logs every path that it looks at, and the path in which it found the
/// name with slashes for backslashes. Asks the installer nothing about what comes behind that.
std::string get_wb_integration(std::vector<Component*> components);
