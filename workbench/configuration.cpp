#include "workbench/configuration.h"

#include <algorithm>
#include <string_view>

#include "host/services.h"
#include "workbench/components.h"

namespace workbench_int {

namespace {

constexpr std::string_view marker = "wr-qev-";

std::string with_slashes(std::string file) {
    std::replace(file.begin(), file.end(), '\\', '/');
    return file;
}

/// The name where `file` holds the marker, otherwise empty.
std::string configuration_name(std::string const& file) {
    // The marker holds no separator, so it stands at the same place in the normalised path.
    std::size_t const begin = file.find(marker);
    if (begin == std::string::npos) return "";
    std::string const normalised = with_slashes(file);
    print_log("workbench_int: found workbench configuration: %s", normalised.c_str());
    return normalised.substr(begin, marker.size() + 4);
}

} // namespace

} // namespace workbench_int

std::string get_wb_integration(std::vector<Component*> components) {
    for (Component* const component : components) {
        if (!workbench_int::is_to_be_installed(component)) continue;
        for (std::string const& file : workbench_int::installed_files(*component)) {
            print_log("workbench_int: current_file: %s", file.c_str());
            std::string name = workbench_int::configuration_name(file);
            if (!name.empty()) return name;
        }
    }
    return "";
}
