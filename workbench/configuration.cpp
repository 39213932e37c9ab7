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

/// The name in a path that holds the marker.
std::string configuration_name(std::string const& file) {
    std::string const normalised = with_slashes(file);
    print_log("workbench_int: found workbench configuration: %s", normalised.c_str());
    return normalised.substr(normalised.find(marker), marker.size() + 4);
}

} // namespace

} // namespace workbench_int

std::string get_wb_integration(std::vector<Component*> components) {
    for (Component* const component : components) {
        if (!workbench_int::is_to_be_installed(component)) continue;
        for (std::string const& file : workbench_int::installed_files(*component)) {
            if (file.empty()) continue;
            print_log("workbench_int: current_file: %s", file.c_str());
            // A string's own search is a call into the runtime for each path, a view's is not.
            if (std::string_view(file).find(workbench_int::marker) != std::string_view::npos)
                return workbench_int::configuration_name(file);
        }
    }
    return "";
}
