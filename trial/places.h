#pragma once

// Where a session says that things are.

#include <filesystem>
#include <string>
#include <vector>

#include "installer/session.h"

namespace trial {

/// What is wrong with a path that has to lead to a directory, or nothing.
std::string fault_of_directory(std::filesystem::path const& path);

/// The directories in DEFAULT_SEARCH_PATH, empty ones too.
std::vector<std::string> search_path(installer::Session const& session);

/// The workbench that an install uses: the session's choice, or the first one in the search path.
std::string workbench_directory(installer::Session const& session);

/// That of the product alone, also where it is installed below "/".
std::string product_directory(installer::Session const& session);

std::string deintegration_script(installer::Session const& session);

/// The components that are to be installed, and the files that they list, in the installer's order.
std::vector<installer::ProductComponent const*>
installed_components(installer::Session const& session);
std::vector<std::string> listed_files(installer::Session const& session);

/// The first of them that holds a configuration's name, with slashes, and that name; then another
/// directory that is named so and does not count. Empty where there is none.
struct Configuration {
    std::string listed, name, other;
};
Configuration configuration(installer::Session const& session);

/// Where the configuration is copied to; empty where there is none.
std::filesystem::path copy_directory(installer::Session const& session);

/// Where the log is written, after all links; empty for none.
std::filesystem::path log_file(installer::Session const& session);

/// The workbench and the product when this is made, free of links.
struct Places {
    std::filesystem::path workbench, product;

    explicit Places(installer::Session const& session);

    /// A product in the workbench is none of it.
    bool is_in_workbench(std::string const& path) const;
    bool is_in_product(std::string const& path) const;
};

} // namespace trial
