#include "trial/places.h"

#include <algorithm>
#include <sstream>

#include "installer/files.h"

namespace fs = std::filesystem;
using installer::normalised;
using installer::ProductComponent;
using installer::Session;

namespace trial {

namespace {

bool lies_in(std::string const& path, fs::path const& directory) {
    return !directory.empty() && (path + "/").rfind(directory / "", 0) == 0;
}

fs::path resolved(fs::path const& name) {
    std::error_code unreachable;
    return fs::weakly_canonical(name, unreachable);
}

} // namespace

std::string fault_of_directory(fs::path const& path) {
    std::error_code unreachable;
    if (fs::is_directory(path, unreachable)) return "";
    return fs::exists(path, unreachable) ? "is no directory" : "is not there";
}

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

std::vector<ProductComponent const*> installed_components(Session const& session) {
    std::vector<ProductComponent const*> installed;
    for (auto const& component : session.components)
        if (component && !component->name.empty() && component->install_condition)
            installed.push_back(component.get());
    return installed;
}

std::vector<std::string> listed_files(Session const& session) {
    std::vector<std::string> files;
    for (ProductComponent const* component : installed_components(session))
        for (std::string const& file : component->file_provider->files) files.push_back(file);
    return files;
}

Configuration configuration(Session const& session) {
    constexpr std::size_t size = 11; // of the marker and four characters
    Configuration first;
    for (std::string& listed : listed_files(session)) {
        std::replace(listed.begin(), listed.end(), '\\', '/');
        std::size_t const begin = listed.find("wr-qev-"), end = listed.find('/', begin);
        if (begin == std::string::npos) continue;
        std::string const name = normalised(listed.substr(begin, size));
        if (first.name.empty()) first = {listed, name, ""};
        if (name != first.name && end != std::string::npos) {
            first.other = listed.substr(begin, end - begin);
            break;
        }
    }
    return first;
}

fs::path copy_directory(Session const& session) {
    std::string const name = configuration(session).name;
    return name.empty() ? fs::path() : fs::path(workbench_directory(session)) / name;
}

fs::path log_file(Session const& session) {
    std::string const name = session.value("log_file");
    if (name.empty()) return "";
    std::error_code unreachable;
    fs::path log = fs::absolute(name);
    for (int links = 0; links < 40 && fs::is_symlink(log, unreachable); ++links)
        log = log.parent_path() / fs::read_symlink(log);
    return resolved(log);
}

Places::Places(Session const& session)
    : workbench(resolved(workbench_directory(session))),
      product(resolved(product_directory(session))) {}

bool Places::is_in_workbench(std::string const& path) const {
    bool const is_products =
        is_in_product(path) && product != workbench && lies_in(product, workbench);
    return lies_in(path, workbench) && !is_products;
}

bool Places::is_in_product(std::string const& path) const {
    return lies_in(path, product);
}

} // namespace trial
