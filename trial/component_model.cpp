#include "host/component_model.h"

#include "trial/session.h"

using trial::Session;
using trial::show;
using trial::show_call;

namespace trial {

std::string show(std::vector<::Component*> const& components) {
    std::string shown = "{";
    for (::Component const* component : components) {
        if (shown.size() > 1) shown += ", ";
        shown += component ? show(component->name) : "null";
    }
    return shown + "}";
}

void* FileProvider::query(std::string first, std::string component, std::string third) {
    return Session::current().call(show_call("query", first, component, third),
                                   [&]() -> void* { return files.empty() ? nullptr : &files; });
}

std::vector<std::string> FileProvider::fileList(void* handle) {
    return Session::current().call(show_call("fileList", handle),
                                   [&] { return *static_cast<std::vector<std::string>*>(handle); });
}

} // namespace trial

bool Component::installCondition() {
    return Session::current().call(show(name) + "." + show_call("installCondition"), [&] {
        return static_cast<trial::Component*>(this)->install_condition;
    });
}

std::string Component::subdir() {
    return Session::current().call(show(name) + "." + show_call("subdir"), [&] {
        return static_cast<trial::Component*>(this)->subdirectory;
    });
}

ComponentProvider* Component::provider() {
    return Session::current().call(show(name) + "." + show_call("provider"), [&] {
        return static_cast<trial::Component*>(this)->file_provider.get();
    });
}

std::vector<Component*> TSD::components() {
    Session& session = Session::current();
    return session.call(show_call("components"), [&] {
        std::vector<Component*> components;
        for (auto const& component : session.components) components.push_back(component.get());
        return components;
    });
}
