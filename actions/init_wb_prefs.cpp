#include "actions/actions.h"

#include <memory>
#include <string>
#include <string_view>

#include "host/component_model.h"
#include "host/ini_db.h"
#include "host/services.h"
#include "workbench/components.h"

namespace workbench_int {

namespace {

/// Whether the session marks the file as one of the workbench's preferences files. An empty marker
/// marks none, rather than every file of the product.
bool is_preferences_file(session_t* session, std::string_view file) {
    std::string const marker = env_get_string(session, "WB_PREFS");
    return !marker.empty() && file.find(marker) != std::string_view::npos;
}

void set_location(session_t* session, std::string const& file, std::string const& location) {
    auto const preferences = std::make_unique<IniDb>(location, file, std::string("="));
    std::string const key = env_get_string(session, "WB_PREFS_INST_DIR");
    preferences->setValue(key, location, true);
    preferences->save();
}

} // namespace

int init_wb_prefs(session_t* session) {
    std::string const directory = env_get_string(session, "VORN_INSTALL_DIR");
    std::string const subdirectory = env_get_string(session, "VORN_INSTALL_SUBDIR");
    std::string const location = path(directory + "/" + subdirectory);

    for (Component* const component : session->tsd.components()) {
        if (!is_to_be_installed(component)) continue;
        for (std::string const& file : installed_files(*component)) {
            if (file.empty() || !is_preferences_file(session, file)) continue;
            print_log("workbench_init:: found WB prefs file: <%s>", file.c_str());
            set_location(session, file, location);
        }
    }
    return 0;
}

} // namespace workbench_int
