#include "workbench/configuration.h"

#include <algorithm>
#include <string_view>

#include "host/services.h"
#include "workbench/component_walk.h"

namespace {

constexpr std::string_view marker = "wr-qev-";
constexpr std::size_t name_size = marker.size() + 4;

std::string with_slashes(std::string file) {
    std::replace(file.begin(), file.end(), '\\', '/');
    return file;
}

} // namespace

std::string get_wb_integration(std::vector<Component*> components) {
    std::string name;
    auto const cut_name = [&name](std::string const& file) {
        print_log("workbench_int: current_file: %s", file.c_str());
        // The marker holds no separator, so it stands at the same place in the normalised path.
        std::size_t const begin = file.find(marker);
        if (begin == std::string::npos) return false;

        std::string const normalised = with_slashes(file);
        print_log("workbench_int: found workbench configuration: %s", normalised.c_str());
        name = normalised.substr(begin, name_size);
        return true;
    };
    workbench_int::any_component(components, [&](Component& component) {
        return workbench_int::any_file(component, cut_name);
    });
    return name;
}
