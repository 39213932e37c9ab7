#include "host/component_model.h"

#include "installer/host.h"

using namespace installer;

namespace installer {

std::string show(std::vector<Component*> const& components) {
    std::string shown = "{";
    for (Component const* component : components)
        shown += (shown.size() > 1 ? ", " : "") + (component ? show(component->name) : "null");
    return shown + "}";
}

void* FileProvider::query(std::string first, std::string component, std::string third) {
    return host_call([&]() -> void* { return files.empty() ? nullptr : &files; }, "query", first,
                     component, third);
}

std::vector<std::string> FileProvider::fileList(void* handle) {
    return host_call([&] { return *static_cast<std::vector<std::string>*>(handle); }, "fileList",
                     handle);
}

} // namespace installer

bool Component::installCondition() {
    return host_call([&] { return static_cast<ProductComponent*>(this)->install_condition; },
                     "installCondition", name);
}

std::string Component::subdir() {
    return host_call([&] { return static_cast<ProductComponent*>(this)->subdirectory; }, "subdir",
                     name);
}

ComponentProvider* Component::provider() {
    return host_call([&] { return static_cast<ProductComponent*>(this)->file_provider.get(); },
                     "provider", name);
}

std::vector<Component*> TSD::components() {
    return host_call(
        [&] {
            std::vector<Component*> components;
            for (auto const& component : Host::current().session.components)
                components.push_back(component.get());
            return components;
        },
        "components");
}
