#include "workbench/components.h"

#include <algorithm>

namespace workbench_int {

bool is_to_be_installed(Component* component) {
    return component && !component->name.empty() && component->installCondition();
}

std::vector<std::string> installed_files(Component& component) {
    ComponentProvider* const queried = component.provider();
    if (!queried) return {};
    auto const handle = queried->query(std::string(), component.name, std::string());
    if (!handle) return {};

    ComponentProvider* const listing = component.provider();
    if (!listing) return {};
    std::vector<std::string> files = listing->fileList(handle);
    files.erase(std::remove(files.begin(), files.end(), std::string()), files.end());
    return files;
}

} // namespace workbench_int
