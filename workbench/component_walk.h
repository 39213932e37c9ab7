#pragma once

// The walk over the installer's components, and over the files that one component installs.
// A visitor returns true to end the walk; nothing behind its match is asked of the installer.

#include <algorithm>
#include <string>
#include <vector>

#include "host/component_model.h"

namespace workbench_int {

/// Visits, in order, each component that is there, has a name and is to be installed. Returns
/// whether a visitor ended the walk.
template <typename Visitor>
bool any_component(std::vector<Component*> const& components, Visitor visit) {
    return std::any_of(components.begin(), components.end(), [&](Component* component) {
        return component && !component->name.empty() && component->installCondition() &&
               visit(*component);
    });
}

/// Visits, in order, each path that is not empty among the component's installed files. A
/// component whose provider, or whose handle for the files, is null has none. Returns whether a
/// visitor ended the walk.
template <typename Visitor>
bool any_file(Component& component, Visitor visit) {
    ComponentProvider* const queried = component.provider();
    if (!queried) return false;
    auto const handle = queried->query(std::string(), component.name, std::string());
    if (!handle) return false;

    ComponentProvider* const listing = component.provider();
    if (!listing) return false;
    std::vector<std::string> const files = listing->fileList(handle);
    return std::any_of(files.begin(), files.end(),
                       [&](std::string const& file) { return !file.empty() && visit(file); });
}

} // namespace workbench_int
