#include "trial/places.h"

#include <sstream>

#include "installer/files.h"

namespace fs = std::filesystem;
using installer::normalised;
using installer::Session;

namespace trial {

std::vector<std::string> search_path(Session const& session) {
    std::vector<std::string> directories;
    std::istringstream list(session.value("DEFAULT_SEARCH_PATH"));
    for (std::string name; std::getline(list, name, ' ');) directories.push_back(name);
    return directories;
}

std::string workbench_directory(Session const& session) {
    std::string choice = session.value("WB_INTEGRATION_PATH");
    if (!choice.empty()) return choice;
    std::error_code absent;
    for (std::string const& name : search_path(session))
        if (fs::is_regular_file(name + "/install.properties", absent)) return name;
    return "";
}

std::string product_directory(Session const& session) {
    std::string const directory = session.value("VORN_INSTALL_DIR");
    bool const is_root = normalised(directory).size() <= 1;
    return is_root ? directory + session.value("VORN_INSTALL_SUBDIR") : directory;
}

std::string deintegration_script(Session const& session) {
    return normalised(session.value("VORN_INSTALL_DIR") + session.value("VORN_INSTALL_SUBDIR") +
                      "/vorn/wb_deintegrate") +
           ".sh";
}

fs::path log_file(Session const& session) {
    std::string const name = session.value("log_file");
    if (name.empty()) return "";
    std::error_code unreachable;
    fs::path log = fs::absolute(name);
    for (int links = 0; links < 40 && fs::is_symlink(log, unreachable); ++links)
        log = log.parent_path() / fs::read_symlink(log);
    return fs::weakly_canonical(log, unreachable);
}

} // namespace trial
