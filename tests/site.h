#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "trial/plugin.h"
#include "trial/session.h"

/// The names that a test may choose for what lies in a site.
struct Names {
    std::string workbench = "workbench";
    std::string product = "product";
    std::string configuration = "wr-qev-1.0a";
    std::string script = "setup";
    bool relative = false; ///< whether the session names the places relative to the site
};

/// A folder of its own with a workbench and an installed product, and a session about them. While
/// it exists the folder is the working directory. The setup and the uninstall script append what
/// they were given to the file "record".
struct Site {
    explicit Site(Names const& names = {});
    ~Site();
    Site(Site const&) = delete;
    Site& operator=(Site const&) = delete;

    /// Runs an action of the plug-in. `session.calls` are then those of this action alone.
    int run(std::string const& action);

    trial::Component& add_component(std::string const& name, std::vector<std::string> files);

    /// The host calls since the last action began, a line each, with "/" for the site's folder.
    std::string calls() const;

    /// Everything below the site's folder, by its path there.
    std::set<std::string> entries() const;

    std::filesystem::path root;
    std::filesystem::path workbench;
    std::filesystem::path product;
    std::filesystem::path part; ///< the product's workbench component
    std::filesystem::path integrated_dir;
    std::filesystem::path script; ///< the de-integration script
    trial::Session session;
};

std::string read_file(std::filesystem::path const& file);
void write_file(std::filesystem::path const& file, std::string const& text, unsigned mode = 0644);
