#include "workbench/components.h"

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
    return listing ? listing->fileList(handle) : std::vector<std::string>();
}

} // namespace workbench_int
