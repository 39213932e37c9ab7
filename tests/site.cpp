#include "tests/site.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "trial/files.h"

namespace fs = std::filesystem;

std::string read_file(fs::path const& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write_file(fs::path const& file, std::string const& text, unsigned mode) {
    std::ofstream(file) << text;
    fs::permissions(file, static_cast<fs::perms>(mode));
}

Site::Site(Names const& names) {
    std::string folder = (fs::temp_directory_path() / "site-XXXXXX").string();
    if (!mkdtemp(folder.data())) throw std::runtime_error("no folder for the test: " + folder);
    root = folder;
    fs::current_path(root);
    fs::path const base = names.relative ? fs::path() : root;
    workbench = base / names.workbench;
    product = base / names.product;
    part = product / "suite/part";
    integrated_dir = workbench / names.configuration;
    script = product / "suite/vorn/wb_deintegrate.sh";

    fs::path const configuration_dir = part / names.configuration;
    fs::create_directories(workbench);
    fs::create_directories(script.parent_path());
    fs::create_directories(configuration_dir / "wr-setup");
    write_file(workbench / "install.properties", "name=3.1\n");
    write_file(configuration_dir / "a.prefs", "home=\n");
    // The suffix comes behind the normalised path, and so behind a folder without a script's name.
    std::string const append = " >>'" + (root / "record").string() + "'\n";
    write_file(trial::normalised((configuration_dir / "wr-setup" / names.script).string()) + ".sh",
               "#!/bin/sh\nprintf '%s setup %s\\n' $# \"$1\"" + append, 0755);
    write_file(configuration_dir / "wr-setup/uninst_wr_qev.sh",
               "#!/bin/sh\nprintf '%s uninstall %s\\n' $# \"$0\"" + append, 0755);

    session.variables = {{"log_file", (root / "log").string()},
                         {"DEFAULT_SEARCH_PATH", "/absent  " + workbench.string() + "//"},
                         {"WB_INTEGRATION_PATH", workbench.string()},
                         {"SUPPORTED_VERSION", "2.0;3.1;4.0;5"},
                         {"WB_INSTALL_SUBDIR", "/suite/part"},
                         {"VORN_INSTALL_DIR", product.string() + "/"},
                         {"VORN_INSTALL_SUBDIR", "/suite/"},
                         {"WORKBENCH_SCRIPT_NAME", names.script},
                         {"WB_PREFS", ".prefs"},
                         {"WB_PREFS_INST_DIR", "home"}};
    session.open_log(session.variables["log_file"]);
    add_component("workbench-part", {"part\\" + names.configuration + "\\a.prefs"}).subdirectory =
        "/suite/part";
}

Site::~Site() {
    fs::current_path("/");
    fs::remove_all(root);
}

int Site::run(std::string const& action) {
    static trial::Plugin const plugin(trial::bundled_plugin());
    session.calls.clear();
    return session.run(plugin.action(action));
}

trial::Component& Site::add_component(std::string const& name, std::vector<std::string> files) {
    auto component = std::make_unique<trial::Component>();
    component->name = name;
    component->file_provider->files = std::move(files);
    return *session.components.emplace_back(std::move(component));
}

std::string Site::calls() const {
    std::string calls;
    for (std::string const& call : session.calls) calls += call + "\n";
    for (std::size_t at = 0; (at = calls.find(root.string())) != std::string::npos;)
        calls.erase(at, root.string().size());
    return calls;
}

std::set<std::string> Site::entries() const {
    std::set<std::string> entries;
    for (fs::directory_entry const& entry : fs::recursive_directory_iterator(root))
        entries.insert(entry.path().lexically_relative(root).string());
    return entries;
}
