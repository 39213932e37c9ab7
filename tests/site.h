#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "actions/actions.h"
#include "installer/host.h"
#include "trial/plugin.h"

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

inline trial::Plugin const plugin(trial::bundled_plugin());

inline std::string read_file(fs::path const& file) {
    return {std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {}};
}

inline void write_file(fs::path const& file, std::string const& text) {
    fs::create_directories(fs::absolute(file).parent_path());
    std::ofstream(file) << text;
    fs::permissions(file, fs::perms{0755});
}

/// A folder, for its time the working directory, with a workbench and an installed product, and a
/// session about them. The product's two scripts append how they were called to the file "record".
struct Site : installer::CallListener {
    std::string root = (fs::temp_directory_path() / "site-XXXXXX").string();
    std::string part, integrated_dir, script; ///< the last is the one that undoes an integration
    installer::Host host;
    Texts calls;

    explicit Site(std::string const& workbench_name = "workbench",
                  std::string const& configuration = "wr-qev-1.0a", bool relative = false) {
        fs::current_path(mkdtemp(root.data()));
        std::string const workbench = (relative ? "" : root + "/") + workbench_name;
        std::string const product = workbench + "-product";
        part = product + "/suite/part";
        integrated_dir = workbench + "/" + configuration;
        script = product + "/suite/vorn/wb_deintegrate.sh";
        fs::create_directories(product + "/suite/vorn");
        for (std::string const& file :
             {"/wr-setup/" + workbench_name, std::string("/wr-setup/uninst_wr_qev")})
            write_file(part + "/" + configuration + file + ".sh",
                       "#!/bin/sh\nprintf '%s %s %s\\n' $# \"$0\" \"$1\" >>record\n");
        write_file(part + "/" + configuration + "/a.prefs", "home=\n");
        write_file(workbench + "/install.properties", "name=3.1\n");
        host.listener = this;
        // clang-format off
        host.session.variables = {
            {"SUPPORTED_VERSION", "2.0;3.1;4.0;5"}, {"WB_INSTALL_SUBDIR", "/suite/part"},
            {"DEFAULT_SEARCH_PATH", "/absent/from/everywhere  " + workbench_name + "//"},
            {"WB_INTEGRATION_PATH", workbench}, {"WORKBENCH_SCRIPT_NAME", workbench_name},
            {"VORN_INSTALL_DIR", product + "/"}, {"VORN_INSTALL_SUBDIR", "/suite/"},
            {"log_file", root + "/log"}, {"WB_PREFS", ".prefs"}, {"WB_PREFS_INST_DIR", "home"}};
        // clang-format on
        host.log.reset(std::fopen((root + "/log").c_str(), "a"));
        add_component("workbench", {"part\\" + configuration + "\\a.prefs"});
    }
    ~Site() override {
        fs::current_path("/");
        fs::remove_all(root);
    }
    void ends(std::string const& call) override { calls.push_back(call); }

    /// `outcome` and `calls` are then about this action alone.
    int run(int (*action)(session_t*)) {
        calls.clear();
        host.outcome = {};
        return action(&host.session);
    }
    installer::ProductComponent& add_component(std::string const& name, Texts const& files) {
        auto* const component = new installer::ProductComponent{{name}, true, "/suite/part"};
        component->file_provider->files = files;
        return *host.session.components.emplace_back(component);
    }
    std::set<fs::path> entries() const {
        return {fs::recursive_directory_iterator(root), fs::recursive_directory_iterator()};
    }
};
